// W_Print and the window model: segments, Pending, the window limit, Ink,
// box-drawing glyphs and the cost of appending to a full window; the debug
// channel that writes into window 1; and the telnet layer and the ESC
// interpreter (SGR parameters, the finals) that W_Print drives.
#include <gtest/gtest.h>

#include <array>
#include <random>
#include <tuple>
#include <utility>

#include "common/run_error.h"
#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::bytes;
using kelpa::test::ClientHarness;
using kelpa::test::styleAt;

namespace {

const std::string ESC = "\x1B";

std::string csi(const std::string& body) { return ESC + "[" + body; }

// A text written to window 0, what the window and the debug window show,
// and what waits for the next text.
struct IacRow { std::string name, text, display, debug, pending = {}; };

struct Writer : ClientHarness {
    using ClientHarness::ClientHarness;
    void print(const std::string& text, int win = kMainWindow) { c.parts().writer.W_Print(text, win); }
    TextStyle style(int win, std::size_t pos) { return styleAt(c.parts().windows.text[win], pos); }
};

using Runs = std::vector<std::tuple<std::size_t, std::size_t, std::uint32_t, bool, bool, bool>>;

Runs runsOf(const OutputWindow& w) {
    Runs runs;
    w.forEachRun([&](const OutputWindow::Run& r) {
        runs.emplace_back(r.begin, r.end, r.style.colour, r.style.underline, r.style.plain, r.style.graphics);
    });
    return runs;
}

auto stateOf(const WindowState& x) {
    return std::tie(x.Colour, x.NotBold, x.BackColour, x.Underline, x.Blink, x.Reverse, x.Ink, x.Pending,
                    x.CutPending, x.StartLen);
}

}  // namespace

// WILL ECHO changes nothing; WONT ECHO turns Ink on for the window being
// written.
TEST(OutputWriter, InkOffInterpretsButWritesNothingAndStillCutsUntilWontEcho) {
    Writer h;
    h.state(kMainWindow).Ink = false;
    h.state(kHistT).Ink = false;
    h.print("a" + ESC + "[0;31mb" + bytes({255, 251, 1}) + "still");
    EXPECT_EQ(std::pair(h.window(kMainWindow), h.state(kMainWindow).Colour),
              std::pair(std::string(), rgb(128, 0, 0)));
    h.print("gone" + bytes({255, 252, 1}) + "shown", kHistT);
    EXPECT_TRUE(h.state(kHistT).Ink && !h.state(kMainWindow).Ink);
    EXPECT_EQ(h.window(kHistT) + "|" + h.debugText(), "shown|IAC  WILL  echo \r\nIAC  WONT  echo \r\n");
    // The debug channel may leave window 1 above its limit; the next W_Print
    // cuts it even though it writes nothing.
    h.c.parts().debug.DebugLog(std::string(6000, 'd'));
    h.state(kDebugWindow).Ink = false;
    h.print("zzz", kDebugWindow);
    EXPECT_EQ(h.debugText(), "I" + std::string(3997, 'd') + "\r\n");
}

TEST(OutputWriter, LastSegmentTakesTheUnderlineOfTheCharacterBeforeIt) {
    Writer h;
    h.print(ESC + "[4mab", kCustom1);
    EXPECT_FALSE(h.style(kCustom1, 0).underline) << "empty window";
    h.print(ESC + "[4mab" + ESC + "[0mcd");
    EXPECT_TRUE(h.style(kMainWindow, 3).underline) << "follows the caret, not Underline";
    h.print(ESC + "[4m\xFF\xFF", kCustom1);
    EXPECT_FALSE(h.style(kCustom1, 2).underline) << "a doubled IAC that ends the text";
}

// The window model against a plain list of (character, colour, call):
// after any number of appends and limit cuts both must hold the same text in
// the same colours, and the runs must not outgrow the calls whose text is
// still there.
TEST(OutputWriter, RunsSurviveLimitCutsLikeAPlainCopy) {
    Writer h;
    std::mt19937 rng(7);
    std::vector<std::tuple<char, std::uint32_t, int>> plain;
    for (int call = 0; call < 400; ++call) {
        const int digit = static_cast<int>(rng() % 8);
        const std::size_t len = rng() % 300;
        const char letter = static_cast<char>('a' + call % 26);
        h.print(ESC + "[0;3" + std::to_string(digit) + "m" + std::string(len, letter));
        const std::uint32_t shown = h.c.parts().ansi.A_ColourFor(digit) + rgb(64, 64, 64);
        plain.insert(plain.end(), len, {letter, shown, call});
        if (plain.size() > 3500) plain.erase(plain.begin() + 1, plain.end() - 2799);

        const OutputWindow& w = h.c.parts().windows.text[kMainWindow];
        std::vector<std::pair<char, std::uint32_t>> want, seen;
        std::size_t calls = 0;
        for (std::size_t i = 0; i < plain.size(); ++i) {
            want.emplace_back(std::get<0>(plain[i]), std::get<1>(plain[i]));
            calls += i == 0 || plain[i] != plain[i - 1];
        }
        w.forEachRun([&](const OutputWindow::Run& r) {
            for (std::size_t i = r.begin; i < r.end; ++i) seen.emplace_back(w.text()[i], r.style.colour);
        });
        ASSERT_EQ(seen, want) << "call " << call;
        ASSERT_LE(w.runCount(), calls) << "call " << call;
    }
}

