// The real platform: the socket adapter against a real server on the
// loopback interface, the port box, and the lock that tells another running
// Kelpa of the same user.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

#include "integration/loopback.h"
#include "shell/qt_platform_qt.h"
#include "shell/qt_socket_qt.h"

namespace kelpa::test {
namespace {

// A socket connecting to `port` on the loopback and what it reports, in
// order; a close is answered with close().
struct Recorder {
    Recorder(const std::string& port, bool skipFirstRead, const std::string& host = "127.0.0.1",
             int timeoutMs = qt::QtSocket::kConnectTimeoutMs)
        : s(nullptr, timeoutMs) {
        QObject::connect(&s, &qt::QtSocket::connected, [this] { events.push_back("connect"); });
        QObject::connect(&s, &qt::QtSocket::dataArrival, [this, skipFirstRead, first = true]() mutable {
            if (s.state() != Socket::kConnected) return;
            if (skipFirstRead && std::exchange(first, false)) return;  // a handler that left the bytes
            events.push_back("data");
            const std::string d = s.getData();
            largest = std::max(largest, d.size());
            data += d;
        });
        QObject::connect(&s, &qt::QtSocket::closed, [this] {
            events.push_back("close");
            s.close();
        });
        QObject::connect(&s, &qt::QtSocket::failed, [this](int n, const QString&, long long scode) {
            events.push_back("error " + std::to_string(n) + " " + std::to_string(scode));
        });
        s.connect(host, port);
    }
    std::vector<std::string> events;
    std::string data;
    std::size_t largest = 0;
    qt::QtSocket s;  // last: gone before what its handlers write to
};

// A listening socket of our own on a free loopback port, with room for
// `queue` waiting connections; -1 if it cannot be had.
int loopbackListener(int queue, sockaddr_in& at) {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    at = {};
    at.sin_family = AF_INET;
    at.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof at;
    if (fd < 0 || ::bind(fd, reinterpret_cast<sockaddr*>(&at), size) != 0 || ::listen(fd, queue) != 0) return -1;
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&at), &size);
    return fd;
}

TEST(QtSocket, ErrorsCarryTheNumbersPlayersKnow) {
    using E = QAbstractSocket::SocketError;
    const std::pair<E, int> rows[] = {
        {E::ConnectionRefusedError, 10061}, {E::HostNotFoundError, 11001},     {E::SocketTimeoutError, 10060},
        {E::NetworkError, 10050},           {E::RemoteHostClosedError, 10001}, {E::UnknownSocketError, 9999},
    };
    for (const auto& [error, number] : rows) EXPECT_EQ(qt::QtSocket::errorNumber(error), number) << error;
}

TEST(QtSocket, ThePortBoxMustHoldAWholePortNumberAndAWriteNeedsAConnection) {
    const std::vector<std::pair<std::string, int>> rows = {
        {"23", 23},     {" 4000 ", 4000}, {"65535", 65535}, {"1", 1},     {"23abc", 0}, {"", 0},
        {"0", 0},       {"65536", 0},     {"-23", 0},       {"+23", 0},   {"2 3", 0},   {"http", 0},
        {"0000023", 0}, {"99999", 0},     {"\t23", 0},
    };
    for (const auto& [text, port] : rows) EXPECT_EQ(qt::QtSocket::portNumber(text), port) << '"' << text << '"';
    EXPECT_FALSE(qt::QtSocket().sendData("look\r\n"));
}

// Sent with the close: a flood comes wholly before the close, in chunks of
// at most kChunk that reach past Qt's own small buffer when bytes wait in
// the kernel; so do a few bytes that a handler once left unread.
TEST(QtSocket, BytesThatComeWithTheServersCloseAreReadBeforeTheClose) {
    QByteArray flood;
    for (int i = 0; flood.size() < 3 * qt::QtSocket::kChunk; ++i) flood += "line " + QByteArray::number(i) + "\r\n";
    for (bool skipFirstRead : {false, true}) {
        const QByteArray text = skipFirstRead ? QByteArray("hello\r\nbye\r\n") : flood;
        ScriptedServer server({text.toStdString()});
        server.hangUp = true;
        Recorder r(server.port(), skipFirstRead);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !r.events.empty() && r.events.back() == "close"; }, 5000));
        EXPECT_EQ(r.events.front(), "connect");
        EXPECT_EQ(r.data, text.toStdString()) << skipFirstRead;
        EXPECT_LE(r.largest, static_cast<std::size_t>(qt::QtSocket::kChunk));
        EXPECT_GT(r.largest, skipFirstRead ? 0 : static_cast<std::size_t>(qt::QtSocket::kQtBuffer));
        EXPECT_EQ(r.s.state(), 0);
    }
}

TEST(QtSocket, ARefusedConnectionOrAnImpossiblePortIsAnErrorAfterTheCall) {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    const std::string closedPort = std::to_string(probe.serverPort());
    probe.close();
    for (const auto& [port, error] : {std::pair{closedPort, "error 10061 -2146818227"}, {"http", "error 10049 "}}) {
        Recorder r(port, false);
        EXPECT_TRUE(r.events.empty());  // never inside the click that connects
        ASSERT_TRUE(QTest::qWaitFor([&] { return !r.events.empty(); }, 5000));
        EXPECT_EQ(r.events.front().rfind(error, 0), 0u) << r.events.front();
        EXPECT_EQ(r.events.size(), 1u);
        EXPECT_NE(r.s.state(), Socket::kConnected);
    }
}

