// The real outside world for the core: the Qt socket, the system clock, the
// random source, the program's folder and the window as host.
#pragma once

#include <QLockFile>
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

private:
    QPointer<QWidget> window_;
    QPointer<QWidget> commandLine_;
    // Held while this program runs; a second one finds it taken.
    std::unique_ptr<QLockFile> lock_;
    bool previous_ = false;
};

// Asks the kernel for a whole stretch of pages in one call; on this kind of
// virtual machine a fault per page made the history the dearest step of a
// flood. Kernels without the call leave the pages to fault one by one.
class LinuxPageWarmer : public PageWarmer {
public:
    void warm(char* begin, std::size_t bytes) override;

private:
    bool unsupported_ = false;
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
    LinuxPageWarmer pages;
    Platform platform{socket, clock, random, files, host};
};

}  // namespace kelpa::qt