namespace {

// W_Print read the slow way: a byte at a time, every sequence through
// A_ParseCsi, every stretch of text through OutputWindow::append, then
// cutToLimit, even after a failure. The writer's block scans, its short-SGR
// cache and its direct copies must leave exactly what this leaves.
void slowPrint(Client& c, std::string_view input, int win, bool received) {
    WindowState& st = c.parts().windows.state[win];
    OutputWindow& out = c.parts().windows.text[win];
    const std::string all =
        std::exchange(st.Pending, {}) + (received ? std::exchange(st.CutPending, {}) : "") + std::string(input);
    st.StartLen = out.size();
    std::string text;
    auto flush = [&](bool last) {
        const std::uint32_t colour = st.Colour + (st.NotBold ? rgb(64, 64, 64) : rgb(127, 127, 127));
        const bool underline = last ? out.caretUnderline() : st.Underline;
        if (st.Ink) out.append(text, TextStyle{colour, underline, false, c.parts().windows.Graphics});
        text.clear();
    };
    for (std::size_t pos = 0, used = 0; pos < all.size(); pos += used) {
        used = 1;
        if (all[pos] != '\x1B' && all[pos] != '\xFF') {
            text += all[pos];
            continue;
        }
        flush(false);
        if (all.compare(pos, 2, "\xFF\xFF") == 0) {
            c.parts().debug.DebugLog("IAC unknown iac command 255");
            text += '\xFF';
            used = 2;
        } else if (all[pos] == '\xFF') {
            used = c.parts().telnet.S_InterpretIac(std::string_view(all).substr(pos), win);
        } else if (const std::size_t fin = all.find_first_of(CsiFinals, pos + 1); fin < pos + 9999) {
            c.parts().ansi.A_ParseCsi(std::string_view(all).substr(pos, fin - pos + 1), win);
            used = fin + 1 - pos;
        } else if (all.size() - pos <= 5 || (received && all.size() - pos < 10000)) {
            used = TelnetInterpreter::kUnfinished;
        }
        if (used == TelnetInterpreter::kUnfinished) {
            // Short ESC fragments wait for any text; longer and telnet ones
            // only for the next read.
            if (all[pos] == '\x1B' && all.size() - pos <= 5)
                st.Pending = all.substr(pos);
            else if (received)
                st.CutPending = all.substr(pos);
            break;
        }
    }
    flush(true);
}

void cutToLimit(Client& c, int win) {
    OutputWindow& out = c.parts().windows.text[win];
    const auto max = static_cast<std::size_t>(windowInfo(win).tagLimit);
    if (max != 0 && out.size() > max) out.cutAfterFirst(out.size() - (max * 4 + 2) / 5);
}

std::string randomStream(std::mt19937& rng, std::size_t pieces) {
    static const std::vector<std::string> params = {
        "", "0", "1", "4", "5", "7", "2", "9", "30", "31", "37", "38", "39", "40", "47", "48",
        "3x", "4:", "22", "12", "0;1;33", "1;34", "31;1", "38;5;196", "1;31;42;5;7", "0;3;4", "?"};
    static const std::vector<std::string> others = {
        "\x1B[2J", "\x1B[H", "\x1B[K", "\x1B[5A", "\x1BM", "\x1Bm", "\x1B[?25h", "\x1B", "\x1B[3",
        "\xFF\xFB\x01", "\xFF\xFC\x01", "\xFF\xFD\x18", "\xFF\xFA\x18\x01\xFF\xF0", "\xFF\xFA\x22" "ab\xFF\xF0",
        "\xFF\xF1", "\xFF\xF9", "\xFF", "\r\n", "\xC4\xCD\xB3\xDD"};
    std::string s;
    for (std::size_t i = 0; i < pieces; ++i) {
        const unsigned kind = rng() % 10;
        if (kind < 5)
            s += std::string(rng() % 40, static_cast<char>('a' + rng() % 26));
        else if (kind < 8)
            s += "\x1B[" + params[rng() % params.size()] + (rng() % 8 ? "m" : "M");
        else
            s += others[rng() % others.size()];
    }
    return s;
}

}  // namespace

