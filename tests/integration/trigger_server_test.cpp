// A trigger's answer over the real socket, against a scripted server on
// 127.0.0.1.
#include <gtest/gtest.h>

#include <QTest>

#include "loopback.h"
#include "shell/main_form_qt.h"

namespace kelpa::test {
namespace {

// A trigger's answer is with the kernel when the chunk's handler returns:
// it does not wait for the event loop's next turn, which may be a repaint.
TEST(TriggerServer, AnAnswerLeavesBeforeTheEventLoopTurnsAgain) {
    ScriptedServer server;
    WirePlatform client;
    client.folder.write("triggers/probe.trigger", "pattern1=PROBE\r\naction=pong");
    qt::MainForm form(client.platform);
    form.listenTo(client.socket);
    form.client().parts().bar.Site = "127.0.0.1";
    form.client().parts().bar.PPort = server.port();
    form.client().parts().session.CMD_CONNECT_Click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.current && client.socket.state() == Socket::kConnected; }, 5000));
    // Connected after the window's handler, so it runs as that one returns.
    int seen = 0;
    QObject::connect(&client.socket, &qt::QtSocket::dataArrival, [&] {
        if (seen++ == 0) server.current->waitForReadyRead(2000);
    });
    server.send("PROBE 1\r\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return seen > 0; }, 5000));
    EXPECT_EQ(server.received.back(), "pong\r\n");
}

}  // namespace
}  // namespace kelpa::test
