#include "history/history_search.h"

#include <algorithm>
#include <array>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "common/text.h"
#include "output/telnet.h"

namespace kelpa {

namespace {

// The folded byte of each byte; 0 for the bytes that need a closer look
// (CR, ESC, IAC) and for NUL, which shows nothing.
constexpr std::array<unsigned char, 256> kFold = [] {
    std::array<unsigned char, 256> t{};
    for (int c = 0; c < 256; ++c) t[c] = foldCase1252(static_cast<unsigned char>(c));
    t[0] = t['\r'] = t[27] = t[255] = 0;
    return t;
}();

constexpr std::array<bool, 256> kFinal = [] {
    std::array<bool, 256> t{};
    for (char c : CsiFinals) t[static_cast<unsigned char>(c)] = true;
    return t;
}();

// Whether a line ends at p: CR LF, or with `loneLf` a LF alone too.
bool lineEndAt(const unsigned char* p, const unsigned char* end, bool loneLf) {
    return (*p == '\n' && loneLf) || (*p == '\r' && p + 1 < end && p[1] == '\n');
}

// How many bytes the telnet sequence at p takes from the line, as the
// writer takes it; a line break is never part of it. A linemode
// subnegotiation goes up to its IAC SE when that ends it within the line.
std::size_t telnetLength(const unsigned char* p, const unsigned char* end, bool loneLf) {
    if (end - p < 2) return 1;
    const std::size_t n = iacCommandLength(p[1]);
    if (n == 3 && (end - p < 3 || p[2] == '\r' || (loneLf && p[2] == '\n'))) return 2;
    if (p[1] == 250 && p[2] == 34) {
        for (const unsigned char* q = p + 3; q + 1 < end && !lineEndAt(q, end, loneLf); ++q)
            if (q[0] == 255 && q[1] == 240) return static_cast<std::size_t>(q + 2 - p);
    }
    return n;
}

// A line as Filter shows it: its text and colours, and nothing that acts.
// Telnet commands (an IAC DO 24 would answer the server), cursor and
// erase codes (ESC [2J would wipe the list), sequences without their final
// letter and lone CRs go; colour codes and a doubled IAC stay.
std::string shownLine(std::string_view raw) {
    std::string out;
    out.reserve(raw.size());
    const auto* p = reinterpret_cast<const unsigned char*>(raw.data());
    const unsigned char* const end = p + raw.size();
    while (p < end) {
        const unsigned char* q = p;
        while (q < end && *q != 27 && *q != 255 && *q != '\r') ++q;
        out.append(reinterpret_cast<const char*>(p), static_cast<std::size_t>(q - p));
        if (q == end) break;
        if (*q == '\r') {  // shows nothing: the rest of a LF CR line end
            p = q + 1;
            continue;
        }
        if (*q == 255) {
            const bool doubled = q + 1 < end && q[1] == 255;
            if (doubled) out.append("\xFF\xFF");
            p = doubled ? q + 2 : q + telnetLength(q, end, false);
            continue;
        }
        // As the search reads it: up to the first final; with none, only
        // the ESC goes.
        const unsigned char* f = q + 1;
        while (f < end && !kFinal[*f]) ++f;
        if (f == end) {
            p = q + 1;
            continue;
        }
        const bool colour = *f == 'm' && f - q >= 2 && q[1] == '[' &&
                            std::all_of(q + 2, f, [](unsigned char c) { return (c >= '0' && c <= '9') || c == ';'; });
        if (colour) out.append(reinterpret_cast<const char*>(q), static_cast<std::size_t>(f + 1 - q));
        p = f + 1;
    }
    return out;
}

}  // namespace

void VisibleLines::fold(std::string_view raw, std::size_t rawStart, bool loneLf) {
    folded_.resize(raw.size() + 1);
    foldedBegins_.clear();
    rawBegins_.clear();
    rawEnds_.clear();
    const auto* const base = reinterpret_cast<const unsigned char*>(raw.data());
    const unsigned char* p = base;
    const unsigned char* const end = base + raw.size();
    char* const out = folded_.data();
    char* o = out;
    foldedBegins_.push_back(0);
    rawBegins_.push_back(rawStart);
    while (p < end) {
#if defined(__SSE2__)
        // Sixteen bytes at a time up to the next CR, ESC, IAC or NUL (and LF
        // when it ends lines); plain ASCII is folded in the vector, other
        // letters through the table.
        if (end - p >= 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
            const __m128i special = _mm_or_si128(
                _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(v, _mm_setzero_si128()), _mm_cmpeq_epi8(v, _mm_set1_epi8(13))),
                             _mm_or_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8(27)), _mm_cmpeq_epi8(v, _mm_set1_epi8(-1)))),
                _mm_cmpeq_epi8(v, _mm_set1_epi8(loneLf ? 10 : 13)));
            const unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(special));
            const int plain = mask == 0 ? 16 : __builtin_ctz(mask);
            const unsigned before = plain == 16 ? 0xFFFFu : (1u << plain) - 1;
            if ((static_cast<unsigned>(_mm_movemask_epi8(v)) & before) == 0) {
                // 'a'..'z' move to -128..-103 as signed bytes; only they are below -102.
                // All sixteen are stored; the output never runs ahead of the input.
                const __m128i shifted = _mm_add_epi8(v, _mm_set1_epi8(static_cast<char>(128 - 'a')));
                const __m128i lower = _mm_cmplt_epi8(shifted, _mm_set1_epi8(-102));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(o), _mm_sub_epi8(v, _mm_and_si128(lower, _mm_set1_epi8(32))));
            } else {
                for (int i = 0; i < plain; ++i) o[i] = static_cast<char>(kFold[p[i]]);
            }
            o += plain;
            p += plain;
            if (plain == 16) continue;
        }
