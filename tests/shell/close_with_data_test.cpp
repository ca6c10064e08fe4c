// The whole window on a real loopback socket: what the server sends just
// before it closes is shown, logged and kept before the close is handled.
#include <gtest/gtest.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include "shell/main_form_qt.h"
#include "shell/qt_platform_qt.h"
#include "support/fakes.h"

namespace kelpa::test {
namespace {

TEST(CloseWithData, EveryByteIsShownLoggedAndKeptBeforeTheCloseIsHandled) {
    TempFolder folder;
    folder.write("CONN.ZIG", "SITE=Edge\r\nSSNA=edge\r\nSDNS=127.0.0.1\r\nSDNA=\r\nSDP_=1\r\nSAP_=1\r\n"
                             "STRI=\r\nSDSC=\r\n\r\n#\r\n");
    QByteArray text;
    for (int i = 0; text.size() < 200 * 1024; ++i) text += "\x1b[1;3" + QByteArray::number(i % 8) + "mline " + QByteArray::number(i) + "\r\n";
    text += "the last words";
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    QObject::connect(&server, &QTcpServer::newConnection, [&] {
        QTcpSocket* c = server.nextPendingConnection();
        c->write(text);
        c->disconnectFromHost();
    });

    auto form = qt::MainForm::createOn(std::make_unique<qt::QtPlatform>(folder.path()));
    Client& c = form->client();
    std::string historyAtClose, windowAtClose;
    bool closed = false;
    // Connected after the window's own handler, so it sees the state the
    // close left behind; the road reads nothing once the socket is closed.
    QObject::connect(&form->qtPlatform()->socket, &qt::QtSocket::closed, [&] {
        historyAtClose = c.history.HistoryText;
        windowAtClose = std::string(c.windows.text[kMainWindow].text());
        closed = true;
    });
    c.bar.Site = "127.0.0.1";
    c.bar.PPort = std::to_string(server.serverPort());
    c.session.CMD_CONNECT_Click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return closed; }, 10000));
    EXPECT_EQ(historyAtClose, text.toStdString());
    EXPECT_EQ(windowAtClose.substr(windowAtClose.size() - 14), "the last words");
    const std::string log = folder.read(c.log.currentPath());
    EXPECT_EQ(log.substr(log.size() - 16), "the last words\r\n");
    EXPECT_EQ(log.find("ERROR"), std::string::npos);
}

}  // namespace
}  // namespace kelpa::test
