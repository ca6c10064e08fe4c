// The "Triggers" tab: its controls mirror the core's trigger editor, and
// every click is handed to it.
#pragma once

#include <QObject>

#include "toolkit/widget_kit_qt.h"

#include <cstdint>
#include <functional>

#include "triggers/trigger_editor.h"

class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QRadioButton;
class QWidget;

namespace kelpa::qt {

class TriggerPage : public QObject {
    Q_OBJECT
public:
    // `guard` runs a handler of the core so that a failure never ends the
    // program.
    using Guard = std::function<void(const char* handler, const std::function<void()>& f)>;

    TriggerPage(QWidget* page, TriggerEditor& editor, Guard guard);

    // Shows what the editor changed since the last call.
    void sync();

private:
    void connectControls();

    QWidget* page_;
    TriggerEditor& editor_;
    Guard guard_;
    QLineEdit* txtTRGLabel_;
    QPlainTextEdit* TxtTrgFlags_;
    QPlainTextEdit* txtTRGBody_;
    QRadioButton* Option1_[2];
    EntryList* TList_;
    std::uint64_t shownRevision_ = ~std::uint64_t{0};
    bool syncing_ = false;
};

}  // namespace kelpa::qt
