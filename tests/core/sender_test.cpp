// The plain road to the socket: S_SendData, the delayed queue and
// S_SendDataNoSpam; exact bytes on the wire, and what the log, window 0
// and HistoryText hold.
#include <gtest/gtest.h>

#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::ClientHarness;
using kelpa::test::styleAt;

namespace {

using Writes = std::vector<std::string>;

// A client with the day's log open, and the sender's entry points.
struct SendHarness : ClientHarness {
    explicit SendHarness(bool connected = true) : ClientHarness(connected) { openLog(); }
    void send(std::string x) { c.parts().sender.S_SendData(x); }
    void queue(std::string x) { c.parts().sender.s_queuedata(x); }
    void noSpam(std::string x) { c.parts().sender.S_SendDataNoSpam(x); }
};

}  // namespace

TEST(Sender, LogEchoAndHistoryComeBeforeTheWriteInTheServersColour) {
    SendHarness h;
    h.c.parts().writer.W_Print("\x1B[0;32mgreen ", kMainWindow);
    std::string atSend;
    h.fp.socket.onSend = [&](const std::string&) { atSend = h.logFile() + "|" + h.window(kMainWindow) + "|" + h.history(); };
    h.send("look;;");
    EXPECT_EQ(atSend, "look\r\n\r\n|green look\r\n|look\r\n");
    EXPECT_EQ(styleAt(h.c.parts().windows.text[kMainWindow], 6).colour, rgb(64, 192, 64));

    // A broken sequence ends only the echo.
    h.send("a\x1BMb;;");
    EXPECT_EQ(h.window(kMainWindow) + "|" + h.history() + "|" + h.fp.socket.writes.back(),
              "green look\r\na|look\r\na\x1BMb\r\n|a\x1BMb\r\n");
}

TEST(Sender, QueueTickPicksAnIntervalAndSendsOneEntryInOrderUpToTwenty) {
    SendHarness h;
    h.fp.random.values = {0.0, 0.5, 0.99999, 0.25};
    for (const char* entry : {"north;;", "south"}) h.queue(entry);
    EXPECT_TRUE(h.fp.socket.writes.empty()) << "nothing before a tick";
    EXPECT_EQ(std::pair(h.c.Queue_Timer(), h.fp.socket.writes), std::pair(1, Writes{"north\r\n"}));
    for (const int interval : {1501, 3000, 751}) EXPECT_EQ(h.c.Queue_Timer(), interval);
    EXPECT_EQ(h.fp.socket.writes, (Writes{"north\r\n", "south"}));

    for (int i = 1; i <= 21; ++i) h.queue("c" + std::to_string(i) + (i == 21 ? ";;" : ""));
    EXPECT_EQ(h.debugText(), "Queue full, not queued: \"c21;;\"\r\n") << "the line is closed";
    for (int i = 0; i < 25; ++i) h.c.Queue_Timer();
    ASSERT_EQ(h.fp.socket.writes.size(), 22u);
    EXPECT_EQ(h.fp.socket.writes[2] + "|" + h.fp.socket.writes.back(), "c1|c20");
}

// "###" ends the program also while disconnected.
TEST(Sender, OnlyExactlyThreeHashesEndTheProgram) {
    for (const std::string entry : {"### ", " ###", "a###", "####", "###"}) {
        const bool ends = entry == "###";
        SendHarness h(/*connected=*/!ends);
        h.queue(entry);
        h.c.Queue_Timer();
        EXPECT_EQ(std::pair(h.fp.host.ended, h.fp.socket.writes), std::pair(ends, Writes(ends ? 0 : 1, entry)))
            << entry;
    }
}

TEST(Sender, NoSpamRefusesRepeatsUntilTheNextTick) {
    SendHarness h;
    for (const char* text : {"kill rat;;", "kill rat;;", "flee;;", "kill rat;;", "kill rat;;"}) h.noSpam(text);
    EXPECT_EQ(h.fp.socket.writes, (Writes{"kill rat\r\n", "flee\r\n", "kill rat\r\n"}));
    h.c.Queue_Timer();  // an empty tick clears the memory too
    h.noSpam("kill rat;;");
    EXPECT_EQ(h.fp.socket.writes.size(), 4u);
}

// A write the socket refuses is told on the debug window; the text is still
// logged, echoed and kept. The init string of a site is sent straight.
TEST(Sender, AWriteTheSocketRefusesIsTold) {
    SendHarness h;
    h.fp.socket.refuseWrites = true;
    h.c.Text1_Enter("look;;say hi");
    EXPECT_NE(h.debugText().find("SendData failed, 14 bytes not sent: \"look\"\r\n"), std::string::npos) << h.debugText();
    EXPECT_EQ(h.logFile() + "|" + h.window(kMainWindow) + "|" + h.history(),
              "look\r\nsay hi\r\n\r\n|look\r\nsay hi\r\n|look\r\nsay hi\r\n");

    h.c.parts().bar.Sites = {SiteRecord{"", "", "", "", 0, 0, "hello#10#there", ""}};
    h.c.parts().bar.CB_Connections_Click(0);
    h.c.parts().session.s_Connect();
    EXPECT_NE(h.debugText().find("SendData failed, 11 bytes not sent: \"hello\"\r\n"), std::string::npos) << h.debugText();
}
