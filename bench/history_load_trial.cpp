// kelpa-history-load: the real window loading a day log of SIZE_MB (100 by
// default) from Tools -> History while the player types a line every 20 ms
// to a server on 127.0.0.1. Reports the load's rate, the longest stall of
// the event loop (a 1 ms probe timer), and the delays until the server had
// each typed line (median, p99, worst).
//
//   QT_QPA_PLATFORM=offscreen kelpa-history-load [SIZE_MB [LOADS]]
//
// LOADS double clicks come one after the other (the later ones wait for
// the running load), for more typed lines in one trial.
#include <QApplication>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>

#include <time.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "history/history_page_qt.h"
#include "shell/main_form_qt.h"
#include "shell/qt_platform_qt.h"
#include "toolkit/tab_control_qt.h"
#include "stream_gen.h"

using namespace kelpa;

namespace {
long long nowNs() {
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * 1000000000LL + ts.tv_nsec;
}
}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const std::size_t size = (argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 100) << 20;
    const int loads = argc > 2 ? std::atoi(argv[2]) : 1;
    QTemporaryDir folder;
    QDir(folder.path()).mkpath(QStringLiteral("logs"));
    {
        const std::string sample = bench::generateStream({8u << 20, 5, false});
        std::ofstream f((folder.path() + "/logs/H.20261123.txt").toStdString(), std::ios::binary);
        for (std::size_t done = 0; done < size; done += sample.size())
            f.write(sample.data(), static_cast<std::streamsize>(std::min(sample.size(), size - done)));
    }

    QTcpServer server;
    server.listen(QHostAddress::LocalHost, 0);
    std::vector<long long> delays;
    QByteArray pending;
    QObject::connect(&server, &QTcpServer::newConnection, [&] {
        QTcpSocket* peer = server.nextPendingConnection();
        QObject::connect(peer, &QTcpSocket::readyRead, [&, peer] {
            const long long t = nowNs();
            pending += peer->readAll();
            int end;
            while ((end = pending.indexOf("\r\n")) >= 0) {
                const QByteArray line = pending.left(end);
                pending.remove(0, end + 2);
                if (line.startsWith("typed ")) delays.push_back(t - line.mid(6).toLongLong());
            }
        });
    });

    auto form = qt::MainForm::createOn(std::make_unique<qt::QtPlatform>(folder.path().toStdString()));
    form->show();
    Client& client = form->client();
    client.parts().bar.Site = "127.0.0.1";
    client.parts().bar.PPort = std::to_string(server.serverPort());
    client.parts().session.CMD_CONNECT_Click();
    // Settle (paint, connect) in a loop of its own: quitting the
    // application would end the window's session.
    QEventLoop settle;
    QTimer::singleShot(2000, &settle, &QEventLoop::quit);
    settle.exec();

    long long lastTick = 0, longest = 0;
    bool loading = true;
    QTimer probe;
    probe.setTimerType(Qt::PreciseTimer);
    probe.setInterval(1);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        const long long t = nowNs();
        if (loading && lastTick) longest = std::max(longest, t - lastTick);
        lastTick = t;
    });
    auto* text1 = form->findChild<QLineEdit*>(QStringLiteral("Text1"));
    QTimer typist;
    typist.setInterval(20);
    QObject::connect(&typist, &QTimer::timeout, [&] {
        text1->setText(QStringLiteral("typed %1").arg(nowNs()));
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QCoreApplication::sendEvent(text1, &press);
    });

    qt::HistoryPage* page = form->historyPage();
    form->tabs()->setCurrentIndex(6);
    page->DList->setCurrentRow(0);
    probe.start();
    typist.start();
    const long long t0 = nowNs();
    for (int i = 0; i < loads; ++i) page->DList_DblClick();
    long long t1 = 0;
    QEventLoop done;
    QTimer watch;
    watch.setInterval(1);
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (client.historyViews().browser.loading()) return;
        watch.stop();
        t1 = nowNs();
        loading = false;
        typist.stop();
        QTimer::singleShot(200, &done, &QEventLoop::quit);  // the last lines arrive
    });
    watch.start();
    done.exec();

    std::sort(delays.begin(), delays.end());
    auto at = [&](double q) {
        return delays.empty() ? 0.0 : delays[std::min(delays.size() - 1, static_cast<std::size_t>(q * delays.size()))] / 1e6;
    };
    std::printf("size_mb=%zu\nloads=%d\nload_s=%.3f\nrate_mb_s=%.1f\nlongest_stall_ms=%.2f\n", size >> 20, loads,
                (t1 - t0) / 1e9, loads * (size >> 20) / ((t1 - t0) / 1e9), longest / 1e6);
    std::printf("typed_lines=%zu\ntyped_median_ms=%.2f\ntyped_p99_ms=%.2f\ntyped_max_ms=%.2f\n", delays.size(), at(0.5),
                at(0.99), delays.empty() ? 0.0 : delays.back() / 1e6);
    std::printf("connected=%d\n", client.parts().platform.socket.state() == Socket::kConnected);
    return client.parts().history.size() >= loads * size ? 0 : 1;
}
