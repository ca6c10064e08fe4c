#include "triggers/trigger_editor.h"

#include "common/lines.h"
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

void TriggerEditor::TList_DblClick() {
    ++revision;
    const bool onEntry = listIndex >= 0 && static_cast<std::size_t>(listIndex) < TList.size() &&
                         !TList[static_cast<std::size_t>(listIndex)].empty();
    const std::string name = onEntry ? TList[static_cast<std::size_t>(listIndex)] : std::string();
    std::string bytes;
    const bool read = onEntry && files_.readAll(pathOf(name), bytes);
    if (onEntry && (!read || isUtf16Text(bytes))) {
        // The boxes stay as they were: a name over empty boxes would let
        // Save replace the file that could not be read.
        host_.messageBox(fileFailureMessage("read the trigger", files_.absolute(pathOf(name)),
                                            read ? kUtf16Reason : files_.lastError()));
        return;
    }
    txtTRGBody.clear();
    TxtTrgFlags.clear();
    txtTRGLabel = name;
    if (!onEntry) return;
    // Only flag, pattern and action lines reach the boxes.
    for (std::string_view line : fileLines(bytes)) {
        if (isFlagLine(line)) {
            TxtTrgFlags.append(line);
            TxtTrgFlags += "\r\n";
        } else if (isPatternLine(line) || startsWithUpper(line, "ACTION")) {
            txtTRGBody.append(line);
            txtTRGBody += "\r\n";
        }
    }
}

void TriggerEditor::btnTRGNew_Click() {
    txtTRGBody = "pattern1=?\r\naction=#nop\r\npattern1=?\r\naction=#nop";
    TxtTrgFlags = "flag1=1";
    txtTRGLabel = "?.trigger";
    ++revision;
}

bool TriggerEditor::usableName() {
    const std::string why = nameRefusal("trigger", txtTRGLabel, files_.list(folder(), TriggerStore::kExtension));
    if (why.empty()) return true;
    host_.messageBox(why);
    return false;
}

void TriggerEditor::btnTRGSave_Click() {
    if (!usableName()) return;
    const std::string path = files_.absolute(pathOf(txtTRGLabel));
    // The first save of a fresh install makes the folder.
    if (!files_.createDirectories(folder())) {
        host_.messageBox(fileFailureMessage("save the trigger", path, folderFailure(files_, folder())));
        return;
    }
    std::string bytes;
    const std::string flags = trimBlanks(TxtTrgFlags);
    if (!flags.empty()) bytes += flags + "\r\n";
    bytes += trimBlanks(txtTRGBody) + "\r\n";
    // Written beside the old file and renamed over it.
    if (!files_.writeAll(pathOf(txtTRGLabel), bytes)) {
        host_.messageBox(fileFailureMessage("save the trigger", path, files_.lastError()));
        return;
    }
    loadTriggers_();
    // The boxes show what was saved: a character the code page lacks went
    // to the file as "?".
    ++revision;
    // The debug window, where the loader tells of a file it leaves out, is
    // off at start: the player who just saved one hears it here.
    TriggerRecords parts;
    const TriggerFileResult r = readTriggerFile(bytes, path, parts, [](const std::string&) {});
    if (!r.ok)
        host_.messageBox("The trigger " + path + " is saved but not loaded: line " + decimal(r.fault.line) + ": " +
                         r.fault.reason + ".");
}

void TriggerEditor::btnTRGDelete_Click() {
    if (!host_.askYesNo("Please confirm trigger deletion", "Deletion confirmation")) return;
    if (!usableName()) return;
    const std::string path = pathOf(txtTRGLabel);
    if (!files_.remove(path)) {
        host_.messageBox(fileFailureMessage("delete the trigger", files_.absolute(path), files_.lastError()));
        return;
    }
    brefresh2_Click();
    btnTRGNew_Click();
}

}  // namespace kelpa
