// The trigger file format, written as files in a temporary program folder
// and read by the store as at start-up.
#include <gtest/gtest.h>

#include "support/trigger_fixture.h"
#include "triggers/trigger_file.h"

namespace kelpa::test {
namespace {

// One record as a short text: part, flag groups up to the largest filled
// (group 0 included), tested count, pattern groups likewise, action.
std::string describe(const TriggerRecord& r) {
    std::string s = "part" + std::to_string(r.PartNumber) + " F" + std::to_string(r.FlagGroupCount);
    for (std::size_t g = 0; g < r.FlagGroups.size(); ++g)
        if (r.FlagGroups[g].Count() > 0) {
            s += " f" + std::to_string(g) + ":";
            for (int v : r.FlagGroups[g].Values) s += std::to_string(v) + ",";
        }
    s += " P" + std::to_string(r.PatternGroupCount);
    for (std::size_t g = 0; g < r.PatternGroups.size(); ++g)
        if (r.PatternGroups[g].Count() > 0) {
            s += " p" + std::to_string(g) + ":";
            for (const std::string& t : r.PatternGroups[g].Texts) s += "'" + t + "'";
        }
    return s + " a'" + r.Action + "'";
}

std::string describe(const TriggerRecords& t) {
    std::string s;
    for (const TriggerRecord& r : t) s += (s.empty() ? "" : " | ") + describe(r);
    return s;
}

struct Case {
    const char* name;
    const char* file;
    const char* records;  // "" when the file is not loaded
};

const Case kCases[] = {
    {"same flag group", "flag1=3\r\nFLAG1=4\r\npattern1=x\r\naction=go", "part1 F1 f1:3,4, P1 p1:'x' a'go'"},
    {"two flag groups", "flag1=3\r\nflag2=4\r\npattern1=x\r\naction=go", "part1 F2 f1:3, f2:4, P1 p1:'x' a'go'"},
    {"last group counts", "flag2=3\r\nflag1=4\r\npattern2=a\r\npattern1=b\r\naction=go",
     "part1 F1 f1:4, f2:3, P1 p1:'b' p2:'a' a'go'"},
    {"group 3 alone", "flag3=7\r\npattern1=x\r\naction=go", "part1 F3 f3:7, P1 p1:'x' a'go'"},
    {"group 0", "flag=7\r\npattern=x\r\naction=go", "part1 F0 f0:7, P0 p0:'x' a'go'"},
    {"numbers as read", "flag 1.5 =2.5\r\npattern2.5=x\r\naction=go", "part1 F2 f2:2, P2 p2:'x' a'go'"},
    {"texts kept whole", "pattern1= a=b \r\npattern1=\r\naction=say = hi", "part1 F0 P1 p1:' a=b ''' a'say = hi'"},
    {"action without =", "pattern1=x\r\nkill rat", "part1 F0 P1 p1:'x' a'kill rat'"},
    {"leading blank is no key", " flag1=1\r\npattern1=x\r\naction=go",
     "part1 F0 P0 a'1' | part2 F0 P1 p1:'x' a'go'"},
    {"blank line after flags", "flag1=1\r\n\r\npattern1=x\r\naction=go",
     "part1 F1 f1:1, P0 a'' | part2 F1 f1:1, P1 p1:'x' a'go'"},
    {"one pattern line", "pattern1=x\r\n", "part1 F0 P0 a''"},
    {"flags then one line", "flag1=1\r\npattern1=x", "part1 F1 f1:1, P0 a''"},
    {"trailing pattern line", "flag1=1\r\npattern1=x\r\naction=go\r\npattern1=y\r\n",
     "part1 F1 f1:1, P1 p1:'x' a'go' | part2 F1 f1:1, P0 a''"},
    {"comments skipped", "pattern1=x\r\naction=go\r\n# note\r\nflag1=2\r\naction=no\r\npattern1=y\r\naction=two\r\nend",
     "part1 F0 P1 p1:'x' a'go' | part2 F0 P1 p1:'y' a'two'"},
    {"later parts copy tested flags", "flag0=9\r\nflag1=1\r\npattern1=x\r\naction=a\r\npattern1=y\r\naction=b",
     "part1 F1 f0:9, f1:1, P1 p1:'x' a'a' | part2 F1 f1:1, P1 p1:'y' a'b'"},
    {"linux line ends", "flag1=1\npattern1=x\naction=go\n", "part1 F1 f1:1, P1 p1:'x' a'go'"},
    {"empty file", "", ""},
    {"ends in flag block", "flag1=1\r\nflag1=2\r\n", ""},
    {"ends in pattern block", "pattern1=x\r\npattern1=y\r\n", ""},
    {"pattern without =", "pattern1x\r\naction=go", ""},
    {"flag without =", "flag1\r\npattern1=x\r\naction=go", ""},
    {"group 51", "pattern51=x\r\naction=go", ""},
    {"negative group", "flag-1=1\r\npattern1=x\r\naction=go", ""},
    {"flag beyond 32 bits", "flag1=1e20\r\npattern1=x\r\naction=go", ""},
};

TEST(TriggerFiles, EveryCaseOfTheFormatLoadsAsItShould) {
    for (const Case& k : kCases) {
        TriggerFixture t;
        t.trigger("a.trigger", "pattern1=before\r\naction=one");
        t.trigger("b.trigger", k.file);
        t.trigger("c.trigger", "pattern1=after\r\naction=three");
        t.c.LoadTriggers();
        const TriggerRecords& table = t.c.triggers.TriggerTable;
        ASSERT_GE(table.size(), 2u) << k.name;
        EXPECT_EQ(table.front().Action, "one") << k.name;
        EXPECT_EQ(table.back().Action, "three") << k.name;
        TriggerRecords middle(table.begin() + 1, table.end() - 1);
        EXPECT_EQ(describe(middle), k.records) << k.name;
        if (std::string(k.records).empty()) {
            EXPECT_NE(t.debugText().find("Trigger file not loaded: " + t.fp.files.absolute("triggers/b.trigger") +
                                         " line "),
                      std::string::npos)
                << k.name;
        }
    }
}

TEST(TriggerFiles, FullGroupsStopTheFileAndTheDebugLinesNameWhatWasRead) {
    TriggerFixture t;
    std::string fifty, fiftyOne;
    for (int i = 0; i < 50; ++i) fifty += "pattern1=p" + std::to_string(i) + "\r\n";
    fiftyOne = fifty + "pattern1=last\r\n";
    t.trigger("full.trigger", fifty + "action=ok\r\npattern1=x\r\naction=two");
    t.trigger("over.trigger", fiftyOne + "action=no");
    t.trigger("g.trigger", "pattern1=x\r\naction=global", true);
    t.trigger("skip.txt", "pattern1=x\r\naction=no");
    t.c.LoadTriggers();
    ASSERT_EQ(t.c.triggers.TriggerCount(), 2);
    EXPECT_EQ(t.c.triggers.TriggerTable[0].patternGroup(1).Count(), 50);
    EXPECT_EQ(t.c.triggers.TriggerTable[1].PartNumber, 2);
    EXPECT_EQ(t.c.triggers.TriggerTable[1].FilePath, t.fp.files.absolute("triggers/full.trigger"));
    ASSERT_EQ(t.c.triggers.GlobalTriggerCount(), 1);
    EXPECT_EQ(t.debugText().substr(t.debugText().find("loading trigger full")),
              "loading trigger full.trigger from /triggers\r\n"
              "Found a parts , loading parts \r\n"
              "Total parts loaded : 2\r\n"
              "loading trigger over.trigger from /triggers\r\n"
              "Trigger file not loaded: " + t.fp.files.absolute("triggers/over.trigger") +
                  " line 51: more than 50 entries in one group\r\n"
              "loading trigger g.trigger from /gtriggers\r\n");

    // A reload starts from empty tables.
    std::filesystem::remove(t.fp.folder.path() / "triggers/full.trigger");
    t.c.LoadTriggers();
    EXPECT_EQ(t.c.triggers.TriggerCount(), 0);
    EXPECT_EQ(t.c.triggers.GlobalTriggerCount(), 1);
}

}  // namespace
}  // namespace kelpa::test
