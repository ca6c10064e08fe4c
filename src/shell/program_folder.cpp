#include "shell/program_folder.h"

#include "common/codepage.h"

namespace kelpa {

namespace {

constexpr std::string_view kFolderOption = "--folder";

std::string joined(std::string base, const std::string& tail) {
    while (base.size() > 1 && base.back() == '/') base.pop_back();
    return base == "/" ? base + tail : base + "/" + tail;
}

}  // namespace

ProgramFolder chooseProgramFolder(const ProgramFolderFacts& facts) {
    const std::vector<std::string>& args = facts.arguments;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == kFolderOption) {
            if (i + 1 >= args.size() || args[i + 1].empty())
                return {{}, "--folder needs the name of a folder"};
            return {args[i + 1], "named by --folder"};
        }
        if (a.rfind(std::string(kFolderOption) + "=", 0) == 0) {
            std::string dir = a.substr(kFolderOption.size() + 1);
            if (dir.empty()) return {{}, "--folder needs the name of a folder"};
            return {dir, "named by --folder"};
        }
    }
    if (facts.executableFolderWritable && !facts.installed)
        return {facts.executableFolder, "the executable's folder"};
    // Relative values are invalid by the XDG rules and are passed over.
    if (!facts.xdgDataHome.empty() && facts.xdgDataHome.front() == '/')
        return {joined(facts.xdgDataHome, "kelpa"), "XDG_DATA_HOME"};
    if (!facts.home.empty() && facts.home.front() == '/')
        return {joined(joined(facts.home, ".local/share"), "kelpa"), "the XDG data home in HOME"};
    return {{}, "neither the executable's folder nor XDG_DATA_HOME nor HOME can be used; name one with --folder"};
}

std::string programFolderNote(const std::string& path, const std::string& reason) {
    std::string shown;
    if (!utf8ToCp1252(path, shown)) shown = path;
    return "Program folder: " + shown + " (" + reason + ")";
}

}  // namespace kelpa
