#include "shell/qt_platform_qt.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QTime>
#include <QWidget>

#include "toolkit/widget_kit_qt.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>  // flock
#include <sys/mman.h>  // memfd_create
#include <unistd.h>

namespace kelpa::qt {

Date QtClock::today() const {
    const QDate d = QDate::currentDate();
    return {d.year(), d.month(), d.day()};
}

int QtClock::secondsSinceMidnight() const { return QTime::currentTime().msecsSinceStartOfDay() / 1000; }

QString QtHost::lockFilePath() {
    // The user's own runtime folder: another user's Kelpa is no "previous
    // instance", and no one else can take or remove the file.
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QFileInfo(runtime).isDir()) return QDir(runtime).filePath(QStringLiteral("kelpa.lock"));
    return QDir::temp().filePath(QStringLiteral("kelpa-%1.lock").arg(getuid()));
}

QtHost::QtHost() : lockFd_(::open(QFile::encodeName(lockFilePath()).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    if (lockFd_ < 0) return;
    previous_ = ::flock(lockFd_, LOCK_EX | LOCK_NB) != 0;
    // Shared from now on, so that the next one sees this one. A Kelpa
    // starting at this very moment holds its exclusive try only briefly; a
    // lock held for good by anything else is not waited for.
    for (int tries = 0; tries < 20 && ::flock(lockFd_, LOCK_SH | LOCK_NB) != 0; ++tries) ::usleep(1000);
}

QtHost::~QtHost() {
    if (lockFd_ >= 0) ::close(lockFd_);
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
    showMessage(window_, QMessageBox::NoIcon, QStringLiteral("Kelpa"), toQString(text));
}

bool QtHost::askYesNo(const std::string& text, const std::string& title) {
    return showMessage(window_, QMessageBox::Question, toQString(title), toQString(text),
                       QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
}

long long QtHost::instanceHandle() const { return QCoreApplication::applicationPid(); }

MemoryFileHistory::MemoryFileHistory() : fd_(memfd_create("kelpa-history", MFD_CLOEXEC)) {}

MemoryFileHistory::~MemoryFileHistory() {
    if (fd_ >= 0) close(fd_);
}

std::size_t MemoryFileHistory::append(std::string_view bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = write(fd_, bytes.data() + done, bytes.size() - done);
        if (n > 0)
            done += static_cast<std::size_t>(n);
        else if (n < 0 && errno == EINTR)
            continue;
        else
            break;  // full: the rest of the run stays in the program's memory
    }
    written_ += done;
    return done;
}

std::string MemoryFileHistory::read(std::size_t pos, std::size_t n) const {
    std::string out(n, '\0');
    out.resize(readInto(pos, n, out.data()));
    return out;
}

std::size_t MemoryFileHistory::readInto(std::size_t pos, std::size_t n, char* out) const {
    std::size_t got = 0;
    while (got < n) {
        const ssize_t r = pread(fd_, out + got, n - got, static_cast<off_t>(pos + got));
        if (r > 0)
            got += static_cast<std::size_t>(r);
        else if (r < 0 && errno == EINTR)
            continue;
        else
            break;
    }
    return got;
}

QtPlatform::QtPlatform()
    : files(QCoreApplication::applicationDirPath().toStdString()) {}

QtPlatform::QtPlatform(const std::filesystem::path& folder) : files(folder) {}

}  // namespace kelpa::qt
