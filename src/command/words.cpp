#include "command/words.h"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>

namespace kelpa {

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

std::string getword(std::string& s) {
    const std::size_t blank = s.find(' ');
    const std::size_t pair = s.find("\r\n");
    const std::size_t end = blank < pair ? blank : pair;
    if (end == std::string::npos) {
        std::string word = upperCase(s);
        s.clear();
        return word;
    }
    std::string word = upperCase(std::string_view(s).substr(0, end));
    s.erase(0, end + 1);
    return word;
}

namespace {

bool skippable(char c) { return c == ' ' || c == '\t' || c == '\n'; }

double radixValue(std::string_view t, std::size_t i, unsigned radix) {
    double v = 0;
    for (; i < t.size(); ++i) {
        if (skippable(t[i])) continue;
        const char c = upperCase1252(t[i]);
        unsigned d;
        if (c >= '0' && c <= '9')
            d = static_cast<unsigned>(c - '0');
        else if (c >= 'A' && c <= 'F')
            d = static_cast<unsigned>(c - 'A' + 10);
        else
            break;
        if (d >= radix) break;
        v = v * radix + d;
    }
    return std::isfinite(v) ? v : DBL_MAX;
}

}  // namespace

double Val(std::string_view t) {
    std::size_t i = 0;
    while (i < t.size() && skippable(t[i])) ++i;
    if (i + 1 < t.size() && t[i] == '&') {
        const char r = upperCase1252(t[i + 1]);
        if (r == 'H') return radixValue(t, i + 2, 16);
        if (r == 'O') return radixValue(t, i + 2, 8);
    }
    // Gather the number without its blanks, then read it in the C locale.
    std::string num;
    bool negative = false, digits = false, point = false, exponentNegative = false;
    if (i < t.size() && (t[i] == '+' || t[i] == '-')) {
        negative = t[i] == '-';
        ++i;
    }
    for (; i < t.size(); ++i) {
        const char c = t[i];
        if (skippable(c)) continue;
        if (c >= '0' && c <= '9') {
            num += c;
            digits = true;
        } else if (c == '.' && !point) {
            num += c;
            point = true;
        } else {
            break;
        }
    }
    if (!digits) return 0;
    if (i < t.size() && (upperCase1252(t[i]) == 'E' || upperCase1252(t[i]) == 'D')) {
        std::size_t j = i + 1;
        std::string exp = "e";
        while (j < t.size() && skippable(t[j])) ++j;
        if (j < t.size() && (t[j] == '+' || t[j] == '-')) {
            exponentNegative = t[j] == '-';
            if (exponentNegative) exp += '-';
            ++j;
        }
        bool expDigits = false;
        for (; j < t.size(); ++j) {
            if (skippable(t[j])) continue;
            if (t[j] < '0' || t[j] > '9') break;
            // Leading zeros add nothing; a long exponent saturates anyway.
            if (exp.size() < 12) exp += t[j];
            expDigits = true;
        }
        if (expDigits) num += exp;
    }
    double v = 0;
    const auto [ptr, ec] = std::from_chars(num.data(), num.data() + num.size(), v);
    (void)ptr;
    if (ec == std::errc::result_out_of_range) v = exponentNegative ? 0.0 : DBL_MAX;
    return negative ? -v : v;
}

double roundHalfEven(double x) {
    if (!std::isfinite(x)) return x;
    const double f = std::floor(x);
    const double diff = x - f;
    if (diff > 0.5) return f + 1;
    if (diff < 0.5) return f;
    return std::fmod(f, 2.0) == 0 ? f : f + 1;
}

std::string numberText(double x) {
    if (x == 0) return "0";
    if (std::isnan(x)) return "NaN";
    if (std::isinf(x)) return x > 0 ? "Infinity" : "-Infinity";
    char buf[64];
    const auto [end, ec] = std::to_chars(buf, buf + sizeof buf, x, std::chars_format::general, 15);
    if (ec != std::errc()) return "0";
    std::string s(buf, end);
    for (char& c : s)
        if (c == 'e') c = 'E';
    return s;
}

}  // namespace kelpa
