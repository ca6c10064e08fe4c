#include "output/output_writer.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "common/text.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kelpa {

namespace {

// Finds, moving forward only, the next byte of a set. Each byte of the text
// is looked at once per W_Print call, however many sequences it holds.
class ForwardFinder {
public:
    ForwardFinder(std::string_view text, const std::array<bool, 256>& set)
        : text_(text), table_(set) {}
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
    const std::array<bool, 256>& table_;
    std::size_t hit_ = npos;
    std::size_t scanned_ = 0;
};

constexpr std::uint64_t kOnes = 0x0101010101010101ull;
constexpr std::uint64_t kHighs = 0x8080808080808080ull;

// Bit 7 of a byte of the result is set where the word holds ESC or IAC. A
// bit may also be set above a true one, so only the lowest one counts.
inline std::uint64_t controlBits(std::uint64_t x) {
    const std::uint64_t esc = x ^ (kOnes * 0x1B);
    return (((esc - kOnes) & ~esc) | ((~x - kOnes) & x)) & kHighs;
}

inline std::size_t lowestByte(std::uint64_t bits) {
    if constexpr (std::endian::native == std::endian::little)
        return static_cast<std::size_t>(std::countr_zero(bits)) / 8;
    else
        return static_cast<std::size_t>(std::countl_zero(bits)) / 8;
}

// The length of the text before the first ESC or IAC, looked at 16 or 8
// bytes at a time; with `out`, the text is copied there on the way. Whole
// blocks only are copied as blocks, so nothing is written past out + n.
template <bool Copy>
std::size_t scanText(const char* in, std::size_t n, char* out) {
    std::size_t i = 0;
#if defined(__SSE2__)
    const __m128i esc = _mm_set1_epi8(kEsc);
    const __m128i iac = _mm_set1_epi8(kIac);
    for (; i + 16 <= n; i += 16) {
        const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i));
        if constexpr (Copy) _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), x);
        const int hits = _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(x, esc), _mm_cmpeq_epi8(x, iac)));
        if (hits) return i + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(hits)));
    }
#endif
    for (; i + 8 <= n; i += 8) {
        std::uint64_t x;
        std::memcpy(&x, in + i, 8);
        if constexpr (Copy) std::memcpy(out + i, &x, 8);
        if (const std::uint64_t bits = controlBits(x)) return i + lowestByte(bits);
    }
    for (; i < n; ++i) {
        if (in[i] == kEsc || in[i] == kIac) return i;
        if constexpr (Copy) out[i] = in[i];
    }
    return n;
}

// Bit 7 set in each byte that is not an SGR parameter byte (0x30 to 0x3F:
// digits, ";" and the like); exact, no carries between bytes.
inline std::uint64_t nonParamBytes(std::uint64_t x) {
    constexpr std::uint64_t kLow7 = 0x7F7F7F7F7F7F7F7Full;
    const std::uint64_t t = (x & (kOnes * 0xF0)) ^ (kOnes * 0x30);
    return (((t & kLow7) + kLow7) | t) & kHighs;
}

// Byte `n` (0 to 7) of a word loaded from memory.
inline unsigned byteOf(std::uint64_t x, std::size_t n) {
    if constexpr (std::endian::native == std::endian::little)
        return static_cast<unsigned>(x >> (8 * n)) & 0xFF;
    else
        return static_cast<unsigned>(x >> (56 - 8 * n)) & 0xFF;
}

// The first `n` (0 to 7) bytes of a word loaded from memory, the rest zero.
inline std::uint64_t firstBytes(std::uint64_t x, std::size_t n) {
    if (n == 0) return 0;
    if constexpr (std::endian::native == std::endian::little)
        return x & (~0ull >> (64 - 8 * n));
    else
        return x & (~0ull << (64 - 8 * n));
}

constexpr std::array<bool, 256> finalTable() {
    std::array<bool, 256> t{};
    for (char c : CsiFinals) t[static_cast<unsigned char>(c)] = true;
    return t;
}
constexpr std::array<bool, 256> kIsFinal = finalTable();

// How far the first look for a final goes before the finder takes over.
constexpr std::size_t kQuickReach = 16;

// A final at position 10000 or later of the cut text counts as none.
constexpr std::size_t kFinalReach = 9999;
constexpr std::size_t kLongestPending = 5;

}  // namespace

void OutputWriter::print(std::string_view input, int win, bool received) {
    if (win < 0 || win >= kWindowCount) {
        tellNoSuchWindow(decimal(win));
        return;
    }
    WindowState& st = windows_.state[win];
    // A sequence cut by the last call is joined to this text, in a local
    // copy that a nested call for the same window cannot disturb; without
    // one the caller's text is read where it lies.
    std::string joined;
    std::string_view text = input;
    const bool carried = received && !st.CutPending.empty();
    if (!st.Pending.empty() || carried) {
        joined.reserve(st.Pending.size() + (carried ? st.CutPending.size() : 0) + input.size());
        joined.append(st.Pending);
        if (carried) joined.append(st.CutPending);
        joined.append(input);
        st.Pending.clear();
        if (carried) st.CutPending.clear();
        text = joined;
    }
    st.StartLen = windows_.text[win].size();

    try {
        writeAll(text, win, received);
    } catch (...) {
        // A failed call still leaves the window within its limit, or a flood
        // of broken sequences would grow it without end.
        applyLimit(win);
        throw;
    }
    applyLimit(win);
}

