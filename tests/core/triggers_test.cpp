// Trigger files, written into a temporary program folder and read by the
// store as at start-up: the format, firing through the whole receive road
// (the two passes, "$*", failures, INJECT, a reload during an action), and
// the editor's boxes against the files. Which records fire is held by the
// trigger index test.
#include <gtest/gtest.h>

#include <array>

#include "support/trigger_fixture.h"
#include "common/text.h"
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

// The name, the file, and its records ("" when the file is not loaded).
const std::array<const char*, 3> kCases[] = {
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
    {"the bare key", "flag\r\npattern1=x\r\naction=go", ""},
    {"group 51", "pattern51=x\r\naction=go", ""},
    {"negative group", "flag-1=1\r\npattern1=x\r\naction=go", ""},
    {"flag beyond 32 bits", "flag1=1e20\r\npattern1=x\r\naction=go", ""},
    {"UTF-16 byte order mark", "\xFF\xFE" "pattern1=x\r\naction=go", ""},
    {"UTF-8 byte order mark", "\xEF\xBB\xBF" "pattern1=x\r\naction=go", "part1 F0 P1 p1:'x' a'go'"},
};

TEST(TriggerFiles, EveryCaseOfTheFormatLoadsAsItShould) {
    for (const auto& [name, file, records] : kCases) {
        SCOPED_TRACE(name);
        TriggerFixture t;
        t.trigger("a.trigger", "pattern1=before\r\naction=one");
        t.trigger("b.trigger", file);
        t.trigger("c.trigger", "pattern1=after\r\naction=three");
        t.c.LoadTriggers();
        const std::string middle = *records ? std::string(records) + " | " : "";
        EXPECT_EQ(describe(t.c.parts().triggers.TriggerTable),
                  "part1 F0 P1 p1:'before' a'one' | " + middle + "part1 F0 P1 p1:'after' a'three'");
        const std::string refused = "Trigger file not loaded: " + t.fp.files.absolute("triggers/b.trigger");
        EXPECT_EQ(t.debugText().find(refused + " line ") != std::string::npos, middle.empty());
    }
}

TEST(TriggerFiles, FullGroupsStopTheFileAndTheDebugLinesNameWhatWasRead) {
    TriggerFixture t;
    std::string fifty;
    for (int i = 0; i < 50; ++i) fifty += "pattern1=p" + std::to_string(i) + "\r\n";
    t.trigger("full.trigger", fifty + "action=ok\r\npattern1=x\r\naction=two");
    t.trigger("over.trigger", fifty + "pattern1=last\r\naction=no");
    t.trigger("g.trigger", "pattern1=x\r\naction=global", true);
    t.trigger("skip.txt", "pattern1=x\r\naction=no");
    t.c.LoadTriggers();
    const TriggerStore& store = t.c.parts().triggers;
    ASSERT_EQ(store.TriggerCount(), 2);
    EXPECT_EQ(std::tuple(store.TriggerTable[0].patternGroup(1).Count(), store.TriggerTable[1].PartNumber,
                         store.TriggerTable[1].FilePath, store.GlobalTriggerCount()),
              std::tuple(50, 2, t.fp.files.absolute("triggers/full.trigger"), 1));
    EXPECT_EQ(t.debugText().find("Total parts loaded : 1"), std::string::npos) << "told of more than one only";
    EXPECT_NE(t.debugText().find("Found a parts , loading parts \r\nTotal parts loaded : 2\r\n"
                                 "loading trigger over.trigger from /triggers\r\n"
                                 "Trigger file not loaded: " + t.fp.files.absolute("triggers/over.trigger") +
                                 " line 51: more than 50 entries in one group\r\n"),
              std::string::npos);

    // A reload starts from empty tables.
    std::filesystem::remove(t.fp.folder.path() / "triggers/full.trigger");
    t.c.LoadTriggers();
    EXPECT_EQ(std::pair(store.TriggerCount(), store.GlobalTriggerCount()), std::pair(0, 1));
}

