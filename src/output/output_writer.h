// W_Print: the only road of coloured text into a window. Telnet and ESC
// sequences are interpreted here, at display time, per window.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "output/debug_channel.h"
#include "output/window_state.h"
#include "output/ansi.h"
#include "output/telnet.h"

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
    void W_Print(std::string_view text, int win) { print(text, win, false); }
    // The debug line for a window number outside 0 to 7, as the caller read it.
    void tellNoSuchWindow(std::string_view number) { debug_.DebugLog("No such window :" + std::string(number)); }
    // A chunk read from the server, for the main window: a telnet sequence
    // that its end cuts waits for the next chunk. In any other text an
    // unfinished telnet sequence at the end shows nothing and is dropped.
    void W_PrintReceived(std::string_view text) { print(text, kMainWindow, true); }

private:
    void print(std::string_view text, int win, bool received);
    void writeAll(std::string_view text, int win, bool received);
    // The same for fewer than 8 parameter bytes, also held in `key` (the
    // bytes in a word, the rest zero), through the cache.
    void applyShortSgr(std::uint64_t key, std::string_view params, int win) {
        // Sets of two, so that two strings of one stream that hash alike
        // do not keep pushing each other out.
        const std::size_t set = ((key * 0x9E3779B97F4A7C15ull) >> 58) * 2;
        if (sgrCache_[set].key == key)
            sgrCache_[set].effect.applyTo(windows_.state[win]);
        else if (sgrCache_[set + 1].key == key)
            sgrCache_[set + 1].effect.applyTo(windows_.state[win]);
        else
            missShortSgr(set, key, params, win);
    }
    // The last text of a call takes the underline of the text before the
    // caret; any other text the window's own.
    TextStyle styleOf(const WindowState& st, bool underline) const;
    void applyLimit(int win);

    OutputWindows& windows_;
    DebugChannel& debug_;
    TelnetInterpreter& telnet_;
    AnsiInterpreter& ansi_;

    // The effects of the parameter strings seen lately: a stream repeats a
    // handful of colour changes over and over.
    struct SgrSlot {
        std::uint64_t key = ~0ull;  // no parameter bytes make this key
        SgrEffect effect;
    };
    std::array<SgrSlot, 128> sgrCache_{};
    void missShortSgr(std::size_t set, std::uint64_t key, std::string_view params, int win);
};

}  // namespace kelpa
