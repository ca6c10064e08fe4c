// The controls of the character's status: the frame above the tabs and the
// four pages of InfoTabs. They are laid out and coloured here; what fills
// them comes from the status frames.
#pragma once

#include <array>
#include <cstdint>
#include <functional>

class QFrame;
class QLabel;
class QObject;
class QWidget;

namespace kelpa {
class StatusModel;
}

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
    std::array<QWidget*, 11> ShapeParam{};
    QLabel* Label9 = nullptr;
    // Mirrors that changed something on the screen, for the benches.
    std::uint64_t repaints = 0;

    // Creates all of it on the form; the form places Frame3 and InfoTabs.
    void build(QWidget* form);
    // Mouse moves over the cells and a double click on Label11 go to the
    // model, then `changed` runs; a mouse release on InfoTabs runs
    // `releasedOnTabs` (the form gives Text1 the focus).
    void listen(kelpa::StatusModel& model, QWidget* label11, std::function<void()> changed,
                std::function<void()> releasedOnTabs);
    // Copies what changed in the model since the last call.
    void sync(kelpa::StatusModel& model);

private:
    QObject* events_ = nullptr;
};

}  // namespace kelpa::qt
