// DebugLog: the one road of diagnostics, to the window on the page "System".
#pragma once

#include <string>

#include "output/output_window.h"

namespace kelpa {

class DebugChannel {
public:
    // Beyond this the debug window drops its oldest text; DebugLog itself
    // never cuts the way a window limit does.
    static constexpr std::size_t kMaxChars = 100000;

    explicit DebugChannel(OutputWindow& window) : window_(window) {}

    // Mirror of the check box "&Debug"; read at every call.
    bool enabled = false;

    // A final ";" leaves the line open for the next text.
    void DebugLog(std::string text);
    // A line the player must see whatever the switch says (the log lost).
    void tellAlways(const std::string& line);

private:
    OutputWindow& window_;
};

}  // namespace kelpa
