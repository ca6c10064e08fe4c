// The telnet layer and the ESC interpreter (SGR parameters, the finals),
// driven through W_Print as the receive road drives them.
#include <gtest/gtest.h>

#include "common/run_error.h"
#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::styleAt;
using kelpa::test::bytes;
using kelpa::test::ClientHarness;

namespace {

const std::string IAC = bytes({255});
const std::string kAnswer = bytes({255, 250, 24, 0}) + "ANSI" + bytes({0, 255, 240});

// A text written to window 0, what the window and the debug window show,
// and what waits for the next text.
struct IacRow { std::string name, text, display, debug, pending = {}; };

const std::string ESC = "\x1B";

std::string csi(const std::string& body) { return ESC + "[" + body; }

struct Term : ClientHarness {
    using ClientHarness::ClientHarness;
    void print(const std::string& text, int win = kMainWindow) { c.parts().writer.W_Print(text, win); }
};

}  // namespace

// Negotiation is swallowed and told only in the debug window; telnet's
// two-byte commands go whole; a sequence cut by the end of the text is told
// nothing yet and waits whole for the next text.
TEST(Telnet, NegotiationIsSwallowedOrWaitsWhenCutShort) {
    const std::vector<IacRow> rows = {
        {"will echo", "a" + bytes({255, 251, 1}) + "b", "ab", "IAC  WILL  echo \r\n"},
        {"do naws", bytes({255, 253, 31}), "", "IAC  DO  window size \r\n"},
        {"wont unknown option", bytes({255, 252, 99}), "", "IAC  WONT unknown valopt 99\r\n"},
        {"do environment", bytes({255, 253, 36}), "", "IAC  DO  environment variables \r\n"},
        {"lone IAC SE", "x" + bytes({255, 240}) + "y", "xy", "IAC  EON \r\n"},
        {"server SEND", bytes({255, 250, 24, 1, 255, 240}), bytes({1}), "IAC  SB  terminal type  \r\nIAC  EON \r\n"},
        {"linemode payload", bytes({255, 250, 34}) + "pay" + bytes({255, 240}) + "z", "z",
         "IAC  SB  linemode payIAC SE\r\n"},
        {"go ahead", "prompt>" + bytes({255, 249}) + "x", "prompt>x", "IAC unknown iac command 249\r\n"},
        {"end of record", "p>" + bytes({255, 239}), "p>", "IAC unknown iac command 239\r\n"},
        {"NOP", "a" + bytes({255, 241}) + "b", "ab", "IAC unknown iac command 241\r\n"},
        {"dont goes with its option", bytes({255, 254, 1}) + "d", "d", "IAC unknown iac command 254\r\n"},
        {"doubled IAC is one 255", "a" + bytes({255, 255}) + "x", "a" + bytes({255}) + "x", ""},
        {"IAC before plain text loses the IAC", bytes({255}) + "look", "look", "IAC unknown iac command 108\r\n"},
        {"IAC alone", "ab" + IAC, "ab", "", IAC},
        {"SB without option", "ab" + bytes({255, 250}), "ab", "", bytes({255, 250})},
        {"linemode without SE", "ab" + bytes({255, 250, 34}) + "wait", "ab", "", bytes({255, 250, 34}) + "wait"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Term h;
        h.print(row.text);
        EXPECT_EQ(std::tuple(h.window(kMainWindow), h.debugText(), h.state(kMainWindow).Pending, h.fp.socket.sent),
                  std::tuple(row.display, row.debug, row.pending, ""));
    }
}

TEST(Telnet, SequenceCutAtEveryPositionIsTheSameAsWhole) {
    const std::string whole = "a" + bytes({255, 251, 1}) + "b" + bytes({255, 249}) + "c" + bytes({255, 255}) +
                              bytes({255, 250, 34}) + "lm" + bytes({255, 240}) + "d" + bytes({255, 254, 3}) + "e";
    Term ref;
    ref.print(whole);
    ASSERT_EQ(ref.window(kMainWindow), "abc" + bytes({255}) + "de");
    for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
        SCOPED_TRACE(cut);
        Term h;
        h.print(whole.substr(0, cut));
        h.print(whole.substr(cut));
        EXPECT_EQ(h.window(kMainWindow) + "|" + h.debugText(), ref.window(kMainWindow) + "|" + ref.debugText());
    }
}

TEST(Telnet, LinemodeWithoutItsEndIsDroppedPastTheBound) {
    Term h;
    h.print(bytes({255, 250, 34}) + std::string(40000, 'p'));
    h.print(std::string(40000, 'p'));
    EXPECT_EQ(h.state(kMainWindow).Pending, "");
    EXPECT_EQ(h.debugText(), "IAC  SB  linemode dropped 80000 bytes of a subnegotiation without its end\r\n");
    h.print("text");
    EXPECT_EQ(h.window(kMainWindow), "text");
}