TEST(OutputWriter, FastPathsLeaveWhatTheByteByByteReadingLeaves) {
    std::mt19937 rng(11);
    for (int round = 0; round < 60; ++round) {
        ClientHarness fast, slow;
        const std::string stream = randomStream(rng, 300);
        for (std::size_t pos = 0, call = 0; pos < stream.size(); ++call) {
            const std::size_t len = rng() % 3 == 0 ? rng() % 8 : rng() % 600;
            const std::string piece = stream.substr(pos, len);
            pos += len;
            const int win = std::array{0, 0, 0, 1, 2, 7}[rng() % 6];
            const bool graphics = rng() % 4 != 0, ink = rng() % 8 != 0, received = win == 0 && rng() % 4 != 0;
            std::string errors[2];
            for (ClientHarness* h : {&fast, &slow}) {
                h->c.setGraphics(graphics);
                h->state(win).Ink = ink;
                try {
                    if (h == &slow)
                        slowPrint(h->c, piece, win, received);
                    else if (received)
                        h->c.parts().writer.W_PrintReceived(piece);
                    else
                        h->c.parts().writer.W_Print(piece, win);
                } catch (const RunError& e) {
                    errors[h == &slow] = e.source();
                }
            }
            cutToLimit(slow.c, win);
            SCOPED_TRACE("round " + std::to_string(round) + " call " + std::to_string(call));
            ASSERT_EQ(errors[0], errors[1]);
            ASSERT_EQ(fast.fp.socket.sent, slow.fp.socket.sent);
            for (int w = 0; w < kWindowCount; ++w) {
                ASSERT_EQ(fast.window(w), slow.window(w)) << "window " << w;
                ASSERT_EQ(runsOf(fast.c.parts().windows.text[w]), runsOf(slow.c.parts().windows.text[w])) << w;
                ASSERT_EQ(stateOf(fast.state(w)), stateOf(slow.state(w))) << "window " << w;
            }
        }
    }
}

// DebugLog: a final ";" leaves the line open, the switch loses text for
// good, and a debug line flattens the window's colours. A window number
// outside 0 to 7 is only a debug line.
TEST(DebugChannel, OpenLinesTheSwitchFlatColoursAndTheBound) {
    Writer h;
    for (const char* piece : {"IAC ;", " WILL ;", " echo ", "a;;", ";", "", "semi;colon"})
        h.c.parts().debug.DebugLog(piece);
    h.print("x", 8);
    h.print("x", -1);
    EXPECT_EQ(h.debugText(), "IAC  WILL  echo \r\na;\r\nsemi;colon\r\nNo such window :8\r\nNo such window :-1\r\n");
    for (int w = 0; w < kWindowCount; ++w) EXPECT_EQ(h.window(w).empty(), w != kDebugWindow && w != kHistView) << w;

    Writer off(/*connected=*/true, /*debugOn=*/false);
    off.c.parts().debug.DebugLog("lost;");
    off.print("x", 9);
    off.print("\x1B[0;31;4mred\x1B[0m", kDebugWindow);
    ASSERT_EQ(off.style(kDebugWindow, 0).colour, rgb(192, 64, 64));
    off.c.setDebugInfo(true);
    off.c.parts().debug.DebugLog("kept");
    EXPECT_EQ(off.debugText(), "redkept\r\n");
    EXPECT_EQ(runsOf(off.c.parts().windows.text[kDebugWindow]),
              (Runs{{0, 3, 0, false, true, true}, {3, 9, 0, false, true, false}}));
    // Past its bound the window keeps its first character and four fifths.
    for (int i = 0; i < 100; ++i) off.c.parts().debug.DebugLog(std::string(998, 'd'));
    const std::string text = off.debugText();
    EXPECT_TRUE(text.size() <= DebugChannel::kMaxChars && text.size() >= DebugChannel::kMaxChars * 4 / 5);
    EXPECT_EQ(text.front() + text.substr(text.size() - 1002), "r\r\n" + std::string(998, 'd') + "\r\n");
}