TEST(TriggerMatch, GlobalTriggersSeeTheChunkAndDollarStarBringsTheText) {
    TriggerFixture t;
    t.trigger("g.trigger", "pattern1=one\r\npattern1=two\r\naction=say $*!", true);
    t.trigger("n.trigger", "pattern1=o\r\naction=tell $*");
    t.c.LoadTriggers();
    t.receive("one\r\ntwo\r\n");
    // The chunk's pairs cut the global command; each line runs by itself.
    EXPECT_EQ(t.sent(), "say  one\r\ntwo\r\n!\r\ntell  one\r\ntell  two\r\n");
    const std::string fired = "Fired trigger 0 :" + t.fp.files.absolute("gtriggers/g.trigger") + " Part 1\r\n";
    EXPECT_NE(t.debugText().find(fired), std::string::npos);
    t.fp.socket.sent.clear();
    t.receive("on");
    t.receive("e\r\ntwo");  // split across chunks: the global trigger misses
    EXPECT_EQ(t.sent(), "tell  on\r\ntell  two\r\n");
}

TEST(TriggerMatch, InjectedTextNestsAndTheDepthGuardEndsRunawayLoops) {
    TriggerFixture t;
    t.openLog();
    t.trigger("a.trigger", "pattern1=ping\r\naction=#INJECT pong");
    t.trigger("b.trigger", "pattern1=PONG\r\naction=got $*");
    t.trigger("c.trigger", "pattern1=ping\r\naction=after");
    // A chain exactly as deep as the guard allows ends by itself, though each
    // level nests three command texts: the action, a macro, a then-part.
    t.fp.folder.write("macros/step.macro", "#IFGT 1 0 #INJECT <%1>");
    for (int i = 1; i < kMaxTriggerNesting; ++i)
        t.trigger("s" + std::to_string(1000 + i) + ".trigger",
                  "pattern1=<" + std::to_string(i) + ">\r\naction=@step " + std::to_string(i + 1));
    t.trigger("s" + std::to_string(1000 + kMaxTriggerNesting) + ".trigger",
              "pattern1=<" + std::to_string(kMaxTriggerNesting) + ">\r\naction=bottom");
    // Two records that each inject what fires both again.
    t.trigger("z1.trigger", "pattern1=LOOP\r\naction=#I LOOP");
    t.trigger("z2.trigger", "pattern1=LOOP\r\naction=#I LOOP");
    t.c.LoadTriggers();

    t.receive("ping");
    t.receive("<1>");
    EXPECT_EQ(t.sent(), "got  PONG\r\nafter\r\nbottom\r\n");  // a guard one too early loses "bottom"

    t.fp.socket.sent.clear();
    t.receive("<0>\r\nLOOP\r\nping");  // a doubling tree of firings, without the guard
    EXPECT_EQ(t.sent(), "");
    const std::string log = t.logFile();
    const std::size_t error = log.find("\r\nERROR : 28/Out of stack space on line T_Match");
    EXPECT_TRUE(error != std::string::npos && error == log.rfind("\r\nERROR")) << log;
    t.receive("ping");  // and the road goes on
    EXPECT_EQ(t.sent(), "got  PONG\r\nafter\r\n");
}

TEST(TriggerMatch, AReloadDuringAnActionEndsThePassOverTheOldTables) {
    // Long texts only, and with a short one that makes the pass walk every line.
    for (const bool shortText : {false, true}) {
        TriggerFixture t;
        t.trigger("a.trigger", "pattern1=xxxxxx\r\naction=#MB reload");
        t.trigger("b.trigger", "pattern1=xxxxxx\r\naction=after");
        if (shortText) t.trigger("d.trigger", "pattern1=q\r\naction=never");
        t.c.LoadTriggers();
        // The message box waits for the player, who presses Reload meanwhile,
        // after b.trigger has gone and c.trigger has come: the next line of the
        // same chunk meets the new tables.
        t.fp.host.onMessageBox = [&] {
            std::filesystem::remove(t.fp.folder.path() / "triggers/b.trigger");
            t.trigger("c.trigger", "pattern1=yyyyyyyy\r\naction=new $*");
            t.c.LoadTriggers();
        };
        t.receive("xxxxxx\r\nyyyyyyyy");
        EXPECT_EQ(t.sent(), "new  yyyyyyyy\r\n") << shortText;
        EXPECT_EQ(t.c.parts().triggers.TriggerCount(), 2 + shortText);
    }
}

