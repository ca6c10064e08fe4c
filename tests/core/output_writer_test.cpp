// W_Print and the window model: segments, Pending, the window limit, Ink,
// box-drawing glyphs and the cost of appending to a full window.
#include <gtest/gtest.h>

#include <random>

#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::bytes;
using kelpa::test::ClientHarness;
using kelpa::test::styleAt;

namespace {

const std::string ESC = "\x1B";
const std::uint32_t kRedBold = rgb(255, 127, 127);

}  // namespace

TEST(OutputWriter, UnfinishedSequenceWaitsForTheNextCallOfItsWindow) {
    ClientHarness h;
    h.c.writer.W_Print("ab" + ESC + "[3", kMainWindow);
    EXPECT_EQ(h.window(kMainWindow), "ab");
    EXPECT_EQ(h.state(kMainWindow).Pending, ESC + "[3");

    // Another window does not continue it.
    h.c.writer.W_Print("1mY", kHistT);
    EXPECT_EQ(h.window(kHistT), "1mY");
    EXPECT_EQ(h.state(kMainWindow).Pending, ESC + "[3");

    h.c.writer.W_Print("1mX", kMainWindow);
    EXPECT_EQ(h.window(kMainWindow), "abX");
    EXPECT_EQ(styleAt(h.c.windows.text[kMainWindow], 2).colour, kRedBold);
    EXPECT_EQ(h.state(kMainWindow).Pending, "");
}

TEST(OutputWriter, FragmentWithoutFinalIsPendingUpToFiveCharacters) {
    struct Row {
        std::string text, shown, pending;
    };
    const std::vector<Row> rows = {
        {"ab" + ESC + "[1;2", "ab", ESC + "[1;2"},   // 5 characters: kept
        {"ab" + ESC + "[1;22", "ab[1;22", ""},       // 6: only the ESC goes
        {ESC, "", ESC},
        {ESC + "[?25hi there", "re", ""},            // h is no final; e is
    };
    for (const auto& row : rows) {
        ClientHarness h;
        h.c.writer.W_Print(row.text, kMainWindow);
        EXPECT_EQ(h.window(kMainWindow), row.shown) << row.text.substr(1);
        EXPECT_EQ(h.state(kMainWindow).Pending, row.pending) << row.text.substr(1);
    }
}

TEST(OutputWriter, FinalAtPositionTenThousandCountsAsNone) {
    ClientHarness h;
    // Window 6 has no limit, so all of the text stays to be looked at.
    h.c.writer.W_Print(ESC + std::string(9997, 'x') + "m", kHistView);
    EXPECT_EQ(h.window(kHistView), "") << "final at 9999 ends the sequence";
    h.c.writer.W_Print(ESC + std::string(9998, 'x') + "m", kHistView);
    EXPECT_EQ(h.window(kHistView), std::string(9998, 'x') + "m");
}

TEST(OutputWriter, LimitCutKeepsTheFirstCharacterAndFourFifths) {
    struct Row {
        int win;
        std::size_t limit;
    };
    for (const Row& row : std::vector<Row>{{0, 3500}, {1, 5000}, {5, 5000}, {7, 10000}}) {
        ClientHarness h;
        std::string text = "F";
        for (std::size_t i = 1; i <= row.limit; ++i) text += static_cast<char>('a' + i % 26);
        h.c.writer.W_Print(text.substr(0, row.limit), row.win);
        EXPECT_EQ(h.window(row.win).size(), row.limit) << "at the limit: no cut";
        h.c.writer.W_Print(text.substr(row.limit), row.win);
        const std::size_t kept = row.limit * 4 / 5;
        EXPECT_EQ(h.window(row.win), "F" + text.substr(text.size() - (kept - 1)))
            << "window " << row.win;
    }
    ClientHarness h;
    h.c.writer.W_Print(std::string(150000, 'z'), kHistView);
    EXPECT_EQ(h.window(kHistView).size(), 150000u) << "window 6 is never cut";
}

TEST(OutputWriter, InkOffInterpretsButWritesNothingAndStillCuts) {
    ClientHarness h;
    h.state(kMainWindow).Ink = false;
    h.c.writer.W_Print("a" + ESC + "[0;31mb", kMainWindow);
    EXPECT_EQ(h.window(kMainWindow), "");
    EXPECT_EQ(h.state(kMainWindow).Colour, rgb(128, 0, 0));

    // The debug channel may leave window 1 above its limit; the next W_Print
    // cuts it even though it writes nothing.
    h.c.debug.DebugLog(std::string(6000, 'd'));
    h.state(kDebugWindow).Ink = false;
    h.c.writer.W_Print("zzz", kDebugWindow);
    EXPECT_EQ(h.window(kDebugWindow).size(), 4000u);
    EXPECT_EQ(h.window(kDebugWindow).find('z'), std::string::npos);
}

