#include "history/history_pager.h"

#include "common/run_error.h"

namespace kelpa {

namespace {
// Lines of a game are short: one read mostly covers a whole page.
constexpr std::size_t kBlock = 4096;
}  // namespace

std::size_t HistoryPager::searchBack(std::size_t p) const {
    // Both bytes of the CR LF lie at 1-based p - 1 or before: 0-based below p - 1.
    if (p < 3) return 0;
    std::size_t limit = std::min(p - 1, history_.size());
    while (limit >= 2) {
        const std::size_t from = limit > kBlock ? limit - kBlock : 0;
        const std::string block = history_.read(from, limit - from);
        const std::size_t at = std::string_view(block).rfind("\r\n");
        if (at != std::string_view::npos) return from + at + 1;
        if (from == 0 || block.size() < limit - from) return 0;
        limit = from + 1;  // a CR LF may straddle the two blocks
    }
    return 0;
}

std::size_t HistoryPager::searchForward(std::size_t p) const {
    // The CR at 1-based p + 1 or after: 0-based p or after.
    std::size_t from = p;
    const std::size_t len = history_.size();
    while (from + 1 < len) {
        const std::size_t n = std::min(kBlock, len - from);
        const std::string block = history_.read(from, n);
        const std::size_t at = std::string_view(block).find("\r\n");
        if (at != std::string_view::npos) return from + at + 1;
        if (block.size() < n) return 0;
        from += n - 1;  // a CR LF may straddle the two blocks
    }
    return 0;
}

std::size_t HistoryPager::pageStart(std::size_t pos) const {
    if (pos <= 1 || pos >= history_.size()) return 0;
    return history_.read(pos - 1, 2) == "\r\n" ? pos + 1 : 0;
}

// A page's height of CR LFs back from pos, or 1 when the text has fewer.
std::size_t HistoryPager::backOnePage(std::size_t pos) const {
    for (int i = 0; i < kPageLines; ++i) {
        const std::size_t r = searchBack(pos);
        if (r == 0) return 1;
        pos = r;
    }
    return pos;
}

std::size_t HistoryPager::topOfPage() const {
    const std::size_t pos = history_.HistoryPos;
    return pageStart(pos == history_.size() ? backOnePage(pos) : pos);
}

void HistoryPager::ShowHistoryPage() {
    OutputWindow& HistT = windows_.text[kHistT];
    HistT.clear();
    windows_.state[kHistT].StartLen = 0;
    std::size_t& pos = history_.HistoryPos;
    const std::size_t len = history_.size();
    showsTheEnd_ = pos == len;
    if (pos == len) pos = backOnePage(pos);
    std::size_t e = pos;
    for (int i = 0; i < kPageLines; ++i) {
        const std::size_t r = searchForward(e);
        if (r == 0) {
            e = len;
            break;
        }
        e = r;
    }
    // Through the CR LF whose CR is at e, or to the end of the text.
    const std::size_t begin = pageStart(pos);
    const std::size_t end = e == len ? len : e + 1;
    if (end <= begin) return;
    const std::string page = history_.read(begin, end - begin);
    try {
        writer_.W_Print(page, kHistT);
    } catch (const RunError&) {
        HistT.clear();
    }
}

void HistoryPager::HistT_KeyDown(int keyCode) {
    std::size_t& pos = history_.HistoryPos;
    const std::size_t len = history_.size();
    switch (keyCode) {
        case kPageUp:
            if (pos < 3) return;
            for (int i = 0; i < kPageStep; ++i) {
                const std::size_t r = searchBack(pos);
                if (r == 0) {
                    pos = 1;
                    break;
                }
                pos = r;
            }
            break;
        case kPageDown: {
            std::size_t p = pos;
            for (int i = 0; i < kPageStep && p != 0; ++i) p = searchForward(p);
            if (p != 0) pos = p;
            break;
        }
        case kEnd:
            pos = len;
            break;
        case kHome:
            pos = 1;
            break;
        case kUp: {
            if (pos < 3) return;
            const std::size_t r = searchBack(pos);
            pos = r == 0 ? 1 : r;
            break;
        }
        case kDown:
            if (pos + 1 < len) {
                const std::size_t r = searchForward(pos);
                pos = r == 0 ? len : r;
            }
            break;
        default:
            return;
    }
    ShowHistoryPage();
}

}  // namespace kelpa
