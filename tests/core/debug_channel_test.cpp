// DebugLog: the switch, the ";" that leaves a line open, and the window's
// colours that every debug line loses.
#include <gtest/gtest.h>

#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::ClientHarness;
using kelpa::test::styleAt;

TEST(DebugChannel, FinalSemicolonLeavesTheLineOpen) {
    ClientHarness h;
    h.c.debug.DebugLog("IAC ;");
    h.c.debug.DebugLog(" WILL ;");
    h.c.debug.DebugLog(" echo ");
    h.c.debug.DebugLog("a;;");
    h.c.debug.DebugLog(";");
    h.c.debug.DebugLog("");
    h.c.debug.DebugLog("semi;colon");
    EXPECT_EQ(h.debugText(), "IAC  WILL  echo \r\na;\r\nsemi;colon\r\n");
}

TEST(DebugChannel, SwitchOffLosesTheTextForGood) {
    ClientHarness h(/*connected=*/true, /*debugOn=*/false);
    h.c.debug.DebugLog("lost;");
    h.c.writer.W_Print("x", 9);
    h.c.setDebugInfo(true);
    h.c.debug.DebugLog("kept");
    EXPECT_EQ(h.debugText(), "kept\r\n");
}

TEST(DebugChannel, DebugLineFlattensColoursOfTheWindow) {
    ClientHarness h;
    h.c.writer.W_Print("\x1B[0;31;4mred\x1B[0m", kDebugWindow);
    ASSERT_EQ(styleAt(h.c.windows.text[kDebugWindow], 0).colour, rgb(192, 64, 64));
    h.c.debug.DebugLog("line");
    EXPECT_EQ(h.debugText(), "redline\r\n");
    h.c.windows.text[kDebugWindow].forEachRun([](const OutputWindow::Run& r) {
        EXPECT_TRUE(r.style.plain);
        EXPECT_FALSE(r.style.underline);
    });
}
