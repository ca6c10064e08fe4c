// The eight output windows: their per-window interpretation state and their
// fixed properties.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "output/output_window.h"

namespace kelpa {

constexpr std::uint32_t rgb(unsigned r, unsigned g, unsigned b) { return r | (g << 8) | (b << 16); }

struct WindowState {
    std::uint32_t Colour = rgb(128, 128, 128);
    bool NotBold = false;
    std::uint32_t BackColour = 0;
    bool Underline = false;
    bool Blink = false;
    bool Reverse = false;
    bool Ink = true;
    std::string Pending;
    // A telnet sequence, or an ESC sequence longer than Pending takes, cut
    // by the end of a read: only the next read of the same connection
    // completes it, never an echo or another text written meanwhile.
    std::string CutPending;
    std::size_t StartLen = 0;
};

inline constexpr int kWindowCount = 8;

enum WindowNumber : int {
    kMainWindow = 0,   // t
    kDebugWindow = 1,  // DBGWindow
    kCustom1 = 2,      // Mwindow(0) .. Mwindow(3) are 2..5
    kHistView = 6,
    kHistT = 7,
};

struct WindowInfo {
    const char* controlName;
    int tagLimit;          // the text limit; 0 means none
    std::uint32_t background;
    bool systemColours;    // the system's window colours instead of black
    double pointSize;
};

const WindowInfo& windowInfo(int win);

struct OutputWindows {
    std::array<OutputWindow, kWindowCount> text;
    std::array<WindowState, kWindowCount> state;
    // Mirror of the check box "Graphics".
    bool Graphics = true;

    void resetStates() { state.fill(WindowState{}); }
};

}  // namespace kelpa
