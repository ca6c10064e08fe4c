// Cutting text into lines. A command text ends its lines in CR LF only (a
// lone CR or LF does not end a line; a text with n pairs has n + 1 lines);
// files and edit boxes also take a lone CR or LF.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kelpa {

// Walks the lines of a command text in order, each found once, so that a
// chunk of n lines costs O(length) and not O(n * length): line 1 to line
// `lignes` (CR LF pairs plus one), each as `getline` would cut it.
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

// Whether a file is UTF-16 text (what Notepad saves as "Unicode"), told by
// its byte order mark: read as 8-bit text it would be letters and NULs.
inline bool isUtf16Text(std::string_view text) {
    return text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF");
}
// The reason given for a file that is UTF-16 text.
inline constexpr const char* kUtf16Reason = "it is UTF-16 text (\"Unicode\" in Notepad); save it as ANSI text";

// The lines of a file or a box: ended by CR LF, or by a lone CR or LF as
// editors on Linux write them; a line end at the very end of the text opens
// no further line. The UTF-8 byte order mark some Windows editors put at
// the start of a file is no text.
class FileLines {
public:
    explicit FileLines(std::string_view text)
        : text_(text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text) {}
    bool atEnd() const { return pos_ >= text_.size(); }
    // The next line without taking it; "" at the end.
    std::string_view peek() const;
    std::string_view next();

private:
    std::size_t endOf(std::size_t& after) const;
    std::string_view text_;
    std::size_t pos_ = 0;
};

// Every line of FileLines at once.
std::vector<std::string_view> fileLines(std::string_view text);

}  // namespace kelpa
