// Triggers on the receive road: the road's rate with 0 to 10,000 substring
// triggers (about 2% of lines firing, many near misses that share a prefix
// with a real pattern), the reload of 10,000 trigger files, and the time
// from the read of a line to the action's bytes handed to the socket.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <string>
#include <vector>

#include "flood_triggers.h"
#include "history_probe.h"
#include "stream_gen.h"
#include "shell/client.h"
#include "support/fakes.h"

using namespace kelpa;

namespace {

std::string word(std::mt19937& rng, int len) {
    std::string w;
    for (int i = 0; i < len; ++i) w += static_cast<char>('a' + rng() % 26);
    return w;
}

std::vector<std::string> patterns(int n) {
    std::mt19937 rng(7);
    std::vector<std::string> p;
    for (int i = 0; i < n; ++i) p.push_back(word(rng, 6 + static_cast<int>(rng() % 10)));
    return p;
}

// Writes one file per pattern, the way players keep them; the action is
// "react <i>" unless given.
void writeTriggers(test::FakePlatform& fp, const std::vector<std::string>& pats, const std::string& action = {}) {
    for (std::size_t i = 0; i < pats.size(); ++i)
        fp.folder.write("triggers/t" + std::to_string(i) + ".trigger",
                        "pattern1=" + pats[i] + "\r\naction=" +
                            (action.empty() ? "react " + std::to_string(i) : action) + "\r\n");
}

// Coloured lines of words; 2% carry a real pattern, 30% a pattern cut
// short by one letter.
std::string stream(std::size_t bytes, const std::vector<std::string>& pats) {
    std::mt19937 rng(42);
    static const char* colours[] = {"\x1b[1;31m", "\x1b[0;32m", "\x1b[33m", "\x1b[0m", "\x1b[36m"};
    std::string s;
    while (s.size() < bytes) {
        std::string line = colours[rng() % 5];
        for (int w = 0; w < 10; ++w) line += word(rng, 2 + static_cast<int>(rng() % 7)) + " ";
        if (!pats.empty()) {
            const std::string& p = pats[rng() % pats.size()];
            const unsigned roll = rng() % 100;
            if (roll < 2) line += p;
            else if (roll < 32) line += p.substr(0, p.size() - 1) + "#";
        }
        s += line + "\x1b[0m\r\n";
    }
    return s;
}

struct Road {
    test::FakePlatform fp;
    Client c{fp.platform};
    explicit Road(int triggers) : Road(patterns(triggers)) {}
    explicit Road(const std::vector<std::string>& pats, const std::string& action = {}) {
        writeTriggers(fp, pats, action);
        c.Form_Load();
        fp.socket.connected = true;
        c.parts().session.s_Connect();
    }
};

void BM_ReceiveRoadWithTriggers(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    Road road(n);
    const std::string data = stream(4 << 20, patterns(std::max(n, 100)));
    const std::size_t chunk = 4096;
    std::size_t pos = 0, fired = 0;
    for (auto _ : state) {
        if (pos >= data.size()) {
            pos = 0;
            fired += road.fp.socket.writes.size();
            road.fp.socket.writes.clear();
            road.fp.socket.sent.clear();
            // The run's raw text would otherwise grow for the whole bench.
            HistoryTextProbe::clear(road.c.parts().history);
        }
        road.fp.socket.incoming = data.substr(pos, chunk);
        pos += chunk;
        road.c.parts().session.s_DataArrival();
    }
    fired += road.fp.socket.writes.size();
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * chunk));
    state.counters["fired_per_MB"] =
        static_cast<double>(fired) / (static_cast<double>(state.iterations() * chunk) / (1 << 20));
}
BENCHMARK(BM_ReceiveRoadWithTriggers)->Arg(0)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

// The core road under the whole-program flood: kelpa-streamgen's stream in
// 16 KB reads, with the trigger set of kelpa-bench (phrases of the stream's
// words and their near misses, each firing "#math hits + %hits 1").
void BM_FloodRoadWithTriggers(benchmark::State& state) {
    std::vector<std::string> pats;
    for (int i = 0; i < state.range(0); ++i) pats.push_back(bench::floodTriggerPattern(i));
    Road road(pats, bench::kFloodTriggerAction);
    bench::StreamOptions o;
    o.size = 8 << 20;
    const std::string data = bench::generateStream(o, nullptr);
    const std::size_t chunk = 16 << 10;
    std::size_t pos = 0, bytes = 0;
    for (auto _ : state) {
        if (pos >= data.size()) {
            pos = 0;
            HistoryTextProbe::clear(road.c.parts().history);
        }
        road.fp.socket.incoming.assign(data, pos, chunk);
        bytes += road.fp.socket.incoming.size();
        pos += chunk;
        road.c.parts().session.s_DataArrival();
    }
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
    // "%HITS" stays as it is until the first firing sets the variable.
    const std::string hits = road.c.parts().variables.S_ExpandVars("%HITS");
    state.counters["fired_per_MB"] = hits[0] == '%' ? 0.0 : std::stod(hits) / (static_cast<double>(bytes) / (1 << 20));
}
BENCHMARK(BM_FloodRoadWithTriggers)->Arg(0)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

