#include "common/lines.h"

namespace kelpa {

bool LineCursor::next(std::string_view& line) {
    if (done_) return false;
    std::size_t end = text_.find("\r\n", pos_);
    if (end == std::string_view::npos) {
        line = text_.substr(pos_);
        done_ = true;
    } else {
        line = text_.substr(pos_, end - pos_);
        pos_ = end + 2;
    }
    return true;
}

std::size_t FileLines::endOf(std::size_t& after) const {
    std::size_t end = pos_;
    while (end < text_.size() && text_[end] != '\r' && text_[end] != '\n') ++end;
    after = end;
    if (after < text_.size() && text_[after] == '\r') ++after;
    if (after < text_.size() && text_[after] == '\n' && after == end + (text_[end] == '\r' ? 1 : 0)) ++after;
    return end;
}

std::string_view FileLines::peek() const {
    std::size_t after = 0;
    return text_.substr(pos_, endOf(after) - pos_);
}

std::string_view FileLines::next() {
    if (atEnd()) return {};
    std::size_t after = 0;
    const std::size_t end = endOf(after);
    const std::string_view line = text_.substr(pos_, end - pos_);
    pos_ = after;
    return line;
}

std::vector<std::string_view> fileLines(std::string_view text) {
    std::vector<std::string_view> lines;
    for (FileLines in(text); !in.atEnd();) lines.push_back(in.next());
    return lines;
}

}  // namespace kelpa
