// A #MSGBOX holds up every other handler while it is open: what comes in
// meanwhile waits and runs, in order, when it closes, as a run of its own.
#include <gtest/gtest.h>

#include <QEventLoop>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include <memory>

#include "common/text.h"
#include "integration/loopback.h"
#include "shell/form_fixture.h"
#include "shell/main_form_qt.h"

namespace kelpa::test {
namespace {

// What a modal box does while it is up: it turns the event loop.
void turnTheEventLoop(int ms) {
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

// A connection to a server that greets with a line the box trigger answers.
struct BoxOnTheWire {
    ScriptedServer server{{"The guard says hello.\r\n"}};
    WirePlatform client;
    std::unique_ptr<qt::MainForm> form;
    BoxOnTheWire() {
        client.folder.write("triggers/box.trigger", "pattern1=says hello\r\naction=#MSGBOX greetings");
        client.folder.write("triggers/wave.trigger", "pattern1=waves\r\naction=wave back");
        form = std::make_unique<qt::MainForm>(client.platform);
        form->listenTo(client.socket);
    }
    const Client& c() const { return form->client(); }
    std::string mainWindow() const { return std::string(c().window(kMainWindow).text()); }
    // With no site picked, the day's log lies in the logs folder itself.
    std::string log() const { return client.folder.read("logs/H.20261123.txt"); }
    void connect() {
        form->client().Site_Change("127.0.0.1");
        form->client().PPort_Change(server.port());
        form->client().CMD_CONNECT_Click();
    }
};

TEST(MessageBox, TextSentWhileTheBoxIsUpIsShownLoggedAndMatchedWhenItClosesWithoutAnotherByte) {
    BoxOnTheWire t;
    bool closed = false;
    std::string shownInBox, sentInBox;
    t.client.host.onMessageBox = [&] {
        t.server.send("The guard waves.\r\n");
        turnTheEventLoop(300);
        shownInBox = t.mainWindow();
        sentInBox = t.server.received.back();
        closed = true;
    };
    t.connect();
    ASSERT_TRUE(QTest::qWaitFor([&] { return closed; }, 5000));
    EXPECT_EQ(t.client.host.messages, std::vector<std::string>{"GREETINGS"});
    EXPECT_EQ(shownInBox, "The guard says hello.\r\n");
    EXPECT_EQ(sentInBox, "");

    // The server sends nothing more; the waiting bytes are read by themselves.
    ASSERT_TRUE(QTest::qWaitFor([&] { return t.server.received.back() == "wave back\r\n"; }, 5000))
        << t.server.received.back();
    EXPECT_EQ(t.mainWindow(), "The guard says hello.\r\nThe guard waves.\r\nwave back\r\n");
    EXPECT_EQ(t.log(), "The guard says hello.\r\n\r\nThe guard waves.\r\n\r\nwave back\r\n\r\n");
}

TEST(MessageBox, TheServersCloseWhileTheBoxIsUpComesAfterTheTextSentBeforeIt) {
    BoxOnTheWire t;
    bool boxClosed = false;
    t.client.host.onMessageBox = [&] {
        t.server.send("The guard leaves.\r\n");
        t.server.current->disconnectFromHost();
        turnTheEventLoop(300);
        EXPECT_FALSE(t.c().connectionBar().connectEnabled) << "the close waits too";
        boxClosed = true;
    };
    t.connect();
    ASSERT_TRUE(QTest::qWaitFor([&] { return boxClosed && t.c().connectionBar().connectEnabled; }, 5000));
    EXPECT_EQ(t.mainWindow(), "The guard says hello.\r\nThe guard leaves.\r\n");
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
    constexpr int kPings = 1200;
    std::string flood;
    for (int i = 0; i < kPings; ++i) flood += "ping\r\n";
    std::string sentInBox;
    std::size_t shownInBox = 0;
    f.fake.host.onMessageBox = [&] {
        f.fake.socket.incoming = flood;
        form.s_DataArrival();  // the socket's event, delivered by the box's loop
        turnTheEventLoop(20);
        sentInBox = f.fake.socket.sent;
        shownInBox = countOf(form.client().parts().windows.text[kMainWindow].text(), "ping");
    };
    auto* text1 = f.control<QLineEdit>("Text1");
    text1->setText("#msgbox wait");
    QTest::keyClick(text1, Qt::Key_Return);

    EXPECT_EQ(f.fake.host.messages, std::vector<std::string>{"WAIT"});
    EXPECT_EQ(sentInBox, "");
    EXPECT_EQ(shownInBox, 0u);
    EXPECT_EQ(countOf(f.fake.socket.sent, "pong\r\n"), static_cast<std::size_t>(kPings));
    EXPECT_EQ(countOf(form.client().parts().history.text(), "ping"), static_cast<std::size_t>(kPings));
    EXPECT_EQ(countOf(f.fake.folder.read(form.client().parts().log.currentPath()), "ping\r\n"),
              static_cast<std::size_t>(kPings));
}

}  // namespace
}  // namespace kelpa::test
