#include "shell/qt_socket_qt.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "common/numbers.h"
#include "common/text.h"

namespace kelpa::qt {

QtSocket::QtSocket(QObject* parent, int connectTimeoutMs) : QObject(parent) {
    // Qt reads little ahead: a flood waits in the kernel and slows the
    // sender down instead of piling up in memory, and reaches the core
    // with one copy.
    socket_.setReadBufferSize(kQtBuffer);
    connectTimer_.setSingleShot(true);
    connectTimer_.setInterval(connectTimeoutMs);
    QObject::connect(&connectTimer_, &QTimer::timeout, this, [this] {
        if (!connecting()) return;
        socket_.abort();
        fail(10060, QStringLiteral("Connection timed out"));
    });
    QObject::connect(&socket_, &QTcpSocket::connected, this, [this] {
        connectTimer_.stop();
        // Answers and typed lines are a few bytes each: they leave at once,
        // not when the server has acknowledged the one before.
        socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        releaseWatch();
        const auto fd = static_cast<int>(socket_.socketDescriptor());
        if (fd >= 0) watchFd_ = ::fcntl(fd, F_DUPFD_CLOEXEC, 0);
        open_ = true;
        emit connected();
    });
    QObject::connect(&socket_, &QTcpSocket::readyRead, this, [this] { emit dataArrival(); });
    QObject::connect(&socket_, &QTcpSocket::bytesWritten, this, [this] {
        if (!heldForWrites_ || socket_.bytesToWrite() > kWriteBacklog) return;
        heldForWrites_ = false;
        if (open_) emit dataArrival();
    });
    QObject::connect(&socket_, &QTcpSocket::disconnected, this, &QtSocket::onDisconnected);
    QObject::connect(&socket_, &QTcpSocket::errorOccurred, this, &QtSocket::onError);
}

QtSocket::~QtSocket() {
    // The socket, destroyed after our own members, closes itself: its close
    // must not reach handlers of an object that is going.
    socket_.disconnect(this);
    releaseWatch();
}

void QtSocket::connect(const std::string& host, const std::string& port) {
    open_ = false;
    closing_ = false;
    reset_ = false;
    dataWaits_ = false;
    heldForWrites_ = false;
    connectTimer_.stop();
    socket_.abort();
    releaseWatch();
    const int p = portNumber(port);
    if (p == 0) {
        // Error 10049 "Address not available" for anything but a whole port number.
        QTimer::singleShot(0, this, [this] { fail(10049, QStringLiteral("Address not available")); });
        return;
    }
    // Blanks around a name, invisible in the box, would fail its lookup.
    const std::string name = trimBlanks(host);
    inConnectCall_ = true;
    socket_.connectToHost(QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size())),
                          static_cast<quint16>(p));
    inConnectCall_ = false;
    if (connecting()) connectTimer_.start();
}

bool QtSocket::connecting() const {
    const auto state = socket_.state();
    return state == QAbstractSocket::HostLookupState || state == QAbstractSocket::ConnectingState;
}

void QtSocket::close() {
    open_ = false;
    closing_ = false;
    dataWaits_ = false;
    heldForWrites_ = false;
    connectTimer_.stop();
    // A connect still under way is given up; Qt's close would let it
    // finish and report it first. Unsent bytes are bytes the server does
    // not read: waiting for them would keep the connection up for good.
    if (connecting() || socket_.bytesToWrite() > 0)
        socket_.abort();
    else
        socket_.close();
    releaseWatch();
}

void QtSocket::releaseWatch() {
    if (watchFd_ >= 0) ::close(watchFd_);
    watchFd_ = -1;
}

bool QtSocket::peerReset() const {
    // A reset leaves the connection CLOSED; the server's FIN leaves it
    // waiting for our own close.
    tcp_info info{};
    socklen_t size = sizeof info;
    return watchFd_ >= 0 && ::getsockopt(watchFd_, IPPROTO_TCP, TCP_INFO, &info, &size) == 0 &&
           info.tcpi_state == TCP_CLOSE;
}

std::string QtSocket::getData() {
    // At most one chunk per event: a flood then leaves the event loop
    // turning between chunks. What Qt holds comes first, then what waits
    // in the kernel. Bytes left in Qt's buffer come with a posted event of
    // their own; bytes left in the kernel keep the descriptor readable, so
    // Qt signals them again.
    dataWaits_ = false;
    if (socket_.state() == QAbstractSocket::ConnectedState && socket_.bytesToWrite() > kWriteBacklog) {
        heldForWrites_ = true;
        return {};
    }
    std::string data(static_cast<std::size_t>(std::min(socket_.bytesAvailable(), kChunk)), '\0');
    const qint64 n = socket_.read(data.data(), static_cast<qint64>(data.size()));
    data.resize(n > 0 ? static_cast<std::size_t>(n) : 0);
    if (socket_.bytesAvailable() == 0) readWaiting(data);
    if (socket_.bytesAvailable() > 0 || closing_) postRest();
    return data;
}

