// kelpa-reaction PORT: the whole program as the client of the reaction bench
// (run it under kelpa-latency-server). Builds the real main window in a
// temporary program folder with one trigger, on "PROBE", whose action sends
// "pong"; connects to 127.0.0.1:PORT once the window has painted, and ends
// when the server closes. With KELPA_SLOW_EVENTS set it also counts, by
// kind and receiver, the events that held the loop for over 1 ms: what an
// answer may have waited behind.
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <time.h>

#include "bench_form.h"
#include "output/output_view_qt.h"
#include "shell/main_form_qt.h"
#include "shell/qt_platform_qt.h"

using namespace kelpa;
using bench::nowNs;
using bench::perfControl;

namespace {

class TimedApplication : public QApplication {
public:
    using QApplication::QApplication;
    bool timing = false;
    struct Slow {
        int count = 0;
        long long ns = 0, longest = 0, cpu = 0;
    };
    std::map<std::string, Slow> slow;
    int depth = 0;
    bool notify(QObject* receiver, QEvent* e) override {
        // Paints come inside the window's update request: timed on their own.
        if (!timing || (depth > 0 && e->type() != QEvent::Paint)) return QApplication::notify(receiver, e);
        ++depth;
        const long long t0 = nowNs(), c0 = nowNs(CLOCK_THREAD_CPUTIME_ID);
        const bool r = QApplication::notify(receiver, e);
        const long long t = nowNs() - t0;
        --depth;
        if (t > 1000000 || e->type() == QEvent::Paint) {
            Slow& s = slow[std::to_string(e->type()) + " " + receiver->metaObject()->className() + " " +
                           receiver->objectName().toStdString()];
            ++s.count;
            s.ns += t;
            s.cpu += nowNs(CLOCK_THREAD_CPUTIME_ID) - c0;
            s.longest = std::max(s.longest, t);
        }
        return r;
    }
};

}  // namespace

int main(int argc, char** argv) {
    TimedApplication app(argc, argv);
    app.timing = std::getenv("KELPA_SLOW_EVENTS") != nullptr;
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
    form->show();

    qt::QtSocket& socket = form->qtPlatform()->socket;
    QObject::connect(&socket, &qt::QtSocket::connected, [] { perfControl("enable\n"); });
    QObject::connect(&socket, &qt::QtSocket::closed, [&] {
        perfControl("disable\n");
        QTimer::singleShot(0, &app, &QCoreApplication::quit);
    });
    bench::connectWhenShown(*form, port.toStdString());
    const int r = app.exec();
    for (const auto& [what, s] : app.slow)
        std::fprintf(stderr, "slow event %s: %d, %.1f ms in all (CPU %.1f ms), longest %.2f ms\n", what.c_str(),
                     s.count, s.ns / 1e6, s.cpu / 1e6, s.longest / 1e6);
    return r;
}
