// kelpa-bench: the whole program under a flood. Builds the real main window
// in a temporary program folder, starts kelpa-stream-server in its own
// process with a generated stream, connects, and reports what the player
// would feel: the rate, the peak memory, the longest stall of the event
// loop, the repaints, and whether every counted piece arrived.
//
//   kelpa-bench STREAM [--typing SECONDS] [--rate MBPS] [--server PATH] [--triggers N]
//
// STREAM comes from kelpa-streamgen, with STREAM.counts beside it. With
// --typing the server repeats the stream for SECONDS while a line is typed
// into the command line every 100 ms; the delays until the server has each
// line are reported. With --triggers the program folder gets N trigger
// files: one in twenty a three-word phrase of the stream's words, the others
// near misses that differ from it in the last letter only. A flood also
// checks that the day log holds the whole stream, byte for byte.
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string_view>
#include <vector>

#include "bench_form.h"
#include "cpu_clock.h"
#include "flood_triggers.h"
#include "output/output_view_qt.h"
#include "shell/main_form_qt.h"
#include "shell/qt_platform_qt.h"

using namespace kelpa;
using bench::nowNs;
using bench::perfControl;
using bench::cpuSeconds;

namespace {


std::map<std::string, long long> readCounts(const std::string& path) {
    std::map<std::string, long long> m;
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        const auto eq = line.find('=');
        if (eq != std::string::npos) m[line.substr(0, eq)] = std::atoll(line.c_str() + eq + 1);
    }
    return m;
}

long long countOf(const std::string& s, std::string_view what) {
    long long n = 0;
    for (std::size_t p = s.find(what); p != std::string::npos; p = s.find(what, p + what.size())) ++n;
    return n;
}

// Counts paint events of a widget.
class PaintCounter : public QObject {
public:
    long long paints = 0;
    long long close = 0;  // paints within 2 ms of the one before
    long long last = 0;
    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() == QEvent::Paint) {
            ++paints;
            const long long t = nowNs();
            if (t - last < 2000000) ++close;
            last = t;
        }
        return false;
    }
};

