// Which folder is the program's: where CONN.ZIG, the logs, the macros and
// the triggers live. Decided once at start from the command line, the
// executable's folder and the environment.
#pragma once

#include <string>
#include <vector>

namespace kelpa {

struct ProgramFolderFacts {
    std::string executableFolder;
    // Whether the program may write into the executable's folder.
    bool executableFolderWritable = false;
    // An installed copy: bin/kelpa with share/applications/kelpa.desktop
    // beside its folder. It never keeps its files next to the executable.
    bool installed = false;
    std::vector<std::string> arguments;  // without the program's name
    std::string xdgDataHome;             // $XDG_DATA_HOME, empty when unset
    std::string home;                    // $HOME, empty when unset
};

struct ProgramFolder {
    std::string path;    // empty when none could be chosen
    std::string reason;  // how it was chosen, or why none could be
};

// --folder DIR (or --folder=DIR) names it. Otherwise the executable's folder
// when it is writable and not an installed copy, else "kelpa" under the XDG
// data home ($XDG_DATA_HOME when it is an absolute path, else
// $HOME/.local/share). A relative DIR is returned as given.
ProgramFolder chooseProgramFolder(const ProgramFolderFacts& facts);

// The start-up line that names the folder and why, in the code page the
// debug window shows: a path in UTF-8 that the code page cannot hold stays
// as it is.
std::string programFolderNote(const std::string& path, const std::string& reason);

}  // namespace kelpa
