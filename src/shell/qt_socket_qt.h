// The one TCP connection over QTcpSocket, with the four events the session
// takes: connected, data, closed by the server, error.
#pragma once

#include <QObject>
#include <QTcpSocket>
#include <QTimer>

#include "platform/platform.h"

namespace kelpa::qt {

class QtSocket : public QObject, public Socket {
    Q_OBJECT
public:
    // The most one data event hands to the core: large enough that a flood
    // costs few turns of the event loop, small enough that the road's
    // passes over it stay in the cache and one turn within a millisecond
    // or two.
    static constexpr qint64 kChunk = 256 * 1024;
    // What Qt itself reads ahead. The rest waits in the kernel and is read
    // straight into the chunk, without passing through Qt's buffer.
    static constexpr qint64 kQtBuffer = 4 * 1024;
    // A connect that has not stood after this long fails with 10060, as on
    // Windows, rather than after the kernel's two minutes of retries.
    static constexpr int kConnectTimeoutMs = 30000;
    // Unsent bytes beyond which the server is not read either: one that
    // stops reading would otherwise pile our answers and echoes up here
    // without end, three bytes of its own making eleven of ours.
    static constexpr qint64 kWriteBacklog = 256 * 1024;
    explicit QtSocket(QObject* parent = nullptr, int connectTimeoutMs = kConnectTimeoutMs);
    ~QtSocket() override;

    void connect(const std::string& host, const std::string& port) override;
    void close() override;
    int state() const override { return open_ ? kConnected : 0; }
    std::string getData() override;
    bool sendData(const std::string& bytes) override;
    // Hands what sendData buffered to the kernel now rather than at the
    // event loop's next turn, which may come after a repaint: called once
    // a handler is over, so that a chunk's answers leave in one write.
    void flushWrites();

    // The window took a data event but runs it later (a handler is busy):
    // the server's close waits until the bytes have been read.
    void dataEventWaits() { dataWaits_ = true; }
    // After every handler: bytes still in the socket get a data event of
    // their own, since Qt does not signal again for bytes that came while a
    // handler of its signal ran.
    void readLeftovers();

    // The port box's text as a port: a whole number from 1 to 65535, blanks
    // around it allowed; 0 for anything else ("23abc" included).
    static int portNumber(const std::string& text);

    // The socket error numbers players know, and the 32-bit status code of one.
    static int errorNumber(QAbstractSocket::SocketError error);
    static long long statusCode(int number);

signals:
    void connected();
    void dataArrival();
    // The server ended the connection.
    void closed();
    void failed(int number, const QString& description, long long scode);

private:
    void onDisconnected();
    void onError(QAbstractSocket::SocketError error);
    void fail(int number, const QString& description);
    void postRest();
    // Appends to data what waits in the kernel, up to the chunk's size.
    void readWaiting(std::string& data);
    void finishClose();
    // Whether the server's end came as a reset (RST) rather than a close.
    bool peerReset() const;
    void releaseWatch();
    bool connecting() const;

    QTcpSocket socket_;
    QTimer connectTimer_;
    // A second descriptor of the connection, kept so that its TCP state can
    // still be read once Qt has closed its own: Qt reports a reset as a
    // plain close.
    int watchFd_ = -1;
    // True from the connection until the close has been handled, so that
    // bytes that came with the server's close are still read.
    bool open_ = false;
    bool inConnectCall_ = false;
    // The server closed; the close is told once its bytes were handed on.
    bool closing_ = false;
    bool reset_ = false;
    bool restPosted_ = false;
    bool dataWaits_ = false;
    bool writesWait_ = false;
    // Reading stopped for the unsent bytes; a data event follows once the
    // server has taken enough of them.
    bool heldForWrites_ = false;
};

}  // namespace kelpa::qt
