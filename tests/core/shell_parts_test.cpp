// The shell's parts that need no toolkit: where the program keeps its
// files, which system information program the About dialog starts, the gate
// that orders the window's events, and how the form follows its size.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "shell/event_gate.h"
#include "shell/form_layout.h"
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
    // The debug window shows code page 1252: an accent in the path is one byte.
    EXPECT_EQ(programFolderNote("/j/Mes Jeux \u00e9", "why"), "Program folder: /j/Mes Jeux \xE9 (why)");
    EXPECT_EQ(programFolderNote("/j/\u0151", "why"), "Program folder: /j/\u0151 (why)");
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

// The gate keeps one handler at a time: events that come while a handler
// is busy wait and run in order once it is over.
TEST(EventGate, EventsDuringAHandlerWaitAndRunInOrderOnceItIsOver) {
    EventGate gate;
    std::vector<std::string> seen;
    // A handler that only notes its name.
    auto note = [&seen](std::string name) { return [&seen, name] { seen.push_back(name); }; };
    gate.setAfterHandlers(note("after"));

    EXPECT_TRUE(gate.enter(EventGate::kEach, note("idle")));
    gate.run([&] {
        seen.push_back("box opens");
        // What a nested event loop delivers while the box is up; a late
        // timer fires once.
        for (const auto& [key, name] : {std::pair(EventGate::kData, "data"), {EventGate::kAsTimer, "tick"},
                                        {EventGate::kAsTimer, "tick again"}, {EventGate::kData, "more data"},
                                        {EventGate::kEach, "close"}, {EventGate::kEach, "error"}})
            EXPECT_FALSE(gate.enter(key, note(name))) << name;
        // A handler inside the handler (a window the box leaves enabled)
        // runs at once and drains nothing.
        gate.run(note("inner"));
        seen.push_back("box closes");
    });
    EXPECT_EQ(seen, (std::vector<std::string>{"idle", "after", "box opens", "inner", "box closes", "data", "tick",
                                              "close", "error", "after"}));
    EXPECT_EQ(gate.waiting(), 0u);

    // A waiting event that opens a box lets the next ones wait behind it.
    EventGate next;
    seen.clear();
    next.run([&] {
        next.enter(EventGate::kData, [&] {
            seen.push_back("data opens a box");
            next.enter(EventGate::kQueueTimer, note("queue tick"));
            next.enter(EventGate::kData, note("data again"));
            seen.push_back("box closes");
        });
        next.enter(EventGate::kEach, note("close"));
    });
    EXPECT_EQ(seen, (std::vector<std::string>{"data opens a box", "box closes", "close", "queue tick", "data again"}));
    EXPECT_FALSE(next.busy());
}

// Growing the window by some amount grows the work area's windows and moves
// what sits below or right of them by that amount; the site bar stays, and a
// size too small for a rule keeps what the rule would have made negative.
TEST(FormLayout, ControlsFollowTheWindowAndTooSmallSizesGoNoLower) {
    const int w = kFormInnerWidth + kNominalFrameWidth, h = kFormInnerHeight + kNominalFrameHeight;
    FormLayout at, taller, wider, tiny;
    at.Form_Resize(w, h);
    taller.Form_Resize(w, h + 1000);
    wider.Form_Resize(w + 1000, h);
    for (const char* c : {"t", "HistT", "DBGWindow", "Mwindow(3)", "SSTab1", "SSTab2", "ToolsTabs", "HistView"})
        EXPECT_EQ(std::pair(wider[c].width, taller[c].height), std::pair(at[c].width + 1000, at[c].height + 1000))
            << c;
    EXPECT_EQ(wider["Text1"].width, at["Text1"].width + 1000);
    for (const char* c : {"BTN_BULK", "BTN_Flags", "Label11", "BSeek", "DList", "Label1", "brefresh", "BFilter"})
        EXPECT_EQ(wider[c].left, at[c].left + 1000) << c;
    for (const char* c : {"Text1", "BTN_BULK", "InfoTabs", "DebugInfo", "CMD_About", "Tseek", "brefresh", "BFilter"})
        EXPECT_EQ(taller[c].top, at[c].top + 1000) << c;
    for (const char* c : {"CB_Connections", "Site", "PPort", "CMD_CONNECT", "CMD_DISCONNECT", "Frame3"})
        EXPECT_EQ(taller[c], at[c]) << c;

    tiny.Form_Resize(w, h);
    tiny.Form_Resize(600, 600);
    for (const auto& [name, r] : tiny.all()) EXPECT_TRUE(r.width >= 0 && r.height >= 0) << name;
    EXPECT_EQ(tiny["PlayGround"].width, at["PlayGround"].width) << "a rule that would go below zero is skipped";
    EXPECT_LT(tiny["InfoTabs"].top, at["Frame3"].top) << "a low window lets the tabs slide over the frame";
}
