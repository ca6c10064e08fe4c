// The text of one output window: bytes with styled runs. Appends are
// amortised O(1). The limit cut (which keeps the first character) moves the
// first character forward instead of the rest back and finds the first run
// it keeps by binary search, O(log runs); the space cut off is given back
// now and then, at an amortised constant cost per byte.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kelpa {

struct TextStyle {
    std::uint32_t colour = 0;  // RGB, red in the low byte
    bool underline = false;
    bool plain = false;        // the control's own default colour (debug text)
    bool graphics = false;     // box-drawing bytes show as line graphics
    friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

class OutputWindow {
public:
    struct Run {
        std::size_t begin;  // relative to the window's text
        std::size_t end;
        TextStyle style;
    };

    std::size_t size() const { return end_ - off_; }
    std::string_view text() const { return {buf_.get() + off_, end_ - off_}; }

    void append(std::string_view bytes, const TextStyle& style);

    // For a writer that copies while it scans: room for `n` more bytes at
    // the returned end of the text. Nothing is text until commit(); the
    // pointer holds until the window next changes.
    char* tail(std::size_t n) {
        if (cap_ - end_ < n) grow(n);
        return buf_.get() + end_;
    }
    // The first `n` bytes written at tail() become text of the style.
    void commit(std::size_t n, const TextStyle& style) {
        if (n == 0) return;
        if (runs_.size() == head_ || !(runs_.back().style == style)) runs_.push_back({end_, style});
        end_ += n;
        ++revision_;
    }
    void clear();
    // Removes `count` characters from position 1 (0-based), so that the
    // first character stays.
    void cutAfterFirst(std::size_t count);
    // All text takes the control's default colour, without underline; the
    // line graphics stay where they were.
    void flattenToPlain();

    // Underline of the character before the caret, which text inserted at
    // the end inherits.
    bool caretUnderline() const;

    // Calls f(run) for every run, in order.
    template <typename F>
    void forEachRun(F&& f) const {
        for (std::size_t i = head_; i < runs_.size(); ++i) {
            std::size_t b = runs_[i].start;
            std::size_t e = i + 1 < runs_.size() ? runs_[i + 1].start : end_;
            if (e > b) f(Run{b - off_, e - off_, runs_[i].style});
        }
    }
    // Calls f(run) for the runs from text position `from` on, the first
    // one clipped to start there; finds it by binary search.
    template <typename F>
    void forEachRunFrom(std::size_t from, F&& f) const {
        const std::size_t at = off_ + from;
        if (at >= end_) return;
        for (std::size_t i = runAt(at); i < runs_.size(); ++i) {
            std::size_t b = std::max(runs_[i].start, at);
            std::size_t e = i + 1 < runs_.size() ? runs_[i + 1].start : end_;
            if (e > b) f(Run{b - off_, e - off_, runs_[i].style});
        }
    }
    std::size_t runCount() const { return runs_.size() - head_; }

    // What a view needs to follow the text without laying all of it out
    // again: bytes cut off the front since the last reshape, and a count of
    // reshapes (clearing, restyling), after which nothing laid out holds.
    // Text position p is byte p + cutTotal() of all text since the reshape,
    // except the first character, which a cut keeps.
    std::uint64_t cutTotal() const { return cutTotal_; }
    std::uint64_t reshapes() const { return reshapes_; }

    // Changes with every modification; lets a view skip unchanged windows.
    std::uint64_t revision() const { return revision_; }

private:
    // Memory a window keeps once its text is cut back; a flood's chunks
    // stay far below it, so only an outsized text gives memory back.
    static constexpr std::size_t kKeptCapacity = std::size_t{16} << 20;
    struct Entry {
        std::size_t start;  // index into buf_
        TextStyle style;
    };
    void compact();
    std::size_t runAt(std::size_t at) const;
    void shiftToFront();
    void grow(std::size_t more);
    // A buffer of `cap` bytes holding the `n` bytes from `from` on.
    void reallocate(std::size_t cap, std::size_t from, std::size_t n);

    // The text is buf_[off_, end_); a plain buffer, not a string, so that
    // the writer can fill it without first zeroing what it will overwrite.
    std::unique_ptr<char[]> buf_;
    std::size_t cap_ = 0;
    std::size_t end_ = 0;
    std::size_t off_ = 0;
    // The runs are runs_[head_..]; those cut off the front wait below
    // head_ until compact() drops them.
    std::vector<Entry> runs_;
    std::size_t head_ = 0;
    std::uint64_t revision_ = 0;
    std::uint64_t cutTotal_ = 0;
    std::uint64_t reshapes_ = 0;
};

}  // namespace kelpa