TEST(TriggerEditor, TemplateSavesLoadsAndSavesAgain) {
    TriggerFixture t;
    TriggerEditor& e = t.c.parts().triggerEditor;
    e.brefresh2_Click();
    e.btnTRGNew_Click();
    e.txtTRGLabel = "fight.trigger";
    e.btnTRGSave_Click();  // a fresh install: the folder is made
    EXPECT_EQ(t.fp.folder.read("triggers/fight.trigger"),
              "flag1=1\r\npattern1=?\r\naction=#nop\r\npattern1=?\r\naction=#nop\r\n");
    // In the tables at once; the list waits for Refresh.
    EXPECT_EQ(std::pair(t.c.parts().triggers.TriggerCount(), e.TList.size()), std::pair(2, std::size_t{0}));

    t.trigger("fight.trigger", "; note\r\npattern1=x\r\nAction=go\r\nFLAG2=3\r\nbad=1\r\nsay=no");
    e.brefresh2_Click();
    ASSERT_EQ(e.TList, std::vector<std::string>{"fight.trigger"});
    e.listIndex = 0;
    e.TList_DblClick();
    e.Option1_Click(1);  // a save now copies the trigger to the global folder, made on the way
    EXPECT_EQ(e.txtTRGLabel + "|" + e.TxtTrgFlags + "|" + e.txtTRGBody,
              "fight.trigger|FLAG2=3\r\n|pattern1=x\r\nAction=go\r\n");
    e.btnTRGSave_Click();
    EXPECT_EQ(t.fp.folder.read("gtriggers/fight.trigger"), "FLAG2=3\r\n\r\npattern1=x\r\nAction=go\r\n\r\n");
    EXPECT_EQ(describe(t.c.parts().triggers.GlobalTriggerTable),
              "part1 F2 f2:3, P0 a'' | part2 F2 f2:3, P1 p1:'x' a'go'");  // the blank line makes an empty first part
    EXPECT_EQ(t.fp.host.messages, std::vector<std::string>{});
}

