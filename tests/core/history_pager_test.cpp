// The live history view: pages of 28 lines, steps of 27, the keys, and the
// page drawn in window 7, on texts of 0, 1, 27, 28, 29 and 100 lines.
#include <gtest/gtest.h>

#include <random>

#include "support/client_harness.h"

namespace kelpa::test {
namespace {

std::string linesText(int n) {
    std::string s;
    for (int i = 1; i <= n; ++i) s += "l" + std::to_string(i) + "\r\n";
    return s;
}

// What HistT shows, as its first and last line ("" for an empty page).
std::pair<std::string, std::string> shownPage(const ClientHarness& h) {
    std::string t = h.window(kHistT);
    if (t.empty()) return {"", ""};
    if (t.size() >= 2 && t.compare(t.size() - 2, 2, "\r\n") == 0) t.resize(t.size() - 2);
    const std::size_t firstEnd = t.find("\r\n");
    const std::size_t lastBegin = t.rfind("\r\n");
    return {t.substr(0, firstEnd), lastBegin == std::string::npos ? t : t.substr(lastBegin + 2)};
}

void press(Client& c, char key) {
    HistoryPager& p = c.historyViews().pager;
    switch (key) {
        case 'O': p.SSTab2_Click(1); break;
        case 'H': p.HistT_KeyDown(HistoryPager::kHome); break;
        case 'E': p.HistT_KeyDown(HistoryPager::kEnd); break;
        case 'U': p.HistT_KeyDown(HistoryPager::kPageUp); break;
        case 'D': p.HistT_KeyDown(HistoryPager::kPageDown); break;
        case 'u': p.HistT_KeyDown(HistoryPager::kUp); break;
        case 'd': p.HistT_KeyDown(HistoryPager::kDown); break;
        case 'x': p.HistT_KeyDown(65); break;  // any other key
        default: FAIL() << key;
    }
}

TEST(HistoryPager, KeySequencesShowTheExpectedPage) {
    struct Row {
        int lines;
        const char* keys;  // O opens the page; H E U D u d x are the keys
        const char* first;
        const char* last;
    };
    const Row rows[] = {
        {0, "O", "", ""},         {0, "HEUDudx", "", ""},    {1, "O", "l1", "l1"},
        {1, "Od", "", ""},        {1, "OU", "l1", "l1"},     {27, "O", "l1", "l27"},
        {27, "E", "l1", "l27"},   {27, "OU", "l1", "l27"},   {27, "HD", "", ""},
        {27, "Hd", "l2", "l27"},  {28, "O", "l1", "l28"},    {28, "HD", "l28", "l28"},
        {28, "Ed", "l2", "l28"},  {29, "O", "l2", "l29"},    {29, "HD", "l28", "l29"},
        {29, "HDD", "l28", "l29"}, {29, "OU", "l1", "l28"},  {100, "O", "l73", "l100"},
        {100, "OU", "l46", "l73"}, {100, "OUU", "l19", "l46"}, {100, "OUUU", "l1", "l28"},
        {100, "H", "l1", "l28"},  {100, "HD", "l28", "l55"}, {100, "HDD", "l55", "l82"},
        {100, "HDDD", "l82", "l100"}, {100, "HDDDD", "l82", "l100"}, {100, "Hu", "l1", "l28"}, {100, "Hd", "l2", "l29"},
        {100, "Hdu", "l1", "l28"}, {100, "Ed", "l74", "l100"}, {100, "EdE", "l73", "l100"},
        {100, "Ou", "l72", "l99"}, {100, "HDx", "l28", "l55"},
    };
    for (const Row& r : rows) {
        ClientHarness h;
        h.c.parts().history.append(linesText(r.lines));
        for (const char* k = r.keys; *k; ++k) press(h.c, *k);
        EXPECT_EQ(shownPage(h), std::make_pair(std::string(r.first), std::string(r.last)))
            << r.lines << " lines, keys " << r.keys;
    }
}

TEST(HistoryPager, KeysThatDoNothingLeaveThePageAsItWas) {
    ClientHarness h;
    h.c.parts().history.append(linesText(40));
    press(h.c, 'H');
    const auto before = h.c.parts().windows.text[kHistT].revision();
    for (char k : {'u', 'U', 'x'}) press(h.c, k);  // at the top: not even a redraw
    EXPECT_EQ(h.c.parts().windows.text[kHistT].revision(), before);
    // New text moves the place to the end without a redraw; Up counts from there.
    h.c.parts().history.append("new line\r\nprompt> ");
    EXPECT_EQ(h.c.parts().history.HistoryPos, h.c.parts().history.size());
    EXPECT_EQ(h.c.parts().windows.text[kHistT].revision(), before);
    press(h.c, 'u');
    EXPECT_EQ(shownPage(h), std::make_pair(std::string("prompt> "), std::string("prompt> ")));
    press(h.c, 'E');  // redraws the last page even when there
    EXPECT_EQ(shownPage(h), std::make_pair(std::string("l15"), std::string("prompt> ")));
}

TEST(HistoryPager, NextPageGoesOnInTheColourThePageBeforeEnded) {
    ClientHarness h;
    std::string text = linesText(27);
    text += "\x1b[0;31mred\r\n";  // line 28 turns red
    text += linesText(30);
    h.c.parts().history.append(text);
    press(h.c, 'H');
    press(h.c, 'D');  // begins with line 28, in red already
    ASSERT_EQ(shownPage(h).first, "red");
    press(h.c, 'D');  // begins with "l27" of the second block: no colour of its own
    EXPECT_EQ(styleAt(h.c.parts().windows.text[kHistT], 0).colour, rgb(128, 0, 0) + rgb(64, 64, 64));
}

// The plain reading of the two searches, over the whole text at once.
struct PlainPager {
    const std::string& s;
    std::size_t back(std::size_t p) const {
        if (p < 3) return 0;
        const std::size_t at = s.substr(0, p - 1).rfind("\r\n");
        return at == std::string::npos ? 0 : at + 1;
    }
    std::size_t forward(std::size_t p) const {
        const std::size_t at = s.find("\r\n", p);
        return at == std::string::npos ? 0 : at + 1;
    }
};

TEST(HistoryPager, SearchesAgreeWithThePlainReadingAcrossBlocks) {
    std::mt19937 rng(14);
    for (int round = 0; round < 20; ++round) {
        ClientHarness h;
        std::string s;
        const int lines = static_cast<int>(rng() % 60);
        for (int i = 0; i < lines; ++i) {
            // Lines around the read block's size, lone CRs and LFs among them.
            s.append(rng() % 4 == 0 ? 4095 + rng() % 3 : rng() % 9000, static_cast<char>('a' + i % 26));
            s += std::string_view("\r\n\r\r\n\n\r\n").substr(rng() % 3 * 2, 2);
        }
        h.c.parts().history.append(s);
        const HistoryPager& pager = h.c.historyViews().pager;
        const PlainPager plain{s};
        std::vector<std::size_t> probes;
        for (int i = 0; i < 300; ++i) probes.push_back(s.empty() ? 0 : rng() % (s.size() + 1));
        // Places where a line break falls across two reads of 4 KB.
        for (std::size_t c = s.find("\r\n"); c != std::string::npos; c = s.find("\r\n", c + 1))
            for (std::size_t d = 4094; d <= 4099; ++d) {
                if (c + d <= s.size()) probes.push_back(c + d);
                if (c >= d) probes.push_back(c - d);
            }
        for (std::size_t p : probes) {
            ASSERT_EQ(pager.searchBack(p), plain.back(p)) << "round " << round << " at " << p;
            ASSERT_EQ(pager.searchForward(p), plain.forward(p)) << "round " << round << " at " << p;
        }
    }
}

}  // namespace
}  // namespace kelpa::test
