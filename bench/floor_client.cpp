// kelpa-floor-client PORT OUT: the floor of the end-to-end bench. A bare Qt
// client that reads the socket and appends what it reads to a file, and
// nothing else; it reports bytes, seconds, MB/s and the CPU time it took
// (user and system, from the connection on) when the server closes.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTcpSocket>

#include <cstdio>

#include "cpu_clock.h"

using kelpa::bench::cpuSeconds;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s PORT OUT\n", argv[0]);
        return 2;
    }
    QFile out(QString::fromLocal8Bit(argv[2]));
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate)) return 1;
    QTcpSocket socket;
    QElapsedTimer clock;
    qint64 bytes = 0;
    double cpuAtStart = 0;
    QObject::connect(&socket, &QTcpSocket::connected, [&] {
        clock.start();
        cpuAtStart = cpuSeconds();
    });
    QObject::connect(&socket, &QTcpSocket::readyRead, [&] {
        const QByteArray b = socket.readAll();
        bytes += b.size();
        out.write(b);
    });
    QObject::connect(&socket, &QTcpSocket::disconnected, [&] {
        const QByteArray b = socket.readAll();
        bytes += b.size();
        out.write(b);
        out.flush();
        const double s = clock.nsecsElapsed() / 1e9;
        const double cpu = cpuSeconds() - cpuAtStart;
        std::printf("floor: bytes=%lld seconds=%.3f cpu_ns_per_byte=%.2f MB/s=%.1f\n", bytes, s, cpu * 1e9 / bytes,
                    bytes / 1e6 / s);
        app.quit();
    });
    socket.connectToHost(QStringLiteral("127.0.0.1"), static_cast<quint16>(std::atoi(argv[1])));
    return app.exec();
}