#endif
        const unsigned char f = kFold[*p];
        if (f != 0 && !(loneLf && *p == '\n')) {
            *o++ = static_cast<char>(f);
            ++p;
            continue;
        }
        const unsigned char b = *p;
        if (lineEndAt(p, end, loneLf)) {
            rawEnds_.push_back(rawStart + static_cast<std::size_t>(p - base));
            *o++ = '\n';
            p += b == '\r' ? 2 : 1;
            if (p < end) {
                foldedBegins_.push_back(static_cast<std::size_t>(o - out));
                rawBegins_.push_back(rawStart + static_cast<std::size_t>(p - base));
            }
        } else if (b == 27) {
            // Up to the first final of the line; with none, only the ESC goes.
            const unsigned char* q = p + 1;
            while (q < end && !kFinal[*q] && !lineEndAt(q, end, loneLf)) ++q;
            p = (q < end && kFinal[*q]) ? q + 1 : p + 1;
        } else if (b == 255 && p + 1 < end && p[1] == 255) {
            *o++ = static_cast<char>(foldCase1252(255));  // shown as one 255
            p += 2;
        } else if (b == 255) {
            p += telnetLength(p, end, loneLf);
        } else {
            ++p;  // a lone CR or a NUL shows nothing
        }
    }
    if (rawEnds_.size() < rawBegins_.size()) {
        rawEnds_.push_back(rawStart + raw.size());
        *o++ = '\n';
    }
    folded_.resize(static_cast<std::size_t>(o - out));
}

std::size_t VisibleLines::find(std::string_view needle, std::size_t from) const {
    if (from >= folded_.size()) return std::string::npos;
    const void* hit = ::memmem(folded_.data() + from, folded_.size() - from, needle.data(), needle.size());
    return hit ? static_cast<std::size_t>(static_cast<const char*>(hit) - folded_.data()) : std::string::npos;
}

std::size_t VisibleLines::lineOf(std::size_t k) const {
    const auto it = std::upper_bound(foldedBegins_.begin(), foldedBegins_.end(), k);
    return static_cast<std::size_t>(it - foldedBegins_.begin()) - 1;
}

void HistorySearch::start(Kind kind, std::string_view text) {
    kind_ = Kind::None;
    seekFailed_ = false;
    ranges_.clear();
    kept_.clear();
    keptBytes_ = 0;
    matches_ = 0;
    text_.assign(text);
    needle_.clear();
    for (char c : text) needle_ += static_cast<char>(foldCase1252(static_cast<unsigned char>(c)));
    if (needle_.empty()) return;
    kind_ = kind;
}

void HistorySearch::BSeek_Click(std::string_view text) {
    start(Kind::Seek, text);
    if (kind_ == Kind::None) return;
    const std::size_t len = history_.size();
    // From the line after the page's top line to the end, then from the
    // start through the top line.
    const std::size_t cr = pager_.searchForward(pager_.topOfPage());
    const std::size_t next = cr == 0 ? len : cr + 1;
    if (next < len) ranges_.push_back({next, len});
    if (next > 0) ranges_.push_back({0, next});
    at_ = ranges_.empty() ? 0 : ranges_.front().begin;
}

void HistorySearch::BFilter_Click(std::string_view text) {
    start(Kind::Filter, text);
    if (kind_ == Kind::None) {
        windows_.text[kHistView].clear();
        windows_.state[kHistView].StartLen = 0;
        return;
    }
    if (history_.size() > 0) ranges_.push_back({0, history_.size()});
    at_ = 0;
}

