// The ESC interpreter: SGR parameters, the finals, and what reaches the
// screen, as W_Print hands sequences over.
#include <gtest/gtest.h>

#include "common/run_error.h"
#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::ClientHarness;
using kelpa::test::styleAt;

namespace {

const std::string ESC = "\x1B";

std::string csi(const std::string& body) { return ESC + "[" + body; }

struct SgrRow {
    std::string before;  // sequences written first
    std::string seq;
    std::uint32_t shown;  // colour of the text written behind it
    bool notBold, underline, blink, reverse;
    std::uint32_t back;
    std::string debug;
};

}  // namespace

TEST(Ansi, SgrParametersChangeTheWindowState) {
    const std::uint32_t grey = rgb(128, 128, 128);
    const std::vector<SgrRow> rows = {
        {csi("0m"), csi("1;31m"), rgb(255, 127, 127), false, false, false, false, 0, ""},
        {csi("0m"), csi("31;1m"), rgb(255, 127, 127), false, false, false, false, 0, ""},
        {csi("4;5;7m") + csi("1m"), csi("m"), rgb(192, 192, 192), true, true, true, true, 0, ""},
        {csi("4;5;7;41m"), csi("0m"), rgb(192, 192, 192), true, false, false, false,
         rgb(128, 0, 0), ""},
        {csi("0;32m"), csi(";1m"), rgb(255, 255, 255), false, false, false, false, 0, ""},
        {csi("0m"), csi("39m"), rgb(64, 64, 64), true, false, false, false, 0,
         "unknown color 9\r\n"},
        {csi("0m"), csi("38;5;196m"), rgb(64, 64, 64), true, false, true, false, 0,
         "unknown color 8\r\n"},
        {csi("0;33m"), csi("100m"), rgb(192, 192, 64), true, false, false, false, 0, ""},
        {csi("0m"), csi("05m"), rgb(192, 192, 192), true, false, false, false, 0,
         "unknown SING/DBL 05\r\n"},
        {csi("1;4m"), csi("24m"), rgb(255, 255, 255), false, true, false, false, 0,
         "unknown SING/DBL 24\r\n"},
        {csi("0m"), csi("2m"), rgb(192, 192, 192), true, false, false, false, 0,
         "unknown SING :2\r\n"},
        {csi("0;34m"), csi("41m"), rgb(64, 64, 192), true, false, false, false, rgb(128, 0, 0),
         ""},
        {csi("0;34m"), csi("47m"), rgb(64, 64, 192), true, false, false, false, grey, ""},
        {csi("0;31m"), csi("3xm"), rgb(192, 192, 192), true, false, false, false, 0, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.before.substr(1) + " then " + row.seq.substr(1));
        ClientHarness h;
        h.c.writer.W_Print(row.before, kMainWindow);
        ASSERT_EQ(h.debugText(), "");
        h.c.writer.W_Print(row.seq + "x" + csi("K"), kMainWindow);
        const WindowState& st = h.state(kMainWindow);
        EXPECT_EQ(h.window(kMainWindow), "x");
        EXPECT_EQ(styleAt(h.c.windows.text[kMainWindow], 0).colour, row.shown);
        EXPECT_EQ(st.NotBold, row.notBold);
        EXPECT_EQ(st.Underline, row.underline);
        EXPECT_EQ(st.Blink, row.blink);
        EXPECT_EQ(st.Reverse, row.reverse);
        EXPECT_EQ(st.BackColour, row.back);
        EXPECT_EQ(h.debugText(), row.debug);
    }
}

TEST(Ansi, EachColourDigitShowsItsNormalAndBoldColour) {
    struct Row {
        int digit;
        std::uint32_t normal, bold;
    };
    const std::vector<Row> rows = {
        {0, rgb(192, 192, 192), rgb(255, 255, 255)}, {1, rgb(192, 64, 64), rgb(255, 127, 127)},
        {2, rgb(64, 192, 64), rgb(127, 255, 127)},   {3, rgb(192, 192, 64), rgb(255, 255, 127)},
        {4, rgb(64, 64, 192), rgb(127, 127, 255)},   {5, rgb(192, 64, 192), rgb(255, 127, 255)},
        {6, rgb(64, 192, 192), rgb(127, 255, 255)},  {7, rgb(192, 192, 192), rgb(255, 255, 255)},
        {9, rgb(64, 64, 64), rgb(127, 127, 127)},
    };
    for (const auto& row : rows) {
        ClientHarness h;
        const std::string d = std::to_string(row.digit);
        h.c.writer.W_Print(csi("0;3" + d + "m") + "n" + csi("1m") + "b" + csi("0m"), kMainWindow);
        const OutputWindow& w = h.c.windows.text[kMainWindow];
        EXPECT_EQ(styleAt(w, 0).colour, row.normal) << "digit " << row.digit;
        EXPECT_EQ(styleAt(w, 1).colour, row.bold) << "digit " << row.digit;
    }
}

TEST(Ansi, NewWindowIsBoldUntilTheFirstReset) {
    ClientHarness h;
    h.c.writer.W_Print("a" + csi("m") + "b" + csi("0m"), kCustom1);
    const OutputWindow& w = h.c.windows.text[kCustom1];
    EXPECT_EQ(styleAt(w, 0).colour, rgb(255, 255, 255));
    EXPECT_EQ(styleAt(w, 1).colour, rgb(192, 192, 192));
}

TEST(Ansi, FinalsOtherThanSgr) {
    struct Row {
        std::string seq;
        bool clears;
        std::string debug;
    };
    const std::vector<Row> rows = {
        {csi("J"), true, ""},
        {csi("1J"), true, ""},
        {csi("2J"), true, ""},
        {csi("10;20H"), false, ""},
        {csi("K"), false, ""},
        {csi("2f"), false, "ANSI not supported " + csi("2f") + "\r\n"},
        {csi("5A"), false, "ANSI not supported " + csi("5A") + "\r\n"},
        {csi("s"), false, "ANSI not supported " + csi("s") + "\r\n"},
        {ESC + "(B", false, "ANSI not supported " + ESC + "(B\r\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.seq.substr(1));
        ClientHarness h;
        h.c.writer.W_Print("old", kMainWindow);
        h.c.writer.W_Print("mid" + row.seq + "new", kMainWindow);
        EXPECT_EQ(h.window(kMainWindow), row.clears ? "new" : "oldmidnew");
        EXPECT_EQ(h.debugText(), row.debug);
    }
}

