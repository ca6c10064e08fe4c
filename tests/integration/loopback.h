// A scripted server on the loopback interface, and the real socket with a
// clock, a host and a folder of the test's own.
#pragma once

#include <QTcpServer>
#include <QTcpSocket>

#include <string>
#include <vector>

#include "shell/qt_socket_qt.h"
#include "support/fakes.h"

namespace kelpa::test {

// Each connection gets the next greeting; what each one sent is kept.
struct ScriptedServer {
    explicit ScriptedServer(std::vector<std::string> greetings = {}) : greetings_(std::move(greetings)) {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, [this] {
            QTcpSocket* c = server.nextPendingConnection();
            const std::size_t n = received.size();
            received.emplace_back();
            current = c;
            QObject::connect(c, &QTcpSocket::readyRead, [this, c, n] {
                const QByteArray b = c->readAll();
                received[n].append(b.constData(), static_cast<std::size_t>(b.size()));
            });
            if (n < greetings_.size()) send(greetings_[n]);
            if (hangUp) c->disconnectFromHost();
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

private:
    std::vector<std::string> greetings_;
};

using WirePlatform = PlatformWith<qt::QtSocket>;

}  // namespace kelpa::test
