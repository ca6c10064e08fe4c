// The ESC sequences that the display honours: colour, a few attributes and
// clearing a window. Everything else goes to the debug window.
#pragma once

#include <cstdint>
#include <string_view>

#include "output/debug_channel.h"
#include "output/window_state.h"

namespace kelpa {

class AnsiInterpreter {
public:
    AnsiInterpreter(OutputWindows& windows, DebugChannel& debug)
        : windows_(windows), debug_(debug) {}

    // `seq` starts with ESC and ends with its final. Throws RunError for a
    // two-character SGR (ESC m, ESC M).
    void A_ParseCsi(std::string_view seq, int win);
    void A_ApplySgr(std::string_view param, int win);
    std::uint32_t A_ColourFor(int digit);

private:
    OutputWindows& windows_;
    DebugChannel& debug_;
};

}  // namespace kelpa
