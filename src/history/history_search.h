// Seek and Filter over the whole HistoryText: lines that hold a text as the
// player saw them (telnet and ESC sequences left out, case folded in code
// page 1252). The text is read in blocks, and a search goes in steps so that
// the event loop turns between them; a new search replaces a running one.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "history/history_pager.h"
#include "history/history_text.h"
#include "output/debug_channel.h"
#include "output/output_writer.h"
#include "output/window_state.h"

namespace kelpa {

// Upper case of a code page 1252 byte.
constexpr unsigned char foldCase1252(unsigned char c) {
    if (c >= 'a' && c <= 'z') return static_cast<unsigned char>(c - 32);
    switch (c) {
        case 0x9A: return 0x8A;  // s caron
        case 0x9C: return 0x8C;  // oe
        case 0x9E: return 0x8E;  // z caron
        case 0xFF: return 0x9F;  // y diaeresis
        default: break;
    }
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return static_cast<unsigned char>(c - 32);
    return c;
}

// Lines of raw text as the player sees them, folded, one after another:
// each line's visible bytes and a '\n', with where each line began.
class VisibleLines {
public:
    // `raw` holds whole lines (CR LF between them; the last may lack it);
    // `rawStart` is the position of raw[0] in the history. With `loneLf` a
    // LF alone ends a line too, as on the screen.
    void fold(std::string_view raw, std::size_t rawStart, bool loneLf = false);
    // Calls f(line) for each line that holds `needle` (folded), in order,
    // until f returns false.
    template <typename F>
    void forEachMatch(std::string_view needle, F&& f) const;

    const std::string& folded() const { return folded_; }
    // Gives back memory beyond `most` bytes that a very long line took.
    void shrink(std::size_t most);
    // The first place of `needle` in folded() at or after `from`.
    std::size_t find(std::string_view needle, std::size_t from) const;
    // Where in the history the line that holds folded()[k] begins, and ends
    // (before its CR LF).
    std::size_t lineOf(std::size_t k) const;
    std::size_t rawBegin(std::size_t line) const { return rawBegins_[line]; }
    std::size_t rawEnd(std::size_t line) const { return rawEnds_[line]; }

private:
    std::string folded_;
    std::vector<std::size_t> foldedBegins_;
    std::vector<std::size_t> rawBegins_;
    std::vector<std::size_t> rawEnds_;
};

class HistorySearch {
public:
    // Bytes of history read in one step: a few milliseconds.
    static constexpr std::size_t kStepBytes = std::size_t{1} << 20;
    // Filter fills window 6 up to its own size.
    static constexpr std::size_t kFilterBytes = 100000;

    HistorySearch(HistoryText& history, HistoryPager& pager, OutputWriter& writer, OutputWindows& windows,
                  DebugChannel& debug)
        : history_(history), pager_(pager), writer_(writer), windows_(windows), debug_(debug) {}

    // Called when a Seek has set the page, so that the window shows it.
    std::function<void()> showHistoryPage;

    void BSeek_Click(std::string_view text);
    void BFilter_Click(std::string_view text);

    bool running() const { return kind_ != Kind::None; }
    // The last search was a Seek that found nothing; a new search clears it.
    bool seekFailed() const { return seekFailed_; }
    // One step of a running search; false once it has ended.
    bool step();
    // Runs the search to its end at once (tests, benches).
    void finish() {
        while (step()) {
        }
    }

private:
    enum class Kind { None, Seek, Filter };
    struct Range {
        std::size_t begin, end;
    };
    void start(Kind kind, std::string_view text);
    // Matches in [from, to), where `from` begins a line; false to stop.
    bool scan(std::size_t from, std::size_t to, const std::function<bool(std::size_t, std::size_t)>& onLine);
    // Whole lines from at_ on, about `n` bytes of them, none at or past `end`.
    std::string_view readLines(std::size_t end, std::size_t n);
    void endSeek(bool found, std::size_t lineStart);
    // The buffers keep what a step needs; a very long line grew them.
    void shrinkBuffers();
    void endFilter();
    // Filter takes its lines as the screen shows them (a lone LF ends one
    // too); Seek as the History page pages them, by CR LF.
    bool filtering() const { return kind_ == Kind::Filter; }

    HistoryText& history_;
    HistoryPager& pager_;
    OutputWriter& writer_;
    OutputWindows& windows_;
    DebugChannel& debug_;

    Kind kind_ = Kind::None;
    bool seekFailed_ = false;
    std::string text_;    // as typed
    std::string needle_;  // folded
    // What is left to read, in order; the front one goes on at `at_`.
    std::deque<Range> ranges_;
    std::size_t at_ = 0;
    std::string raw_;  // read buffer, kept between steps
    VisibleLines lines_;
    std::size_t matches_ = 0;
    std::deque<Range> kept_;
    std::size_t keptBytes_ = 0;
};

template <typename F>
void VisibleLines::forEachMatch(std::string_view needle, F&& f) const {
    std::size_t from = 0;
    for (;;) {
        const std::size_t k = find(needle, from);
        if (k == std::string::npos) return;
        const std::size_t line = lineOf(k);
        if (!f(line)) return;
        from = line + 1 < foldedBegins_.size() ? foldedBegins_[line + 1] : folded_.size();
    }
}

}  // namespace kelpa
