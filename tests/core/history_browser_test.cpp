// The history browser against real files: the list of days, and the loader
// with its pieces, its caption, a growing log, a missing and an empty file.
#include <gtest/gtest.h>

#include "support/client_harness.h"

namespace kelpa::test {
namespace {

struct Browser : ClientHarness {
    HistoryBrowser& b = c.historyViews().browser;
    // A book from Windows, whose trailing blank the folder's name lacks.
    Browser() { c.parts().bar.CurrentSite.ShortName = "mud "; }
    void day(const std::string& name, const std::string& bytes) { fp.folder.write("logs/mud/" + name, bytes); }
    // Which of the history view and the loading label show, and a load running.
    std::string panes() const {
        return std::string(b.loading() ? "loading " : "") + (b.HistViewVisible ? "view" : "") +
               (b.Label8Visible ? "label" : "");
    }
};

std::string pattern(std::size_t n) {
    std::string s;
    for (std::size_t i = 0; i < n; ++i) s += static_cast<char>('a' + i % 23);
    return s;
}

TEST(HistoryBrowser, EndsInOrderWhenThereIsNothingToRead) {
    Browser t;
    EXPECT_EQ(t.window(kHistView), "History goes here");
    t.day("H.20261120.txt", "");
    t.day("H.20261121.txt", "day21\r\n");
    t.day("h.20261119.TXT", "");
    t.day("notes.txt", "");
    t.b.brefresh_Click();
    EXPECT_EQ(t.b.DList, (std::vector<std::string>{"h.20261119.TXT", "H.20261120.txt", "H.20261121.txt"}));
    t.c.parts().bar.CurrentSite.ShortName = "other";  // the list belongs to "mud"
    for (const char* item : {"H.20261120.txt", "", "H.20261199.txt"}) {
        t.c.parts().windows.text[kHistView].append("old", {});
        t.b.DList_DblClick(item);
        EXPECT_EQ(t.panes() + ", " + t.b.Label8Caption + ", " + t.window(kHistView), "view, Loading ....., ") << item;
    }
    EXPECT_NE(t.debugText().find("Cannot read the log "), std::string::npos);
    // An empty day of the current site, then a second day chosen during a load.
    t.c.parts().bar.CurrentSite.ShortName = "mud";
    t.b.DList_DblClick("H.20261120.txt");
    EXPECT_EQ(t.b.Label8Caption, "Loading .....");
    t.day("H.20261122.txt", pattern(50000));
    t.b.DList_DblClick("H.20261122.txt");
    t.b.step();
    t.b.DList_DblClick("H.20261121.txt");
    EXPECT_EQ(t.panes(), "loading label");
    t.b.finish();
    EXPECT_TRUE(t.history() == pattern(50000) + "day21\r\n");
    EXPECT_EQ(t.panes(), "view");
}

}  // namespace
}  // namespace kelpa::test
