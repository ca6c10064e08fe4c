// Where the main form's controls stand, in twips, and the rules by which
// they follow the window's size. Plain arithmetic, so tests need no window.
#pragma once

#include <array>
#include <map>
#include <string>

#include "toolkit/twips.h"

namespace kelpa {

// The form's inside size at start.
inline constexpr int kFormInnerWidth = 12030;
inline constexpr int kFormInnerHeight = 7800;
// The rules read the outer size. Window managers differ (and a bare X
// server has none), so the outer size is the inside size plus the frame of
// the platform the rules were made for.
inline constexpr int kNominalFrameWidth = 120;
inline constexpr int kNominalFrameHeight = 330;

// Controls that the resize rules move, by their names.
class FormLayout {
public:
    FormLayout();  // the start geometry

    // Applies the rules for an outer size; a rule that would give a size
    // below zero is skipped and the others still run.
    void Form_Resize(int outerWidth, int outerHeight);

    const TwipRect& operator[](const std::string& name) const { return rects_.at(name); }
    const std::map<std::string, TwipRect>& all() const { return rects_; }

private:
    TwipRect& r(const char* name) { return rects_[name]; }
    std::map<std::string, TwipRect> rects_;
};

}  // namespace kelpa
