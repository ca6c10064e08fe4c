#include "history/session_log.h"

#include <cstdio>

namespace kelpa {

std::string SessionLog::pathFor(const std::string& shortName, const Date& day) {
    char date[16];
    std::snprintf(date, sizeof date, "%04d%02d%02d", day.year, day.month, day.day);
    return "logs/" + shortName + "/H." + date + ".txt";
}

void SessionLog::open(const std::string& shortName) {
    close();
    ++LogFile;
    path_ = pathFor(shortName, clock_.today());
    file_ = files_.openAppend(path_);
    if (!file_) {
        files_.createDirectories("logs/" + shortName);
        file_ = files_.openAppend(path_);
    }
    if (!file_) debug_.DebugLog("Cannot open the log " + files_.absolute(path_));
}

void SessionLog::close() { file_.reset(); }

void SessionLog::print(const std::string& text) {
    if (!file_) return;
    if (!file_->write(text, "\r\n")) {
        // Keep going without a log; the next connection or day tries again.
        debug_.DebugLog("Cannot write the log " + files_.absolute(path_));
        file_.reset();
    }
}

void SessionLog::checkDayChange(const std::string& shortName) {
    const Date today = clock_.today();
    if (today == LogDate) return;
    close();
    LogDate = today;
    open(shortName);
}

}  // namespace kelpa
