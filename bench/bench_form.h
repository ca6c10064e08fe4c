// What the two whole-program benches (kelpa-bench, kelpa-reaction) share.
#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QWidget>

#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "output/output_view_qt.h"
#include "shell/main_form_qt.h"
#include "shell/qt_platform_qt.h"

namespace kelpa::bench {

// With `perf record -D -1 --control fd:N` and KELPA_PERF_CTL_FD=N, perf
// samples the timed stretch only, not the start-up or the checks after it.
inline void perfControl(const char* command) {
    static const char* fd = std::getenv("KELPA_PERF_CTL_FD");
    if (fd && write(std::atoi(fd), command, std::strlen(command)) < 0) std::perror("perf control");
}

inline long long nowNs(clockid_t clock = CLOCK_MONOTONIC) {
    timespec ts;
    clock_gettime(clock, &ts);
    return ts.tv_sec * 1000000000LL + ts.tv_nsec;
}

// A player's window is on the screen before the server sends: waits (at
// most 2 s) until `widget` has painted once, so that the form's first
// appearance (every control, the fonts) is not counted in what is timed.
inline void waitForFirstPaint(QWidget* widget) {
    struct Seen : QObject {
        bool seen = false;
        bool eventFilter(QObject*, QEvent* e) override {
            if (e->type() == QEvent::Paint) seen = true;
            return false;
        }
    } paint;
    widget->installEventFilter(&paint);
    QElapsedTimer settle;
    settle.start();
    while (!paint.seen && settle.elapsed() < 2000) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    widget->removeEventFilter(&paint);
    QCoreApplication::processEvents();
}

// Ends the event loop with 1 on a socket error; connects to 127.0.0.1 at
// `port` once the window has painted.
inline void connectWhenShown(qt::MainForm& form, const std::string& port) {
    QObject::connect(&form.qtPlatform()->socket, &qt::QtSocket::failed, [](int n, const QString& d, long long) {
        std::fprintf(stderr, "socket error %d %s\n", n, d.toLocal8Bit().constData());
        QCoreApplication::exit(1);
    });
    Client& client = form.client();
    client.parts().bar.Site = "127.0.0.1";
    client.parts().bar.PPort = port;
    waitForFirstPaint(form.outputWindow(kMainWindow)->viewport());
    client.parts().session.CMD_CONNECT_Click();
}

}  // namespace kelpa::bench
