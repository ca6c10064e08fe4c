// kelpa-answer-floor PORT: the floor of the reaction bench. A bare Qt client
// that answers every line holding "PROBE" with "pong", and does nothing
// else: Qt's own socket, its default options, its own write buffering.
// Ends when the server closes.
#include <QCoreApplication>
#include <QTcpSocket>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s PORT\n", argv[0]);
        return 2;
    }
    QTcpSocket socket;
    QByteArray line;  // the unfinished line of the last read
    QObject::connect(&socket, &QTcpSocket::readyRead, [&] {
        line += socket.readAll();
        qsizetype start = 0;
        for (qsizetype end; (end = line.indexOf('\n', start)) >= 0; start = end + 1)
            if (QByteArrayView(line).sliced(start, end - start).contains("PROBE")) socket.write("pong\r\n");
        line.remove(0, start);
    });
    QObject::connect(&socket, &QTcpSocket::disconnected, &app, &QCoreApplication::quit);
    QObject::connect(&socket, &QTcpSocket::errorOccurred, &app, [&] {
        if (socket.state() != QAbstractSocket::ConnectedState) app.quit();
    });
    socket.connectToHost(QStringLiteral("127.0.0.1"), static_cast<quint16>(std::atoi(argv[1])));
    return app.exec();
}
