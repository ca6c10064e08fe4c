// Telnet against a scripted server over the real socket: sequences cut by a
// read, the terminal type asked for at once, prompts marked with IAC GA, a
// password after IAC WILL ECHO, and a status frame beside them.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "loopback.h"
#include "shell/main_form_qt.h"

namespace kelpa::test {
namespace {

const std::string kAnswer("\xFF\xFA\x18\x00" "ANSI" "\x00\xFF\xF0", 11);
const std::string IAC = "\xFF";

std::string window0(qt::MainForm& form) { return std::string(form.client().parts().windows.text[kMainWindow].text()); }

// Sends a piece and waits until the client has read it and holds `pending`
// for the next read, so that the next piece comes with another read.
void sendAndWaitForRead(ScriptedServer& server, qt::MainForm& form, const std::string& piece,
                        const std::string& pending) {
    server.send(piece);
    ASSERT_TRUE(QTest::qWaitFor([&] { return form.client().parts().windows.state[kMainWindow].Pending == pending; }, 5000))
        << ::testing::PrintToString(window0(form));
}

TEST(TelnetOnTheWire, CutSequencesPromptsPasswordsAndAFrame) {
    ScriptedServer server;
    WirePlatform p;
    p.folder.write("CONN.ZIG", "SITE=Local\r\nSSNA=loc\r\nSDNS=127.0.0.1\r\nSDNA=\r\nSDP_=" + server.port() +
                                   "\r\nSAP_=0\r\nSTRI=\r\nSDSC=\r\ntest\r\n#\r\n");
    qt::MainForm form(p.platform);
    form.listenTo(p.socket);
    form.show();
    auto* text1 = form.findChild<QLineEdit*>("Text1");
    QTest::mouseClick(form.findChild<QPushButton*>("CMD_CONNECT"), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.current != nullptr && p.socket.state() == Socket::kConnected; }, 5000));

    // A read that ends after IAC, then one that ends after IAC DO: the 24
    // is telnet's, answered once, and swallows nothing.
    sendAndWaitForRead(server, form, "Hi" + IAC, IAC);
    sendAndWaitForRead(server, form, "\xFD", IAC + "\xFD");
    server.send("\x18there\r\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.received[0] == kAnswer; }, 5000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window0(form).find("there") != std::string::npos; }, 5000));
    EXPECT_EQ(window0(form), "Hi" + std::string("\0ANSI\0", 6) + "there\r\n");

    // The password prompt, its IAC WILL cut from its option by a read.
    sendAndWaitForRead(server, form, "Password:" + IAC + "\xFB", IAC + "\xFB");
    server.send("\x01");
    ASSERT_TRUE(QTest::qWaitFor([&] { return text1->echoMode() == QLineEdit::Password; }, 5000));
    QTest::keyClicks(text1, "hunter2");
    QTest::keyClick(text1, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.received[0] == kAnswer + "hunter2\r\n"; }, 5000));

    // The server echoes again; prompts end in IAC GA; a frame rides along.
    server.send(IAC + "\xFC\x01" + "\r\nhp 20>" + IAC + "\xF9" + "\x18" "1,7,40\x19" "1,8,20\x19\x1A" + "\r\nhp 19>" +
                IAC + "\xF9");
    ASSERT_TRUE(QTest::qWaitFor([&] { return window0(form).find("hp 19>") != std::string::npos; }, 5000));
    form.syncFromCore();
    EXPECT_EQ(text1->echoMode(), QLineEdit::Normal);
    const std::string w = window0(form);
    EXPECT_EQ(w.substr(w.find("Password:")), "Password:\r\n\r\nhp 20>\r\nhp 19>");
    EXPECT_EQ(form.client().parts().status.Info1(8), "20");
    EXPECT_EQ(form.client().parts().status.ShapeParam(0).width, 300);

    QTest::mouseClick(form.findChild<QPushButton*>("CMD_DISCONNECT"), Qt::LeftButton);
    const std::string log = p.folder.read("logs/loc/H.20261123.txt");
    EXPECT_EQ(log.find("hunter2"), std::string::npos);
    EXPECT_EQ(form.client().parts().history.text().find("hunter2"), std::string::npos);
    // Every chunk reached the log, also those that ended inside a sequence.
    EXPECT_NE(log.find("Hi" + IAC + "\r\n"), std::string::npos) << ::testing::PrintToString(log);
    EXPECT_NE(log.find("hp 19>" + IAC + "\xF9"), std::string::npos);
}

}  // namespace
}  // namespace kelpa::test
