#include "common/text.h"

#include <climits>

namespace kelpa {

std::string trimBlanks(std::string_view s) {
    std::size_t b = 0;
    std::size_t e = s.size();
    while (b < e && s[b] == ' ') ++b;
    while (e > b && s[e - 1] == ' ') --e;
    return std::string(s.substr(b, e - b));
}

std::string replaceAll(std::string_view s, std::string_view from, std::string_view to) {
    std::string out;
    out.reserve(s.size());
    std::size_t pos = 0;
    while (true) {
        std::size_t hit = s.find(from, pos);
        if (hit == std::string_view::npos) break;
        out.append(s.substr(pos, hit - pos));
        out.append(to);
        pos = hit + from.size();
    }
    out.append(s.substr(pos));
    return out;
}

std::size_t countOf(std::string_view s, std::string_view what) {
    std::size_t n = 0;
    for (std::size_t p = s.find(what); p != std::string_view::npos; p = s.find(what, p + what.size())) ++n;
    return n;
}

std::string decimal(long long n) { return std::to_string(n); }

int leadingInt32(std::string_view s) {
    std::size_t i = 0;
    while (i < s.size() && s[i] == ' ') ++i;
    bool neg = false;
    if (i < s.size() && (s[i] == '-' || s[i] == '+')) {
        neg = s[i] == '-';
        ++i;
    }
    long long v = 0;
    for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i) {
        v = v * 10 + (s[i] - '0');
        if (v > static_cast<long long>(INT_MAX) + 1) v = static_cast<long long>(INT_MAX) + 1;
    }
    if (neg) v = -v;
    if (v > INT_MAX) v = INT_MAX;
    if (v < INT_MIN) v = INT_MIN;
    return static_cast<int>(v);
}

}  // namespace kelpa
