#include "status/status_frames.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "common/text.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kelpa {

namespace {

constexpr char kFrameStart = 24;
constexpr char kItemEnd = 25;
constexpr char kFrameEnd = 26;

// The first byte at or after `i` that is `a` or `b`; `n` if none.
std::size_t nextOf(const char* base, std::size_t i, std::size_t n, char a, char b) {
#if defined(__SSE2__)
    const __m128i va = _mm_set1_epi8(a);
    const __m128i vb = _mm_set1_epi8(b);
    // Two blocks a turn: lines run to dozens of bytes between stops.
    for (; i + 32 <= n; i += 32) {
        const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(base + i));
        const __m128i y = _mm_loadu_si128(reinterpret_cast<const __m128i*>(base + i + 16));
        const auto lo = static_cast<unsigned>(
            _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(x, va), _mm_cmpeq_epi8(x, vb))));
        const auto hi = static_cast<unsigned>(
            _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(y, va), _mm_cmpeq_epi8(y, vb))));
        if (lo | hi) return i + static_cast<std::size_t>(std::countr_zero(lo | (hi << 16)));
    }
    for (; i + 16 <= n; i += 16) {
        const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(base + i));
        const int hits = _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(x, va), _mm_cmpeq_epi8(x, vb)));
        if (hits) return i + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(hits)));
    }
#endif
    while (i < n && base[i] != a && base[i] != b) ++i;
    return i;
}

// wordOf(value) with one load where the bytes behind the value, up to
// `end`, may be read too.
inline std::uint64_t valueWord(std::string_view value, const char* end) {
    if constexpr (std::endian::native == std::endian::little) {
        if (value.size() <= 8 && end - value.data() >= 8) {
            std::uint64_t w;
            std::memcpy(&w, value.data(), 8);
            return value.size() == 8 ? w : w & ((std::uint64_t{1} << (value.size() * 8)) - 1);
        }
    }
    return StatusModel::wordOf(value);
}

// Moves `n` bytes to a lower place, over bytes already read. The pieces
// are a line or so between frames: a library call each costs more than
// the copy.
inline void moveDown(char* to, const char* from, std::size_t n) {
#if defined(__SSE2__)
    if (n >= 16) {
        // The last block is read before any store can reach it.
        const __m128i last = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + n - 16));
        for (std::size_t i = 0; i + 16 < n; i += 16)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i),
                             _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + n - 16), last);
        return;
    }
#endif
    std::memmove(to, from, n);
}

}  // namespace

// One pass over the chunk that only notes what stays; the text moves down
// over the frames at the end, once the gathered items have been applied.
void StatusFrames::S_ExtractFrames(std::string& data) {
    char* const base = data.data();
    const std::size_t n = data.size();
    std::size_t r = 0;
    kept_.clear();
    auto text = [&](std::size_t to) {
        if (to == r) return;
        if (!kept_.empty() && kept_.back().second == r)
            kept_.back().second = to;
        else
            kept_.emplace_back(r, to);
        r = to;
    };
    while (r < n) {
        switch (state_) {
            case State::Text: {
                // Text and whole frames in turn stay in this loop: a line and
                // its prompt frame cost one search and one read each.
                for (;;) {
                    const std::size_t i = nextOf(base, r, n, kFrameStart, kIac);
                    text(i);
                    if (i == n) break;
                    if (base[i] != kFrameStart) {
                        text(i + 1);
                        state_ = State::Iac;
                        break;
                    }
                    ++r;
                    if (!pending_.empty() || !frameInPlace(base, r, n)) {
                        state_ = State::Frame;
                        break;
                    }
                }
                break;
            }
            case State::Iac: {
                const auto cmd = static_cast<unsigned char>(base[r]);
                if (cmd == static_cast<unsigned char>(kFrameStart)) {
                    // No telnet command: the IAC alone is text, and the 24 opens a frame.
                    state_ = State::Text;
                    break;
                }
                text(r + 1);
                if (cmd >= 251 && cmd <= 254) {
                    state_ = State::IacOption;
                } else if (cmd == 250) {
                    state_ = State::Sub;
                    subBytes_ = 0;
                } else {
                    state_ = State::Text;
                }
                break;
            }
            case State::IacOption:
                text(r + 1);
                state_ = State::Text;
                break;
            case State::Sub: {
                if (subBytes_ >= kMaxSubnegotiation) {
                    state_ = State::Text;
                    break;
                }
                std::size_t i = r;
                const std::size_t room = kMaxSubnegotiation - subBytes_;
                const std::size_t stop = n - r < room ? n : r + room;
                while (i < stop && base[i] != kIac) ++i;
                subBytes_ += i - r;
                text(i);
                if (subBytes_ >= kMaxSubnegotiation) {
                    state_ = State::Text;
                } else if (i < n) {
                    text(i + 1);
                    state_ = State::SubIac;
                }
                break;
            }
            case State::SubIac: {
                const auto c = static_cast<unsigned char>(base[r]);
                text(r + 1);
                subBytes_ += 2;
                state_ = c == 240 ? State::Text : State::Sub;
                break;
            }
            case State::Frame: {
                if (pending_.empty() && frameInPlace(base, r, n)) {
                    state_ = State::Text;
                    break;
                }
                // Only the new bytes are searched for the frame's end.
                const void* end = std::memchr(base + r, kFrameEnd, n - r);
                const std::size_t e = end ? static_cast<std::size_t>(static_cast<const char*>(end) - base) : n;
                keep(std::string_view(base + r, e - r));
                r = e;
                if (end) {
                    ++r;
                    state_ = State::Text;
                    endFrame();
                }
                break;
            }
        }
    }
    panel_.flushItems();
    if (kept_.size() == 1 && kept_[0].first == 0 && kept_[0].second == n) return;
    std::size_t w = 0;
    for (const auto& [from, to] : kept_) {
        if (from != w) moveDown(base + w, base + from, to - from);
        w += to - from;
    }
    data.resize(w);
}

