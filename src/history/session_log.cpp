#include "history/session_log.h"

#include <cstdio>

namespace kelpa {

std::string SessionLog::folderFor(const std::string& shortName) {
    std::string folder = "logs";
    std::size_t start = 0;
    while (start <= shortName.size()) {
        std::size_t end = shortName.find_first_of("\\/", start);
        if (end == std::string::npos) end = shortName.size();
        std::size_t last = end;
        while (last > start && (shortName[last - 1] == ' ' || shortName[last - 1] == '.')) --last;
        if (last > start) folder += "/" + shortName.substr(start, last - start);
        start = end + 1;
    }
    return folder;
}

std::string SessionLog::pathFor(const std::string& shortName, const Date& day) {
    char date[16];
    std::snprintf(date, sizeof date, "%04d%02d%02d", day.year, day.month, day.day);
    return folderFor(shortName) + "/H." + date + ".txt";
}

void SessionLog::open(const std::string& shortName) {
    close();
    ++LogFile;
    path_ = pathFor(shortName, clock_.today());
    if (!reopen()) lost("Cannot open the log ");
}

bool SessionLog::reopen() {
    file_ = files_.openAppend(path_);
    if (!file_) {
        files_.createDirectories(path_.substr(0, path_.rfind('/')));
        file_ = files_.openAppend(path_);
    }
    return file_ != nullptr;
}

// Told whatever the debug switch says: a session without its log is
// something the player must know.
void SessionLog::lost(const std::string& why) {
    // A retry that fails again is the same outage, told once.
    if (!resumed_) debug_.tellAlways(why + files_.absolute(path_));
    file_.reset();
    failed_ = true;
    retryIn_ = kRetrySeconds;
}

void SessionLog::close() {
    file_.reset();
    failed_ = false;
    resumed_ = false;
}

void SessionLog::print(const std::string& text) {
    if (!file_) return;
    if (!file_->write(text, "\r\n")) {
        lost("Cannot write the log ");
    } else if (resumed_) {
        // Said only once a write has gone through: a full device still
        // lets the file open.
        resumed_ = false;
        debug_.tellAlways("The log " + files_.absolute(path_) + " is written again");
    }
}

void SessionLog::checkDayChange(const std::string& shortName) {
    const Date today = clock_.today();
    if (today != LogDate) {
        close();
        LogDate = today;
        open(shortName);
    } else if (file_ && file_->unlinked()) {
        // Deleted or replaced under us: the rest of the session goes to a
        // file of that name again.
        debug_.tellAlways("The log " + files_.absolute(path_) + " lost its file; writing to a new one");
        if (!reopen()) lost("Cannot open the log ");
    } else if (failed_ && --retryIn_ <= 0) {
        if (reopen()) {
            failed_ = false;
            resumed_ = true;
        } else {
            retryIn_ = kRetrySeconds;
        }
    }
}

}  // namespace kelpa
