#include "common/codepage.h"

namespace kelpa {

namespace {

// 0x80..0x9F; the five holes of the code page keep their C1 values.
constexpr char32_t kHigh[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

}  // namespace

char32_t cp1252ToUnicode(unsigned char byte) {
    if (byte >= 0x80 && byte < 0xA0) return kHigh[byte - 0x80];
    return byte;
}

char unicodeToCp1252(char32_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
    for (int i = 0; i < 32; ++i)
        if (kHigh[i] == c) return static_cast<char>(0x80 + i);
    return '?';
}

std::string toBytes(std::u32string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char32_t c : text) out += unicodeToCp1252(c);
    return out;
}

std::string cp1252ToUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() * 2);
    for (char b : bytes) {
        const char32_t c = cp1252ToUnicode(static_cast<unsigned char>(b));
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xE0 | (c >> 12));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}

bool utf8ToCp1252(std::string_view utf8, std::string& out) {
    out.clear();
    for (std::size_t i = 0; i < utf8.size();) {
        const auto lead = static_cast<unsigned char>(utf8[i]);
        char32_t c;
        std::size_t n;
        if (lead < 0x80) {
            c = lead;
            n = 1;
        } else if ((lead & 0xE0) == 0xC0 && lead >= 0xC2) {
            c = lead & 0x1F;
            n = 2;
        } else if ((lead & 0xF0) == 0xE0) {
            c = lead & 0x0F;
            n = 3;
        } else {
            return false;  // four-byte characters are beyond the code page too
        }
        if (i + n > utf8.size()) return false;
        for (std::size_t k = 1; k < n; ++k) {
            const auto b = static_cast<unsigned char>(utf8[i + k]);
            if ((b & 0xC0) != 0x80) return false;
            c = (c << 6) | (b & 0x3F);
        }
        if (n == 3 && c < 0x800) return false;  // overlong
        const char byte = unicodeToCp1252(c);
        if (byte == '?' && c != '?') return false;
        out += byte;
        i += n;
    }
    return true;
}

char upperCase1252(char c) {
    const auto u = static_cast<unsigned char>(c);
    if (u >= 'a' && u <= 'z') return static_cast<char>(u - 32);
    switch (u) {
        case 0x9A: return static_cast<char>(0x8A);  // s caron
        case 0x9C: return static_cast<char>(0x8C);  // oe
        case 0x9E: return static_cast<char>(0x8E);  // z caron
        case 0xFF: return static_cast<char>(0x9F);  // y diaeresis
        default: break;
    }
    if (u >= 0xE0 && u <= 0xFE && u != 0xF7) return static_cast<char>(u - 32);
    return c;
}

std::string upperCase(std::string_view s) {
    std::string out(s);
    for (char& c : out) c = upperCase1252(c);
    return out;
}

bool sameIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (upperCase1252(a[i]) != upperCase1252(b[i])) return false;
    return true;
}

bool lessIgnoringCase(std::string_view a, std::string_view b) {
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
        const auto x = static_cast<unsigned char>(upperCase1252(a[i]));
        const auto y = static_cast<unsigned char>(upperCase1252(b[i]));
        if (x != y) return x < y;
    }
    return a.size() != b.size() ? a.size() < b.size() : a < b;
}

}  // namespace kelpa
