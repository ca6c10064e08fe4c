// The outside world as the core sees it. The shell serves these with Qt;
// tests and fuzzers serve them with fakes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kelpa {

// The one TCP connection. Events (connected, data, closed, error) are
// delivered by whoever owns the real socket, by calling the Client.
class Socket {
public:
    static constexpr int kConnected = 7;
    virtual ~Socket() = default;
    virtual void connect(const std::string& host, const std::string& port) = 0;
    virtual void close() = 0;
    virtual int state() const = 0;
    // Takes every byte that has arrived.
    virtual std::string getData() = 0;
    // Sends the bytes as they are; no terminator added. False when the
    // socket refused them.
    virtual bool sendData(const std::string& bytes) = 0;

    // The debug line for bytes that sendData refused: their count and their
    // first line.
    // A password (while the server echoes) is counted but never shown.
    static std::string refusedLine(const std::string& bytes, bool showText = true) {
        return "SendData failed, " + std::to_string(bytes.size()) + " bytes not sent: " +
               (showText ? '"' + bytes.substr(0, bytes.find_first_of("\r\n")) + '"' : std::string());
    }
};

struct Date {
    int year = 0, month = 0, day = 0;
    friend bool operator==(const Date&, const Date&) = default;
};

class Clock {
public:
    virtual ~Clock() = default;
    virtual Date today() const = 0;
    virtual int secondsSinceMidnight() const = 0;
};

class Random {
public:
    virtual ~Random() = default;
    virtual void seed(std::uint32_t s) = 0;
    // A number r with 0 <= r < 1.
    virtual double next() = 0;
};

// An open file that takes whole texts; every write reaches the kernel before
// it returns, so the end of the program in any way loses nothing already
// written.
class AppendFile {
public:
    virtual ~AppendFile() = default;
    // The two texts one after the other, as one write: a line and its end
    // need no joined copy.
    virtual bool write(std::string_view text, std::string_view more) = 0;
    // Whether the file has lost its name (deleted, or another file renamed
    // over it): what is written then reaches no file anyone can open.
    virtual bool unlinked() const { return false; }
};

// A file open for reading from its start, shared with writers.
class ReadFile {
public:
    virtual ~ReadFile() = default;
    // The size when it was opened.
    virtual std::size_t size() const = 0;
    // Up to `n` bytes from where the last read ended, into `out` (replaced);
    // how many were read.
    virtual std::size_t read(std::string& out, std::size_t n) = 0;
};

// Files below the program's folder. Paths are relative to that folder and
// use "/" as separator.
class FileSystem {
public:
    virtual ~FileSystem() = default;
    virtual bool exists(const std::string& path) const = 0;
    virtual bool remove(const std::string& path) = 0;
    // Creates the folder and any missing folders above it.
    virtual bool createDirectories(const std::string& path) = 0;
    // Opens for appending, shared with other readers; null on failure.
    virtual std::unique_ptr<AppendFile> openAppend(const std::string& path) = 0;
    // The whole file; false if it cannot be read.
    virtual bool readAll(const std::string& path, std::string& out) const = 0;
    // Opens for reading; null on failure. Served here by a copy of the whole
    // file, for file systems that keep their files in memory.
    virtual std::unique_ptr<ReadFile> openRead(const std::string& path) const {
        struct Copy : ReadFile {
            std::string bytes;
            std::size_t at = 0;
            std::size_t size() const override { return bytes.size(); }
            std::size_t read(std::string& out, std::size_t n) override {
                out.assign(bytes, at, n);
                at += out.size();
                return out.size();
            }
        };
        auto f = std::make_unique<Copy>();
        if (!readAll(path, f->bytes)) return nullptr;
        return f;
    }
    // Replaces the file's content; never leaves a half-written file behind.
    virtual bool writeAll(const std::string& path, const std::string& bytes) = 0;
    // Names of the plain files in a folder that end with `suffix`, its
    // letters in any case (Heal.TRIGGER), sorted.
    virtual std::vector<std::string> list(const std::string& folder,
                                          const std::string& suffix) const = 0;
    // Every name in a folder, files and folders alike; for hints only, so a
    // file system with nothing to say gives none.
    virtual std::vector<std::string> entries(const std::string& /*folder*/) const { return {}; }
    // The full path, for messages and for the shell.
    virtual std::string absolute(const std::string& path) const = 0;
    // Why the last failed write failed, in words, for a message box.
    virtual std::string lastError() const { return {}; }
};

// Why a folder could not be made, for a message about the file meant for it.
inline std::string folderFailure(const FileSystem& files, const std::string& folder) {
    const std::string why = files.lastError();
    return "cannot make the folder " + files.absolute(folder) + (why.empty() ? "" : ": " + why);
}

// What the core asks of the window around it.
class Host {
public:
    virtual ~Host() = default;
    virtual void hideMainForm() = 0;
    virtual void showMainForm() = 0;
    virtual void focusCommandLine() = 0;
    // The queue's "###": ends the process at once, with no unload step.
    virtual void endProgramNow() = 0;
    // A modal box with the text, one OK button and the program's title;
    // returns when the user has closed it.
    virtual void messageBox(const std::string& text) = 0;
    // A modal question with the buttons Yes and No; true for Yes.
    virtual bool askYesNo(const std::string& text, const std::string& title) = 0;
    virtual long long instanceHandle() const = 0;
    virtual bool previousInstance() const = 0;
};

struct Platform {
    Socket& socket;
    Clock& clock;
    Random& random;
    FileSystem& files;
    Host& host;
};

}  // namespace kelpa
