// The trigger editor of the "Triggers" tab: three boxes, a list of the
// files of one folder, and the buttons that load, write and delete them.
// The page's widgets mirror this and hand every click to it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace kelpa {

class TriggerEditor {
public:
    TriggerEditor(FileSystem& files, Host& host, std::function<void()> loadTriggers)
        : files_(files), host_(host), loadTriggers_(std::move(loadTriggers)) {}

    // The boxes, in the core's text (lines end in CR LF).
    std::string txtTRGLabel;
    std::string TxtTrgFlags;
    std::string txtTRGBody;
    // Option1(1) "Global" selected; Option1(0) "Normal" otherwise.
    bool global = false;
    std::vector<std::string> TList;
    int listIndex = -1;
    // Changes whenever the editor rewrites the boxes or the list, and after
    // a save, whose file the boxes then show.
    std::uint64_t revision = 0;

    // The folder the option names at this moment.
    std::string folder() const;

    void brefresh2_Click();
    void Option1_Click(int index);
    // Failures are told in a message box; the boxes keep their text.
    void TList_DblClick();
    void btnTRGNew_Click();
    void btnTRGSave_Click();
    void btnTRGDelete_Click();
    void Reload_Click() { loadTriggers_(); }

private:
    std::string pathOf(const std::string& name) const { return folder() + "/" + name; }
    bool usableName();

    FileSystem& files_;
    Host& host_;
    std::function<void()> loadTriggers_;
};

}  // namespace kelpa
