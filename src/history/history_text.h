// The raw text of the whole run: every chunk received and every text sent,
// in the order of events. Never cut.
#pragma once

#include <algorithm>
#include <cstddef>
#include <new>
#include <string>
#include <string_view>

namespace kelpa {

// Fills the page tables of memory that is about to be written. Where the
// first touch of each page is dear (a fault per 4 KB), one call over a
// stretch costs a fraction of that. Doing nothing is always correct.
class PageWarmer {
public:
    virtual ~PageWarmer() = default;
    virtual void warm(char* begin, std::size_t bytes) = 0;
};

struct HistoryText {
    std::string HistoryText;
    std::size_t HistoryPos = 0;

    void append(std::string_view bytes) {
        if (HistoryText.capacity() - HistoryText.size() < bytes.size()) grow(bytes.size());
        HistoryText.append(bytes);
        HistoryPos = HistoryText.size();
        if (warmer_ && HistoryPos + kWarmAhead / 2 > warmedEnd_) warmAhead();
    }

    void setPageWarmer(PageWarmer* w) { warmer_ = w; }

private:
    // Doubling a long text copies all of it into fresh pages, a stall of the
    // event loop that grows with the run. Past the first megabyte, address
    // space for a long run is taken at once; pages cost memory only when
    // text reaches them.
    static constexpr std::size_t kSmall = std::size_t{1} << 20;
    static constexpr std::size_t kLongRun = std::size_t{1} << 30;
    static constexpr std::size_t kWarmAhead = std::size_t{4} << 20;

    PageWarmer* warmer_ = nullptr;
    const char* warmedBuffer_ = nullptr;
    std::size_t warmedEnd_ = 0;  // offset up to which the pages are warm

    // Only the long-run reserve is worth it; small texts live on the heap.
    void warmAhead() {
        const std::size_t cap = HistoryText.capacity();
        if (cap < kLongRun) return;
        char* base = HistoryText.data();
        if (base != warmedBuffer_) {
            warmedBuffer_ = base;
            warmedEnd_ = HistoryText.size();
        }
        const std::size_t end = std::min(cap, std::max(warmedEnd_, HistoryText.size()) + kWarmAhead);
        if (end > warmedEnd_) warmer_->warm(base + warmedEnd_, end - warmedEnd_);
        warmedEnd_ = end;
    }

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