// Names are checked as the macro editor checks them; a failed save or
// delete says why and keeps the boxes.
TEST(TriggerEditor, RefusedNamesAndFailedSavesAndDeletesSayWhyAndKeepTheBoxes) {
    TriggerFixture t;
    TriggerEditor& e = t.c.parts().triggerEditor;
    std::vector<std::string> refused;
    e.btnTRGNew_Click();
    for (const char* name :
         {"?.trigger", "", "  ", "..", "../escape.trigger", "a:b.trigger", "a\\b.trigger", "a.trigger ", "a.trigger."}) {
        e.txtTRGLabel = name;
        e.btnTRGSave_Click();
        refused.push_back(refusedNameMessage("trigger", name));
    }
    EXPECT_EQ(t.fp.host.messages, refused);
    EXPECT_EQ(e.TxtTrgFlags, "flag1=1");
    EXPECT_FALSE(t.fp.files.exists("triggers")) << "nothing written for a refused name";

    // A folder that cannot be made is named as the reason.
    t.fp.folder.write("gtriggers", "a file where the folder goes");
    e.Option1_Click(1);
    e.txtTRGLabel = "g.trigger";
    e.btnTRGSave_Click();
    EXPECT_EQ(t.fp.host.messages.back(), "Cannot save the trigger " + t.fp.files.absolute("gtriggers/g.trigger") +
                                             ": cannot make the folder " + t.fp.files.absolute("gtriggers") +
                                             ": a file of that name is there.");
    e.Option1_Click(0);

    // A file that cannot be written names itself and the reason; the text stays.
    const std::string tooLong = std::string(300, 'n') + ".trigger";
    e.txtTRGLabel = tooLong;
    e.btnTRGSave_Click();
    EXPECT_EQ(t.fp.host.messages.back(),
              "Cannot save the trigger " + t.fp.files.absolute("triggers/" + tooLong) + ": File name too long.");
    EXPECT_EQ(e.txtTRGBody, "pattern1=?\r\naction=#nop\r\npattern1=?\r\naction=#nop");
    EXPECT_TRUE(std::filesystem::is_empty(t.fp.folder.path() / "triggers"));  // no temporary file left
    // The longest name the folder takes saves like any other.
    const std::string longest = std::string(247, 'n') + ".trigger";
    e.txtTRGLabel = longest;
    e.btnTRGSave_Click();
    EXPECT_TRUE(t.fp.files.exists("triggers/" + longest)) << t.fp.host.messages.back();
    std::filesystem::remove(t.fp.folder.path() / "triggers" / longest);

    // A saved file the loader leaves out is told at once; the file stays.
    const std::size_t told = t.fp.host.messages.size();
    e.txtTRGLabel = "typo.trigger";
    e.TxtTrgFlags.clear();
    e.txtTRGBody = "pattern1 You are hungry\r\naction=eat";
    e.btnTRGSave_Click();
    EXPECT_EQ(std::vector(t.fp.host.messages.begin() + static_cast<std::ptrdiff_t>(told), t.fp.host.messages.end()),
              std::vector<std::string>{"The trigger " + t.fp.files.absolute("triggers/typo.trigger") +
                                       " is saved but not loaded: line 1: no \"=\" in the line."});
    // A name that differs from a file's only in case would be that file
    // on a case-blind system.
    e.txtTRGLabel = "TYPO.trigger";
    e.btnTRGSave_Click();
    EXPECT_EQ(t.fp.host.messages.back(), "Cannot use the trigger name \"TYPO.trigger\": there is typo.trigger, and "
                                         "names that differ only in case are one file on case-blind systems");
    EXPECT_EQ(t.fp.files.list("triggers", ".trigger"), std::vector<std::string>{"typo.trigger"});
    std::filesystem::remove(t.fp.folder.path() / "triggers/typo.trigger");
    t.fp.host.messages.resize(told);

    e.btnTRGNew_Click();
    e.txtTRGLabel = "a.trigger";
    e.btnTRGSave_Click();
    e.btnTRGDelete_Click();
    EXPECT_FALSE(t.fp.files.exists("triggers/a.trigger"));
    EXPECT_EQ(t.fp.host.questions, std::vector<std::string>{"Deletion confirmation: Please confirm trigger deletion"});
    EXPECT_EQ(t.c.parts().triggers.TriggerCount(), 2);  // still active until a reload
    e.txtTRGLabel = "a.trigger";
    e.txtTRGBody = "kept";
    e.btnTRGDelete_Click();
    EXPECT_EQ(t.fp.host.messages.back(),
              "Cannot delete the trigger " + t.fp.files.absolute("triggers/a.trigger") + ": there is no such file.");
    EXPECT_EQ(e.txtTRGBody + "|" + std::to_string(t.fp.host.messages.size()), "kept|12");
    // A listed file gone before the double click: told, and the boxes stay.
    t.fp.folder.write("triggers/b.trigger", "pattern1=x\r\naction=y");
    e.brefresh2_Click();
    std::filesystem::remove(t.fp.folder.path() / "triggers/b.trigger");
    e.listIndex = 0;
    e.TList_DblClick();
    EXPECT_EQ(t.fp.host.messages.back(), "Cannot read the trigger " + t.fp.files.absolute("triggers/b.trigger") +
                                             ": No such file or directory.");
    EXPECT_EQ(e.txtTRGLabel + "|" + e.txtTRGBody, "a.trigger|kept");
    // So is a UTF-16 file, which would show empty and be saved so.
    t.fp.folder.write("triggers/b.trigger", std::string("\xFF\xFEp\0=\0", 6));
    e.TList_DblClick();
    EXPECT_EQ(t.fp.host.messages.back(), "Cannot read the trigger " + t.fp.files.absolute("triggers/b.trigger") +
                                             ": it is UTF-16 text (\"Unicode\" in Notepad); save it as ANSI text.");
    EXPECT_EQ(e.txtTRGLabel + "|" + e.txtTRGBody, "a.trigger|kept");
    e.Reload_Click();
    EXPECT_EQ(t.c.parts().triggers.TriggerCount(), 0);
}

}  // namespace
}  // namespace kelpa::test
