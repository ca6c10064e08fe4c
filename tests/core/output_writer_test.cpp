// W_Print and the window model: segments, Pending, the window limit, Ink,
// box-drawing glyphs and the cost of appending to a full window; and the
// debug channel that writes into window 1.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <random>
#include <tuple>
#include <utility>

#include "common/run_error.h"
#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::ClientHarness;
using kelpa::test::styleAt;

namespace {

const std::string ESC = "\x1B";

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
    return std::tie(x.Colour, x.NotBold, x.BackColour, x.Underline, x.Blink, x.Reverse, x.Ink, x.Pending, x.StartLen);
}

}  // namespace

// The differential test below holds the fast paths against a reading that
// shares these rules; these rows pin the rules themselves.
TEST(OutputWriter, FragmentWithoutFinalWaitsUpToFiveCharacters) {
    struct Row { std::string text, shown, pending; };
    const std::vector<Row> rows = {
        {"a\x07" "b\x08" "c\td\r\n\x1A", "a\x07" "b\x08" "c\td\r\n\x1A", ""},  // other controls are text
        {"ab" + ESC + "[1;2", "ab", ESC + "[1;2"},   // 5 characters: kept
        {"ab" + ESC + "[1;22", "ab[1;22", ""},       // 6: only the ESC goes
        {ESC + "[?25hi there", "re", ""},            // h is no final; e is
    };
    for (const auto& row : rows) {
        Writer h;
        h.print(row.text);
        EXPECT_EQ(h.window(kMainWindow) + "|" + h.state(kMainWindow).Pending, row.shown + "|" + row.pending)
            << row.text.substr(1);
    }
}

// Window 0 at its limit is held by the plain copy below.
TEST(OutputWriter, LimitCutKeepsTheFirstCharacterAndFourFifths) {
    for (const auto& [win, limit] : std::vector<std::pair<int, std::size_t>>{{1, 5000}, {7, 10000}, {6, 0}}) {
        Writer h;
        const std::size_t size = limit == 0 ? 150000 : limit;  // window 6 is never cut
        std::string text = "F";
        for (std::size_t i = 1; i <= size; ++i) text += static_cast<char>('a' + i % 26);
        h.print(text.substr(0, size), win);
        EXPECT_EQ(h.window(win).size(), size) << "at the limit: no cut";
        h.print(text.substr(size), win);
        EXPECT_EQ(h.window(win), limit == 0 ? text : "F" + text.substr(text.size() - (limit * 4 / 5 - 1)))
            << "window " << win;
    }
}

TEST(OutputWriter, InkOffInterpretsButWritesNothingAndStillCuts) {
    Writer h;
    h.state(kMainWindow).Ink = false;
    h.print("a" + ESC + "[0;31mb");
    EXPECT_EQ(h.window(kMainWindow), "");
    EXPECT_EQ(h.state(kMainWindow).Colour, rgb(128, 0, 0));
    // The debug channel may leave window 1 above its limit; the next W_Print
    // cuts it even though it writes nothing.
    h.c.parts().debug.DebugLog(std::string(6000, 'd'));
    h.state(kDebugWindow).Ink = false;
    h.print("zzz", kDebugWindow);
    EXPECT_EQ(h.debugText(), std::string(3998, 'd') + "\r\n");
}

