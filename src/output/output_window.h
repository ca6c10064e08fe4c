// The text of one output window: bytes with styled runs. Appends are
// amortised O(1); the limit cut (which keeps the first character) is O(1)
// too, by moving the first character forward instead of the rest back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

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

    std::size_t size() const { return data_.size() - off_; }
    std::string_view text() const { return std::string_view(data_).substr(off_); }

    void append(std::string_view bytes, const TextStyle& style);
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
        for (std::size_t i = 0; i < runs_.size(); ++i) {
            std::size_t b = runs_[i].start;
            std::size_t e = i + 1 < runs_.size() ? runs_[i + 1].start : data_.size();
            if (e > b) f(Run{b - off_, e - off_, runs_[i].style});
        }
    }
    std::size_t runCount() const { return runs_.size(); }

    // Changes with every modification; lets a view skip unchanged windows.
    std::uint64_t revision() const { return revision_; }
    // Bumped when text before the end changed (a cut or a clear).
    std::uint64_t resetCount() const { return resets_; }

private:
    struct Entry {
        std::size_t start;  // index into data_
        TextStyle style;
    };
    void compact();

    std::string data_;
    std::size_t off_ = 0;
    std::deque<Entry> runs_;
    std::uint64_t revision_ = 0;
    std::uint64_t resets_ = 0;
};

}  // namespace kelpa
