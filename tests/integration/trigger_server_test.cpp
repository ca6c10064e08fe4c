// A scripted server on 127.0.0.1 sends lines that fire triggers; the bytes
// that come back over the real socket are the contract.
#include <gtest/gtest.h>

#include <QTest>

#include "loopback.h"
#include "shell/main_form_qt.h"

namespace kelpa::test {
namespace {

TEST(TriggerServer, LinesFireActionsThatSendSetFlagsAndInject) {
    ScriptedServer server;
    WirePlatform client;
    for (const auto& [name, text] : std::vector<std::pair<std::string, std::string>>{
             {"a_rat", "pattern1=A rat arrives\r\naction=kill rat"},
             {"b_hungry", "flag1=3\r\npattern1=You are hungry\r\naction=eat bread"},
             {"c_moon", "pattern1=The moon rises\r\naction=#SF 3 1"},
             {"d_whisper", "pattern1=whispers\r\naction=#I you hear $*"},
             {"e_heard", "pattern1=YOU HEAR  BOB\r\naction=reply %WHO"}})
        client.folder.write("triggers/" + name + ".trigger", text);
    client.folder.write("gtriggers/prompt.trigger",
                        "pattern1=HP:\r\npattern1=MV:\r\naction=#SV WHO bob\r\npattern1=HP:\r\npattern1=MV:\r\naction=look");
    qt::MainForm form(client.platform);
    form.listenTo(client.socket);
    form.client().parts().bar.Site = "127.0.0.1";
    form.client().parts().bar.PPort = server.port();
    form.client().parts().session.CMD_CONNECT_Click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.current && client.socket.state() == Socket::kConnected; }, 5000));

    auto exchange = [&](const char* text, const std::string& expected) {
        server.received.back().clear();
        server.send(text);
        ASSERT_TRUE(QTest::qWaitFor([&] { return server.received.back().size() >= expected.size(); }, 5000)) << text;
        EXPECT_EQ(server.received.back(), expected) << text;
    };
    // The flag is clear, so only the rat answers.
    exchange("You are hungry\r\nA rat arrives.\r\n", "kill rat\r\n");
    // The first line's action sets the flag for the second line.
    exchange("The moon rises.\r\nYou are hungry\r\n", "eat bread\r\n");
    // A global trigger fires once on a chunk whose two patterns stand in
    // different lines; its first part sets a variable (the keyword line is
    // read in capitals) that a later action sends.
    exchange("HP:10\r\nMV:20\r\n", "look\r\n");
    // The whisper is injected in capitals and fires a trigger of its own.
    exchange("Bob whispers hi\r\n", "reply BOB\r\n");
    server.received.back().clear();
    server.send("nothing here\r\n");
    QTest::qWait(100);
    EXPECT_EQ(server.received.back(), "");
}

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