void OutputWriter::writeAll(std::string_view all, int win, bool received) {
    WindowState& st = windows_.state[win];
    OutputWindow& out = windows_.text[win];
    ForwardFinder finals(all, kIsFinal);
    std::size_t pos = 0;
    while (true) {
        // The text up to the next ESC or IAC is copied into the window
        // while it is looked for. The window is asked again every time: a
        // sequence may have printed, cleared or cut it.
        const std::size_t rest = all.size() - pos;
        const bool ink = st.Ink;
        const std::size_t len = ink ? scanText<true>(all.data() + pos, rest, out.tail(rest))
                                    : scanText<false>(all.data() + pos, rest, nullptr);
        if (len == rest) {
            if (ink) out.commit(len, styleOf(st, out.caretUnderline()));
            return;
        }
        if (ink) out.commit(len, styleOf(st, st.Underline));
        pos += len;
        if (all[pos] == kIac) {
            if (pos + 1 < all.size() && all[pos + 1] == kIac) {
                // A doubled IAC is the data byte 255; the debug window tells
                // it as the command it also is.
                telnet_.tellUnknown(255);
                if (st.Ink) {
                    *out.tail(1) = kIac;
                    out.commit(1, styleOf(st, pos + 2 == all.size() ? out.caretUnderline() : st.Underline));
                }
                pos += 2;
                continue;
            }
            const std::size_t used = telnet_.S_InterpretIac(all.substr(pos), win);
            if (used == TelnetInterpreter::kUnfinished) {
                if (received) st.CutPending.assign(all.substr(pos));
                return;
            }
            pos += used;
            continue;
        }
        // The usual colour change, "ESC [", parameter bytes and m, within
        // one word: a parameter byte is never a final, so the m ends it.
        if (all.size() - pos >= 10 && all[pos + 1] == '[') {
            std::uint64_t word;
            std::memcpy(&word, all.data() + pos + 2, 8);
            if (const std::uint64_t stops = nonParamBytes(word)) {
                const std::size_t n = lowestByte(stops);
                if ((byteOf(word, n) | 0x20) == 'm') {
                    applyShortSgr(firstBytes(word, n), all.substr(pos + 2, n), win);
                    pos += 3 + n;
                    continue;
                }
            }
        }
        // Any other ESC: the first final ends it, usually within a few bytes.
        std::size_t fin = ForwardFinder::npos;
        const std::size_t quickEnd = std::min(all.size(), pos + kQuickReach);
        for (std::size_t i = pos + 1; i < quickEnd; ++i)
            if (kIsFinal[static_cast<unsigned char>(all[i])]) {
                fin = i;
                break;
            }
        if (fin == ForwardFinder::npos && quickEnd < all.size()) fin = finals.next(pos, pos + kFinalReach);
        if (fin == ForwardFinder::npos) {
            const std::size_t left = all.size() - pos;
            if (left <= kLongestPending) {
                st.Pending.assign(all.substr(pos));
                return;
            }
            // A read that ends inside a longer sequence leaves it for the
            // next read, which may bring its final: where the reads end
            // changes nothing. Past the reach it is no sequence.
            if (received && left <= kFinalReach) {
                st.CutPending.assign(all.substr(pos));
                return;
            }
            ++pos;  // only the ESC goes; the rest is ordinary text
            continue;
        }
        if ((all[fin] | 0x20) == 'm' && fin >= pos + 2)
            ansi_.A_ApplySgrList(all.substr(pos + 2, fin - pos - 2), win);
        else
            ansi_.A_ParseCsi(all.substr(pos, fin - pos + 1), win);
        pos = fin + 1;
    }
}

void OutputWriter::missShortSgr(std::size_t set, std::uint64_t key, std::string_view params, int win) {
    SgrEffect effect;
    if (!forEachSgrParam(params, [&](std::string_view p) { return addQuietSgr(effect, p); })) {
        // Some parameter has a word for the debug window: one by one.
        ansi_.A_ApplySgrList(params, win);
        return;
    }
    // The newest takes the first way; the one it held moves to the second.
    sgrCache_[set + 1] = sgrCache_[set];
    sgrCache_[set] = {key, effect};
    effect.applyTo(windows_.state[win]);
}

TextStyle OutputWriter::styleOf(const WindowState& st, bool underline) const {
    TextStyle style;
    style.colour = st.Colour + (st.NotBold ? rgb(64, 64, 64) : rgb(127, 127, 127));
    style.underline = underline;
    style.graphics = windows_.Graphics;
    return style;
}

void OutputWriter::applyLimit(int win) {
    const std::size_t limit = static_cast<std::size_t>(windowInfo(win).tagLimit);
    OutputWindow& out = windows_.text[win];
    if (limit == 0 || out.size() <= limit) return;
    out.cutAfterFirst(out.size() - (limit * 4 + 2) / 5);
}

}  // namespace kelpa
