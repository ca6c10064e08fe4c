// Where the program keeps its files, and which system information program
// the About dialog starts.
#include <gtest/gtest.h>

#include <set>

#include "shell/program_folder.h"
#include "shell/system_info.h"

using namespace kelpa;

TEST(ProgramFolder, ArgumentThenWritableExecutableFolderThenXdgDataHome) {
    struct Row { bool writable, installed; std::vector<std::string> args; std::string xdg, home, folder; };
    const std::vector<Row> rows = {
        {true, false, {}, "/x", "/h", "/opt/kelpa"},                       // portable copy
        {false, false, {}, "/x/data/", "/h", "/x/data/kelpa"},             // read-only folder
        {true, true, {}, "", "/home/p", "/home/p/.local/share/kelpa"},     // installed copy
        {false, false, {}, "relative", "/home/p", "/home/p/.local/share/kelpa"},
        {false, false, {}, "", "", ""},                                    // nowhere to go
        {false, false, {"--folder", "games/k"}, "", "", "games/k"},
        {true, false, {"-x", "--folder=/srv/k"}, "/x", "/h", "/srv/k"},
        {true, false, {"--folder"}, "/x", "/h", ""},                       // a name is needed
        {true, false, {"--folder="}, "/x", "/h", ""},
    };
    for (const Row& r : rows) {
        const ProgramFolder f = chooseProgramFolder({"/opt/kelpa", r.writable, r.installed, r.args, r.xdg, r.home});
        EXPECT_EQ(f.path, r.folder) << r.writable << r.installed << " " << r.xdg << " " << r.home;
        EXPECT_FALSE(f.reason.empty());
    }
}

TEST(SystemInfo, TheFirstKnownProgramOnThePathStartsOrTheMessageIsShown) {
    const std::set<std::string> present = {"/usr/bin/hardinfo", "/opt/kde/bin/kinfocenter", "./kinfocenter"};
    auto isExecutable = [&](const std::string& p) { return present.count(p) != 0; };
    EXPECT_EQ(findSystemInfoProgram("/usr/bin:/opt/kde/bin/", isExecutable), "/opt/kde/bin/kinfocenter");
    EXPECT_EQ(findSystemInfoProgram("/usr/local/bin:/usr/bin", isExecutable), "/usr/bin/hardinfo");
    EXPECT_EQ(findSystemInfoProgram(":.:/nowhere", isExecutable), "") << "relative entries are not searched";

    std::vector<std::string> started;
    auto start = [&](bool ok) {
        return [&, ok](const std::string& p) {
            started.push_back(p);
            return ok;
        };
    };
    EXPECT_EQ(StartSysInfo("/usr/bin", isExecutable, start(true)), "");
    EXPECT_EQ(StartSysInfo("/usr/bin", isExecutable, start(false)), kSysInfoUnavailable);
    EXPECT_EQ(StartSysInfo("", isExecutable, start(true)), kSysInfoUnavailable);
    EXPECT_EQ(started, (std::vector<std::string>{"/usr/bin/hardinfo", "/usr/bin/hardinfo"}));
}