// Other controls are text; an ESC fragment without a final waits if it is
// at most five characters long. Negotiation is swallowed and told only in
// the debug window; telnet's two-byte commands go whole; a sequence cut by
// the end of the text is told nothing yet and waits whole for the next
// text, so a text without ESC leaves the same cut anywhere in two.
TEST(OutputWriter, FragmentsAndNegotiationAreSwallowedOrWaitWhenCutShort) {
    const std::vector<IacRow> rows = {
        {"other controls", "a\x07" "b\x08" "c\td\r\n\x1A", "a\x07" "b\x08" "c\td\r\n\x1A", ""},
        {"5 characters: kept", "ab" + ESC + "[1;2", "ab", "", ESC + "[1;2"},
        {"6 from a read: kept for the next read", "ab" + ESC + "[1;22", "ab", "", ESC + "[1;22"},
        {"h is no final; e is", ESC + "[?25hi there", "re", "ANSI not supported " + ESC + "[?25hi the\r\n"},
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
        {"doubled IAC is one 255", "a" + bytes({255, 255}) + "x", "a" + bytes({255}) + "x",
         "IAC unknown iac command 255\r\n"},
        {"IAC before plain text loses the IAC", bytes({255}) + "look", "look", "IAC unknown iac command 108\r\n"},
        {"IAC alone", "ab" + bytes({255}), "ab", "", bytes({255})},
        {"SB without option", "ab" + bytes({255, 250}), "ab", "", bytes({255, 250})},
        {"linemode without SE", "ab" + bytes({255, 250, 34}) + "wait", "ab", "", bytes({255, 250, 34}) + "wait"},
        {"linemode past the bound, then text", bytes({255, 250, 34}) + std::string(65535, 'p') + "tail", "tail",
         "IAC  SB  linemode dropped 65535 bytes of a subnegotiation without its end\r\n"},
    };
    // Cut 0 is the whole text in one.
    for (const auto& row : rows) {
        const bool whole = row.text.size() > 99 || row.text.find(ESC) != std::string::npos;
        for (std::size_t cut = 0; cut < (whole ? 1 : row.text.size()); ++cut) {
            SCOPED_TRACE(row.name + ", cut at " + std::to_string(cut));
            Writer h;
            h.c.parts().writer.W_PrintReceived(row.text.substr(0, cut));
            h.c.parts().writer.W_PrintReceived(row.text.substr(cut));
            const WindowState& st = h.state(kMainWindow);
            EXPECT_EQ(std::tuple(h.window(kMainWindow), h.debugText(), st.Pending + st.CutPending, h.fp.socket.sent),
                      std::tuple(row.display, row.debug, row.pending, ""));
        }
    }
    // A longer ESC sequence cut by a read is completed by the next read, up
    // to the finder's reach; any other text reads it as no sequence.
    Writer h;
    h.c.parts().writer.W_PrintReceived("a" + ESC + "[0;1;3");
    h.c.parts().writer.W_PrintReceived("2mgreen");
    h.c.parts().writer.W_Print(ESC + "[1;22", kMainWindow);
    EXPECT_EQ(h.window(kMainWindow), "agreen[1;22");
    Writer whole;
    whole.c.parts().writer.W_PrintReceived("a" + ESC + "[0;1;32mgreen");
    EXPECT_EQ(h.style(kMainWindow, 1).colour, whole.style(kMainWindow, 1).colour);
    EXPECT_NE(h.style(kMainWindow, 1).colour, h.style(kMainWindow, 0).colour);
    for (const std::size_t digits : {9998, 9999}) {
        Writer far;
        far.c.parts().writer.W_PrintReceived(ESC + std::string(digits, '1'));
        EXPECT_EQ(far.state(kMainWindow).CutPending.size() + far.window(kMainWindow).empty(),
                  digits == 9998 ? 10000u : 0u) << digits;
    }
}

// After `before`, `seq` leaves the text behind it in `shown`, with the flags
// NotBold, Underline, Blink and Reverse ("nubr" where set) and BackColour.
TEST(Ansi, SgrParametersChangeTheWindowState) {
    using Row = std::tuple<std::string, std::string, std::uint32_t, std::string, std::uint32_t, std::string>;
    const std::uint32_t red = rgb(128, 0, 0);
    const std::vector<Row> rows = {
        {"", "K", rgb(255, 255, 255), "", 0, ""},  // a new window is bold until the first reset
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
    for (const auto& [before, seq, shown, flags, back, debug] : rows) {
        SCOPED_TRACE(before + " then " + seq);
        Writer h;
        h.print(before);
        h.print(csi(seq) + "x" + csi("K"));
        const WindowState& st = h.state(kMainWindow);
        const std::string set = std::string(st.NotBold ? "n" : "") + (st.Underline ? "u" : "") +
                                (st.Blink ? "b" : "") + (st.Reverse ? "r" : "");
        EXPECT_EQ(std::tuple(h.window(kMainWindow), h.style(kMainWindow, 0).colour, set, st.BackColour,
                             h.debugText()),
                  std::tuple("x", shown, flags, back, debug));
    }
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
        Writer h;
        h.print("old");
        h.print("mid" + row.seq + "new");
        const std::string told = row.supported ? "" : "ANSI not supported " + row.seq + "\r\n";
        EXPECT_EQ(h.window(kMainWindow) + "|" + h.debugText(), (row.clears ? "new|" : "oldmidnew|") + told);
    }
}
