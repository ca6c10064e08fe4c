#include "output/output_writer.h"

#include <array>
#include <cstring>

#include "common/text.h"

namespace kelpa {

namespace {

// Finds, moving forward only, the next byte of a set. Each byte of the text
// is looked at once per W_Print call, however many sequences it holds.
class ForwardFinder {
public:
    ForwardFinder(std::string_view text, std::string_view set) : text_(text) {
        for (unsigned char c : set) table_[c] = true;
    }
    // First index >= pos of a byte of the set, if it lies before `limit`.
    std::size_t next(std::size_t pos, std::size_t limit) {
        limit = std::min(limit, text_.size());
        if (hit_ != npos && hit_ >= pos) return hit_ < limit ? hit_ : npos;
        std::size_t i = std::max(pos, scanned_);
        for (; i < limit; ++i) {
            if (table_[static_cast<unsigned char>(text_[i])]) {
                hit_ = i;
                scanned_ = i + 1;
                return i;
            }
        }
        scanned_ = std::max(scanned_, i);
        return npos;
    }
    static constexpr std::size_t npos = std::string_view::npos;

private:
    std::string_view text_;
    std::array<bool, 256> table_{};
    std::size_t hit_ = npos;
    std::size_t scanned_ = 0;
};

// The next ESC or IAC, moving forward only. Each of the two bytes is
// searched with memchr, and a hit found ahead is kept until it is passed, so
// a call still looks at each byte at most twice, at memchr's speed.
class ControlFinder {
public:
    explicit ControlFinder(std::string_view text) : text_(text) {}
    std::size_t next(std::size_t pos) {
        return std::min(refresh(esc_, '\x1B', pos), refresh(iac_, '\xFF', pos));
    }
    static constexpr std::size_t npos = std::string_view::npos;

private:
    struct Cached {
        std::size_t at = 0;  // the hit, npos for none left
        bool valid = false;
    };
    std::size_t refresh(Cached& c, char byte, std::size_t pos) {
        if (c.valid && (c.at == npos || c.at >= pos)) return c.at;
        c.valid = true;
        if (pos >= text_.size()) return c.at = npos;
        const void* hit = std::memchr(text_.data() + pos, byte, text_.size() - pos);
        c.at = hit ? static_cast<std::size_t>(static_cast<const char*>(hit) - text_.data()) : npos;
        return c.at;
    }
    std::string_view text_;
    Cached esc_, iac_;
};

// A final at position 10000 or later of the cut text counts as none.
constexpr std::size_t kFinalReach = 9999;
constexpr std::size_t kLongestPending = 5;

}  // namespace

void OutputWriter::W_Print(std::string_view input, int win) {
    if (win < 0 || win >= kWindowCount) {
        debug_.DebugLog("No such window :" + decimal(win));
        return;
    }
    WindowState& st = windows_.state[win];
    // A sequence cut by the last call is joined to this text, in a local
    // copy that a nested call for the same window cannot disturb; without
    // one the caller's text is read where it lies.
    std::string joined;
    std::string_view text = input;
    if (!st.Pending.empty()) {
        joined.reserve(st.Pending.size() + input.size());
        joined.append(st.Pending).append(input);
        st.Pending.clear();
        text = joined;
    }
    st.StartLen = windows_.text[win].size();

    try {
        writeAll(text, win);
    } catch (...) {
        // A failed call still leaves the window within its limit, or a flood
        // of broken sequences would grow it without end.
        applyLimit(win);
        throw;
    }
    applyLimit(win);
}

void OutputWriter::writeAll(std::string_view all, int win) {
    WindowState& st = windows_.state[win];
    ControlFinder controls(all);
    ForwardFinder finals(all, CsiFinals);
    std::size_t pos = 0;
    while (true) {
        const std::size_t ctl = controls.next(pos);
        if (ctl == ControlFinder::npos) break;
        writeSegment(all.substr(pos, ctl - pos), win, false);
        pos = ctl;
        if (all[pos] == kIac) {
            pos += telnet_.S_InterpretIac(all.substr(pos), win);
            continue;
        }
        const std::size_t fin = finals.next(pos, pos + kFinalReach);
        if (fin == ForwardFinder::npos) {
            if (all.size() - pos > kLongestPending) {
                ++pos;  // only the ESC goes; the rest is ordinary text
            } else {
                st.Pending.assign(all.substr(pos));
                pos = all.size();
            }
            continue;
        }
        ansi_.A_ParseCsi(all.substr(pos, fin - pos + 1), win);
        pos = fin + 1;
    }
    writeSegment(all.substr(pos), win, true);
}

void OutputWriter::writeSegment(std::string_view segment, int win, bool last) {
    const WindowState& st = windows_.state[win];
    OutputWindow& out = windows_.text[win];
    TextStyle style;
    style.colour = st.Colour + (st.NotBold ? rgb(64, 64, 64) : rgb(127, 127, 127));
    // The last segment takes the underline of the text before the caret.
    style.underline = last ? out.caretUnderline() : st.Underline;
    style.graphics = windows_.Graphics;
    if (st.Ink) out.append(segment, style);
}

void OutputWriter::applyLimit(int win) {
    const std::size_t limit = static_cast<std::size_t>(windowInfo(win).tagLimit);
    OutputWindow& out = windows_.text[win];
    if (limit == 0 || out.size() <= limit) return;
    out.cutAfterFirst(out.size() - (limit * 4 + 2) / 5);
}

}  // namespace kelpa