// The same road with a plain walk of every record for every line, for
// comparison: flags, then a search for each pattern text.
class PlainWalk : public TriggerPasses {
public:
    explicit PlainWalk(Client& c) : c_(c) {}
    void matchGlobal(std::string_view chunk) override { walk(c_.parts().triggers.GlobalTriggerTable, chunk); }
    bool hasLineTriggers() const override { return !c_.parts().triggers.TriggerTable.empty(); }
    void matchLine(std::string_view line) override { walk(c_.parts().triggers.TriggerTable, line); }

private:
    void walk(const TriggerRecords& table, std::string_view text) {
        for (const TriggerRecord& r : table) {
            if (!TriggerStore::flagsPass(r, c_.parts().flags)) continue;
            bool pass = true;
            for (int g = 1; g <= r.PatternGroupCount; ++g) {
                pass = true;
                for (const std::string& p : r.patternGroup(g).Texts)
                    if (text.empty() || text.find(p) == std::string_view::npos) pass = false;
                if (pass) break;
            }
            if (pass) c_.parts().commands.S_RunCommands(TriggerStore::commandText(r.Action, text));
        }
    }
    Client& c_;
};

void BM_ReceiveRoadPlainWalk(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    Road road(n);
    PlainWalk plain(road.c);
    road.c.parts().pipeline.setTriggers(plain);
    const std::string data = stream(1 << 20, patterns(std::max(n, 100)));
    const std::size_t chunk = 4096;
    std::size_t pos = 0;
    for (auto _ : state) {
        if (pos >= data.size()) pos = 0;
        road.fp.socket.incoming = data.substr(pos, chunk);
        pos += chunk;
        road.c.parts().session.s_DataArrival();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * chunk));
}
BENCHMARK(BM_ReceiveRoadPlainWalk)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

void BM_LoadTriggerFiles(benchmark::State& state) {
    Road road(0);
    writeTriggers(road.fp, patterns(static_cast<int>(state.range(0))));
    for (auto _ : state) road.c.LoadTriggers();
    state.counters["records"] = road.c.parts().triggers.TriggerCount();
}
BENCHMARK(BM_LoadTriggerFiles)->Arg(10000)->Unit(benchmark::kMillisecond);

// From the read of a chunk that ends with a firing line to the action's
// bytes at the socket, over 1,000 lines; quiet (the line alone) or in a
// flood (the line behind 16 KB of other text in the same read).
void BM_ReactionTime(benchmark::State& state) {
    const bool flood = state.range(0) != 0;
    const std::vector<std::string> pats = patterns(1000);
    Road road(1000);
    const std::string before = flood ? stream(16 << 10, pats) : std::string();
    std::chrono::steady_clock::time_point start, sentAt;
    road.fp.socket.onSend = [&](const std::string&) {
        if (sentAt == std::chrono::steady_clock::time_point{}) sentAt = std::chrono::steady_clock::now();
    };
    std::vector<double> us;
    for (auto _ : state) {
        us.clear();
        for (int i = 0; i < 1000; ++i) {
            road.fp.socket.incoming = before + "You see " + pats[static_cast<std::size_t>(i)] + " here.\r\n";
            sentAt = {};
            start = std::chrono::steady_clock::now();
            road.c.parts().session.s_DataArrival();
            us.push_back(std::chrono::duration<double, std::micro>(sentAt - start).count());
        }
        road.fp.socket.sent.clear();
        road.fp.socket.writes.clear();
    }
    std::sort(us.begin(), us.end());
    state.counters["p50_us"] = us[us.size() / 2];
    state.counters["p99_us"] = us[us.size() * 99 / 100];
    state.counters["max_us"] = us.back();
}
BENCHMARK(BM_ReactionTime)->Arg(0)->Arg(1)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
