// The controls of the character's status: the frame above the tabs and the
// four pages of InfoTabs. They are laid out and coloured here; what fills
// them comes from the status frames.
#pragma once

#include <array>

class QFrame;
class QLabel;
class QWidget;

namespace kelpa::qt {

class TabControl;

struct StatusPanel {
    QFrame* Frame3 = nullptr;
    TabControl* InfoTabs = nullptr;
    QFrame* Frame2 = nullptr;  // page "Life"
    QFrame* Frame4 = nullptr;  // page "Gen"
    QFrame* Frame5 = nullptr;  // page "Other"
    QFrame* FRM_DBG = nullptr; // page "Dbg", hidden at start
    std::array<QLabel*, 57> Info1{};
    std::array<QLabel*, 5> Info2{};
    std::array<QLabel*, 6> XInfo{};
    std::array<QFrame*, 11> ShapeParam{};
    QLabel* Label9 = nullptr;

    // Creates all of it on the form; the form places Frame3 and InfoTabs.
    void build(QWidget* form);
};

}  // namespace kelpa::qt
