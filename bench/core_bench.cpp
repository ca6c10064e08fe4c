// Costs of the core's hot paths, per byte: the history, the debug window, a
// window at its limit, and the whole receive road of a coloured stream.
#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "shell/client.h"
#include "support/fakes.h"

using namespace kelpa;

namespace {

std::string colouredLine(std::mt19937& rng) {
    static const char* colours[] = {"\x1b[1;31m", "\x1b[0;32m", "\x1b[33m", "\x1b[0m", "\x1b[36m"};
    std::string s;
    for (int seg = 0; seg < 5; ++seg) {
        s += colours[rng() % 5];
        for (int i = 0; i < 15; ++i) s += static_cast<char>('a' + rng() % 26);
    }
    return s + "\r\n";
}

std::string stream(std::size_t bytes) {
    std::mt19937 rng(42);
    std::string s;
    while (s.size() < bytes) {
        s += colouredLine(rng);
        if (rng() % 10 == 0) s += "\xC9\xCD\xCD\xCD\xCD\xBB \xBA box \xBA \xC8\xCD\xCD\xBC\r\n";
    }
    return s;
}

// Bytes appended to a window at its limit, in 1 KB calls.
void BM_WindowAtLimit(benchmark::State& state) {
    const std::string chunk = stream(1024).substr(0, 1024);
    const std::size_t total = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        test::FakePlatform fp;
        Client c(fp.platform);
        c.Form_Load();
        for (std::size_t done = 0; done < total; done += chunk.size()) c.writer.W_Print(chunk, 0);
        benchmark::DoNotOptimize(c.windows.text[0].size());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * total));
}
BENCHMARK(BM_WindowAtLimit)->Arg(100 << 10)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

// Debug lines into a debug window that is already full.
void BM_DebugLogFullWindow(benchmark::State& state) {
    test::FakePlatform fp;
    Client c(fp.platform);
    c.Form_Load();
    c.setDebugInfo(true);
    const std::string line(60, 'd');
    for (std::size_t i = 0; i < DebugChannel::kMaxChars / line.size() + 1; ++i) c.debug.DebugLog(line);
    for (auto _ : state) c.debug.DebugLog(line);
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
        benchmark::DoNotOptimize(h.HistoryText.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * total));
}
BENCHMARK(BM_HistoryAppend)->Arg(1 << 20)->Arg(16 << 20)->Unit(benchmark::kMillisecond);

// The whole receive road (history, window 0, the log in a real file), no
// triggers, at a given chunk size.
void BM_ReceiveRoad(benchmark::State& state) {
    const std::size_t chunkSize = static_cast<std::size_t>(state.range(0));
    const std::string data = stream(4 << 20);
    test::FakePlatform fp;
    Client c(fp.platform);
    c.Form_Load();
    fp.socket.connected = true;
    c.session.s_Connect();
    std::size_t pos = 0;
    for (auto _ : state) {
        if (pos >= data.size()) pos = 0;
        fp.socket.incoming = data.substr(pos, chunkSize);
        pos += chunkSize;
        c.session.s_DataArrival();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * chunkSize));
}
BENCHMARK(BM_ReceiveRoad)->Arg(512)->Arg(4096)->Arg(65536);

}  // namespace

BENCHMARK_MAIN();
