// Costs of the core's hot paths, per byte: the whole receive road of a
// generated stream, the window at its limit, the debug window, the history,
// and a sent line with its echo. The session log goes to memory so that the
// disk does not hide the road's own cost.
#include <benchmark/benchmark.h>

#include <string>

#include "history_probe.h"
#include "shell/client.h"
#include "stream_gen.h"
#include "support/fakes.h"
#include "support/memory_file_system.h"

using namespace kelpa;

namespace {

const std::string& sampleStream() {
    static const std::string s = bench::generateStream({4u << 20, 7, false});
    return s;
}

// The sample with a status frame behind every line, and the same text
// without them.
const std::string& framedStream() {
    static const std::string s = bench::generateStream({4u << 20, 7, true});
    return s;
}
const std::string& framedStreamText() {
    static const std::string s = [] {
        std::string t;
        const std::string& f = framedStream();
        bool inFrame = false;
        for (std::size_t i = 0; i < f.size(); ++i) {
            const char c = f[i];
            const bool telnetOption = i > 0 && static_cast<unsigned char>(f[i - 1]) >= 251 &&
                                      static_cast<unsigned char>(f[i - 1]) <= 254 && i > 1 && f[i - 2] == '\xFF';
            if (!inFrame && c == '\x18' && !telnetOption) inFrame = true;
            else if (inFrame && c == '\x1A') inFrame = false;
            else if (!inFrame) t += c;
        }
        return t;
    }();
    return s;
}

// A Client on the fakes whose files live in memory, connected, log open.
struct MemoryClient {
    test::FakePlatform fp;
    test::MemoryFileSystem files;
    Platform platform{fp.socket, fp.clock, fp.random, files, fp.host};
    Client c{platform};
    MemoryClient() {
        c.Form_Load();
        fp.socket.connected = true;
        files.createDirectories("logs/bench");
        c.parts().log.open("bench");
    }
    void feed(std::string_view chunk) {
        fp.socket.incoming.assign(chunk);
        c.parts().session.s_DataArrival();
        fp.socket.sent.clear();
        fp.socket.writes.clear();
    }
    // Empties what grows with the run, so that every pass starts alike; the
    // memory stays, so that a pass measures the road and not the kernel
    // handing out fresh pages (BM_ReceiveRoadRun measures that).
    void reset() {
        HistoryTextProbe::clear(c.parts().history);
        for (auto& [path, text] : files.files) text.clear();
    }
};

// The receive road of the 4 MB sample, cut in chunks of the given size.
void BM_ReceiveRoad(benchmark::State& state) {
    const std::size_t chunk = static_cast<std::size_t>(state.range(0));
    const std::string& data = sampleStream();
    MemoryClient m;
    for (auto _ : state) {
        for (std::size_t pos = 0; pos < data.size(); pos += chunk)
            m.feed(std::string_view(data).substr(pos, chunk));
        state.PauseTiming();
        m.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data.size()));
}
BENCHMARK(BM_ReceiveRoad)->Arg(512)->Arg(4 << 10)->Arg(64 << 10)->Unit(benchmark::kMillisecond);

// The road with frames (1) and the same text without them (0), 4 KB chunks.
void BM_ReceiveRoadFrames(benchmark::State& state) {
    const std::string& data = state.range(0) ? framedStream() : framedStreamText();
    MemoryClient m;
    for (auto _ : state) {
        for (std::size_t pos = 0; pos < data.size(); pos += 4096)
            m.feed(std::string_view(data).substr(pos, 4096));
        state.PauseTiming();
        m.reset();
        state.ResumeTiming();
    }
    // Per byte of text, so that both read alike; and per byte received, the
    // frames counted too, since a framed stream is that much longer.
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * framedStreamText().size()));
    state.counters["received_bytes_per_second"] = benchmark::Counter(
        static_cast<double>(state.iterations() * data.size()), benchmark::Counter::kIsRate);
    state.counters["received_bytes"] = static_cast<double>(data.size());
    state.counters["text_bytes"] = static_cast<double>(framedStreamText().size());
}
BENCHMARK(BM_ReceiveRoadFrames)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// A 24 that never gets its 26: the rest of the stream goes into the frame.
// Time per MB should not grow with the length; the frame kept stays bounded.
void BM_EndlessFrame(benchmark::State& state) {
    const std::size_t total = static_cast<std::size_t>(state.range(0)) << 20;
    const std::string block(4096, 'x');
    std::size_t kept = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto m = std::make_unique<MemoryClient>();
        state.ResumeTiming();
        m->feed("\x18" "1,8,5\x19");
        for (std::size_t done = 0; done < total; done += block.size()) m->feed(block);
        kept = m->c.parts().frames.PendingFrame().capacity();
        state.PauseTiming();
        m.reset();
        state.ResumeTiming();
    }
    state.counters["kept_bytes"] = static_cast<double>(kept);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * total));
}
BENCHMARK(BM_EndlessFrame)->Arg(1)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