TEST(OutputWriter, LastSegmentTakesTheUnderlineOfTheCharacterBeforeIt) {
    Writer h;
    h.print(ESC + "[4mab", kCustom1);
    EXPECT_FALSE(h.style(kCustom1, 0).underline) << "empty window";
    h.print(ESC + "[4mab" + ESC + "[0mcd");
    EXPECT_TRUE(h.style(kMainWindow, 3).underline) << "follows the caret, not Underline";
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
// A_ParseCsi, every stretch of text through OutputWindow::append. The
// writer's block scans, its short-SGR cache and its direct copies must
// leave exactly what this leaves.
void slowPrint(Client& c, std::string_view input, int win) {
    WindowState& st = c.parts().windows.state[win];
    OutputWindow& out = c.parts().windows.text[win];
    const std::string all = std::exchange(st.Pending, {}) + std::string(input);
    st.StartLen = out.size();
    std::string text;
    auto flush = [&](bool last) {
        const std::uint32_t colour = st.Colour + (st.NotBold ? rgb(64, 64, 64) : rgb(127, 127, 127));
        const bool underline = last ? out.caretUnderline() : st.Underline;
        if (st.Ink) out.append(text, TextStyle{colour, underline, false, c.parts().windows.Graphics});
        text.clear();
    };
    struct AtEnd {  // the limit holds after a failure too
        std::function<void()> cut;
        ~AtEnd() { cut(); }
    } atEnd{[&] {
        const auto max = static_cast<std::size_t>(windowInfo(win).tagLimit);
        if (max != 0 && out.size() > max) out.cutAfterFirst(out.size() - (max * 4 + 2) / 5);
    }};
    for (std::size_t pos = 0, used = 0; pos < all.size(); pos += used) {
        used = 1;
        if (all[pos] != '\x1B' && all[pos] != '\xFF') {
            text += all[pos];
            continue;
        }
        flush(false);
        if (all.compare(pos, 2, "\xFF\xFF") == 0) {
            text += '\xFF';
            used = 2;
        } else if (all[pos] == '\xFF') {
            used = c.parts().telnet.S_InterpretIac(std::string_view(all).substr(pos), win);
        } else if (const std::size_t fin = all.find_first_of(CsiFinals, pos + 1); fin < pos + 9999) {
            c.parts().ansi.A_ParseCsi(std::string_view(all).substr(pos, fin - pos + 1), win);
            used = fin + 1 - pos;
        } else if (all.size() - pos <= 5) {
            used = TelnetInterpreter::kUnfinished;
        }
        if (used == TelnetInterpreter::kUnfinished) {
            st.Pending = all.substr(pos);
            break;
        }
    }
    flush(true);
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
            const bool graphics = rng() % 4 != 0, ink = rng() % 8 != 0;
            std::string errors[2];
            for (ClientHarness* h : {&fast, &slow}) {
                h->c.setGraphics(graphics);
                h->state(win).Ink = ink;
                try {
                    h == &fast ? h->c.parts().writer.W_Print(piece, win) : slowPrint(h->c, piece, win);
                } catch (const RunError& e) {
                    errors[h == &slow] = e.source();
                }
            }
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
TEST(DebugChannel, OpenLinesTheSwitchAndFlatColours) {
    Writer h;
    for (const char* piece : {"IAC ;", " WILL ;", " echo ", "a;;", ";", "", "semi;colon"}) h.c.parts().debug.DebugLog(piece);
    h.print("x", 8);
    h.print("x", -1);
    EXPECT_EQ(h.debugText(), "IAC  WILL  echo \r\na;\r\nsemi;colon\r\nNo such window :8\r\nNo such window :-1\r\n");
    for (int w = 0; w < kWindowCount; ++w) EXPECT_EQ(h.window(w).empty(), w != kDebugWindow) << w;

    Writer off(/*connected=*/true, /*debugOn=*/false);
    off.c.parts().debug.DebugLog("lost;");
    off.print("x", 9);
    off.print("\x1B[0;31;4mred\x1B[0m", kDebugWindow);
    ASSERT_EQ(off.style(kDebugWindow, 0).colour, rgb(192, 64, 64));
    off.c.setDebugInfo(true);
    off.c.parts().debug.DebugLog("kept");
    EXPECT_EQ(off.debugText(), "redkept\r\n");
    EXPECT_EQ(runsOf(off.c.parts().windows.text[kDebugWindow]), (Runs{{0, 3, 0, false, true, true}, {3, 9, 0, false, true, false}}));
}
