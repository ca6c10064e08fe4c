// The day's log of a site: logs/<ShortName>/H.yyyymmdd.txt below the
// program's folder, appended to and flushed with every text.
#pragma once

#include <memory>
#include <string>

#include "output/debug_channel.h"
#include "platform/platform.h"

namespace kelpa {

class SessionLog {
public:
    SessionLog(FileSystem& files, Clock& clock, DebugChannel& debug)
        : files_(files), clock_(clock), debug_(debug) {}

    // Handle number of the log; 0 until a log was first opened.
    int LogFile = 0;
    // The calendar day of the log.
    Date LogDate;

    // The site's folder of day logs, "logs" and the short name as a path.
    // Books written on Windows part folders with a backslash (`Games\Med`),
    // and Windows drops a name's trailing blanks and dots (`Blank ` is the
    // folder `Blank`): the logs of those years stay where they are. A part
    // left empty (`..` among them) is passed over, so that a log never
    // lands outside logs/.
    static std::string folderFor(const std::string& shortName);
    static std::string pathFor(const std::string& shortName, const Date& day);

    // Takes a new handle number and opens today's file of the site, creating
    // the missing folders if the first try fails. A log still open is
    // closed first.
    void open(const std::string& shortName);
    void close();
    bool isOpen() const { return file_ != nullptr; }

    // Writes one text followed by CR LF, if a log is open.
    void print(const std::string& text);

    // The once-a-second check for a new day, in either direction; it also
    // opens again a log that lost its file or stopped taking writes (this
    // one at most every kRetrySeconds).
    void checkDayChange(const std::string& shortName);
    static constexpr int kRetrySeconds = 10;

    const std::string& currentPath() const { return path_; }

private:
    FileSystem& files_;
    Clock& clock_;
    DebugChannel& debug_;
    bool reopen();
    void lost(const std::string& why);

    std::unique_ptr<AppendFile> file_;
    std::string path_;
    // The log should be open but is not; a new try comes in this many ticks.
    bool failed_ = false;
    int retryIn_ = 0;
    // Open again after a failure, with no write through yet.
    bool resumed_ = false;
};

}  // namespace kelpa
