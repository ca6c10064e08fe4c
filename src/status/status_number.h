// The number of an item's field or a cell: Val, rounded half to even. The
// usual text, a few plain digits ended by "," or by the text's end, is read
// here directly; anything else goes to Val, which gives the same for those.
#pragma once

#include <cmath>
#include <string_view>

#include "common/numbers.h"

namespace kelpa {

inline double statusNumber(std::string_view s) {
    std::size_t i = 0;
    const bool negative = !s.empty() && s[0] == '-';
    if (negative) i = 1;
    long long v = 0;
    const std::size_t start = i;
    while (i < s.size() && i - start < 15 && s[i] >= '0' && s[i] <= '9') v = v * 10 + (s[i++] - '0');
    if (i > start && (i == s.size() || s[i] == ','))
        return negative ? -static_cast<double>(v) : static_cast<double>(v);
    return std::nearbyint(Val(s));
}

}  // namespace kelpa