// A connect under way ends when the player cancels it, for good even if
// the server takes the connection later, or when it has not stood within
// the time allowed: a server whose queue is full drops the tries.
TEST(QtSocket, AConnectUnderWayEndsWhenCancelledOrWhenItsTimeIsUp) {
    sockaddr_in at{};
    const int server = loopbackListener(0, at);
    ASSERT_GE(server, 0);
    const socklen_t size = sizeof at;
    std::vector<int> fillers;
    for (int i = 0; i < 2; ++i) {
        fillers.push_back(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
        ::connect(fillers.back(), reinterpret_cast<sockaddr*>(&at), size);
    }
    const std::string port = std::to_string(ntohs(at.sin_port));
    Recorder late(port, false, "127.0.0.1", 600);
    Recorder r(port, false);
    QTest::qWait(200);
    ASSERT_TRUE(r.events.empty() && late.events.empty()) << "still under way";
    r.s.close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !late.events.empty(); }, 5000));
    EXPECT_EQ(late.events, std::vector<std::string>{"error 10060 -2146818228"});
    // Room in the queue: a try still standing would now get through.
    ::fcntl(server, F_SETFL, O_NONBLOCK);
    for (int i = 0; i < 12; ++i) {
        QTest::qWait(300);
        for (int fd; (fd = ::accept(server, nullptr, nullptr)) >= 0;) ::close(fd);
    }
    EXPECT_TRUE(r.events.empty()) << r.events.front();
    EXPECT_EQ(late.events.size(), 1u);
    EXPECT_EQ(r.s.state() + late.s.state(), 0);
    for (int fd : fillers) ::close(fd);
    ::close(server);

    // A host name with blanks around it, as a hand-made site book may hold.
    ScriptedServer named({"hi\r\n"});
    Recorder blanks(named.port(), false, " localhost ");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !blanks.events.empty(); }, 5000));
    EXPECT_EQ(blanks.events.front(), "connect");
}

// A server that reads nothing is not read either, so our answers to it
// cannot pile up without end; once it reads, its text comes. Disconnect
// then drops what it never took instead of keeping the connection up.
TEST(QtSocket, AServerThatReadsNothingIsNotReadUntilItDoes) {
    sockaddr_in at{};
    const int listener = loopbackListener(1, at);
    ASSERT_GE(listener, 0);
    ::fcntl(listener, F_SETFL, O_NONBLOCK);
    Recorder r(std::to_string(ntohs(at.sin_port)), false);
    int server = -1;
    ASSERT_TRUE(QTest::qWaitFor([&] { return (server = ::accept(listener, nullptr, nullptr)) >= 0; }, 5000));
    ::fcntl(server, F_SETFL, O_NONBLOCK);
    ASSERT_TRUE(QTest::qWaitFor([&] { return r.s.state() == Socket::kConnected; }, 5000));
    // More than the kernel's buffers of both ends hold.
    const std::string flood(32 << 20, 'x');
    auto drain = [&](bool toTheEnd) {
        std::size_t got = 0;
        std::vector<char> buf(1 << 20);
        for (int turns = 0; turns < 2000; ++turns) {
            const ssize_t n = ::read(server, buf.data(), buf.size());
            if (n == 0 || (n < 0 && errno != EAGAIN)) return std::pair(got, true);
            if (n > 0) got += static_cast<std::size_t>(n);
            if (!toTheEnd && got >= flood.size()) break;
            QTest::qWait(n > 0 ? 0 : 5);
        }
        return std::pair(got, false);
    };
    r.s.sendData(flood);
    r.s.flushWrites();
    ASSERT_EQ(::write(server, "hello\r\n", 7), 7);
    QTest::qWait(300);
    EXPECT_EQ(r.data, "") << "held while our bytes wait";
    EXPECT_EQ(drain(false).first, flood.size());
    EXPECT_TRUE(QTest::qWaitFor([&] { return r.data == "hello\r\n"; }, 5000)) << r.data;

    r.s.sendData(flood);
    r.s.flushWrites();
    QTest::qWait(200);
    r.s.close();
    const auto [got, ended] = drain(true);
    EXPECT_TRUE(ended);
    EXPECT_LT(got, flood.size()) << "what the server never took is dropped";
    ::close(server);
    ::close(listener);
}

TEST(QtHost, TheLockFileLivesInTheUsersRuntimeFolderAndTellsAnyOtherRunningKelpa) {
    const QByteArray saved = qgetenv("XDG_RUNTIME_DIR");
    QTemporaryDir runtime;
    const QString elsewhere = QDir::temp().filePath(QStringLiteral("kelpa-%1.lock").arg(getuid()));
    qputenv("XDG_RUNTIME_DIR", runtime.path().toLocal8Bit());
    EXPECT_EQ(qt::QtHost::lockFilePath(), QDir(runtime.path()).filePath("kelpa.lock"));
    {
        // A third Kelpa sees the second, though the first has ended.
        auto first = std::make_unique<qt::QtHost>();
        EXPECT_FALSE(first->previousInstance());
        qt::QtHost second;
        first.reset();
        qt::QtHost third;
        EXPECT_EQ(std::pair(second.previousInstance(), third.previousInstance()), std::pair(true, true));
    }
    EXPECT_FALSE(qt::QtHost().previousInstance()) << "all ended";
    // A lock that something else holds for good is not waited for.
    const int held = ::open(QFile::encodeName(qt::QtHost::lockFilePath()).constData(), O_RDWR);
    ASSERT_EQ(::flock(held, LOCK_EX), 0);
    EXPECT_TRUE(qt::QtHost().previousInstance());
    ::close(held);
    qunsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(qt::QtHost::lockFilePath(), elsewhere);
    qputenv("XDG_RUNTIME_DIR", "/no/such/folder");
    EXPECT_EQ(qt::QtHost::lockFilePath(), elsewhere);
    saved.isNull() ? qunsetenv("XDG_RUNTIME_DIR") : qputenv("XDG_RUNTIME_DIR", saved);
}

}  // namespace
}  // namespace kelpa::test
