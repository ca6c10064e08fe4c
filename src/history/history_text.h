// The raw text of the whole run: every chunk received and every text sent,
// in the order of events. Never cut.
#pragma once

#include <algorithm>
#include <cstddef>
#include <new>
#include <string>
#include <string_view>

namespace kelpa {

struct HistoryText {
    std::string HistoryText;
    std::size_t HistoryPos = 0;

    void append(std::string_view bytes) {
        if (HistoryText.capacity() - HistoryText.size() < bytes.size()) grow(bytes.size());
        HistoryText.append(bytes);
        HistoryPos = HistoryText.size();
    }

private:
    // Doubling a long text copies all of it into fresh pages, a stall of the
    // event loop that grows with the run. Past the first megabyte, address
    // space for a long run is taken at once; pages cost memory only when
    // text reaches them.
    static constexpr std::size_t kSmall = std::size_t{1} << 20;
    static constexpr std::size_t kLongRun = std::size_t{1} << 30;

    void grow(std::size_t more) {
        const std::size_t need = HistoryText.size() + more;
        if (need <= kSmall) return;  // ordinary doubling
        const std::size_t cap = HistoryText.capacity();
        try {
            HistoryText.reserve(std::max(need, cap < kLongRun ? kLongRun : cap * 2));
        } catch (const std::bad_alloc&) {
            // No room for the reserve: ordinary growth still works.
        }
    }
};

}  // namespace kelpa
