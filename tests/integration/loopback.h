// A scripted server on the loopback interface, the real socket with a
// clock, a host and a folder of the test's own, and the main form on both.
#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <sys/socket.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "shell/main_form_qt.h"
#include "shell/qt_socket_qt.h"
#include "support/fakes.h"

namespace kelpa::test {

// Each connection gets the next greeting; what each one sent is kept.
struct ScriptedServer {
    explicit ScriptedServer(std::vector<std::string> greetings = {}) : greetings_(std::move(greetings)) {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, [this] {
            current = server.nextPendingConnection();
            const std::size_t n = received.size();
            received.emplace_back();
            QObject::connect(current, &QTcpSocket::readyRead, [this, c = current, n] {
                const QByteArray b = c->readAll();
                received[n].append(b.constData(), static_cast<std::size_t>(b.size()));
            });
            if (n < greetings_.size()) send(greetings_[n]);
            if (hangUp) current->disconnectFromHost();
        });
    }
    std::string port() const { return std::to_string(server.serverPort()); }
    // To the latest connection.
    void send(const std::string& text) {
        current->write(text.data(), static_cast<qint64>(text.size()));
        current->flush();
    }

    QTcpServer server;
    std::vector<std::string> received;
    QTcpSocket* current = nullptr;
    // Closes each connection right after its greeting.
    bool hangUp = false;
    // Ends the latest connection with a reset (RST) instead of a close.
    void reset() {
        const linger now{1, 0};
        ::setsockopt(static_cast<int>(current->socketDescriptor()), SOL_SOCKET, SO_LINGER, &now, sizeof now);
        current->abort();
    }

private:
    std::vector<std::string> greetings_;
};

// The main form on the real socket. Its site book holds one site, "loc",
// that points at the server and sends `init` on connecting; `files` are in
// the folder before the form loads.
struct WireForm {
    explicit WireForm(std::vector<std::string> greetings = {},
                      const std::vector<std::pair<std::string, std::string>>& files = {},
                      const std::string& init = "")
        : server(std::move(greetings)) {
        for (const auto& [path, text] : files) p.folder.write(path, text);
        const std::string site = "SITE=Local\r\nSSNA=loc\r\nSDNS=127.0.0.1\r\nSDNA=\r\nSDP_=" + server.port();
        p.folder.write("CONN.ZIG", site + "\r\nSAP_=0\r\nSTRI=" + init + "\r\nSDSC=\r\ntest\r\n#\r\n");
        form = std::make_unique<qt::MainForm>(p.platform);
        form->listenTo(p.socket);
    }
    template <typename Condition>
    static bool until(Condition done) { return QTest::qWaitFor(done, 5000); }
    void connect() { form->client().CMD_CONNECT_Click(); }
    bool connected() const { return server.current && p.socket.state() == Socket::kConnected; }
    const Client& c() const { return form->client(); }
    std::string window() const { return std::string(c().window(kMainWindow).text()); }
    bool shows(const std::string& text) const { return window().find(text) != std::string::npos; }
    std::string log() const { return p.folder.read("logs/loc/H.20261123.txt"); }
    QLineEdit* text1() const { return form->findChild<QLineEdit*>("Text1"); }
    QPushButton* connectButton() const { return form->findChild<QPushButton*>("CMD_CONNECT"); }
    QPushButton* disconnectButton() const { return form->findChild<QPushButton*>("CMD_DISCONNECT"); }

    ScriptedServer server;
    PlatformWith<qt::QtSocket> p;
    std::unique_ptr<qt::MainForm> form;
};

}  // namespace kelpa::test
