// A #MSGBOX holds up every other handler while it is open: what comes in
// meanwhile waits and runs, in order, when it closes, as a run of its own.
#include <gtest/gtest.h>

#include "common/text.h"
#include "integration/loopback.h"
#include "shell/form_fixture.h"

namespace kelpa::test {
namespace {

// A server that greets with a line the box trigger answers.
struct BoxOnTheWire : WireForm {
    BoxOnTheWire()
        : WireForm({"The guard says hello.\r\n"},
                   {{"triggers/box.trigger", "pattern1=says hello\r\naction=#MSGBOX greetings"},
                    {"triggers/wave.trigger", "pattern1=waves\r\naction=wave back"}}) {}
};

TEST(MessageBox, TextSentWhileTheBoxIsUpIsShownLoggedAndMatchedWhenItClosesWithoutAnotherByte) {
    BoxOnTheWire t;
    bool closed = false;
    t.p.host.onMessageBox = [&] {
        t.server.send("The guard waves.\r\n");
        QTest::qWait(300);  // the box turns the event loop while it is up
        EXPECT_EQ(t.window(), "The guard says hello.\r\n");
        EXPECT_EQ(t.server.received.back(), "");
        closed = true;
    };
    t.connect();
    ASSERT_TRUE(t.until([&] { return closed; }));
    EXPECT_EQ(t.p.host.messages, std::vector<std::string>{"GREETINGS"});

    // The server sends nothing more; the waiting bytes are read by themselves.
    const auto last = [&t] { return t.server.received.back(); };
    ASSERT_TRUE(t.until([&] { return last() == "wave back\r\n"; })) << last();
    EXPECT_EQ(t.window(), "The guard says hello.\r\nThe guard waves.\r\nwave back\r\n");
    EXPECT_EQ(t.log(), "The guard says hello.\r\n\r\nThe guard waves.\r\n\r\nwave back\r\n\r\n");
}

TEST(MessageBox, TheServersCloseWhileTheBoxIsUpComesAfterTheTextSentBeforeIt) {
    BoxOnTheWire t;
    bool boxClosed = false;
    t.p.host.onMessageBox = [&] {
        t.server.send("The guard leaves.\r\n");
        t.server.current->disconnectFromHost();
        QTest::qWait(300);  // the box turns the event loop while it is up
        EXPECT_FALSE(t.c().connectionBar().connectEnabled) << "the close waits too";
        boxClosed = true;
    };
    t.connect();
    ASSERT_TRUE(t.until([&] { return boxClosed && t.c().connectionBar().connectEnabled; }));
    EXPECT_EQ(t.window(), "The guard says hello.\r\nThe guard leaves.\r\n");
    EXPECT_EQ(t.log(), "The guard says hello.\r\n\r\nThe guard leaves.\r\n\r\n");
}

TEST(MessageBox, AChunkThatArrivesWhileTheBoxIsUpRunsAfterItOnBudgetsOfItsOwn) {
    FormFixture f;
    f.fake.folder.write("triggers/ping.trigger", "pattern1=ping\r\naction=pong");
    f.fake.socket.connected = true;
    qt::MainForm& form = f.form();
    form.s_Connect();
    // More firings than one run may nest: inside the box they would count
    // against the run that opened it.
    constexpr std::size_t kPings = 1200;
    std::string flood;
    for (std::size_t i = 0; i < kPings; ++i) flood += "ping\r\n";
    f.fake.host.onMessageBox = [&] {
        f.fake.socket.incoming = flood;
        form.s_DataArrival();  // the socket's event, delivered by the box's loop
        QTest::qWait(20);
        EXPECT_EQ(f.fake.socket.sent, "");
        EXPECT_EQ(countOf(form.client().window(kMainWindow).text(), "ping"), 0u);
    };
    f.enter("Text1", "#msgbox wait");

    EXPECT_EQ(f.fake.host.messages, std::vector<std::string>{"WAIT"});
    EXPECT_EQ(countOf(f.fake.socket.sent, "pong\r\n"), kPings);
    EXPECT_EQ(countOf(form.client().parts().history.text(), "ping"), kPings);
    EXPECT_EQ(countOf(f.fake.folder.read(form.client().parts().log.currentPath()), "ping\r\n"), kPings);
}

}  // namespace
}  // namespace kelpa::test
