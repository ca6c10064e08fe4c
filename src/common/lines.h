// Cutting a CR LF text into lines. A lone CR or LF does not end a line; a
// text with n pairs has n + 1 lines.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kelpa {

// Line l (from 1) of s without its CR LF, or with onlyOneLine false
// everything from the start of line l to the end. "" behind the last line.
std::string getline(std::string_view s, std::int32_t l, bool onlyOneLine);

// The number of lines: CR LF pairs plus one.
std::int32_t lignes(std::string_view y);

// Walks the lines of a text in order, each found once, so that a chunk of n
// lines costs O(length) and not O(n * length).
class LineCursor {
public:
    explicit LineCursor(std::string_view text) : text_(text) {}
    // The next line, or false when every line has been given.
    bool next(std::string_view& line);

private:
    std::string_view text_;
    std::size_t pos_ = 0;
    bool done_ = false;
};

}  // namespace kelpa
