// W_Print: the only road of coloured text into a window. Telnet and ESC
// sequences are interpreted here, at display time, per window.
#pragma once

#include <string>
#include <string_view>

#include "output/debug_channel.h"
#include "output/window_state.h"
#include "session/ansi.h"
#include "session/telnet.h"

namespace kelpa {

// The 26 characters of which the first found ends an ESC sequence.
inline constexpr std::string_view CsiFinals = "msuJABCD`adeFEHfZL@MPJKXST";

class OutputWriter {
public:
    OutputWriter(OutputWindows& windows, DebugChannel& debug, TelnetInterpreter& telnet,
                 AnsiInterpreter& ansi)
        : windows_(windows), debug_(debug), telnet_(telnet), ansi_(ansi) {}

    // Throws RunError when a telnet or ESC sequence cannot be taken apart;
    // what was written before stays. `text` must not lie in anything a
    // print can change (a window, the history): a telnet answer prints and
    // records its echo while the text is being read.
    void W_Print(std::string_view text, int win);

private:
    void writeAll(std::string_view text, int win);
    void writeSegment(std::string_view segment, int win, bool last);
    void applyLimit(int win);

    OutputWindows& windows_;
    DebugChannel& debug_;
    TelnetInterpreter& telnet_;
    AnsiInterpreter& ansi_;
};

}  // namespace kelpa
