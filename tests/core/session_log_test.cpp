// The session log: where it lies, what goes in, the change of day in both
// directions, and the recall file checked by the same timer.
#include <gtest/gtest.h>

#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::ClientHarness;

namespace {

SiteRecord siteNamed(const std::string& shortName) {
    SiteRecord s;
    s.SiteName = "The " + shortName;
    s.ShortName = shortName;
    return s;
}

// A client whose current site has the short name "mud".
struct LogHarness : ClientHarness {
    LogHarness() : ClientHarness(/*connected=*/true) {
        c.bar.Sites = {siteNamed("mud")};
        c.bar.CB_Connections_Click(0);
    }
    std::string file(const std::string& relative) const { return fp.folder.read(relative); }
    void receive(const std::string& chunk) {
        fp.socket.incoming = chunk;
        c.session.s_DataArrival();
    }
};

}  // namespace

TEST(SessionLog, PathIsBySiteAndDay) {
    EXPECT_EQ(SessionLog::pathFor("mud", Date{2001, 12, 31}), "logs/mud/H.20011231.txt");
    EXPECT_EQ(SessionLog::pathFor("x", Date{987, 1, 2}), "logs/x/H.09870102.txt");
}

TEST(SessionLog, LoadingOpensNoLogAndTheFirstConnectionCreatesTheFolders) {
    LogHarness h;
    EXPECT_FALSE(h.fp.files.exists("logs"));
    EXPECT_EQ(h.c.log.LogFile, 0);
    h.c.session.s_Connect();
    EXPECT_TRUE(h.fp.files.exists("logs/mud/H.20261123.txt"));
    EXPECT_NE(h.c.log.LogFile, 0);
}

TEST(SessionLog, ChangeOfDaySwitchesTheFileInBothDirections) {
    LogHarness h;
    h.c.session.s_Connect();
    h.receive("monday");
    h.c.as_timer_Timer();
    h.receive("still monday");

    h.fp.clock.day = Date{2026, 11, 24};
    h.c.as_timer_Timer();
    EXPECT_EQ(h.c.log.LogDate, (Date{2026, 11, 24}));
    h.receive("tuesday");
    EXPECT_TRUE(h.fp.socket.connected) << "no break in the connection";

    h.fp.clock.day = Date{2026, 11, 23};  // the clock set back
    h.c.as_timer_Timer();
    h.receive("monday again");
    EXPECT_EQ(h.file("logs/mud/H.20261123.txt"), "monday\r\nstill monday\r\nmonday again\r\n");
    EXPECT_EQ(h.file("logs/mud/H.20261124.txt"), "tuesday\r\n");
}

TEST(SessionLog, ChangeOfDayOpensALogWithoutAConnection) {
    LogHarness h;
    h.fp.socket.connected = false;
    h.c.bar.Sites.push_back(siteNamed("other"));
    h.c.bar.CB_Connections_Click(1);
    h.fp.clock.day = Date{2027, 1, 1};
    h.c.as_timer_Timer();
    EXPECT_TRUE(h.c.log.isOpen());
    EXPECT_TRUE(h.fp.files.exists("logs/other/H.20270101.txt"));
}

TEST(SessionLog, RecallFileShowsTheWindowAndIsDeletedEachTime) {
    LogHarness h;
    h.c.as_timer_Timer();
    EXPECT_EQ(h.fp.host.shows, 0);
    for (int round = 1; round <= 2; ++round) {
        h.c.Text1_Escape();
        h.fp.folder.write(Client::kShowFile, "any content");
        h.c.as_timer_Timer();
        EXPECT_FALSE(h.fp.host.hidden);
        EXPECT_EQ(h.fp.host.shows, round);
        EXPECT_FALSE(h.fp.files.exists(Client::kShowFile));
    }
    h.fp.folder.write(Client::kShowFile, "");
    h.c.as_timer_Timer();
    EXPECT_FALSE(h.fp.files.exists(Client::kShowFile)) << "deleted while not hidden too";
}
