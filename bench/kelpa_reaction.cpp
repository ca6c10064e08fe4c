// kelpa-reaction PORT: the whole program as the client of the reaction bench
// (run it under kelpa-latency-server). Builds the real main window in a
// temporary program folder with one trigger, on "PROBE", whose action sends
// "pong"; connects to 127.0.0.1:PORT once the window has painted, and ends
// when the server closes.
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "output/output_view_qt.h"
#include "shell/main_form_qt.h"
#include "shell/qt_platform_qt.h"

using namespace kelpa;

namespace {

// With `perf record -D -1 --control fd:N` and KELPA_PERF_CTL_FD=N, perf
// samples the connection only, not the start-up.
void perfControl(const char* command) {
    static const char* fd = std::getenv("KELPA_PERF_CTL_FD");
    if (fd && write(std::atoi(fd), command, std::strlen(command)) < 0) std::perror("perf control");
}

class FirstPaint : public QObject {
public:
    bool seen = false;
    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() == QEvent::Paint) seen = true;
        return false;
    }
};

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s PORT\n", argv[0]);
        return 2;
    }
    const QByteArray port(argv[argc - 1]);
    QTemporaryDir folder;
    {
        QFile book(folder.filePath("CONN.ZIG"));
        book.open(QIODevice::WriteOnly);
        book.write("SITE=Bench\r\nSSNA=bench\r\nSDNS=127.0.0.1\r\nSDNA=127.0.0.1\r\nSDP_=" + port +
                   "\r\nSAP_=" + port + "\r\nSTRI=\r\nSDSC=\r\nloopback\r\n#\r\n");
        QDir(folder.path()).mkpath(QStringLiteral("triggers"));
        QFile trigger(folder.filePath("triggers/probe.trigger"));
        trigger.open(QIODevice::WriteOnly);
        trigger.write("pattern1=PROBE\r\naction=pong\r\n");
    }
    auto form = qt::MainForm::createOn(std::make_unique<qt::QtPlatform>(folder.path().toStdString()));
    Client& client = form->client();
    form->show();
    FirstPaint painted;
    form->outputWindow(kMainWindow)->viewport()->installEventFilter(&painted);

    qt::QtSocket& socket = form->qtPlatform()->socket;
    QObject::connect(&socket, &qt::QtSocket::connected, [] { perfControl("enable\n"); });
    QObject::connect(&socket, &qt::QtSocket::closed, [&] {
        perfControl("disable\n");
        QTimer::singleShot(0, &app, &QCoreApplication::quit);
    });
    QObject::connect(&socket, &qt::QtSocket::failed, [&](int n, const QString& d, long long) {
        std::fprintf(stderr, "socket error %d %s\n", n, d.toLocal8Bit().constData());
        app.exit(1);
    });
    client.parts().bar.Site = "127.0.0.1";
    client.parts().bar.PPort = port.toStdString();
    // The window is on the screen before the first probe comes.
    QElapsedTimer settle;
    settle.start();
    while (!painted.seen && settle.elapsed() < 2000) app.processEvents(QEventLoop::AllEvents, 10);
    app.processEvents();
    client.parts().session.CMD_CONNECT_Click();
    return app.exec();
}
