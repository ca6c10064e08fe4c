// The whole program over the real Qt socket against a scripted server on
// the loopback interface: the bytes on the wire, the window and the log.
#include <gtest/gtest.h>

#include "loopback.h"

namespace kelpa::test {
namespace {

const std::string kAnswer("\xFF\xFA\x18\x00" "ANSI" "\x00\xFF\xF0", 11);
const std::string IAC = "\xFF";

void type(QLineEdit* box, const char* line) {
    QTest::keyClicks(box, QString::fromLatin1(line));
    QTest::keyClick(box, Qt::Key_Return);
}

TEST(SessionOnTheWire, BytesWindowAndLogOfTwoConnectionsOnOneDay) {
    WireForm t({"\xFF\xFD\x18Welcome\r\n", "Again\r\n"}, {}, "#24#hero#10#secret");
    t.form->show();

    // First connection: init string, then the terminal type answer to DO 24,
    // then a typed line with ";;" in it.
    QTest::mouseClick(t.connectButton(), Qt::LeftButton);
    const std::string init = "\x18hero\nsecret";
    std::vector<std::string>& got = t.server.received;
    ASSERT_TRUE(t.until([&] { return got.size() == 1 && got[0].size() >= init.size() + 11; }));
    type(t.text1(), "look;;say hi");
    ASSERT_TRUE(t.until([&] { return got[0].size() >= init.size() + 11 + 14; }));
    EXPECT_EQ(got[0], init + kAnswer + "look\r\nsay hi\r\n");

    // The server ends the session: the log is closed and the bar allows a new one.
    t.server.current->disconnectFromHost();
    ASSERT_TRUE(t.until([&] { return t.connectButton()->isEnabled(); }));

    // Second connection on the same day appends to the same file.
    QTest::mouseClick(t.connectButton(), Qt::LeftButton);
    ASSERT_TRUE(t.until([&] { return got.size() == 2 && got[1] == init && t.shows("Again"); }));
    type(t.text1(), "quit");
    ASSERT_TRUE(t.until([&] { return got[1] == init + "quit\r\n"; })) << ::testing::PrintToString(got[1]);
    ASSERT_TRUE(t.until([&] { return t.disconnectButton()->isEnabled(); }));
    QTest::mouseClick(t.disconnectButton(), Qt::LeftButton);
    EXPECT_TRUE(t.until([&] { return t.server.current->state() == QAbstractSocket::UnconnectedState; }))
        << "the server sees the connection end";

    // Every print is one line of its own: the answer, each chunk as it came,
    // each sent text; the init string is never logged.
    EXPECT_EQ(t.log(), kAnswer + "\r\n" + "\xFF\xFD\x18Welcome\r\n\r\n" + "look\r\nsay hi\r\n\r\n" +
                           "Again\r\n\r\n" + "quit\r\n\r\n");
}

// The day log says why the session ended, after what came before.
TEST(SessionOnTheWire, AResetIsToldAfterTheBytesSentBeforeIt) {
    WireForm t({"bye\r\n"});
    t.connect();
    ASSERT_TRUE(t.until([&] { return t.shows("bye"); }));
    t.server.reset();
    ASSERT_TRUE(t.until([&] { return t.c().connectionBar().connectEnabled; }));
    EXPECT_EQ(t.log(), "bye\r\n\r\nSock 10054 Connection reset by peer -2146818234\r\n");
}

// A password after IAC WILL ECHO cut from its option by a read, prompts
// marked with IAC GA, and a status frame.
TEST(TelnetOnTheWire, CutSequencesPromptsPasswordsAndAFrame) {
    WireForm t;
    t.form->show();
    QTest::mouseClick(t.connectButton(), Qt::LeftButton);
    ASSERT_TRUE(t.until([&] { return t.connected(); }));
    // The client has read the cut IAC WILL and holds it before its option comes.
    t.server.send("Password:" + IAC + "\xFB");
    ASSERT_TRUE(t.until([&] { return t.c().parts().windows.state[kMainWindow].CutPending == IAC + "\xFB"; }));
    t.server.send("\x01");
    ASSERT_TRUE(t.until([&] { return t.text1()->echoMode() == QLineEdit::Password; }));
    type(t.text1(), "hunter2");
    ASSERT_TRUE(t.until([&] { return t.server.received[0] == "hunter2\r\n"; }));

    // The server echoes again; prompts end in IAC GA; a frame rides along.
    t.server.send(IAC + "\xFC\x01" + "\r\nhp 20>" + IAC + "\xF9" + "\x18" "1,7,40\x19" "1,8,20\x19\x1A" +
                  "\r\nhp 19>" + IAC + "\xF9");
    ASSERT_TRUE(t.until([&] { return t.shows("hp 19>"); }));
    t.form->syncFromCore();
    EXPECT_EQ(t.text1()->echoMode(), QLineEdit::Normal);
    EXPECT_EQ(t.window(), "Password:\r\n\r\nhp 20>\r\nhp 19>");
    EXPECT_EQ(t.c().parts().status.Info1(8), "20");
    EXPECT_EQ(t.c().parts().status.ShapeParam(0).width, 300);

    QTest::mouseClick(t.disconnectButton(), Qt::LeftButton);
    // Every chunk reached the log, also those that ended inside a sequence.
    EXPECT_NE(t.log().find("Password:" + IAC + "\xFB\r\n"), std::string::npos) << ::testing::PrintToString(t.log());
    EXPECT_NE(t.log().find("hp 19>" + IAC + "\xF9"), std::string::npos);
}

// A trigger's answer is with the kernel when the chunk's handler returns:
// it does not wait for the event loop's next turn, which may be a repaint.
TEST(TriggerServer, AnAnswerLeavesBeforeTheEventLoopTurnsAgain) {
    WireForm t({}, {{"triggers/probe.trigger", "pattern1=PROBE\r\naction=pong"}});
    t.connect();
    ASSERT_TRUE(t.until([&] { return t.connected(); }));
    // Connected after the window's handler, so it runs as that one returns.
    int seen = 0;
    QObject::connect(&t.p.socket, &qt::QtSocket::dataArrival, [&] {
        if (seen++ == 0) t.server.current->waitForReadyRead(2000);
    });
    t.server.send("PROBE 1\r\n");
    ASSERT_TRUE(t.until([&] { return seen > 0; }));
    EXPECT_EQ(t.server.received.back(), "pong\r\n");
}

}  // namespace
}  // namespace kelpa::test
