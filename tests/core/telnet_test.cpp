// The telnet layer, driven through W_Print as the receive road drives it.
#include <gtest/gtest.h>

#include "common/run_error.h"
#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::bytes;
using kelpa::test::ClientHarness;

namespace {

const std::string IAC = bytes({255});
const std::string kAnswer = bytes({255, 250, 24, 0}) + "ANSI" + bytes({0, 255, 240});

struct IacRow {
    std::string name;
    std::string text;     // written to window 0
    std::string display;  // what window 0 shows afterwards
    std::string debug;    // the debug window afterwards
};

}  // namespace

TEST(Telnet, NegotiationIsSwallowedAndToldOnlyInTheDebugWindow) {
    const std::vector<IacRow> rows = {
        {"will echo", "a" + bytes({255, 251, 1}) + "b", "ab", "IAC  WILL  echo \r\n"},
        {"will sga", bytes({255, 251, 3}), "", "IAC  WILL  suppress go ahead \r\n"},
        {"do naws", bytes({255, 253, 31}), "", "IAC  DO  window size \r\n"},
        {"wont unknown option", bytes({255, 252, 99}), "", "IAC  WONT unknown valopt 99\r\n"},
        {"will nop", bytes({255, 251, 0}), "", "IAC  WILL  NOP \r\n"},
        {"do environment", bytes({255, 253, 36}), "", "IAC  DO  environment variables \r\n"},
        {"lone IAC SE", "x" + bytes({255, 240}) + "y", "xy", "IAC  EON \r\n"},
        {"server SEND", bytes({255, 250, 24, 1, 255, 240}), bytes({1}),
         "IAC  SB  terminal type  \r\nIAC  EON \r\n"},
        {"linemode payload", bytes({255, 250, 34}) + "pay" + bytes({255, 240}) + "z", "z",
         "IAC  SB  linemode payIAC SE\r\n"},
        {"go ahead", "prompt>" + bytes({255, 249}), "prompt>" + bytes({249}),
         "IAC unknown iac command 249\r\n"},
        {"dont shows its bytes", bytes({255, 254, 1}), bytes({254, 1}),
         "IAC unknown iac command 254\r\n"},
        {"doubled IAC", bytes({255, 255}) + "x", "x",
         "IAC unknown iac command 255\r\nIAC unknown iac command 120\r\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ClientHarness h;
        h.c.writer.W_Print(row.text, kMainWindow);
        EXPECT_EQ(h.window(kMainWindow), row.display);
        EXPECT_EQ(h.debugText(), row.debug);
        EXPECT_EQ(h.state(kMainWindow).Colour, rgb(128, 128, 128)) << "text behind is lost";
        EXPECT_TRUE(h.fp.socket.sent.empty());
    }
}

TEST(Telnet, DoTerminalTypeAnswersElevenBytesThroughTheSender) {
    ClientHarness h;
    h.openLog();
    h.c.writer.W_Print("a" + bytes({255, 253, 24}) + "b", kMainWindow);

    ASSERT_EQ(kAnswer.size(), 11u);
    ASSERT_EQ(h.fp.socket.writes, std::vector<std::string>{kAnswer});
    // Logged, kept and echoed like any sent text; the echo's own IAC SB 24
    // and IAC SE vanish, and NUL "ANSI" NUL stay as text, between a and b.
    EXPECT_EQ(h.logFile(), kAnswer + "\r\n");
    EXPECT_EQ(h.history(), kAnswer);
    EXPECT_EQ(h.window(kMainWindow), "a" + bytes({0}) + "ANSI" + bytes({0}) + "b");
    EXPECT_EQ(h.debugText(),
              "IAC  DO  terminal type \r\nIAC  SB  terminal type  \r\nIAC  EON \r\n");

    // Asked twice, answered twice; no WILL goes ahead of the answer.
    h.c.writer.W_Print(bytes({255, 253, 24}), kMainWindow);
    EXPECT_EQ(h.fp.socket.writes, (std::vector<std::string>{kAnswer, kAnswer}));

    ClientHarness off(/*connected=*/false);
    off.c.writer.W_Print("a" + bytes({255, 253, 24}) + "b", kMainWindow);
    EXPECT_TRUE(off.fp.socket.writes.empty());
    EXPECT_TRUE(off.history().empty());
    EXPECT_EQ(off.window(kMainWindow), "ab");
}

TEST(Telnet, HistoryViewReplayAnswersAgainAndEchoesToTheMainWindow) {
    ClientHarness h;
    h.c.writer.W_Print("old" + bytes({255, 253, 24}), kHistT);
    EXPECT_EQ(h.fp.socket.sent, kAnswer);
    EXPECT_EQ(h.window(kHistT), "old");
    EXPECT_EQ(h.window(kMainWindow), bytes({0}) + "ANSI" + bytes({0}));
}

TEST(Telnet, WontEchoTurnsInkOnForTheWindowBeingWritten) {
    ClientHarness h;
    h.state(kMainWindow).Ink = false;
    h.state(kHistT).Ink = false;
    h.c.writer.W_Print("hidden" + bytes({255, 251, 1}) + "still", kMainWindow);
    EXPECT_FALSE(h.state(kMainWindow).Ink) << "WILL echo must change nothing";
    EXPECT_EQ(h.window(kMainWindow), "");

    h.c.writer.W_Print("gone" + bytes({255, 252, 1}) + "shown", kHistT);
    EXPECT_TRUE(h.state(kHistT).Ink);
    EXPECT_FALSE(h.state(kMainWindow).Ink);
    EXPECT_EQ(h.window(kHistT), "shown");
    EXPECT_EQ(h.debugText(), "IAC  WILL  echo \r\nIAC  WONT  echo \r\n");
}

TEST(Telnet, CutShortSequenceFailsAfterItsDebugWords) {
    const std::vector<IacRow> rows = {
        {"IAC alone", "ab" + IAC, "ab", ""},  // fails before its first word
        {"WILL without option", "ab" + bytes({255, 251}), "ab", "IAC  WILL "},
        {"WONT without option", "ab" + bytes({255, 252}), "ab", "IAC  WONT "},
        {"DO without option", "ab" + bytes({255, 253}), "ab", "IAC  DO "},
        {"SB without option", "ab" + bytes({255, 250}), "ab", "IAC  SB "},
        {"linemode without SE", "ab" + bytes({255, 250, 34}) + "lost" + bytes({27}) + "[31mtoo", "ab",
         "IAC  SB  linemode "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ClientHarness h;
        try {
            h.c.writer.W_Print(row.text, kMainWindow);
            ADD_FAILURE() << "no failure raised";
        } catch (const RunError& e) {
            EXPECT_EQ(e.number(), 5);
            EXPECT_STREQ(e.what(), "Invalid procedure call or argument");
            EXPECT_EQ(e.source(), "S_InterpretIac");
        }
        EXPECT_EQ(h.window(kMainWindow), row.display);
        EXPECT_EQ(h.debugText(), row.debug);
        EXPECT_EQ(h.state(kMainWindow).Colour, rgb(128, 128, 128)) << "text behind is lost";
        EXPECT_TRUE(h.fp.socket.sent.empty());
    }
}
