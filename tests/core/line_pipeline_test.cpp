// getline, lignes and S_ProcessLines: what the window, the log and the two
// trigger passes get of a chunk, and what a failure leaves.
#include <gtest/gtest.h>

#include <random>

#include "session/lines.h"
#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::bytes;
using kelpa::test::ClientHarness;

namespace {

class RecordingTriggers : public TriggerPasses {
public:
    void matchGlobal(std::string_view chunk) override { global.emplace_back(chunk); }
    bool hasLineTriggers() const override { return true; }
    void matchLine(std::string_view line) override { lines.emplace_back(line); }
    std::vector<std::string> global, lines;
};

struct PipelineHarness : ClientHarness {
    RecordingTriggers triggers;
    PipelineHarness() {
        c.pipeline.setTriggers(triggers);
        openLog();
    }
    void process(std::string chunk) { c.pipeline.S_ProcessLines(chunk); }
};

using Lines = std::vector<std::string>;

}  // namespace

TEST(Lines, GetlineAndLignes) {
    // The random test below holds the lines; these are the other corners.
    struct Row { std::string s; int l; bool only; std::string result; };
    const std::vector<Row> rows = {
        {"a\r\nb", 3, true, ""},     {"a\r\nb", 1, false, "a\r\nb"}, {"abc", 0, true, "abc"},
        {"abc", -4, false, "abc"},   {"a\r\nb\r\nc", 2, false, "b\r\nc"}, {"a\r\nb", 9, false, ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(getline(row.s, row.l, row.only), row.result) << row.s << " line " << row.l;

    for (const auto& [text, n] : std::vector<std::pair<std::string, int>>{{"", 1}, {"\n\r", 1}, {"a\r\n\r\n", 3}})
        EXPECT_EQ(lignes(text), n) << text;
}

TEST(Lines, CursorGivesTheLinesOfGetlineOnRandomTexts) {
    std::mt19937 rng(1234);
    const char alphabet[] = {'\r', '\n', 'a', 'b', ' '};
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        const std::size_t len = rng() % 24;
        for (std::size_t i = 0; i < len; ++i) text += alphabet[rng() % 5];
        Lines slow, fast;
        for (int i = 1; i <= lignes(text); ++i) slow.push_back(getline(text, i, true));
        LineCursor cursor(text);
        std::string_view line;
        while (cursor.next(line)) fast.emplace_back(line);
        ASSERT_EQ(fast, slow) << "text of " << len << " bytes, round " << round;
    }
}

TEST(LinePipeline, ChunkReachesWindowLogAndBothTriggerPasses) {
    const std::vector<std::pair<std::string, Lines>> rows = {
        {"abc\r\n", {"abc", ""}}, {"one\n\rtwo\n\r", {"one\n\rtwo\n\r"}}, {"a\r\n\r\nb", {"a", "", "b"}},
    };
    for (const auto& [chunk, lines] : rows) {
        PipelineHarness h;
        h.process(chunk);
        EXPECT_EQ(h.window(kMainWindow), chunk);
        EXPECT_EQ(h.logFile(), chunk + "\r\n");
        EXPECT_EQ(h.triggers.global, Lines{chunk});
        EXPECT_EQ(h.triggers.lines, lines);
    }
    // A line split across chunks joins only on screen.
    PipelineHarness h;
    h.process("ab");
    h.process("c\r\n");
    EXPECT_EQ(h.window(kMainWindow), "abc\r\n");
    EXPECT_EQ(h.logFile(), "ab\r\nc\r\n\r\n");
    EXPECT_EQ(h.triggers.lines, (Lines{"ab", "c", ""}));
}

TEST(LinePipeline, CleanerTextBreaksAheadOfGoldWhenMppIsThere) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"a\r\nb\r\nGold: 5\r\nMPP: 3", "a\r\nb\r\r\n\r\nGold: 5\r\nMPP: 3"},
        {"MPP: 3\r\nx Gold: 5", "MPP: 3\r\r\n\r\nx Gold: 5"},
        {"Gold: 5 MPP: 3", "Gold: 5 MPP: 3\r\n"},
        {"hp\r\nGold: 5", "hp\r\nGold: 5"},
        {"gold: 5 MPP: 3", "gold: 5 MPP: 3"},
    };
    for (auto [in, out] : rows) {
        const std::string before = in;
        LinePipeline::cleanerText(in);
        EXPECT_EQ(in, out) << before;
    }

    PipelineHarness h;
    h.process("hp\r\nGold: 5 MPP: 3");
    const std::string changed = "hp\r\r\n\r\nGold: 5 MPP: 3";
    EXPECT_EQ(h.window(kMainWindow), changed);
    EXPECT_EQ(h.logFile(), changed + "\r\n");
    EXPECT_EQ(h.triggers.lines, (Lines{"hp\r", "", "Gold: 5 MPP: 3"}));

    PipelineHarness off;
    off.c.setCleanerText(false);
    off.process("hp\r\nGold: 5 MPP: 3");
    EXPECT_EQ(off.window(kMainWindow), "hp\r\nGold: 5 MPP: 3");
}

TEST(LinePipeline, FailureAbandonsTheChunkWithTheLogErrorLine) {
    for (const auto& [chunk, source] : std::vector<std::pair<std::string, std::string>>{
             {"ok" + bytes({255, 251}), "S_InterpretIac"}, {"ok\x1BMlost\r\nmore", "A_ParseCsi"}}) {
        PipelineHarness h;
        h.process("before");
        h.process(chunk);
        EXPECT_EQ(h.window(kMainWindow), "beforeok");
        EXPECT_EQ(h.logFile(), "before\r\n\r\nERROR : 5/Invalid procedure call or argument on line " + source + "\r\n");
        EXPECT_EQ(h.triggers.global, Lines{"before"});
        EXPECT_EQ(h.triggers.lines, Lines{"before"});
        h.process("after");
        EXPECT_EQ(h.window(kMainWindow), "beforeokafter") << "the session goes on";
    }

    PipelineHarness noLog;
    noLog.c.log.close();
    noLog.process("x" + bytes({255}));
    EXPECT_EQ(noLog.window(kMainWindow), "x");
    EXPECT_TRUE(noLog.triggers.global.empty());
}
