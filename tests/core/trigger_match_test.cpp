// Matching and firing through the whole receive road: groups, flags read at
// the moment a record is tested, the two passes, "$*", failures, INJECT.
#include <gtest/gtest.h>

#include "support/trigger_fixture.h"

namespace kelpa::test {
namespace {

TEST(TriggerMatch, GroupsAndFlagsDecideWhichRecordsFireInTableOrder) {
    TriggerFixture t;
    t.trigger("a.trigger", "flag1=1\r\npattern1=?\r\naction=template");
    t.trigger("b.trigger", "pattern1=a\r\npattern1=b\r\npattern2=c\r\naction=either");
    t.trigger("c.trigger", "pattern2=never\r\npattern1=n\r\naction=empty group two");
    t.trigger("d.trigger", "flag1=2\r\nflag1=3\r\naction=nopattern\r\n; no pattern line");
    t.trigger("e.trigger", "flag1=4\r\nflag2=5\r\npattern1=zz\r\naction=one of two");
    t.trigger("f.trigger", "pattern1=\r\naction=nonempty\r\npattern1=q\r\naction=second part");
    t.c.LoadTriggers();
    auto run = [&](const std::string& chunk) {
        t.fp.socket.sent.clear();
        t.receive(chunk);
        return t.sent();
    };
    EXPECT_EQ(run("ab"), "either\r\nnonempty\r\n");
    EXPECT_EQ(run("a c?"), "either\r\nnonempty\r\n");  // flag 1 clear
    t.c.flags.set(1, true);
    EXPECT_EQ(run("why?\r\n"), "template\r\nnonempty\r\n");  // the empty last line fires nothing
    EXPECT_EQ(run("nq"), "empty group two\r\nnonempty\r\nsecond part\r\n");
    t.c.flags.set(2, true);
    EXPECT_EQ(run("x"), "nonempty\r\n");  // group needs flags 2 and 3
    t.c.flags.set(3, true);
    EXPECT_EQ(run("x\r\n"), "nopattern\r\nnonempty\r\nnopattern\r\n");
    t.c.flags.set(5, true);
    EXPECT_EQ(run("zz"), "nopattern\r\none of two\r\nnonempty\r\n");
}

TEST(TriggerMatch, ActionsSetFlagsForTheRecordsBehindThemAndTheLinesThatFollow) {
    TriggerFixture t;
    t.trigger("a.trigger", "flag1=7\r\npattern1=x\r\naction=seven");
    t.trigger("b.trigger", "pattern1=x\r\naction=#SF 7 1");
    t.trigger("b2.trigger", "flag1=7\r\npattern1=x\r\naction=seen");
    t.trigger("c.trigger", "flag1=7\r\npattern1=x\r\naction=#SF 7 0\r\npattern1=x\r\naction=behind");
    t.trigger("g.trigger", "pattern1=go\r\naction=#SF 7 1", true);
    t.c.LoadTriggers();
    t.receive("x\r\nx");
    // Each line: a misses, b sets 7 for b2, c's first part clears it again
    // before its second part is tested.
    EXPECT_EQ(t.sent(), "seen\r\nseen\r\n");
    t.fp.socket.sent.clear();
    t.receive("go\r\nx");  // the global pass sets 7 before the line pass
    EXPECT_EQ(t.sent(), "seven\r\nseen\r\n");
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

TEST(TriggerMatch, AFailureEndsTheChunkAndTheTablesStayUsable) {
    TriggerFixture t;
    t.openLog();
    t.trigger("a.trigger", "flag1=99\r\nflag2=1\r\npattern1=x\r\naction=never");
    t.trigger("b.trigger", "pattern1=y\r\naction=why");
    t.c.LoadTriggers();
    t.receive("y\r\nx\r\ny");  // a tests its flags on every line, patterns or not
    EXPECT_EQ(t.sent(), "");
    EXPECT_NE(t.logFile().find("y\r\nx\r\ny\r\n\r\nERROR : 340/Control array element '99' doesn't exist on line T_Match"),
              std::string::npos);
    t.c.flags.set(1, true);
    t.c.flags.set(2, true);  // group 1 holds now but its entries are all read
    t.receive("y");
    EXPECT_EQ(t.sent(), "");
}

TEST(TriggerMatch, InjectedTextNestsAndTheDepthGuardEndsRunawayLoops) {
    TriggerFixture t;
    t.openLog();
    t.trigger("a.trigger", "pattern1=ping\r\naction=#INJECT pong");
    t.trigger("b.trigger", "pattern1=PONG\r\naction=got $*");
    t.trigger("c.trigger", "pattern1=ping\r\naction=after");
    // A chain exactly as deep as the guard allows ends by itself.
    for (int i = 1; i < kMaxTriggerNesting; ++i)
        t.trigger("s" + std::to_string(1000 + i) + ".trigger",
                  "pattern1=<" + std::to_string(i) + ">\r\naction=#INJECT <" + std::to_string(i + 1) + ">");
    t.trigger("s" + std::to_string(1000 + kMaxTriggerNesting) + ".trigger",
              "pattern1=<" + std::to_string(kMaxTriggerNesting) + ">\r\naction=bottom");
    // Two records that each inject what fires both again.
    t.trigger("z1.trigger", "pattern1=LOOP\r\naction=#I LOOP");
    t.trigger("z2.trigger", "pattern1=LOOP\r\naction=#I LOOP");
    t.c.LoadTriggers();

    t.receive("ping");
    EXPECT_EQ(t.sent(), "got  PONG\r\nafter\r\n");
    t.receive("<1>");
    EXPECT_EQ(t.sent(), "got  PONG\r\nafter\r\nbottom\r\n");
    EXPECT_EQ(t.logFile().find("ERROR"), std::string::npos);

    t.fp.socket.sent.clear();
    t.receive("<0>\r\nLOOP\r\nping");  // a doubling tree of firings, 64 deep, without the guard
    EXPECT_EQ(t.sent(), "");
    const std::string log = t.logFile();
    const std::string error = "\r\nERROR : 28/Out of stack space on line T_Match";
    EXPECT_NE(log.find(error), std::string::npos);
    EXPECT_EQ(log.find(error), log.rfind(error));
    t.receive("ping");  // and the road goes on
    EXPECT_EQ(t.sent(), "got  PONG\r\nafter\r\n");
}

TEST(TriggerMatch, AReloadDuringAnActionEndsThePassOverTheOldTables) {
    TriggerFixture t;
    t.trigger("a.trigger", "pattern1=xxxxxx\r\naction=#MB reload");
    t.trigger("b.trigger", "pattern1=xxxxxx\r\naction=after");
    t.c.LoadTriggers();
    // The message box waits for the player, who presses Reload meanwhile,
    // after b.trigger has gone and c.trigger has come: the next line of the
    // same chunk meets the new tables.
    t.fp.host.onMessageBox = [&] {
        std::filesystem::remove(t.fp.folder.path() / "triggers/b.trigger");
        t.trigger("c.trigger", "pattern1=yyyyyyyy\r\naction=new");
        t.c.LoadTriggers();
    };
    t.receive("xxxxxx\r\nyyyyyyyy");
    EXPECT_EQ(t.sent(), "new\r\n");
    EXPECT_EQ(t.c.triggers.TriggerCount(), 2);
}

}  // namespace
}  // namespace kelpa::test