std::string_view HistorySearch::readLines(std::size_t end, std::size_t n) {
    auto readMore = [&](std::size_t have, std::size_t more) {
        if (raw_.size() < have + more) raw_.resize(have + more);
        return have + history_.readInto(at_ + have, more, raw_.data() + have);
    };
    std::size_t got = readMore(0, n);
    if (got < n || at_ + got >= end) return {raw_.data(), got};
    // Whole lines only; a line longer than a step is read on to its end.
    // Both line ends end in a LF.
    const std::string_view lineEnd = filtering() ? std::string_view("\n") : kCrLf;
    std::string_view block(raw_.data(), got);
    std::size_t cut = block.rfind(lineEnd);
    while (cut == std::string_view::npos && at_ + got < end) {
        const std::size_t had = got;
        got = readMore(had, std::min(kStepBytes, end - at_ - had));
        if (got == had) break;
        block = std::string_view(raw_.data(), got);
        cut = block.find(lineEnd, had - 1);
    }
    return cut == std::string_view::npos ? block : block.substr(0, cut + lineEnd.size());
}

bool HistorySearch::step() {
    if (kind_ == Kind::None) return false;
    std::size_t budget = kStepBytes;
    while (!ranges_.empty() && budget > 0) {
        Range& r = ranges_.front();
        if (at_ >= r.end) {
            ranges_.pop_front();
            if (!ranges_.empty()) at_ = ranges_.front().begin;
            continue;
        }
        const std::string_view block = readLines(r.end, std::min(budget, r.end - at_));
        if (block.empty()) {
            at_ = r.end;  // nothing more can be read there
            continue;
        }
        lines_.fold(block, at_, filtering());
        at_ += block.size();
        budget -= std::min(budget, block.size());
        bool stop = false;
        lines_.forEachMatch(needle_, [&](std::size_t line) {
            if (kind_ == Kind::Seek) {
                endSeek(true, lines_.rawBegin(line));
                stop = true;
                return false;
            }
            ++matches_;
            kept_.push_back({lines_.rawBegin(line), lines_.rawEnd(line)});
            keptBytes_ += lines_.rawEnd(line) - lines_.rawBegin(line) + 2;
            while (keptBytes_ > kFilterBytes && kept_.size() > 1) {
                keptBytes_ -= kept_.front().end - kept_.front().begin + 2;
                kept_.pop_front();
            }
            return true;
        });
        if (stop) return false;
    }
    if (!ranges_.empty()) return true;
    if (kind_ == Kind::Seek)
        endSeek(false, 0);
    else
        endFilter();
    return false;
}

void VisibleLines::shrink(std::size_t most) {
    if (folded_.capacity() <= most) return;
    std::string().swap(folded_);
    std::vector<std::size_t>().swap(foldedBegins_);
    std::vector<std::size_t>().swap(rawBegins_);
    std::vector<std::size_t>().swap(rawEnds_);
}

void HistorySearch::shrinkBuffers() {
    const std::size_t most = 4 * kStepBytes;
    if (raw_.capacity() > most) std::string().swap(raw_);
    lines_.shrink(most);
}

void HistorySearch::endSeek(bool found, std::size_t lineStart) {
    kind_ = Kind::None;
    ranges_.clear();
    shrinkBuffers();
    seekFailed_ = !found;
    if (!found) {
        debug_.DebugLog("Seek: no line holds \"" + text_ + "\"");
        return;
    }
    history_.HistoryPos = HistoryPager::posOfLine(lineStart);
    pager_.ShowHistoryPage();
    if (showHistoryPage) showHistoryPage();
}

void HistorySearch::endFilter() {
    kind_ = Kind::None;
    shrinkBuffers();
    OutputWindow& view = windows_.text[kHistView];
    view.clear();
    windows_.state[kHistView].StartLen = 0;
    // A 255 typed into the box shows as itself, not as a telnet command.
    std::string typed;
    for (const char c : text_) typed.append(c == '\xFF' ? 2 : 1, c);
    std::string heading = decimal(static_cast<long long>(matches_)) + (matches_ == 1 ? " line holds \"" : " lines hold \"") +
                          typed + "\"";
    if (kept_.size() < matches_) heading += ", the newest " + decimal(static_cast<long long>(kept_.size())) + " shown";
    writer_.W_Print(heading + std::string(kCrLf), kHistView);
    // Every line starts from the plain colours, not from the heading's or
    // the line before it.
    for (const Range& line : kept_)
        writer_.W_Print("\x1b[0m" + shownLine(history_.read(line.begin, line.end - line.begin)) + std::string(kCrLf),
                        kHistView);
    kept_.clear();
    keptBytes_ = 0;
}

}  // namespace kelpa
