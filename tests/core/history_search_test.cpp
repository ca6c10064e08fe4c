// Seek and Filter: lines as the player saw them (colour and telnet left
// out, case folded), the wrap at the end, the newest lines when they do not
// all fit, and a search replaced by the next.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include <malloc.h>

#include "support/client_harness.h"

namespace kelpa::test {
namespace {

struct Search : ClientHarness {
    HistorySearch& s = c.historyViews().search;
    int tabRequests = 0;
    Search() { s.showHistoryPage = [this] { ++tabRequests; }; }
    void seek(const std::string& text) {
        s.BSeek_Click(text);
        s.finish();
    }
    void filter(const std::string& text) {
        s.BFilter_Click(text);
        s.finish();
    }
    std::string topLine() const {
        const std::string t = window(kHistT);
        return t.substr(0, t.find("\r\n"));
    }
};

const std::string kRun =
    "You see an \x1b[1;31mOr\x1b[0mc here.\r\n"       // 1: colour inside the word
    "A shopkeeper says: hello\r\n"                    // 2
    "The o\xff\xfb\x01r\xff\xf9" "c hits\xff\xfe\x01 you.\r\n"  // 3: telnet inside the word
    "Caf\xe9 \xc9T\xc9\r\n"                           // 4: accented letters
    "orcish ORC orc\r\n"                              // 5: three times in one line
    "prompt> ";                                       // 6: no line end yet

// A Seek through one line of many megabytes, and the History page that
// shows it, give their memory back once done.
TEST(HistorySearch, ALineOfManyMegabytesLeavesNoMemoryBehind) {
    Search t;
    t.c.parts().history.append("short\r\n" + std::string(48 << 20, 'x') + " dragon\r\nend\r\n");
    const auto heapInUse = [] {
        const auto m = mallinfo2();
        return m.uordblks + m.hblkhd;  // small blocks and mapped ones
    };
    const std::size_t before = heapInUse();
    t.seek("dragon");
    EXPECT_EQ(t.tabRequests, 1);
    EXPECT_EQ(t.topLine().substr(t.topLine().size() - 6), "dragon") << "the found line is on the page";
    t.seek("nowhere");
    EXPECT_LT(heapInUse(), before + (8 << 20));
}

TEST(HistorySearch, SeekFindsTheNextLineAsThePlayerSawItAndWraps) {
    Search t;
    t.c.parts().history.append(kRun);
    t.c.historyViews().pager.HistT_KeyDown(HistoryPager::kHome);
    // From the top line on, the first line tested is the one after it;
    // "\xc9t\xe9" is "ÉtÉ" typed as "Été".
    const std::pair<const char*, const char*> rows[] = {
        {"oRc", "The orc hits you."}, {"oRc", "orcish ORC orc"}, {"oRc", "You see an Orc here."},
        {"oRc", "The orc hits you."}, {"\xc9t\xe9", "Caf\xe9 \xc9T\xc9"}, {"prompt", "prompt> "}};
    for (std::size_t k = 0; k < std::size(rows); ++k) {
        t.seek(rows[k].first);
        EXPECT_EQ(t.topLine(), rows[k].second) << "seek " << k;
    }
    EXPECT_EQ(t.tabRequests, 6);
    EXPECT_EQ(t.c.parts().history.HistoryPos, t.c.parts().history.size() - 8 - 1);

    // Nothing holds it: the debug window says so, and the page stays.
    const std::size_t pos = t.c.parts().history.HistoryPos;
    const auto shown = t.c.parts().windows.text[kHistT].revision();
    t.seek("dragon");
    EXPECT_EQ(t.c.parts().history.HistoryPos, pos);
    EXPECT_EQ(t.c.parts().windows.text[kHistT].revision(), shown);
    EXPECT_NE(t.debugText().find("Seek: no line holds \"dragon\""), std::string::npos);
    EXPECT_EQ(t.tabRequests, 6) << "a failed seek shows no page";
    EXPECT_TRUE(t.s.seekFailed());
    t.seek("shopkeeper");
    EXPECT_FALSE(t.s.seekFailed());
}

TEST(HistorySearch, FilterListsEveryMatchingLineUnderItsCount) {
    Search t;
    t.c.parts().history.append(kRun);
    t.filter("orc");
    EXPECT_EQ(t.window(kHistView),
              "3 lines hold \"orc\"\r\nYou see an Orc here.\r\nThe orc hits you.\r\norcish ORC orc\r\n");
    EXPECT_FALSE(t.s.running()) << "a filter that has ended is not shown again";
    // Colours stay ("Or" in bold red); each line starts in the plain
    // colours, the first as the others.
    const OutputWindow& view = t.c.parts().windows.text[kHistView];
    const std::string shown = t.window(kHistView);
    EXPECT_EQ(styleAt(view, shown.find("Or")).colour, rgb(128, 0, 0) + rgb(127, 127, 127));
    EXPECT_EQ(styleAt(view, shown.find("You")).colour, styleAt(view, shown.find("orcish")).colour);
    t.filter("dragon");
    EXPECT_EQ(t.window(kHistView), "0 lines hold \"dragon\"\r\n");
    t.filter("");
    EXPECT_EQ(t.window(kHistView), "");
    // Telnet's two-byte commands, DONT with its option and a linemode
    // subnegotiation (shown on the debug window only) leave a word whole.
    Search u;
    u.c.parts().history.append("a\xff\xef" "b\r\nc\xff\xf1" "d\r\ne\xff\xf9" "f\r\ng\xff\xfe\x01h\r\n"
                               "i\xff\xfa\x22\x01\x03\xff\xf0j\r\n");
    for (const std::string word : {"ab", "cd", "ef", "gh", "ij"}) {
        u.filter(word);
        EXPECT_EQ(u.window(kHistView).rfind("1 line holds", 0), 0u) << word;
    }
    // Codes that act (a terminal type request, erase and cursor codes, a
    // broken sequence) are left out of the list: each line keeps its text
    // and its row, and nothing reaches the server.
    u.c.parts().history.append("T1 x\xff\xfd\x18y\r\nT2 keep\r\n\x1b[2JT3 clear\x1b[5;5H!\r\n"
                               "T4 a\x1bMb\r\nT5 \x1b[1;32mc\xff\xff\x1b[31\r\n");
    u.filter("T");
    EXPECT_EQ(u.window(kHistView), "5 lines hold \"T\"\r\nT1 xy\r\nT2 keep\r\nT3 clear!\r\nT4 ab\r\nT5 c\xff[31\r\n");
    EXPECT_EQ(u.fp.socket.sent, "");
    EXPECT_EQ(styleAt(u.c.parts().windows.text[kHistView], u.window(kHistView).find("c\xff")).colour,
              rgb(0, 128, 0) + rgb(127, 127, 127));
    // A server that ends its lines in LF CR, or in LF alone: each is a line
    // of its own, as on the screen.
    Search d;
    d.c.parts().history.append("ROM one\n\rtwo\n\rROM three\nROM four\r\n");
    d.filter("rom");
    EXPECT_EQ(d.window(kHistView), "3 lines hold \"rom\"\r\nROM one\r\nROM three\r\nROM four\r\n");
    u.filter("\xff");
    EXPECT_EQ(u.window(kHistView).substr(0, 20), "1 line holds \"\xff\"\r\nT5");
}

TEST(HistorySearch, FilterKeepsTheNewestLinesThatFit) {
    Search t;
    std::string text;
    const std::string pad(990, '.');
    for (int i = 0; i < 300; ++i) text += "hit " + std::to_string(1000 + i) + pad + "\r\nmiss\r\n";
    t.c.parts().history.append(text);
    t.filter("HIT");
    const std::string shown = t.window(kHistView);
    EXPECT_EQ(shown.substr(0, shown.find("hit 1200")), "300 lines hold \"HIT\", the newest 100 shown\r\n");
    EXPECT_NE(shown.find("hit 1299"), std::string::npos);
}

// The plain reading: cut at every LF (a CR before it is part of the line
// end, and shows nothing anyway), strip sequences line by line, fold, look.
std::size_t plainCount(const std::string& run, const std::string& needle) {
    std::size_t count = 0;
    for (std::size_t begin = 0, end = 0; begin <= run.size(); begin = end + 1) {
        end = std::min(run.find('\n', begin), run.size());
        std::string seen;
        for (std::size_t i = begin; i < end; ++i) {
            const std::size_t fin = run[i] == 27 ? run.find_first_of(CsiFinals, i + 1) : run.npos;
            if (fin < end)
                i = fin;
            else if (run[i] != '\r' && run[i] != 0 && run[i] != 27)
                seen += static_cast<char>(foldCase1252(static_cast<unsigned char>(run[i])));
        }
        count += seen.find(needle) != std::string::npos;
    }
    return count;
}

TEST(HistorySearch, FilterCountsAgreeWithThePlainReadingOverManySteps) {
    Search t;
    std::mt19937 rng(7);
    std::string run;
    // Letters and their neighbours in the code ("`" and "{" around a to z).
    const char* pieces[] = {"orc", "\x1b[1;3", "1m", "O", "R", "C", "\x1b[0m", "\r\n", "\r", "\n",
                            "x",   "\xe9",     "\x1b", "z", "{", "`", "@", "Z", "a"};
    while (run.size() < HistorySearch::kStepBytes * 2 + 12345) run += pieces[rng() % std::size(pieces)];
    t.c.parts().history.append(run);
    for (const std::string needle : {"ORC", "X\xc9", "RX", "Z{", "`A", "RC"}) {
        t.filter(needle);
        const std::string shown = t.window(kHistView);
        EXPECT_EQ(shown.substr(0, shown.find(' ')), std::to_string(plainCount(run, needle))) << needle;
    }
}

TEST(HistorySearch, ANewSearchReplacesTheRunningOne) {
    Search t;
    std::string text;
    while (text.size() < HistorySearch::kStepBytes * 3) text += "an orc line\r\n";
    text += "the dragon\r\n";
    t.c.parts().history.append(text);
    t.s.BFilter_Click("orc");
    EXPECT_TRUE(t.s.step());  // more than one step
    t.seek("dragon");
    EXPECT_EQ(t.topLine(), "the dragon");
    EXPECT_FALSE(t.s.running());
    EXPECT_EQ(t.window(kHistView), "History goes here");  // the filter never ended
    // A filter replaced by a filter keeps nothing of the first; an empty
    // text ends the running search.
    t.s.BFilter_Click("orc");
    t.s.step();
    t.filter("dragon");
    EXPECT_EQ(t.window(kHistView), "1 line holds \"dragon\"\r\nthe dragon\r\n");
    t.s.BFilter_Click("orc");
    t.s.BFilter_Click("");
    EXPECT_FALSE(t.s.running());
}

}  // namespace
}  // namespace kelpa::test
