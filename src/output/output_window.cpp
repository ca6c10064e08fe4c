#include "output/output_window.h"

namespace kelpa {

void OutputWindow::append(std::string_view bytes, const TextStyle& style) {
    if (bytes.empty()) return;
    if (runs_.empty() || !(runs_.back().style == style)) runs_.push_back({data_.size(), style});
    data_.append(bytes);
    ++revision_;
}

void OutputWindow::clear() {
    data_.clear();
    off_ = 0;
    runs_.clear();
    ++revision_;
    ++resets_;
}

void OutputWindow::cutAfterFirst(std::size_t count) {
    if (size() < 2 || count == 0) return;
    if (count > size() - 1) count = size() - 1;
    const std::size_t newFirst = off_ + count;
    const TextStyle firstStyle = runs_.front().style;
    // Drop the runs that lie wholly in the cut; the one left covers the
    // character behind the cut.
    while (runs_.size() >= 2 && runs_[1].start <= newFirst + 1) runs_.pop_front();
    if (newFirst + 1 < data_.size())
        runs_.front().start = newFirst + 1;
    else
        runs_.clear();
    data_[newFirst] = data_[off_];
    runs_.push_front({newFirst, firstStyle});
    if (runs_.size() > 1 && runs_[1].style == firstStyle) runs_.erase(runs_.begin() + 1);
    off_ = newFirst;
    ++revision_;
    ++resets_;
    compact();
}

void OutputWindow::compact() {
    if (off_ < 4096 || off_ < size()) return;
    data_.erase(0, off_);
    for (auto& r : runs_) r.start -= off_;
    off_ = 0;
}

void OutputWindow::flattenToPlain() {
    std::deque<Entry> merged;
    for (auto r : runs_) {
        r.style.colour = 0;
        r.style.underline = false;
        r.style.plain = true;
        if (merged.empty() || !(merged.back().style == r.style)) merged.push_back(r);
    }
    runs_.swap(merged);
    ++revision_;
}

bool OutputWindow::caretUnderline() const {
    return runs_.empty() ? false : runs_.back().style.underline;
}

}  // namespace kelpa