bool StatusFrames::frameInPlace(const char* base, std::size_t& r, std::size_t n) {
#if defined(__SSE2__)
    // A frame of up to eight blocks: the blocks read for its end give its
    // item ends too, as bits of two words, so no byte is looked at twice
    // and a usual frame's items are one run over one word.
    {
        const __m128i itemEnd = _mm_set1_epi8(kItemEnd);
        const __m128i frameEnd = _mm_set1_epi8(kFrameEnd);
        std::uint64_t items[2] = {0, 0};
        std::size_t blocks = 0;
        for (std::size_t i = r; blocks < 8 && i + 16 <= n; i += 16, ++blocks) {
            const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(base + i));
            const auto ends = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(x, frameEnd)));
            auto found = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(x, itemEnd)));
            // Only the 25s before the first 26 end items of this frame.
            if (ends != 0) found &= (ends & (0u - ends)) - 1;
            items[blocks / 4] |= std::uint64_t{found} << (blocks % 4 * 16);
            if (ends == 0) continue;
            std::size_t start = r;
            for (std::size_t w = 0; w < 2; ++w) {
                for (std::uint64_t m = items[w]; m != 0; m &= m - 1) {
                    const std::size_t e = r + w * 64 + static_cast<std::size_t>(std::countr_zero(m));
                    applyItem(std::string_view(base + start, e - start), base + n);
                    start = e + 1;
                }
            }
            r = i + static_cast<std::size_t>(std::countr_zero(ends)) + 1;
            return true;
        }
    }
#endif
    // The end first: a frame's items count only once its 26 has come. Both
    // scans cover a few dozen bytes, which beats keeping a list of ends.
    const std::size_t end = nextOf(base, r, n, kFrameEnd, kFrameEnd);
    if (end == n) return false;
    std::size_t start = r;
    for (;;) {
        const std::size_t i = nextOf(base, start, end, kItemEnd, kItemEnd);
        if (i == end) break;
        applyItem(std::string_view(base + start, i - start), base + n);
        start = i + 1;
    }
    r = end + 1;
    return true;
}

void StatusFrames::keep(std::string_view bytes) {
    const std::size_t room = kMaxPendingFrame - pending_.size();
    if (bytes.size() <= room) {
        pending_.append(bytes);
        return;
    }
    pending_.append(bytes.substr(0, room));
    dropped_ += bytes.size() - room;
}

void StatusFrames::endFrame() {
    std::string frame;
    frame.swap(pending_);
    if (dropped_ > 0) {
        debug_.tellAlways("Frame too long, " + decimal(static_cast<long long>(dropped_)) + " bytes dropped");
        dropped_ = 0;
    }
    S_SplitFrame(frame);
    // A small frame's buffer is used again; a large one's is given back.
    if (frame.capacity() <= 4096) {
        frame.clear();
        pending_.swap(frame);
    }
}

// Items are a few bytes each: a plain loop beats a library search per item.
void StatusFrames::S_SplitFrame(std::string_view frame) {
    const char* const p = frame.data();
    const std::size_t n = frame.size();
    std::size_t start = 0;
    for (std::size_t i = 0; i < n; ++i) {
        if (p[i] != kItemEnd) continue;
        applyItem(std::string_view(p + start, i - start), p + n);
        start = i + 1;
    }
    panel_.flushItems();
}

void StatusFrames::S_ApplyStatusItem(std::string_view item) {
    applyItem(item, item.data() + item.size());
    panel_.flushItems();
}

void StatusFrames::applyItem(std::string_view item, const char* end) {
    if (debug_.enabled) debug_.DebugLog("Interpreting " + std::string(item));
    // The usual item, "1,8,value": a kind, a number of one or two digits.
    if (item.size() >= 4 && (item[0] == '1' || item[0] == '2') && item[1] == ',' && item[2] >= '0' &&
        item[2] <= '9') {
        // One digit or two, chosen without a branch: the numbers mix.
        const int first = item[2] - '0';
        const int second = item[3] - '0';
        const bool two = static_cast<unsigned>(second) < 10;
        const int n = two ? first * 10 + second : first;
        const std::size_t i = two ? 4 : 3;
        if (i < item.size() && item[i] == ',') {
            const std::string_view value = item.substr(i + 1);
            if (n >= 64) return;
            if (item[0] == '1')
                panel_.queueInfo1(n, value, valueWord(value, end));
            else
                panel_.queueInfo2(n, value);
            return;
        }
    }
    const double kind = statusNumber(item);
    if (kind != 1 && kind != 2) {
        debug_.DebugLog("Which i know nothing ...");
        return;
    }
    const std::string_view rest = item.size() > 2 ? item.substr(2) : std::string_view();
    const double n = statusNumber(rest);
    const std::size_t comma = rest.find(',');
    const std::string_view value = comma == std::string_view::npos ? rest : rest.substr(comma + 1);
    // Numbers outside the arrays (negative ones too) are passed over.
    if (!(n >= 0 && n < 64)) return;
    if (kind == 1)
        panel_.setInfo1(static_cast<int>(n), value);
    else
        panel_.setInfo2(static_cast<int>(n), value);
}

}  // namespace kelpa