void writeTriggers(const QString& folder, int n) {
    QDir(folder).mkpath(QStringLiteral("triggers"));
    for (int i = 0; i < n; ++i) {
        QFile f(folder + QStringLiteral("/triggers/t%1.trigger").arg(i, 5, 10, QLatin1Char('0')));
        f.open(QIODevice::WriteOnly);
        f.write(QByteArray::fromStdString("pattern1=" + bench::floodTriggerPattern(i) + "\r\naction=" +
                                            bench::kFloodTriggerAction + "\r\n"));
    }
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

// The day log is every write followed by CR LF: the received chunks, as the
// stream cut them, and the texts sent (here only the terminal type answer,
// which goes out while its chunk is shown, so ahead of that chunk). Walks
// the log against the stream; returns the offset in the log of the first
// byte that is neither the stream's next byte, nor a write's CR LF, nor a
// sent answer, or -1 when the whole stream is there and nothing else.
long long logMismatch(const std::string& log, const std::string& stream, const std::string& answer,
                      long long& chunkEnds) {
    std::size_t l = 0, s = 0;
    chunkEnds = 0;
    const std::string answered = answer + "\r\n";
    auto at = [](const std::string& text, std::size_t p, std::string_view what) {
        return text.compare(p, what.size(), what) == 0;
    };
    while (l < log.size()) {
        if (s < stream.size() && log[l] == stream[s] && !(at(log, l, answered) && !at(stream, s, answer))) {
            ++l, ++s;
        } else if (at(log, l, "\r\n")) {
            l += 2, ++chunkEnds;
        } else if (at(log, l, answered)) {
            l += answered.size();
        } else {
            return static_cast<long long>(l);
        }
    }
    return s == stream.size() ? -1 : static_cast<long long>(l);
}
}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s STREAM [--typing SECONDS] [--rate MBPS] [--server PATH] [--triggers N]\n",
                     argv[0]);
        return 2;
    }
    const std::string stream = argv[1];
    double typingSeconds = 0;
    QString rate;
    int triggers = 0;
    QString serverPath = QCoreApplication::applicationDirPath() + "/kelpa-stream-server";
    for (int i = 2; i + 1 < argc; i += 2) {
        if (!std::strcmp(argv[i], "--typing")) typingSeconds = std::atof(argv[i + 1]);
        if (!std::strcmp(argv[i], "--rate")) rate = QString::fromLatin1(argv[i + 1]);
        if (!std::strcmp(argv[i], "--server")) serverPath = QString::fromLocal8Bit(argv[i + 1]);
        if (!std::strcmp(argv[i], "--triggers")) triggers = std::atoi(argv[i + 1]);
    }
    const auto counts = readCounts(stream + ".counts");
    if (counts.empty()) {
        std::fprintf(stderr, "no counts beside %s\n", stream.c_str());
        return 2;
    }

    QTemporaryDir folder;
    const QString linesOut = folder.filePath("lines.txt");
    QProcess server;
    QStringList serverArgs{QString::fromStdString(stream)};
    if (typingSeconds > 0)
        serverArgs << "--repeat-seconds" << QString::number(typingSeconds) << "--lines-out" << linesOut;
    if (!rate.isEmpty()) serverArgs << "--rate" << rate;
    server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    server.start(serverPath, serverArgs);
    if (!server.waitForReadyRead(30000)) {
        std::fprintf(stderr, "the server did not start\n");
        return 1;
    }
    const QByteArray portLine = server.readLine().trimmed();
    const QByteArray port = portLine.mid(5);

    {
        QFile book(folder.filePath("CONN.ZIG"));
        book.open(QIODevice::WriteOnly);
        book.write("SITE=Bench\r\nSSNA=bench\r\nSDNS=127.0.0.1\r\nSDNA=127.0.0.1\r\nSDP_=" + port +
                   "\r\nSAP_=" + port + "\r\nSTRI=\r\nSDSC=\r\nloopback\r\n#\r\n");
    }
    writeTriggers(folder.path(), triggers);
    auto form = qt::MainForm::createOn(std::make_unique<qt::QtPlatform>(folder.path().toStdString()));
    Client& client = form->client();
    form->show();

    PaintCounter painted;
    form->outputWindow(kMainWindow)->viewport()->installEventFilter(&painted);

    // The probe: a 1 ms timer; a late tick is a stall of the event loop.
    // The CPU time the thread used between two ticks is the part of a stall
    // that is the program's own work, not the time other processes on a
    // busy machine held the processor.
    long long lastTick = 0, longestStall = 0, lastCpu = 0, longestBusy = 0;
    bool flooding = false;
    QTimer probe;
    probe.setTimerType(Qt::PreciseTimer);
    probe.setInterval(1);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        const long long t = nowNs();
        const long long cpu = nowNs(CLOCK_THREAD_CPUTIME_ID);
        if (flooding && lastTick) {
            longestStall = std::max(longestStall, t - lastTick);
            longestBusy = std::max(longestBusy, cpu - lastCpu);
        }
        lastTick = t;
        lastCpu = cpu;
    });
    probe.start();

    // Typing: a line every 100 ms that carries the moment it was typed.
    auto* text1 = form->findChild<QLineEdit*>(QStringLiteral("Text1"));
    QTimer typist;
    int typed = 0;
    long long typedBytes = 0;  // what the typed lines add to the history
    typist.setInterval(100);
    QObject::connect(&typist, &QTimer::timeout, [&] {
        text1->setText(QStringLiteral("t%1 %2").arg(++typed).arg(nowNs()));
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        typedBytes += text1->text().size() + 2;
        QCoreApplication::sendEvent(text1, &press);
    });

    long long t0 = 0, t1 = 0, paintsAtStart = 0;
    double cpu0 = 0, cpu1 = 0;
    std::uint64_t panelAtStart = 0;
    qt::QtSocket& socket = form->qtPlatform()->socket;
    QObject::connect(&socket, &qt::QtSocket::connected, [&] {
        t0 = nowNs();
        cpu0 = cpuSeconds();
        perfControl("enable\n");
        flooding = true;
        lastTick = 0;
        paintsAtStart = painted.paints;
        panelAtStart = form->statusPanel().repaints;
        if (typingSeconds > 0) typist.start();
    });
    QObject::connect(&socket, &qt::QtSocket::closed, [&] {
        typist.stop();
        // Window 0 shows the end before the clock stops.
        form->syncFromCore();
        form->outputWindow(kMainWindow)->viewport()->repaint();
        t1 = nowNs();
        cpu1 = cpuSeconds();
        perfControl("disable\n");
        flooding = false;
        QTimer::singleShot(0, &app, &QCoreApplication::quit);
    });
    bench::connectWhenShown(*form, port.toStdString());
    if (app.exec() != 0 || t1 == 0) return 1;

    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    const double seconds = (t1 - t0) / 1e9;
    const long long paints = painted.paints - paintsAtStart;
    server.waitForFinished(10000);

    // Every byte received is in the history, with the telnet answers and
    // the typed lines that were sent between the chunks.
    // Read back after the memory figure was taken.
    const std::string history = client.parts().history.text();
    const std::string answer("\xFF\xFA\x18\x00" "ANSI" "\x00\xFF\xF0", 11);
    const long long answers = countOf(history, answer);
    const std::string log =
        readFile(folder.filePath(QString::fromStdString(client.parts().log.currentPath())).toStdString());
    const long long received =
        static_cast<long long>(history.size()) - typedBytes - answers * static_cast<long long>(answer.size());
    // Status frames leave the stream before the history.
    const long long bytes = counts.at("bytes") - (counts.count("frame_bytes") ? counts.at("frame_bytes") : 0);
    const bool repeated = typingSeconds > 0;
    const long long esc = countOf(history, "\x1b");
    const long long crlf = countOf(history, "\r\n");
    const long long abandoned = countOf(log, "\r\nERROR : ");

    std::printf("mode=%s\ntriggers=%d\n", repeated ? "typing" : "flood", triggers);
    if (triggers > 0) std::printf("fired=%s\n", client.parts().variables.S_ExpandVars("%HITS").c_str());
    std::printf("bytes=%lld\nseconds=%.3f\nMB/s=%.1f\n", received, seconds, received / 1e6 / seconds);
    // The program's own CPU time a byte (user and system): a figure that
    // other work on the machine disturbs less than the rate.
    std::printf("cpu_ns_per_byte=%.2f\n", (cpu1 - cpu0) * 1e9 / static_cast<double>(received));
    // The history's file is memory too, held by the kernel for the program.
    const double historyFileMB = static_cast<double>(form->qtPlatform()->history.bytes()) / 1048576.0;
    std::printf("peak_rss_MB=%.1f\nhistory_file_MB=%.1f\n", ru.ru_maxrss / 1024.0, historyFileMB);
    std::printf("peak_memory_MB=%.1f\n", ru.ru_maxrss / 1024.0 + historyFileMB);
    std::printf("memory_limit_MB=%.1f\n", 60 + 1.5 * received / 1048576.0);
    std::printf("longest_stall_ms=%.2f\nlongest_busy_stall_ms=%.2f\n", longestStall / 1e6, longestBusy / 1e6);
    std::printf("repaints=%lld\nrepaints_per_s=%.1f\n", paints, paints / seconds);
    std::printf("repaints_within_2ms=%lld\n", painted.close);
    const double panelPaints = static_cast<double>(form->statusPanel().repaints - panelAtStart);
    std::printf("panel_repaints=%.0f\npanel_repaints_per_s=%.1f\n", panelPaints, panelPaints / seconds);
    std::printf("window0_chars=%zu\n", client.parts().windows.text[kMainWindow].size());
    std::printf("log_bytes=%zu\nlog_abandoned_chunks=%lld\n", log.size(), abandoned);
    if (!repeated) {
        const bool ok = received == bytes && answers == counts.at("do24") && esc == counts.at("sgr") &&
                        crlf == counts.at("line_ends") &&
                        countOf(history, "Password: ") == counts.at("passwords");
        std::printf("history: bytes %lld of %lld, answers %lld of %lld, ESC %lld of %lld, CR LF %lld of %lld\n",
                    received, bytes, answers, counts.at("do24"), esc, counts.at("sgr"), crlf,
                    counts.at("line_ends"));
        std::printf("log: ESC %lld of %lld\n", countOf(log, "\x1b"), counts.at("sgr"));
        std::printf("counts_match=%s\n", ok ? "yes" : "NO");
        // What the log should hold: the stream without its status frames. The
        // 24 of IAC DO 24 (and of the other three) is telnet's, not a frame's.
        std::string sent = readFile(stream);
        std::string text;
        text.reserve(sent.size());
        auto telnetOption = [&](std::size_t p) {
            if (p < 2 || sent[p - 2] != '\xFF') return false;
            const auto c = static_cast<unsigned char>(sent[p - 1]);
            return c >= 251 && c <= 254;
        };
        for (std::size_t p = 0; p < sent.size(); ++p) {
            if (sent[p] == '\x18' && !telnetOption(p)) {
                const std::size_t end = sent.find('\x1A', p);
                if (end != std::string::npos) {
                    p = end;
                    continue;
                }
            }
            text += sent[p];
        }
        long long chunkEnds = 0;
        const long long bad = logMismatch(log, text, answer, chunkEnds);
        std::printf("log_chunks=%lld\nlog_holds_stream=%s\n", chunkEnds, bad < 0 ? "yes" : "NO");
        if (bad >= 0) std::printf("log_first_mismatch=%lld\n", bad);
        return ok && bad < 0 ? 0 : 3;
    }
    std::vector<long long> delays;
    std::ifstream lines(linesOut.toStdString());
    std::string l;
    while (std::getline(lines, l)) delays.push_back(std::atoll(l.c_str()));
    std::sort(delays.begin(), delays.end());
    std::printf("typed=%d\nreached_server=%zu\n", typed, delays.size());
    if (!delays.empty()) {
        auto at = [&](double q) { return delays[std::min(delays.size() - 1, static_cast<std::size_t>(q * delays.size()))] / 1000.0; };
        std::printf("delay_ms_p50=%.2f\ndelay_ms_p99=%.2f\ndelay_ms_max=%.2f\n", at(0.5), at(0.99),
                    delays.back() / 1000.0);
    }
    return 0;
}
