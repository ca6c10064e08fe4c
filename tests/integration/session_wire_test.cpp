// The whole program over the real Qt socket against a scripted server on
// the loopback interface: the bytes on the wire, the window and the log.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "loopback.h"
#include "shell/main_form_qt.h"

namespace kelpa::test {
namespace {

const std::string kAnswer("\xFF\xFA\x18\x00" "ANSI" "\x00\xFF\xF0", 11);

bool shows(qt::MainForm& form, const char* text) {
    return form.client().parts().windows.text[kMainWindow].text().find(text) != std::string_view::npos;
}

void type(QLineEdit* box, const char* line) {
    QTest::keyClicks(box, QString::fromLatin1(line));
    QTest::keyClick(box, Qt::Key_Return);
}

TEST(SessionOnTheWire, BytesWindowAndLogOfTwoConnectionsOnOneDay) {
    ScriptedServer server({"\xFF\xFD\x18Welcome\r\n", "Again\r\n"});
    WirePlatform p;
    p.folder.write("CONN.ZIG", "SITE=Local\r\nSSNA=loc\r\nSDNS=127.0.0.1\r\nSDNA=\r\nSDP_=" + server.port() +
                                   "\r\nSAP_=0\r\nSTRI=#24#hero#10#secret\r\nSDSC=\r\ntest\r\n#\r\n");
    qt::MainForm form(p.platform);
    form.listenTo(p.socket);
    form.show();
    auto* connectButton = form.findChild<QPushButton*>("CMD_CONNECT");
    auto* disconnectButton = form.findChild<QPushButton*>("CMD_DISCONNECT");
    auto* text1 = form.findChild<QLineEdit*>("Text1");
    ASSERT_TRUE(connectButton && disconnectButton && text1);
    ASSERT_EQ(form.client().parts().bar.CurrentSite.ShortName, "loc");

    // First connection: init string, then the terminal type answer to DO 24,
    // then a typed line with ";;" in it.
    QTest::mouseClick(connectButton, Qt::LeftButton);
    const std::string init = "\x18hero\nsecret";
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.received.size() == 1 && server.received[0].size() >= init.size() + 11; }, 5000));
    type(text1, "look;;say hi");
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.received[0].size() >= init.size() + 11 + 14; }, 5000));
    EXPECT_EQ(server.received[0], init + kAnswer + "look\r\nsay hi\r\n");
    EXPECT_TRUE(text1->text().isEmpty());

    const std::string window0(form.client().parts().windows.text[0].text());
    EXPECT_NE(window0.find("Welcome"), std::string::npos);
    EXPECT_EQ(window0.substr(window0.size() - 14), "look\r\nsay hi\r\n");  // the echo

    // The server ends the session: the log is closed and the bar allows a new one.
    server.current->disconnectFromHost();
    ASSERT_TRUE(QTest::qWaitFor([&] { return connectButton->isEnabled(); }, 5000));
    EXPECT_FALSE(disconnectButton->isEnabled());

    // Second connection on the same day appends to the same file.
    QTest::mouseClick(connectButton, Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.received.size() == 2 && server.received[1] == init; }, 5000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return shows(form, "Again"); }, 5000));
    type(text1, "quit");
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.received[1] == init + "quit\r\n"; }, 5000)) << ::testing::PrintToString(server.received[1]);
    QTest::mouseClick(disconnectButton, Qt::LeftButton);

    // Every print is one line of its own: the answer, each chunk as it came,
    // each sent text; the init string is never logged.
    EXPECT_EQ(p.folder.read("logs/loc/H.20261123.txt"),
              kAnswer + "\r\n" + "\xFF\xFD\x18Welcome\r\n\r\n" + "look\r\nsay hi\r\n\r\n" +
                  "Again\r\n\r\n" + "quit\r\n\r\n");
}

}  // namespace
}  // namespace kelpa::test
