#include "shell/qt_platform_qt.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QMessageBox>
#include <QTime>
#include <QWidget>

#include "shell/widget_kit_qt.h"

#include <cstdlib>
#include <cerrno>
#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace kelpa::qt {

Date QtClock::today() const {
    const QDate d = QDate::currentDate();
    return {d.year(), d.month(), d.day()};
}

int QtClock::secondsSinceMidnight() const { return QTime::currentTime().msecsSinceStartOfDay() / 1000; }

QtHost::QtHost() : lock_(std::make_unique<QLockFile>(QDir::temp().filePath(QStringLiteral("kelpa.lock")))) {
    lock_->setStaleLockTime(0);
    previous_ = !lock_->tryLock(0);
}

void QtHost::attach(QWidget* window, QWidget* commandLine) {
    window_ = window;
    commandLine_ = commandLine;
}

void QtHost::hideMainForm() {
    if (window_) window_->hide();
}

void QtHost::showMainForm() {
    if (window_) window_->show();
}

void QtHost::focusCommandLine() {
    if (commandLine_) commandLine_->setFocus();
}

void QtHost::endProgramNow() { std::_Exit(0); }

void QtHost::messageBox(const std::string& text) {
    QMessageBox box(QMessageBox::NoIcon, QStringLiteral("Kelpa"), toQString(text), QMessageBox::Ok, window_);
    box.exec();
}

bool QtHost::askYesNo(const std::string& text, const std::string& title) {
    return QMessageBox::question(window_, toQString(title), toQString(text), QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) == QMessageBox::Yes;
}

long long QtHost::instanceHandle() const { return QCoreApplication::applicationPid(); }

void LinuxPageWarmer::warm(char* begin, std::size_t bytes) {
#ifdef MADV_POPULATE_WRITE
    constexpr int kPopulateWrite = MADV_POPULATE_WRITE;
#else
    constexpr int kPopulateWrite = 23;  // Linux 5.14
#endif
    if (unsupported_ || bytes == 0) return;
    static const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    // The call takes whole pages; the part-page at the start is the
    // text's own and warm already.
    const auto from = (reinterpret_cast<std::uintptr_t>(begin) + page - 1) & ~(page - 1);
    const auto to = (reinterpret_cast<std::uintptr_t>(begin) + bytes) & ~(page - 1);
    if (to <= from) return;
    if (madvise(reinterpret_cast<void*>(from), to - from, kPopulateWrite) != 0 && errno == EINVAL)
        unsupported_ = true;
}

QtPlatform::QtPlatform()
    : files(QCoreApplication::applicationDirPath().toStdString()) {}

QtPlatform::QtPlatform(const std::filesystem::path& folder) : files(folder) {}

}  // namespace kelpa::qt
