// The page "Macros": mirrors the core's macro editor and forwards the
// user's clicks and typing to it.
#pragma once

#include <QObject>

#include "toolkit/widget_kit_qt.h"

#include <cstdint>
#include <functional>

#include "command/macro_editor.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QWidget;

namespace kelpa::qt {

class MacroPage : public QObject {
    Q_OBJECT
public:
    // `run` calls into the core the way the main window guards its calls.
    using Runner = std::function<void(const char* handler, const std::function<void()>& call)>;
    MacroPage(MacroEditor& editor, Runner run, QWidget* page);

    // Shows the model's list and boxes if they changed.
    void sync();

    EntryList* Mlist;
    QLabel* MListName;
    QLineEdit* txtMacrosLabel;
    QPlainTextEdit* txtMacrosCommands;
    QPushButton* brefresh3;
    QPushButton* Command1;
    QPushButton* BTNMacrosNew;
    QPushButton* BTNMacrosSave;
    QPushButton* BTNMacrosDelete;

private:
    void click(QPushButton* button, const char* handler, void (MacroEditor::*action)());

    MacroEditor& editor_;
    Runner run_;
    std::uint64_t shownRevision_ = ~std::uint64_t{0};
};

}  // namespace kelpa::qt
