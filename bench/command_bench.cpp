// Costs of the command language with a large variable table: expansion of
// long texts, and whole command texts through S_RunCommands.
#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "common/text.h"
#include "shell/client.h"
#include "support/fakes.h"

using namespace kelpa;

namespace {

constexpr int kVariables = 10000;

void fillTable(VariableTable& vars) {
    for (int i = 0; i < kVariables; ++i) {
        const std::string n = std::to_string(i);
        vars.S_SetVal("V" + n, "value" + n);
    }
}

// A started client with the 10,000 variables.
struct LargeTable {
    test::FakePlatform fp;
    Client c{fp.platform};
    LargeTable() {
        c.Form_Load();
        fillTable(c.parts().variables);
    }
};

// Words and references to random variables, about one reference in five.
std::string referringText(std::size_t bytes, std::mt19937& rng) {
    std::string s;
    while (s.size() < bytes) {
        s += rng() % 5 == 0 ? std::string("%V") + std::to_string(rng() % kVariables) : "word";
        s += rng() % 12 == 0 ? "\r\n" : " ";
    }
    return s;
}

// One text of the given size through S_ExpandVars.
void BM_ExpandVars(benchmark::State& state) {
    LargeTable table;
    Client& c = table.c;
    std::mt19937 rng(7);
    const std::string text = referringText(static_cast<std::size_t>(state.range(0)), rng);
    for (auto _ : state) benchmark::DoNotOptimize(c.parts().variables.S_ExpandVars(text));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_ExpandVars)->Arg(64 << 10)->Arg(256 << 10)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

// The same with one pass over the text per entry, the plain reading.
void BM_ExpandVarsOnePassPerEntry(benchmark::State& state) {
    LargeTable table;
    Client& c = table.c;
    std::mt19937 rng(7);
    const std::string text = referringText(static_cast<std::size_t>(state.range(0)), rng);
    for (auto _ : state) {
        std::string t = text;
        for (int n = 1; n <= c.parts().variables.VariableCount(); ++n)
            t = replaceAll(t, "%" + c.parts().variables.entry(n).Name, c.parts().variables.entry(n).Value);
        benchmark::DoNotOptimize(t);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_ExpandVarsOnePassPerEntry)->Arg(64 << 10)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

// A command text of keyword, macro-free and plain lines, connected, debug
// off: each line sets, computes, tests, prints or sends.
std::string commandText(std::size_t bytes, std::mt19937& rng) {
    std::string s;
    auto v = [&] { return std::string("%V") + std::to_string(rng() % kVariables); };
    auto name = [&] { return std::string("V") + std::to_string(rng() % kVariables); };
    while (s.size() < bytes) {
        switch (rng() % 6) {
            case 0: s += "#sv " + name() + " " + v() + " and " + v(); break;
            case 1: s += "#math " + name() + " + " + v() + " 1"; break;
            case 2: s += "#ifgt 5 " + v() + " say " + v(); break;
            case 3: s += "#echo 2 " + v() + " " + v(); break;
            case 4: s += "say " + v() + " to " + v(); break;
            default: s += "#sf " + std::to_string(rng() % 84) + " 1"; break;
        }
        s += "\r\n";
    }
    return s;
}

void BM_RunCommands(benchmark::State& state) {
    std::mt19937 rng(11);
    const std::string text = commandText(static_cast<std::size_t>(state.range(0)), rng);
    for (auto _ : state) {
        state.PauseTiming();
        auto fp = std::make_unique<test::FakePlatform>();
        auto c = std::make_unique<Client>(fp->platform);
        c->Form_Load();
        fp->socket.connected = true;
        fillTable(c->parts().variables);
        state.ResumeTiming();
        c->parts().commands.S_RunCommands(text);
        benchmark::DoNotOptimize(fp->socket.sent.size());
        state.PauseTiming();
        c.reset();
        fp.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_RunCommands)->Arg(256 << 10)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

// One keyword line of the given length: fold, expansion, words, print.
void BM_OneLongKeywordLine(benchmark::State& state) {
    LargeTable table;
    Client& c = table.c;
    std::mt19937 rng(13);
    std::string line = "#echo 2 " + referringText(static_cast<std::size_t>(state.range(0)), rng);
    line = replaceAll(line, "\r\n", " ");
    for (auto _ : state) c.parts().commands.S_RunCommands(line);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * line.size()));
}
BENCHMARK(BM_OneLongKeywordLine)->Arg(256 << 10)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

}  // namespace
