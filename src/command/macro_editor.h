// The macro editor: the list of one macro folder, the file name box and
// the text box, and the buttons that read, write and delete macro files.
// The page on screen mirrors this model and forwards its clicks here.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace kelpa {

class MacroEditor {
public:
    MacroEditor(FileSystem& files, Host& host, const std::string& overrideDir)
        : files_(files), host_(host), overrideDir_(overrideDir) {}

    // The controls' contents.
    std::vector<std::string> Mlist;  // sorted file names
    std::string MListName = "Main";
    std::string txtMacrosLabel;
    std::string txtMacrosCommands;
    // Changes whenever the model changes the boxes or the list, and after a
    // save, whose file the boxes then show.
    std::uint64_t revision = 0;

    void brefresh3_Click();
    void Command1_Click();
    // The double click on an entry; an empty text means no selection.
    void Mlist_DblClick(const std::string& entry);
    void BTNMacrosNew_Click();
    void BTNMacrosSave_Click();
    void BTNMacrosDelete_Click();

    // Where Open, Save and Delete work: the list's label decides.
    std::string workingFolder() const;

private:
    void fill(const std::string& folder);
    // A name the folder can hold, or a message saying why not.
    bool usableName(const std::string& name);

    FileSystem& files_;
    Host& host_;
    const std::string& overrideDir_;
};

}  // namespace kelpa
