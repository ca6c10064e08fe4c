// The live history view: pages of 28 lines, steps of 27, the keys, and the
// page drawn in window 7, on texts of 0, 1, 27, 28, 29 and 100 lines.
#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "support/client_harness.h"

namespace kelpa::test {
namespace {

std::string linesText(int n) {
    std::string s;
    for (int i = 1; i <= n; ++i) s += "l" + std::to_string(i) + "\r\n";
    return s;
}

// What HistT shows, as its first and last line ("" for an empty page).
std::string shownPage(const ClientHarness& h) {
    std::string t = h.window(kHistT);
    if (t.size() >= 2 && t.compare(t.size() - 2, 2, "\r\n") == 0) t.resize(t.size() - 2);
    const std::size_t last = t.rfind("\r\n");
    return t.empty() ? "" : t.substr(0, t.find("\r\n")) + " " + t.substr(last == t.npos ? 0 : last + 2);
}

// O opens the page; H E U D u d are Home, End, Page Up, Page Down, Up and
// Down; x is any other key.
void press(Client& c, char key) {
    HistoryPager& p = c.historyViews().pager;
    using P = HistoryPager;
    const int codes[] = {P::kHome, P::kEnd, P::kPageUp, P::kPageDown, P::kUp, P::kDown, 65};
    if (key == 'O')
        p.SSTab2_Click(1);
    else
        p.HistT_KeyDown(codes[std::string_view("HEUDudx").find(key)]);
}

TEST(HistoryPager, KeySequencesShowTheExpectedPage) {
    // Lines of text, keys pressed, the page's first and last line.
    const std::tuple<int, const char*, const char*> rows[] = {
        {0, "O", ""},            {0, "HEUDudx", ""},      {1, "O", "l1 l1"},       {1, "Od", ""},
        {1, "OU", "l1 l1"},      {27, "O", "l1 l27"},     {27, "E", "l1 l27"},     {27, "OU", "l1 l27"},
        {27, "HD", ""},          {27, "Hd", "l2 l27"},    {28, "O", "l1 l28"},     {28, "HD", "l28 l28"},
        {28, "Ed", "l2 l28"},    {29, "O", "l2 l29"},     {29, "HD", "l28 l29"},   {29, "HDD", "l28 l29"},
        {29, "OU", "l1 l28"},    {100, "O", "l73 l100"},  {100, "OU", "l46 l73"},  {100, "OUU", "l19 l46"},
        {100, "OUUU", "l1 l28"}, {100, "H", "l1 l28"},    {100, "HD", "l28 l55"},  {100, "HDD", "l55 l82"},
        {100, "HDDD", "l82 l100"}, {100, "HDDDD", "l82 l100"}, {100, "Hu", "l1 l28"}, {100, "Hd", "l2 l29"},
        {100, "Hdu", "l1 l28"},  {100, "Ed", "l74 l100"}, {100, "EdE", "l73 l100"}, {100, "Ou", "l72 l99"},
        {100, "HDx", "l28 l55"},
    };
    for (const auto& [lines, keys, shown] : rows) {
        ClientHarness h;
        h.c.parts().history.append(linesText(lines));
        for (const char* k = keys; *k; ++k) press(h.c, *k);
        EXPECT_EQ(shownPage(h), shown) << lines << " lines, keys " << keys;
    }
}

TEST(HistoryPager, KeysThatDoNothingLeaveThePageAsItWas) {
    ClientHarness h;
    h.c.parts().history.append(linesText(40));
    press(h.c, 'H');
    const auto revision = [&h] { return h.c.parts().windows.text[kHistT].revision(); };
    const auto before = revision();
    for (char k : {'u', 'U', 'x'}) press(h.c, k);  // at the top: not even a redraw
    EXPECT_EQ(revision(), before);
    // New text moves the place to the end without a redraw; Up counts from there.
    h.c.parts().history.append("new line\r\nprompt> ");
    EXPECT_EQ(revision(), before);
    press(h.c, 'u');
    EXPECT_EQ(shownPage(h), "prompt>  prompt> ");
    press(h.c, 'E');  // redraws the last page even when there
    EXPECT_EQ(shownPage(h), "l15 prompt> ");
}

// The plain reading of the two searches, over the whole text at once.
std::size_t plainBack(const std::string& s, std::size_t p) {
    const std::size_t at = p < 3 ? s.npos : s.substr(0, p - 1).rfind("\r\n");
    return at == s.npos ? 0 : at + 1;
}

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
        std::vector<std::size_t> probes;
        for (int i = 0; i < 300; ++i) probes.push_back(s.empty() ? 0 : rng() % (s.size() + 1));
        // Places where a line break falls across two reads of 4 KB.
        for (std::size_t c = s.find("\r\n"); c != std::string::npos; c = s.find("\r\n", c + 1))
            for (std::size_t d = 4094; d <= 4099; ++d) {
                if (c + d <= s.size()) probes.push_back(c + d);
                if (c >= d) probes.push_back(c - d);
            }
        for (std::size_t p : probes) {
            ASSERT_EQ(pager.searchBack(p), plainBack(s, p)) << "round " << round << " at " << p;
            // npos + 1 is 0: no line end ahead.
            ASSERT_EQ(pager.searchForward(p), s.find("\r\n", p) + 1) << "round " << round << " at " << p;
        }
    }
}

}  // namespace
}  // namespace kelpa::test
