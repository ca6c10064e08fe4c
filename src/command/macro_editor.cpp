#include "command/macro_editor.h"

#include "command/macro_runner.h"
#include "common/lines.h"
#include "common/text.h"

namespace kelpa {

void MacroEditor::fill(const std::string& folder) {
    Mlist = files_.list(folder, ".macro");
    ++revision;
}

void MacroEditor::brefresh3_Click() {
    MListName = "Main";
    fill(MacroRunner::folder(""));
}

void MacroEditor::Command1_Click() {
    MListName = "Override(" + overrideDir_ + ")";
    Mlist.clear();
    ++revision;
    if (!overrideDir_.empty()) fill(MacroRunner::folder(overrideDir_));
}

std::string MacroEditor::workingFolder() const {
    return MacroRunner::folder(MListName != "Main" ? overrideDir_ : std::string());
}

void MacroEditor::Mlist_DblClick(const std::string& entry) {
    if (entry.empty()) {
        txtMacrosLabel.clear();
        txtMacrosCommands.clear();
        ++revision;
        return;
    }
    const std::string path = workingFolder() + entry;
    std::string text;
    // A file that has gone, or that Save would turn into other bytes,
    // leaves the boxes as they were.
    const bool read = files_.readAll(path, text);
    if (!read || isUtf16Text(text)) {
        host_.messageBox(fileFailureMessage("read the macro", files_.absolute(path), read ? kUtf16Reason : files_.lastError()));
        return;
    }
    std::string lines;
    bool first = true;
    for (std::string_view line : fileLines(text)) {
        if (!first) lines += kCrLf;
        lines.append(line);
        first = false;
    }
    txtMacrosLabel = entry;
    txtMacrosCommands = lines;
    ++revision;
}

void MacroEditor::BTNMacrosNew_Click() {
    txtMacrosLabel = "?.macro";
    txtMacrosCommands =
        "#NOP  ************************************* \r\n"
        "#NOP  *                MACRO              * \r\n"
        "#NOP  ************************************* \r\n";
    ++revision;
}

bool MacroEditor::usableName(const std::string& name) {
    const std::string why = nameRefusal("macro", name, files_.list(workingFolder(), ".macro"));
    if (why.empty()) return true;
    host_.messageBox(why);
    return false;
}

void MacroEditor::BTNMacrosSave_Click() {
    if (!usableName(txtMacrosLabel)) return;
    // The program's own macro folder is made on the first save; an
    // override folder that is missing is reported like any failure.
    const std::string path = workingFolder() + txtMacrosLabel;
    if ((MListName == "Main" || overrideDir_.empty()) && !files_.createDirectories(MacroRunner::kFolder)) {
        host_.messageBox(fileFailureMessage("save the macro", files_.absolute(path),
                                            folderFailure(files_, MacroRunner::kFolder)));
        return;
    }
    if (!files_.writeAll(path, trimBlanks(txtMacrosCommands) + "\r\n")) {
        host_.messageBox(fileFailureMessage("save the macro", files_.absolute(path), files_.lastError()));
        return;
    }
    // The boxes show what was saved: a character the code page lacks went
    // to the file as "?".
    ++revision;
}

void MacroEditor::BTNMacrosDelete_Click() {
    if (!host_.askYesNo("Please confirm macro deletion", "Deletion confirmation")) return;
    if (!usableName(txtMacrosLabel)) return;
    const std::string path = workingFolder() + txtMacrosLabel;
    if (!files_.remove(path)) {
        host_.messageBox(fileFailureMessage("delete the macro", files_.absolute(path), files_.lastError()));
        return;
    }
    brefresh3_Click();
    BTNMacrosNew_Click();
}

}  // namespace kelpa
