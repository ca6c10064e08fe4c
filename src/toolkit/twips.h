// Screen geometry of the forms, in twips.
#pragma once

namespace kelpa {

struct TwipRect {
    int left = 0, top = 0, width = 0, height = 0;
    friend bool operator==(const TwipRect&, const TwipRect&) = default;
};

inline constexpr int kTwipsPerPixel = 15;  // at 96 dots per inch

}  // namespace kelpa
