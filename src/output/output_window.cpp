#include "output/output_window.h"

#include <algorithm>
#include <cstring>

namespace kelpa {

void OutputWindow::append(std::string_view bytes, const TextStyle& style) {
    if (bytes.empty()) return;
    std::memcpy(tail(bytes.size()), bytes.data(), bytes.size());
    commit(bytes.size(), style);
}

void OutputWindow::grow(std::size_t more) {
    // Text cut off the front goes first; doubling covers the rest.
    if (off_ > 0 && off_ >= size()) {
        shiftToFront();
        if (cap_ - end_ >= more) return;
    }
    reallocate(std::max({cap_ * 2, end_ + more, std::size_t{256}}), 0, end_);
}

void OutputWindow::reallocate(std::size_t cap, std::size_t from, std::size_t n) {
    auto buf = std::make_unique_for_overwrite<char[]>(cap);
    if (n > 0) std::memcpy(buf.get(), buf_.get() + from, n);
    buf_ = std::move(buf);
    cap_ = cap;
}

void OutputWindow::clear() {
    end_ = 0;
    off_ = 0;
    runs_.clear();
    head_ = 0;
    cutTotal_ = 0;
    ++reshapes_;
    ++revision_;
}

void OutputWindow::cutAfterFirst(std::size_t count) {
    if (size() < 2 || count == 0) return;
    if (count > size() - 1) count = size() - 1;
    const std::size_t newFirst = off_ + count;
    const TextStyle firstStyle = runs_[head_].style;
    buf_[newFirst] = buf_[off_];
    off_ = newFirst;
    cutTotal_ += count;
    // The run that holds the character behind the cut; those before it lie
    // wholly in the cut.
    const std::size_t j = runAt(newFirst + 1);
    if (newFirst + 1 >= end_) {
        // Only the first character is left.
        runs_.resize(head_ + 1);
        runs_[head_] = {newFirst, firstStyle};
    } else if (j == head_ || runs_[j].style == firstStyle) {
        // The first character's run goes on behind it.
        head_ = j;
        runs_[j] = {newFirst, firstStyle};
    } else {
        head_ = j - 1;
        runs_[j - 1] = {newFirst, firstStyle};
        runs_[j].start = newFirst + 1;
    }
    ++revision_;
    compact();
}

std::size_t OutputWindow::runAt(std::size_t at) const {
    const auto behind = std::upper_bound(runs_.begin() + static_cast<std::ptrdiff_t>(head_), runs_.end(), at,
                                         [](std::size_t a, const Entry& r) { return a < r.start; });
    const auto i = static_cast<std::size_t>(behind - runs_.begin());
    return i > head_ ? i - 1 : head_;
}

void OutputWindow::compact() {
    if (head_ >= 64 && head_ >= runs_.size() / 2) {
        runs_.erase(runs_.begin(), runs_.begin() + static_cast<std::ptrdiff_t>(head_));
        head_ = 0;
        if (runs_.capacity() * sizeof(Entry) > kKeptCapacity && runs_.size() * 4 < runs_.capacity())
            runs_.shrink_to_fit();
    }
    if (off_ >= 4096 && off_ >= size()) shiftToFront();
}

void OutputWindow::shiftToFront() {
    // A text far beyond the window's limit (a page that is one line of
    // 100 MB) grew the buffer to its size: the window gives it back.
    if (cap_ > kKeptCapacity && size() * 4 < cap_)
        reallocate(std::max(size() * 2, std::size_t{256}), off_, size());
    else
        std::memmove(buf_.get(), buf_.get() + off_, size());
    end_ -= off_;
    for (std::size_t i = head_; i < runs_.size(); ++i) runs_[i].start -= off_;
    off_ = 0;
}

void OutputWindow::flattenToPlain() {
    std::vector<Entry> merged;
    for (std::size_t i = head_; i < runs_.size(); ++i) {
        Entry r = runs_[i];
        r.style.colour = 0;
        r.style.underline = false;
        r.style.plain = true;
        if (merged.empty() || !(merged.back().style == r.style)) merged.push_back(r);
    }
    runs_.swap(merged);
    head_ = 0;
    ++reshapes_;
    ++revision_;
}

bool OutputWindow::caretUnderline() const {
    return runs_.size() == head_ ? false : runs_.back().style.underline;
}

}  // namespace kelpa
