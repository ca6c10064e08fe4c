// Fakes of the outside world, for tests and fuzzers: a socket that records
// what goes out, a clock and a random source set by hand, a host that
// records what the core asked of the window.
#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "platform/std_file_system.h"

namespace kelpa::test {

class FakeSocket : public Socket {
public:
    void connect(const std::string& host, const std::string& port) override {
        connects.push_back(host + ":" + port);
    }
    void close() override { connected = false; }
    int state() const override { return connected ? kConnected : 0; }
    std::string getData() override { return std::exchange(incoming, {}); }
    bool sendData(const std::string& bytes) override {
        if (onSend) onSend(bytes);
        if (refuseWrites) return false;
        sent += bytes;
        writes.push_back(bytes);
        return true;
    }

    bool connected = false;
    std::string incoming;
    std::string sent;
    std::vector<std::string> writes;
    std::vector<std::string> connects;
    // Every write fails, as on a connection the kernel has given up.
    bool refuseWrites = false;
    // Called before a write is recorded, to see what else had happened by then.
    std::function<void(const std::string&)> onSend;
};

class FakeClock : public Clock {
public:
    Date today() const override { return day; }
    int secondsSinceMidnight() const override { return seconds; }
    Date day{2026, 11, 23};
    int seconds = 3600;
};

class FakeRandom : public Random {
public:
    void seed(std::uint32_t) override {}
    double next() override {
        if (values.empty()) return 0.5;
        double v = values.front();
        values.pop_front();
        return v;
    }
    std::deque<double> values;
};

class FakeHost : public Host {
public:
    void hideMainForm() override { hidden = true; }
    void showMainForm() override {
        hidden = false;
        ++shows;
    }
    void focusCommandLine() override { ++focuses; }
    void endProgramNow() override { ended = true; }
    void messageBox(const std::string& text) override {
        messages.push_back(text);
        if (onMessageBox) onMessageBox();
    }
    bool askYesNo(const std::string& text, const std::string& title) override {
        questions.push_back(title + ": " + text);
        return answerYes;
    }
    long long instanceHandle() const override { return 4242; }
    bool previousInstance() const override { return false; }

    bool hidden = false;
    bool ended = false;
    int shows = 0;
    int focuses = 0;
    std::vector<std::string> messages;
    std::vector<std::string> questions;
    bool answerYes = true;
    // What the player does while the box is open.
    std::function<void()> onMessageBox;
};

// A fresh folder under the system's temporary folder, removed afterwards.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    const std::filesystem::path& path() const { return path_; }
    std::string read(const std::string& relative) const;
    void write(const std::string& relative, const std::string& bytes) const;

private:
    std::filesystem::path path_;
};

// Everything a Client needs, served by the fakes and a temporary folder;
// the socket may be a real one.
template <typename SocketType>
struct PlatformWith {
    TempFolder folder;
    SocketType socket;
    FakeClock clock;
    FakeRandom random;
    StdFileSystem files{folder.path()};
    FakeHost host;
    Platform platform{socket, clock, random, files, host};
};

using FakePlatform = PlatformWith<FakeSocket>;

}  // namespace kelpa::test
