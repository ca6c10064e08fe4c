#include "shell/qt_platform_qt.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QMessageBox>
#include <QTime>
#include <QWidget>

#include "shell/widget_kit_qt.h"

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

void QtHost::messageBox(const std::string& text) {
    QMessageBox box(QMessageBox::NoIcon, QStringLiteral("Kelpa"), toQString(text), QMessageBox::Ok, window_);
    box.exec();
}

bool QtHost::askYesNo(const std::string& text, const std::string& title) {
    return QMessageBox::question(window_, toQString(title), toQString(text), QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) == QMessageBox::Yes;
}

long long QtHost::instanceHandle() const { return QCoreApplication::applicationPid(); }

QtPlatform::QtPlatform()
    : files(QCoreApplication::applicationDirPath().toStdString()) {}

QtPlatform::QtPlatform(const std::filesystem::path& folder) : files(folder) {}

}  // namespace kelpa::qt