// The answer is logged, kept and echoed like any sent text; the echo's own
// IAC SB 24 and IAC SE vanish, and NUL "ANSI" NUL stay as text. Asked
// twice, answered twice, also by a replay in the history view.
TEST(Telnet, DoTerminalTypeAnswersElevenBytesThroughTheSender) {
    const std::string doTtype = bytes({255, 253, 24}), echo = bytes({0}) + "ANSI" + bytes({0});
    Term h;
    h.print("a" + doTtype + "b");
    EXPECT_EQ(h.history(), kAnswer);
    EXPECT_EQ(h.debugText(), "IAC  DO  terminal type \r\nIAC  SB  terminal type  \r\nIAC  EON \r\n");
    h.print(doTtype);
    h.print("old" + doTtype, kHistT);
    EXPECT_EQ(h.fp.socket.writes, (std::vector<std::string>{kAnswer, kAnswer, kAnswer}));
    EXPECT_EQ(h.window(kHistT) + "|" + h.window(kMainWindow), "old|a" + echo + "b" + echo + echo);

    Term off(/*connected=*/false);
    off.print("a" + doTtype + "b");
    EXPECT_EQ(off.window(kMainWindow) + "|" + off.history() + off.fp.socket.sent, "ab|");
}

TEST(Telnet, WontEchoTurnsInkOnForTheWindowBeingWritten) {
    Term h;
    h.state(kMainWindow).Ink = false;
    h.state(kHistT).Ink = false;
    h.print("hidden" + bytes({255, 251, 1}) + "still");
    EXPECT_EQ(h.window(kMainWindow), "") << "WILL echo must change nothing";
    h.print("gone" + bytes({255, 252, 1}) + "shown", kHistT);
    EXPECT_TRUE(h.state(kHistT).Ink && !h.state(kMainWindow).Ink);
    EXPECT_EQ(h.window(kHistT), "shown");
    EXPECT_EQ(h.debugText(), "IAC  WILL  echo \r\nIAC  WONT  echo \r\n");
}

// After `before`, `seq` leaves the text behind it in `shown`, with the flags
// NotBold, Underline, Blink and Reverse ("nubr" where set) and BackColour.
TEST(Ansi, SgrParametersChangeTheWindowState) {
    struct Row {
        std::string before, seq;
        std::uint32_t shown;
        std::string flags;
        std::uint32_t back;
        std::string debug;
    };
    const std::uint32_t red = rgb(128, 0, 0);
    const std::vector<Row> rows = {
        {csi("0m"), "1;31m", rgb(255, 127, 127), "", 0, ""},
        {csi("0m"), "31;1m", rgb(255, 127, 127), "", 0, ""},
        {csi("4;5;7m") + csi("1m"), "m", rgb(192, 192, 192), "nubr", 0, ""},
        {csi("4;5;7;41m"), "0m", rgb(192, 192, 192), "n", red, ""},
        {csi("0;32m"), ";1m", rgb(255, 255, 255), "", 0, ""},
        {csi("0m"), "39m", rgb(64, 64, 64), "n", 0, "unknown color 9\r\n"},
        {csi("0m"), "38;5;196m", rgb(64, 64, 64), "nb", 0, "unknown color 8\r\n"},
        {csi("0;33m"), "100m", rgb(192, 192, 64), "n", 0, ""},
        {csi("0m"), "05m", rgb(192, 192, 192), "n", 0, "unknown SING/DBL 05\r\n"},
        {csi("1;4m"), "24m", rgb(255, 255, 255), "u", 0, "unknown SING/DBL 24\r\n"},
        {csi("0m"), "2m", rgb(192, 192, 192), "n", 0, "unknown SING :2\r\n"},
        {csi("0;34m"), "41m", rgb(64, 64, 192), "n", red, ""},
        {csi("0;34m"), "47m", rgb(64, 64, 192), "n", rgb(128, 128, 128), ""},
        {csi("0;31m"), "3xm", rgb(192, 192, 192), "n", 0, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.before.substr(1) + " then " + row.seq);
        Term h;
        h.print(row.before);
        ASSERT_EQ(h.debugText(), "");
        h.print(csi(row.seq) + "x" + csi("K"));
        const WindowState& st = h.state(kMainWindow);
        const std::string flags = std::string(st.NotBold ? "n" : "") + (st.Underline ? "u" : "") +
                                  (st.Blink ? "b" : "") + (st.Reverse ? "r" : "");
        EXPECT_EQ(std::tuple(h.window(kMainWindow), styleAt(h.c.parts().windows.text[kMainWindow], 0).colour, flags,
                             st.BackColour, h.debugText()),
                  std::tuple("x", row.shown, row.flags, row.back, row.debug));
    }
}

TEST(Ansi, NewWindowIsBoldUntilTheFirstReset) {
    Term h;
    h.print("a" + csi("m") + "b" + csi("0m"), kCustom1);
    const OutputWindow& w = h.c.parts().windows.text[kCustom1];
    EXPECT_EQ(std::pair(styleAt(w, 0).colour, styleAt(w, 1).colour), std::pair(rgb(255, 255, 255), rgb(192, 192, 192)));
}

TEST(Ansi, FinalsOtherThanSgr) {
    struct Row { std::string seq; bool clears, supported; };
    const std::vector<Row> rows = {
        {csi("J"), true, true},    {csi("1J"), true, true},   {csi("2J"), true, true}, {csi("10;20H"), false, true},
        {csi("K"), false, true},   {csi("2f"), false, false}, {csi("5A"), false, false}, {csi("s"), false, false},
        {ESC + "(B", false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.seq.substr(1));
        Term h;
        h.print("old");
        h.print("mid" + row.seq + "new");
        EXPECT_EQ(h.window(kMainWindow) + "|" + h.debugText(),
                  (row.clears ? "new|" : "oldmidnew|") + (row.supported ? "" : "ANSI not supported " + row.seq + "\r\n"));
    }
}
