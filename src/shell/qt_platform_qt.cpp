#include "shell/qt_platform_qt.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QTime>
#include <QWidget>

#include <cstdlib>

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

long long QtHost::instanceHandle() const { return QCoreApplication::applicationPid(); }

QtPlatform::QtPlatform()
    : files(QCoreApplication::applicationDirPath().toStdString()) {}

QtPlatform::QtPlatform(const std::filesystem::path& folder) : files(folder) {}

}  // namespace kelpa::qt