TEST(OutputWriter, BoxBytesShowAsGraphicsOnlyWhenWrittenWithGraphicsOn) {
    ClientHarness h;
    const std::string box = bytes({0xC4, 0xB3, 0xB1});
    h.c.writer.W_Print(box, kCustom1);
    h.setGraphicsOff();
    h.c.writer.W_Print(box, kCustom1);
    const OutputWindow& w = h.c.windows.text[kCustom1];
    EXPECT_EQ(h.window(kCustom1), box + box) << "the bytes themselves stay";
    for (std::size_t i = 0; i < 3; ++i) EXPECT_TRUE(styleAt(w, i).graphics) << i;
    for (std::size_t i = 3; i < 6; ++i) EXPECT_FALSE(styleAt(w, i).graphics) << i;
}

TEST(OutputWriter, LastSegmentTakesTheUnderlineOfTheCharacterBeforeIt) {
    ClientHarness h;
    h.c.writer.W_Print(ESC + "[4mab", kCustom1);
    EXPECT_FALSE(styleAt(h.c.windows.text[kCustom1], 0).underline) << "empty window";

    h.c.writer.W_Print(ESC + "[4mab" + ESC + "[0mcd", kMainWindow);
    const OutputWindow& w = h.c.windows.text[kMainWindow];
    EXPECT_TRUE(styleAt(w, 0).underline);
    EXPECT_TRUE(styleAt(w, 1).underline);
    EXPECT_TRUE(styleAt(w, 3).underline) << "follows the caret, not Underline";
    h.c.writer.W_Print(ESC + "[4mx" + ESC + "[K", kMainWindow);
    EXPECT_TRUE(styleAt(w, 4).underline);
}

TEST(OutputWriter, OtherControlCharactersAreText) {
    ClientHarness h;
    const std::string text = "a\x07" "b\x08" "c\td\r\n\x1A";
    h.c.writer.W_Print(text, kMainWindow);
    EXPECT_EQ(h.window(kMainWindow), text);
}

TEST(OutputWriter, WindowNumberOutsideZeroToSevenIsOnlyADebugLine) {
    ClientHarness h;
    h.c.writer.W_Print("x", 8);
    h.c.writer.W_Print("x", -1);
    EXPECT_EQ(h.debugText(), "No such window :8\r\nNo such window :-1\r\n");
    for (int w = 0; w < kWindowCount; ++w) {
        if (w == kDebugWindow) continue;
        EXPECT_EQ(h.window(w), "") << w;
    }
}

// The window model against a plain list of (character, colour): after any
// number of appends and limit cuts both must hold the same text in the same
// colours.
TEST(OutputWriter, RunsSurviveLimitCutsLikeAPlainCopy) {
    ClientHarness h;
    std::mt19937 rng(7);
    std::vector<std::pair<char, std::uint32_t>> plain;
    for (int call = 0; call < 400; ++call) {
        const int digit = static_cast<int>(rng() % 8);
        const std::size_t len = rng() % 300;
        std::string text(len, static_cast<char>('a' + call % 26));
        h.c.writer.W_Print(ESC + "[0;3" + std::to_string(digit) + "m" + text, kMainWindow);
        const std::uint32_t shown = h.c.ansi.A_ColourFor(digit) + rgb(64, 64, 64);
        for (char ch : text) plain.emplace_back(ch, shown);
        if (plain.size() > 3500) plain.erase(plain.begin() + 1, plain.end() - 2799);

        const OutputWindow& w = h.c.windows.text[kMainWindow];
        ASSERT_EQ(w.size(), plain.size()) << "call " << call;
        std::string expected;
        for (auto& p : plain) expected += p.first;
        ASSERT_EQ(w.text(), expected) << "call " << call;
        std::size_t covered = 0;
        w.forEachRun([&](const OutputWindow::Run& r) {
            for (std::size_t i = r.begin; i < r.end; ++i)
                ASSERT_EQ(r.style.colour, plain[i].second) << "call " << call << " at " << i;
            covered += r.end - r.begin;
        });
        ASSERT_EQ(covered, plain.size());
    }
}

TEST(OutputWriter, FullWindowStaysBoundedUnderManyAppends) {
    ClientHarness h;
    std::string kb;
    for (int i = 0; i < 8; ++i) kb += ESC + "[3" + std::to_string(i) + "m" + std::string(125, 'x');
    for (int call = 0; call < 5000; ++call) {
        h.c.writer.W_Print(kb, kMainWindow);
        ASSERT_LE(h.c.windows.text[kMainWindow].size(), 3500u);
    }
    // 2800 characters in colour runs of 125 need about 24 runs, plus the
    // first character's own.
    EXPECT_EQ(h.c.windows.text[kMainWindow].size(), 2800u);
    EXPECT_LE(h.c.windows.text[kMainWindow].runCount(), 2800u / 125 + 3);
}
