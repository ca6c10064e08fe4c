// The socket adapter against a real server on the loopback interface.
#include <gtest/gtest.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include "shell/qt_socket_qt.h"

namespace kelpa::test {
namespace {

struct Recorder {
    std::vector<std::string> events;
    std::string data;
};

void record(qt::QtSocket& s, Recorder& r, bool skipFirstRead) {
    QObject::connect(&s, &qt::QtSocket::connected, [&r] { r.events.push_back("connect"); });
    QObject::connect(&s, &qt::QtSocket::dataArrival, [&s, &r, skipFirstRead, first = true]() mutable {
        if (s.state() != Socket::kConnected) return;
        if (skipFirstRead && std::exchange(first, false)) return;  // a handler that left the bytes
        r.events.push_back("data");
        r.data += s.getData();
    });
    QObject::connect(&s, &qt::QtSocket::closed, [&s, &r] {
        r.events.push_back("close");
        s.close();
    });
    QObject::connect(&s, &qt::QtSocket::failed, [&r](int n, const QString&, long long scode) {
        r.events.push_back("error " + std::to_string(n) + " " + std::to_string(scode));
    });
}

// A server that sends `text` and closes at once.
struct OneShotServer {
    explicit OneShotServer(QByteArray text) {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, [this, text] {
            QTcpSocket* c = server.nextPendingConnection();
            c->write(text);
            c->disconnectFromHost();
        });
    }
    std::string port() const { return std::to_string(server.serverPort()); }
    QTcpServer server;
};

TEST(QtSocket, BytesThatComeWithTheServersCloseAreReadBeforeTheClose) {
    for (bool skipFirstRead : {false, true}) {
        OneShotServer server("hello\r\nbye\r\n");
        qt::QtSocket s;
        Recorder r;
        record(s, r, skipFirstRead);
        s.connect("127.0.0.1", server.port());
        ASSERT_TRUE(QTest::qWaitFor([&] { return !r.events.empty() && r.events.back() == "close"; }, 5000));
        EXPECT_EQ(r.events.front(), "connect");
        EXPECT_EQ(r.data, "hello\r\nbye\r\n") << skipFirstRead;
        EXPECT_EQ(s.state(), 0);
    }
}

TEST(QtSocket, SentBytesArriveUnchanged) {
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    QByteArray got;
    QObject::connect(&server, &QTcpServer::newConnection, [&] {
        QTcpSocket* c = server.nextPendingConnection();
        QObject::connect(c, &QTcpSocket::readyRead, [c, &got] { got += c->readAll(); });
    });
    qt::QtSocket s;
    QObject::connect(&s, &qt::QtSocket::connected, [&s] { s.sendData(std::string("look\r\n\xFF\xFA\x18\x00", 10)); });
    s.connect("127.0.0.1", std::to_string(server.serverPort()));
    ASSERT_TRUE(QTest::qWaitFor([&] { return got.size() == 10; }, 5000)) << ::testing::PrintToString(got.size());
    EXPECT_EQ(got, QByteArray("look\r\n\xFF\xFA\x18\x00", 10));
    EXPECT_EQ(s.state(), Socket::kConnected);
}

TEST(QtSocket, ARefusedConnectionIsAnErrorWithTheOldNumbers) {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    const std::string port = std::to_string(probe.serverPort());
    probe.close();
    qt::QtSocket s;
    Recorder r;
    record(s, r, false);
    s.connect("127.0.0.1", port);
    EXPECT_TRUE(r.events.empty());  // never inside the click that connects
    ASSERT_TRUE(QTest::qWaitFor([&] { return !r.events.empty(); }, 5000));
    EXPECT_EQ(r.events, std::vector<std::string>{"error 10061 -2146818227"});
    EXPECT_NE(s.state(), Socket::kConnected);
}

TEST(QtSocket, AnImpossiblePortFailsAfterTheCall) {
    qt::QtSocket s;
    Recorder r;
    record(s, r, false);
    s.connect("127.0.0.1", "http");
    EXPECT_TRUE(r.events.empty());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !r.events.empty(); }, 2000));
    EXPECT_EQ(r.events.front().rfind("error 10049 ", 0), 0u) << r.events.front();
}

TEST(QtSocket, ErrorNumbersAndStatusCodes) {
    const std::pair<QAbstractSocket::SocketError, int> rows[] = {
        {QAbstractSocket::ConnectionRefusedError, 10061}, {QAbstractSocket::HostNotFoundError, 11001},
        {QAbstractSocket::SocketTimeoutError, 10060},     {QAbstractSocket::NetworkError, 10050},
        {QAbstractSocket::SocketAccessError, 10003},
    };
    for (auto [error, number] : rows) EXPECT_EQ(qt::QtSocket::errorNumber(error), number);
    EXPECT_EQ(qt::QtSocket::statusCode(11001), static_cast<std::int32_t>(0x800A2AF9u));
}

}  // namespace
}  // namespace kelpa::test

namespace kelpa::test {
namespace {

TEST(QtSocket, AFloodComesInBoundedChunksAndWhollyBeforeTheClose) {
    QByteArray flood;
    for (int i = 0; flood.size() < 300 * 1024; ++i) flood += "line " + QByteArray::number(i) + "\r\n";
    OneShotServer server(flood);
    qt::QtSocket s;
    Recorder r;
    std::size_t largest = 0;
    QObject::connect(&s, &qt::QtSocket::dataArrival, [&] {
        if (s.state() != Socket::kConnected) return;
        const std::string d = s.getData();
        largest = std::max(largest, d.size());
        r.data += d;
    });
    QObject::connect(&s, &qt::QtSocket::closed, [&] {
        r.events.push_back("close:" + std::to_string(r.data.size()));
        s.close();
    });
    s.connect("127.0.0.1", server.port());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !r.events.empty(); }, 5000));
    EXPECT_EQ(r.events.front(), "close:" + std::to_string(flood.size()));
    EXPECT_EQ(r.data, flood.toStdString());
    EXPECT_LE(largest, static_cast<std::size_t>(qt::QtSocket::kChunk));
}

}  // namespace
}  // namespace kelpa::test
