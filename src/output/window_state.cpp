#include "output/window_state.h"

namespace kelpa {

const WindowInfo& windowInfo(int win) {
    static const WindowInfo table[kWindowCount] = {
        {"t", 3500, rgb(0, 0, 0), false, 9.75},
        {"DBGWindow", 5000, rgb(255, 255, 255), true, 9.75},
        {"Mwindow(0)", 5000, rgb(0, 0, 0), false, 9.75},
        {"Mwindow(1)", 5000, rgb(0, 0, 0), false, 9.75},
        {"Mwindow(2)", 5000, rgb(0, 0, 0), false, 9.75},
        {"Mwindow(3)", 5000, rgb(0, 0, 0), false, 9.75},
        {"HistView", 0, rgb(0, 0, 0), false, 8.25},
        {"HistT", 10000, rgb(64, 64, 64), false, 9.75},
    };
    return table[win];
}

}  // namespace kelpa