void QtSocket::readWaiting(std::string& data) {
    // Only on a live connection: once Qt has seen the end, the descriptor
    // is gone and its last bytes are in Qt's buffer.
    if (socket_.state() != QAbstractSocket::ConnectedState) return;
    const auto fd = static_cast<int>(socket_.socketDescriptor());
    int waiting = 0;
    if (fd < 0 || ::ioctl(fd, FIONREAD, &waiting) != 0 || waiting <= 0) return;
    const std::size_t have = data.size();
    const std::size_t want = std::min(static_cast<std::size_t>(waiting), static_cast<std::size_t>(kChunk) - have);
    if (want == 0) return;
    data.resize(have + want);
    ssize_t n;
    do n = ::recv(fd, data.data() + have, want, MSG_DONTWAIT);
    while (n < 0 && errno == EINTR);
    // The end of the stream and errors are left for Qt to find on its
    // next read of the descriptor, after these bytes.
    data.resize(have + (n > 0 ? static_cast<std::size_t>(n) : 0));
}

void QtSocket::postRest() {
    if (restPosted_) return;
    restPosted_ = true;
    QTimer::singleShot(0, this, [this] {
        restPosted_ = false;
        if (!open_) return;
        const qint64 before = socket_.bytesAvailable();
        if (before == 0) {
            if (closing_ && !dataWaits_) finishClose();
            return;
        }
        emit dataArrival();
        // A handler that left the bytes must not hold up the close; one that
        // waits for its turn will read them.
        if (open_ && closing_ && !restPosted_ && !dataWaits_ && socket_.bytesAvailable() == before) finishClose();
    });
}

void QtSocket::readLeftovers() {
    // Held bytes wait for the server to read: the data event comes then.
    if (heldForWrites_) return;
    if (open_ && (socket_.bytesAvailable() > 0 || closing_)) postRest();
}

void QtSocket::finishClose() {
    closing_ = false;
    if (reset_) {
        // Error 10054, as a socket failure: the log stays open and says why.
        reset_ = false;
        releaseWatch();
        fail(10054, QStringLiteral("Connection reset by peer"));
    } else {
        emit closed();
    }
    open_ = false;
}

int QtSocket::portNumber(const std::string& text) {
    const std::string digits = trimBlanks(text);
    if (digits.empty() || digits.size() > 5) return 0;
    int p = 0;
    for (const char ch : digits) {
        if (ch < '0' || ch > '9') return 0;
        p = p * 10 + (ch - '0');
    }
    return p <= 65535 ? p : 0;
}

bool QtSocket::sendData(const std::string& bytes) {
    const bool all =
        socket_.write(bytes.data(), static_cast<qint64>(bytes.size())) == static_cast<qint64>(bytes.size());
    writesWait_ = writesWait_ || socket_.bytesToWrite() > 0;
    return all;
}

void QtSocket::flushWrites() {
    if (!writesWait_) return;
    writesWait_ = false;
    // What the kernel does not take now goes out as the socket drains.
    socket_.flush();
}

void QtSocket::onDisconnected() {
    if (!open_) return;  // our own close
    // Bytes that arrived with the close come first, chunk by chunk; nothing
    // is left to write.
    closing_ = true;
    heldForWrites_ = false;
    reset_ = peerReset();
    if (socket_.bytesAvailable() > 0 || dataWaits_)
        postRest();
    else
        finishClose();
}

void QtSocket::onError(QAbstractSocket::SocketError error) {
    // The server's close is no error; it comes as the closed event.
    if (error == QAbstractSocket::RemoteHostClosedError) return;
    const int number = errorNumber(error);
    const QString text = socket_.errorString();
    if (inConnectCall_)
        // Events of a failed connect arrive after the click has ended.
        QTimer::singleShot(0, this, [this, number, text] { fail(number, text); });
    else
        fail(number, text);
}

void QtSocket::fail(int number, const QString& description) {
    emit failed(number, description, statusCode(number));
}

int QtSocket::errorNumber(QAbstractSocket::SocketError error) {
    switch (error) {
    case QAbstractSocket::ConnectionRefusedError: return 10061;
    case QAbstractSocket::HostNotFoundError: return 11001;
    case QAbstractSocket::SocketTimeoutError: return 10060;
    case QAbstractSocket::NetworkError: return 10050;
    default: return 10000 + static_cast<int>(error);
    }
}

long long QtSocket::statusCode(int number) {
    return static_cast<std::int32_t>(0x800A0000u | static_cast<std::uint32_t>(number));
}

}  // namespace kelpa::qt
