// Empties the run's raw text between bench passes and keeps its memory, so
// that a pass measures the road and not fresh pages.
#pragma once

#include "history/history_text.h"

namespace kelpa {

struct HistoryTextProbe {
    static void clear(HistoryText& h) {
        h.memory_.clear();
        h.stored_ = 0;
        h.store_ = nullptr;
        h.HistoryPos = 0;
    }
};

}  // namespace kelpa
