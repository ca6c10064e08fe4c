// The real outside world for the core: the Qt socket, the system clock, the
// random source, the program's folder and the window as host.
#pragma once

#include <QPointer>

#include <filesystem>
#include <memory>

#include "history/history_text.h"
#include "platform/mt_random.h"
#include "platform/platform.h"
#include "platform/std_file_system.h"
#include "shell/qt_socket_qt.h"

class QWidget;

namespace kelpa::qt {

class QtClock : public Clock {
public:
    Date today() const override;
    int secondsSinceMidnight() const override;
};

class QtHost : public Host {
public:
    QtHost();
    ~QtHost() override;
    QtHost(const QtHost&) = delete;
    QtHost& operator=(const QtHost&) = delete;
    // The window that hides and shows, and the box that takes the focus.
    void attach(QWidget* window, QWidget* commandLine);

    void hideMainForm() override;
    void showMainForm() override;
    void focusCommandLine() override;
    void endProgramNow() override;
    void messageBox(const std::string& text) override;
    bool askYesNo(const std::string& text, const std::string& title) override;
    long long instanceHandle() const override;
    bool previousInstance() const override { return previous_; }

    // The lock that tells a running Kelpa of the same user: in
    // XDG_RUNTIME_DIR, or in the temporary folder under the user's number.
    static QString lockFilePath();

private:
    QPointer<QWidget> window_;
    QPointer<QWidget> commandLine_;
    // Every running Kelpa holds a shared lock on the file while it runs; one
    // that cannot take it alone knows another is running, whichever started
    // first and whichever has ended since.
    int lockFd_ = -1;
    bool previous_ = false;
};

// The raw text of the run in a file that lives in memory only (memfd). On a
// virtual machine every fresh page mapped into the program costs a trip to
// the host; written through the file, the text takes pages the kernel
// already holds, at several times the speed. The pages are the kernel's, so
// they count in the system's memory but not in the program's resident set.
class MemoryFileHistory : public HistoryStore {
public:
    MemoryFileHistory();
    ~MemoryFileHistory() override;
    MemoryFileHistory(const MemoryFileHistory&) = delete;
    MemoryFileHistory& operator=(const MemoryFileHistory&) = delete;

    bool usable() const { return fd_ >= 0; }
    std::size_t bytes() const { return written_; }

    std::size_t append(std::string_view bytes) override;
    std::string read(std::size_t pos, std::size_t n) const override;
    std::size_t readInto(std::size_t pos, std::size_t n, char* out) const override;

private:
    int fd_ = -1;
    std::size_t written_ = 0;
};

struct QtPlatform {
    // The program's folder is the executable's, unless given (benches, tests).
    QtPlatform();
    explicit QtPlatform(const std::filesystem::path& folder);

    QtSocket socket;
    QtClock clock;
    MtRandom random;
    StdFileSystem files;
    QtHost host;
    MemoryFileHistory history;
    Platform platform{socket, clock, random, files, host};
};

}  // namespace kelpa::qt
