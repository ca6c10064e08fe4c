// S_SendData, the delayed queue and S_SendDataNoSpam: exact bytes on the
// wire, and what the log, window 0 and HistoryText hold.
#include <gtest/gtest.h>

#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::ClientHarness;
using kelpa::test::styleAt;

namespace {

using Writes = std::vector<std::string>;

struct SendHarness : ClientHarness {
    explicit SendHarness(bool connected = true) : ClientHarness(connected) { openLog(); }
    std::string send(std::string x) {
        c.sender.S_SendData(x);
        return x;
    }
    void queue(std::string x) { c.sender.s_queuedata(x); }
    void noSpam(std::string x) { c.sender.S_SendDataNoSpam(x); }
};

}  // namespace

TEST(Sender, MarkersAreRewrittenBeforeTheOneWrite) {
    struct Row {
        std::string in, wire;
    };
    const std::vector<Row> rows = {
        {";;", "\r\n"},
        {"\\.;;", "\r\n"},
        {"n;;e;;", "n\r\ne\r\n"},
        {"say hi", "say hi"},
        {"a\\.b\\.c", "abc"},
        {";\\.;", ";;"},
        {";;;", "\r\n;"},
        {"\\\\..", "\\."},
    };
    for (const auto& row : rows) {
        SendHarness h;
        EXPECT_EQ(h.send(row.in), row.wire) << "the caller sees the rewritten text";
        EXPECT_EQ(h.fp.socket.writes, Writes{row.wire}) << row.in;
        EXPECT_EQ(h.logFile(), row.wire + "\r\n");
        EXPECT_EQ(h.history(), row.wire);
    }
}

TEST(Sender, LogEchoAndHistoryComeBeforeTheWrite) {
    SendHarness h;
    std::string logAtSend, windowAtSend, historyAtSend;
    h.fp.socket.onSend = [&](const std::string&) {
        logAtSend = h.logFile();
        windowAtSend = h.window(kMainWindow);
        historyAtSend = h.history();
    };
    h.send("look;;");
    EXPECT_EQ(logAtSend, "look\r\n\r\n");
    EXPECT_EQ(windowAtSend, "look\r\n");
    EXPECT_EQ(historyAtSend, "look\r\n");
}

TEST(Sender, EchoTakesTheColourWhereTheServerStopped) {
    SendHarness h;
    h.c.writer.W_Print("\x1B[0;32mgreen ", kMainWindow);
    h.send("cmd");
    EXPECT_EQ(h.window(kMainWindow), "green cmd");
    EXPECT_EQ(styleAt(h.c.windows.text[kMainWindow], 6).colour, rgb(64, 192, 64));
}

TEST(Sender, DisconnectedTextLeavesNoTrace) {
    SendHarness h(/*connected=*/false);
    EXPECT_EQ(h.send("north;;"), "north;;") << "not even rewritten";
    EXPECT_TRUE(h.fp.socket.writes.empty());
    EXPECT_EQ(h.logFile(), "");
    EXPECT_EQ(h.window(kMainWindow), "");
    EXPECT_EQ(h.history(), "");
    h.queue("lost");
    h.c.Queue_Timer();
    h.fp.socket.connected = true;
    h.c.Queue_Timer();
    EXPECT_TRUE(h.fp.socket.writes.empty()) << "an entry ticked while disconnected is consumed";
}

TEST(Sender, BrokenSequenceEndsOnlyTheEcho) {
    SendHarness h;
    h.send("a\x1BMb;;");
    EXPECT_EQ(h.window(kMainWindow), "a");
    EXPECT_EQ(h.history(), "a\x1BMb\r\n");
    EXPECT_EQ(h.fp.socket.writes, Writes{"a\x1BMb\r\n"});
}

TEST(Sender, QueueTickPicksAnIntervalAndSendsOneEntryInOrder) {
    SendHarness h;
    h.fp.random.values = {0.0, 0.5, 0.99999, 0.25};
    h.queue("north;;");
    h.queue("south");
    EXPECT_TRUE(h.fp.socket.writes.empty()) << "nothing before a tick";
    EXPECT_EQ(h.c.Queue_Timer(), 1);
    EXPECT_EQ(h.fp.socket.writes, Writes{"north\r\n"});
    EXPECT_EQ(h.c.Queue_Timer(), 1501);
    EXPECT_EQ(h.fp.socket.writes, (Writes{"north\r\n", "south"}));
    EXPECT_EQ(h.c.Queue_Timer(), 3000);
    EXPECT_EQ(h.c.Queue_Timer(), 751);
    EXPECT_EQ(h.fp.socket.writes.size(), 2u);
}

TEST(Sender, TwentyFirstPendingEntryIsRefused) {
    SendHarness h;
    for (int i = 1; i <= 21; ++i) h.queue("c" + std::to_string(i));
    EXPECT_EQ(h.c.sender.queued(), 20u);
    EXPECT_EQ(h.debugText(), "Queue full, not queued: c21\r\n");
    for (int i = 0; i < 25; ++i) h.c.Queue_Timer();
    ASSERT_EQ(h.fp.socket.writes.size(), 20u);
    EXPECT_EQ(h.fp.socket.writes.front(), "c1");
    EXPECT_EQ(h.fp.socket.writes.back(), "c20");
}

TEST(Sender, OnlyExactlyThreeHashesEndTheProgram) {
    for (const std::string entry : {"### ", " ###", "a###", "####"}) {
        SendHarness h;
        h.queue(entry);
        h.c.Queue_Timer();
        EXPECT_FALSE(h.fp.host.ended) << entry;
        EXPECT_EQ(h.fp.socket.writes, Writes{entry});
    }
    SendHarness h(/*connected=*/false);
    h.queue("###");
    h.c.Queue_Timer();
    EXPECT_TRUE(h.fp.host.ended) << "also while disconnected";
    EXPECT_TRUE(h.fp.socket.writes.empty());
}

TEST(Sender, NoSpamRefusesRepeatsUntilTheNextTick) {
    SendHarness h;
    h.noSpam("kill rat;;");
    h.noSpam("kill rat;;");
    EXPECT_EQ(h.fp.socket.writes, Writes{"kill rat\r\n"});
    h.noSpam("flee;;");
    h.noSpam("kill rat;;");
    EXPECT_EQ(h.fp.socket.writes.size(), 3u) << "a different text in between";
    h.noSpam("kill rat;;");
    h.c.Queue_Timer();
    EXPECT_EQ(h.c.sender.lastNoSpam(), "") << "an empty tick clears the memory too";
    h.noSpam("kill rat;;");
    EXPECT_EQ(h.fp.socket.writes.size(), 4u);

    SendHarness off(/*connected=*/false);
    off.noSpam("x");
    off.fp.socket.connected = true;
    off.noSpam("x");
    EXPECT_TRUE(off.fp.socket.writes.empty()) << "recorded even while disconnected";
}
