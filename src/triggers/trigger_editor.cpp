#include "triggers/trigger_editor.h"

#include "common/text.h"
#include "triggers/trigger_file.h"
#include "triggers/trigger_store.h"

namespace kelpa {

std::string TriggerEditor::folder() const {
    return global ? TriggerStore::kGlobalFolder : TriggerStore::kNormalFolder;
}

void TriggerEditor::brefresh2_Click() {
    TList = files_.list(folder(), TriggerStore::kExtension);
    listIndex = -1;
    ++revision;
}

void TriggerEditor::Option1_Click(int index) {
    global = index == 1;
    brefresh2_Click();
}

std::string TriggerEditor::TList_DblClick() {
    txtTRGBody.clear();
    TxtTrgFlags.clear();
    txtTRGLabel.clear();
    ++revision;
    if (listIndex < 0 || static_cast<std::size_t>(listIndex) >= TList.size() ||
        TList[static_cast<std::size_t>(listIndex)].empty())
        return {};
    txtTRGLabel = TList[static_cast<std::size_t>(listIndex)];
    std::string bytes;
    if (!files_.readAll(pathOf(txtTRGLabel), bytes))
        return "Cannot read the trigger " + files_.absolute(pathOf(txtTRGLabel)) + ".";
    // Only flag, pattern and action lines reach the boxes.
    for (std::string_view line : triggerFileLines(bytes)) {
        if (isFlagLine(line)) {
            TxtTrgFlags.append(line);
            TxtTrgFlags += "\r\n";
        } else if (isPatternLine(line) || startsWithUpper(line, "ACTION")) {
            txtTRGBody.append(line);
            txtTRGBody += "\r\n";
        }
    }
    return {};
}

void TriggerEditor::btnTRGNew_Click() {
    txtTRGBody = "pattern1=?\r\naction=#nop\r\npattern1=?\r\naction=#nop";
    TxtTrgFlags = "flag1=1";
    txtTRGLabel = "?.trigger";
    ++revision;
}

std::string TriggerEditor::refusedName() const {
    const std::string& n = txtTRGLabel;
    if (n.empty() || n == "." || n == ".." || n.find('/') != std::string::npos ||
        n.find('\0') != std::string::npos)
        return "Cannot save the trigger: \"" + n + "\" is not a file name.";
    return {};
}

std::string TriggerEditor::btnTRGSave_Click() {
    if (std::string refused = refusedName(); !refused.empty()) return refused;
    if (!files_.exists(folder()))
        return "Cannot save the trigger: the folder " + files_.absolute(folder()) + " does not exist.";
    std::string bytes;
    const std::string flags = trimBlanks(TxtTrgFlags);
    if (!flags.empty()) bytes += flags + "\r\n";
    bytes += trimBlanks(txtTRGBody) + "\r\n";
    // Written beside the old file and renamed over it.
    if (!files_.writeAll(pathOf(txtTRGLabel), bytes)) {
        std::string why = files_.lastError();
        return "Cannot save the trigger " + files_.absolute(pathOf(txtTRGLabel)) +
               (why.empty() ? "." : ": " + why + ".");
    }
    loadTriggers_();
    return {};
}

std::string TriggerEditor::btnTRGDelete_Click(const Ask& ask) {
    if (!ask("Deletion confirmation", "Please confirm trigger deletion")) return {};
    const std::string path = pathOf(txtTRGLabel);
    if (!refusedName().empty() || !files_.exists(path) || !files_.remove(path))
        return "Cannot delete the trigger " + files_.absolute(path) + ": there is no such file.";
    brefresh2_Click();
    btnTRGNew_Click();
    return {};
}

}  // namespace kelpa