// The cost per byte as the run grows: the history holds everything; the
// log in memory keeps it too (second argument 1) or only counts it (0).
void BM_ReceiveRoadRun(benchmark::State& state) {
    const std::size_t total = static_cast<std::size_t>(state.range(0));
    const std::string& data = sampleStream();
    for (auto _ : state) {
        state.PauseTiming();
        auto m = std::make_unique<MemoryClient>();
        m->files.keepAppends = state.range(1) != 0;
        state.ResumeTiming();
        std::size_t pos = 0;
        for (std::size_t done = 0; done < total; done += 4096) {
            if (pos + 4096 > data.size()) pos = 0;
            m->feed(std::string_view(data).substr(pos, 4096));
            pos += 4096;
        }
        state.PauseTiming();
        m.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * total));
}
BENCHMARK(BM_ReceiveRoadRun)
    ->ArgsProduct({{1 << 20, 10 << 20, 100 << 20}, {1, 0}})
    ->Unit(benchmark::kMillisecond)->Iterations(3);

// Bytes appended to a window at its limit, in 1 KB calls.
void BM_WindowAtLimit(benchmark::State& state) {
    const std::string chunk = sampleStream().substr(0, 1024);
    const std::size_t total = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        auto m = std::make_unique<MemoryClient>();
        state.ResumeTiming();
        for (std::size_t done = 0; done < total; done += chunk.size()) m->c.parts().writer.W_Print(chunk, 0);
        benchmark::DoNotOptimize(m->c.parts().windows.text[0].size());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * total));
}
BENCHMARK(BM_WindowAtLimit)->Arg(100 << 10)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

// Debug lines into a debug window that is already full.
void BM_DebugLogFullWindow(benchmark::State& state) {
    MemoryClient m;
    m.c.setDebugInfo(true);
    const std::string line(60, 'd');
    for (std::size_t i = 0; i < DebugChannel::kMaxChars / line.size() + 1; ++i) m.c.parts().debug.DebugLog(line);
    for (auto _ : state) m.c.parts().debug.DebugLog(line);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * (line.size() + 2)));
}
BENCHMARK(BM_DebugLogFullWindow);

// HistoryText growing from empty to the given size in 4 KB appends.
void BM_HistoryAppend(benchmark::State& state) {
    const std::string chunk(4096, 'h');
    const std::size_t total = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        HistoryText h;
        for (std::size_t done = 0; done < total; done += chunk.size()) h.append(chunk);
        benchmark::DoNotOptimize(h.size());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * total));
}
BENCHMARK(BM_HistoryAppend)->Arg(1 << 20)->Arg(16 << 20)->Unit(benchmark::kMillisecond);

// A typed line sent: ";;" and "\." handled, logged, echoed into window 0,
// kept in the history, written to the socket.
void BM_SendData(benchmark::State& state) {
    MemoryClient m;
    std::size_t n = 0;
    for (auto _ : state) {
        std::string line = "say the dragon sleeps;;look north";
        m.c.parts().sender.S_SendData(line);
        if (++n % 4096 == 0) {
            m.fp.socket.sent.clear();
            m.fp.socket.writes.clear();
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}
BENCHMARK(BM_SendData);

}  // namespace

BENCHMARK_MAIN();
