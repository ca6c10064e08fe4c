#include "common/lines.h"

namespace kelpa {

std::string getline(std::string_view s, std::int32_t l, bool onlyOneLine) {
    std::size_t start = 0;
    for (std::int32_t i = 1; i < l; ++i) {
        std::size_t pair = s.find("\r\n", start);
        if (pair == std::string_view::npos) return "";
        start = pair + 2;
    }
    if (!onlyOneLine) return std::string(s.substr(start));
    std::size_t end = s.find("\r\n", start);
    return std::string(s.substr(start, end == std::string_view::npos ? std::string_view::npos
                                                                       : end - start));
}

std::int32_t lignes(std::string_view y) {
    std::int32_t n = 1;
    for (std::size_t p = y.find("\r\n"); p != std::string_view::npos; p = y.find("\r\n", p + 2))
        ++n;
    return n;
}

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
