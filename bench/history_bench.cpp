// The history's views: a paging key on a run of 1 MB to 1 GB, loading a
// 100 MB day log piece by piece, and Seek and Filter over 100 MB of
// coloured history. The run lives in a memory-only file, as in the window.
#include <benchmark/benchmark.h>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "shell/client.h"
#include "stream_gen.h"
#include "support/fakes.h"

using namespace kelpa;

namespace {

class MemfdStore : public HistoryStore {
public:
    MemfdStore() : fd_(memfd_create("kelpa-bench-history", MFD_CLOEXEC)) {}
    ~MemfdStore() override { close(fd_); }
    std::size_t append(std::string_view b) override {
        std::size_t done = 0;
        while (done < b.size()) {
            const ssize_t n = write(fd_, b.data() + done, b.size() - done);
            if (n <= 0) break;
            done += static_cast<std::size_t>(n);
        }
        return done;
    }
    std::string read(std::size_t pos, std::size_t n) const override {
        std::string out(n, '\0');
        out.resize(readInto(pos, n, out.data()));
        return out;
    }
    std::size_t readInto(std::size_t pos, std::size_t n, char* out) const override {
        const ssize_t r = pread(fd_, out, n, static_cast<off_t>(pos));
        return r > 0 ? static_cast<std::size_t>(r) : 0;
    }

private:
    int fd_;
};

const std::string& sample() {
    static const std::string s = bench::generateStream({8u << 20, 3, false});
    return s;
}

// A client whose history is a memory-only file of `size` bytes of the sample.
struct RunOf {
    test::FakePlatform fp;
    MemfdStore store;
    Client c{fp.platform};
    explicit RunOf(std::size_t size) {
        c.Form_Load();
        c.parts().history.setStore(&store);
        const std::string& s = sample();
        for (std::size_t done = 0; done < size;) {
            const std::size_t n = std::min(s.size(), size - done);
            c.parts().history.append(std::string_view(s).substr(0, n));
            done += n;
        }
    }
};

// One key at a time, at the end and in the middle of the run.
void BM_HistoryKey(benchmark::State& state) {
    RunOf run(static_cast<std::size_t>(state.range(0)));
    HistoryPager& p = run.c.historyViews().pager;
    const int keys[] = {HistoryPager::kEnd, HistoryPager::kPageUp, HistoryPager::kUp, HistoryPager::kPageUp,
                        HistoryPager::kDown, HistoryPager::kPageDown};
    std::size_t i = 0;
    for (auto _ : state) {
        p.HistT_KeyDown(keys[i++ % std::size(keys)]);
        if (i % 60 == 0) {
            // Somewhere in the middle now and then.
            state.PauseTiming();
            run.c.parts().history.HistoryPos = run.c.parts().history.size() / 2;
            p.HistT_KeyDown(HistoryPager::kUp);
            state.ResumeTiming();
        }
    }
}
BENCHMARK(BM_HistoryKey)->Arg(1 << 20)->Arg(100 << 20)->Arg(1 << 30)->Unit(benchmark::kMicrosecond);

// A 100 MB day log, one piece per step; the longest step is reported.
void BM_DayLogLoad(benchmark::State& state) {
    test::FakePlatform fp;
    const std::size_t size = 100u << 20;
    {
        std::filesystem::create_directories(fp.folder.path() / "logs/mud");
        std::ofstream f(fp.folder.path() / "logs/mud/H.20261123.txt", std::ios::binary);
        for (std::size_t done = 0; done < size; done += sample().size())
            f.write(sample().data(), static_cast<std::streamsize>(std::min(sample().size(), size - done)));
    }
    double longest = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto store = std::make_unique<MemfdStore>();
        auto c = std::make_unique<Client>(fp.platform);
        c->Form_Load();
        c->parts().history.setStore(store.get());
        c->parts().bar.CurrentSite.ShortName = "mud";
        state.ResumeTiming();
        c->historyViews().browser.DList_DblClick("H.20261123.txt");
        bool more = true;
        while (more) {
            const auto t0 = std::chrono::steady_clock::now();
            more = c->historyViews().browser.step();
            longest = std::max(longest, std::chrono::duration<double, std::milli>(
                                            std::chrono::steady_clock::now() - t0).count());
        }
        state.PauseTiming();
        if (c->parts().history.size() != size) state.SkipWithError("not all loaded");
        c.reset();
        store.reset();
        state.ResumeTiming();
    }
    state.counters["longest_step_ms"] = longest;
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * size));
}
BENCHMARK(BM_DayLogLoad)->Unit(benchmark::kMillisecond)->Iterations(3);

// A whole pass over 100 MB: Filter for a rare word, Seek for an absent one.
void BM_Search(benchmark::State& state) {
    const std::size_t size = 100u << 20;
    RunOf run(size);
    HistorySearch& s = run.c.historyViews().search;
    double longest = 0;
    for (auto _ : state) {
        if (state.range(0) == 0)
            s.BFilter_Click("dragon");
        else
            s.BSeek_Click("no such words");
        bool more = true;
        while (more) {
            const auto t0 = std::chrono::steady_clock::now();
            more = s.step();
            longest = std::max(longest, std::chrono::duration<double, std::milli>(
                                            std::chrono::steady_clock::now() - t0).count());
        }
    }
    state.counters["longest_step_ms"] = longest;
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * size));
    state.SetLabel(state.range(0) == 0 ? "filter" : "seek");
}
BENCHMARK(BM_Search)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
