#include "common/numbers.h"

#include <cfloat>
#include <cstdint>
#include <charconv>
#include <cmath>
#include <system_error>

namespace kelpa {

namespace {

// Only the letters of a number are folded: H, O, E, D and the hex digits.
char asciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool skippable(char c) { return c == ' ' || c == '\t' || c == '\n'; }

double radixValue(std::string_view t, std::size_t i, unsigned radix) {
    double v = 0;
    for (; i < t.size(); ++i) {
        if (skippable(t[i])) continue;
        const char c = asciiUpper(t[i]);
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
        const char r = asciiUpper(t[i + 1]);
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
    if (i < t.size() && (asciiUpper(t[i]) == 'E' || asciiUpper(t[i]) == 'D')) {
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

bool valInt32(std::string_view text, std::int32_t& out) {
    // The default rounding mode takes a tie to the even neighbour.
    const double r = std::nearbyint(Val(text));
    if (!(r >= -2147483648.0 && r <= 2147483647.0)) return false;
    out = static_cast<std::int32_t>(r);
    return true;
}

std::int32_t valInt32Clamped(std::string_view text) {
    std::int32_t v = 0;
    if (valInt32(text, v)) return v;
    return Val(text) < 0 ? INT32_MIN : INT32_MAX;
}

}  // namespace kelpa
