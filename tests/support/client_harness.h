// A Client on fakes, loaded as at start, with probes for what tests read:
// the text of a window, the colour and flags of one of its characters, the
// day's log file.
#pragma once

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "shell/client.h"
#include "support/fakes.h"

namespace kelpa::test {

struct ClientHarness {
    FakePlatform fp;
    Client c{fp.platform};

    explicit ClientHarness(bool connected = true, bool debugOn = true) {
        c.Form_Load();
        fp.socket.connected = connected;
        c.setDebugInfo(debugOn);
    }

    std::string window(int win) const { return std::string(c.parts().windows.text[win].text()); }
    std::string debugText() const { return window(kDebugWindow); }
    WindowState& state(int win) { return c.parts().windows.state[win]; }
    std::string history() const { return c.parts().history.text(); }
    // What the open (or last opened) session log holds.
    std::string logFile() const { return fp.folder.read(c.parts().log.currentPath()); }
    // A chunk from the server, as the socket's data event brings it.
    void receive(const std::string& chunk) {
        fp.socket.incoming = chunk;
        c.parts().session.s_DataArrival();
    }
    // Opens the day's log of a site, as a connection does.
    void openLog(const std::string& shortName = "mud") { c.parts().log.open(shortName); }
};

// A text from byte values and literal pieces, e.g. bytes({255, 251, 1}).
inline std::string bytes(std::initializer_list<int> values) {
    std::string s;
    for (int v : values) s += static_cast<char>(v);
    return s;
}

// The style of the character at `pos` of a window; fails the test if no run
// covers it. For GoogleTest tests only.
inline TextStyle styleAt(const OutputWindow& w, std::size_t pos) {
    std::optional<TextStyle> found;
    w.forEachRun([&](const OutputWindow::Run& r) {
        if (pos >= r.begin && pos < r.end) found = r.style;
    });
    EXPECT_TRUE(found.has_value()) << "no run covers position " << pos;
    return found.value_or(TextStyle{});
}

}  // namespace kelpa::test
