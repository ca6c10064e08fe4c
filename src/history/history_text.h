// The raw text of the whole run: every chunk received and every text sent,
// in the order of events. Never cut.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kelpa {

struct HistoryText {
    std::string HistoryText;
    std::size_t HistoryPos = 0;

    void append(std::string_view bytes) {
        HistoryText.append(bytes);
        HistoryPos = HistoryText.size();
    }
};

}  // namespace kelpa
