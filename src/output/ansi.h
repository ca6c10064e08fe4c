// The ESC sequences that the display honours: colour, a few attributes and
// clearing a window. Everything else goes to the debug window.
#pragma once

#include <cstdint>
#include <string_view>

#include "output/debug_channel.h"
#include "output/window_state.h"

namespace kelpa {

inline constexpr std::uint32_t kAnsiGrey = rgb(128, 128, 128);
// Colours 0 to 7; black shows grey.
inline constexpr std::uint32_t kAnsiColours[8] = {
    kAnsiGrey,      rgb(128, 0, 0),   rgb(0, 128, 0),   rgb(128, 128, 0),
    rgb(0, 0, 128), rgb(128, 0, 128), rgb(0, 128, 128), kAnsiGrey,
};

// What quiet SGR parameters do to a window's state: each field they touch
// is set to a value, the rest are kept. Parameters compose into one effect.
struct SgrEffect {
    std::uint32_t colourKeep = ~0u, colour = 0;
    std::uint32_t backKeep = ~0u, back = 0;
    // NotBold, Underline, Blink, Reverse as bits 0 to 3.
    std::uint8_t flagsKeep = 0xF, flags = 0;

    void setColour(std::uint32_t c) { colourKeep = 0, colour = c; }
    void setBack(std::uint32_t c) { backKeep = 0, back = c; }
    void setFlag(int bit, bool on) {
        flagsKeep = static_cast<std::uint8_t>(flagsKeep & ~(1u << bit));
        flags = static_cast<std::uint8_t>((flags & ~(1u << bit)) | (unsigned{on} << bit));
    }

    // Without branches: the colour changes of a stream are too varied to
    // predict.
    void applyTo(WindowState& st) const {
        st.Colour = (st.Colour & colourKeep) | colour;
        st.BackColour = (st.BackColour & backKeep) | back;
        const unsigned now = unsigned{st.NotBold} | unsigned{st.Underline} << 1 |
                             unsigned{st.Blink} << 2 | unsigned{st.Reverse} << 3;
        const unsigned next = (now & flagsKeep) | flags;
        st.NotBold = next & 1;
        st.Underline = next & 2;
        st.Blink = next & 4;
        st.Reverse = next & 8;
    }
};

// Adds one SGR parameter that needs no word in the debug window to the
// effect; false, with the effect unchanged, for one that A_ApplySgr must see.
inline bool addQuietSgr(SgrEffect& e, std::string_view param) {
    enum { kNotBold, kUnderline, kBlink, kReverse };
    switch (param.size()) {
        case 0:
            e.setColour(kAnsiGrey);
            e.setFlag(kNotBold, true);
            return true;
        case 1:
            switch (param[0]) {
                case '0':
                    e.setColour(kAnsiGrey);
                    e.setFlag(kNotBold, true);
                    e.setFlag(kUnderline, false);
                    e.setFlag(kBlink, false);
                    e.setFlag(kReverse, false);
                    return true;
                case '1': e.setFlag(kNotBold, false); return true;
                case '4': e.setFlag(kUnderline, true); return true;
                case '5': e.setFlag(kBlink, true); return true;
                case '7': e.setFlag(kReverse, true); return true;
                default: return false;
            }
        case 2: {
            // A second character that is no digit counts as 0.
            const char c = param[1];
            const int digit = c >= '0' && c <= '9' ? c - '0' : 0;
            if (digit >= 8) return false;
            if (param[0] == '3')
                e.setColour(kAnsiColours[digit]);
            else if (param[0] == '4')
                e.setBack(kAnsiColours[digit]);
            else
                return false;
            return true;
        }
        default:
            return true;  // three characters or more: ignored
    }
}

// Calls f(param) for each ";"-separated SGR parameter, until f returns
// false; says whether it went through all of them.
template <typename F>
bool forEachSgrParam(std::string_view params, F&& f) {
    std::size_t from = 0;
    for (std::size_t i = 0;; ++i) {
        if (i == params.size() || params[i] == ';') {
            if (!f(params.substr(from, i - from))) return false;
            if (i == params.size()) return true;
            from = i + 1;
        }
    }
}

class AnsiInterpreter {
public:
    AnsiInterpreter(OutputWindows& windows, DebugChannel& debug)
        : windows_(windows), debug_(debug) {}

    // `seq` starts with ESC and ends with its final. Throws RunError for a
    // two-character SGR (ESC m, ESC M).
    void A_ParseCsi(std::string_view seq, int win);
    void A_ApplySgr(std::string_view param, int win);
    // The parameters between "ESC x" and the final m, one by one.
    void A_ApplySgrList(std::string_view params, int win);
    std::uint32_t A_ColourFor(int digit);

private:
    OutputWindows& windows_;
    DebugChannel& debug_;
};

}  // namespace kelpa
