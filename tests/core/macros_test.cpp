// Macro calls through S_RunCommands with macro files in a temporary
// program folder: parameters, missing files, the override folder, nesting.
#include <gtest/gtest.h>

#include "support/client_harness.h"

using namespace kelpa;

namespace {

using Writes = std::vector<std::string>;

struct Macros : test::ClientHarness {
    void file(const std::string& name, const std::string& text) { fp.folder.write("macros/" + name, text); }
    void run(const std::string& text) { c.commands.S_RunCommands(text); }
    bool has(const std::string& debugLine) { return debugText().find(debugLine) != std::string::npos; }
    std::size_t count(const std::string& piece) {
        const std::string t = debugText();
        std::size_t n = 0;
        for (std::size_t p = t.find(piece); p != std::string::npos; p = t.find(piece, p + 1)) ++n;
        return n;
    }
};

}  // namespace

TEST(Macros, ParametersAreCleanedAndPutInAscendingOrder) {
    Macros h;
    h.file("go.macro", "say %1 and %2\r\n   \r\n#sv last %3\r\nsay %10|%20\r\n");
    h.run("@go a b\r\n@go\r\n@go a.b,c;d!e?f\r\n@go %2 q\r\n@go x          y");
    EXPECT_EQ(h.fp.socket.writes, (Writes{
                                      "say a and b\r\n", "say a0|b0\r\n",  // %10 lost its head to %1
                                      "say  and\r\n", "say 0|0\r\n",
                                      "say a and b\r\n", "say a0|b0\r\n",
                                      "say q and q\r\n", "say q0|q0\r\n",
                                      // ten blanks: three halvings leave two, an empty word
                                      "say x and\r\n", "say x0|0\r\n",
                                  }));
    h.run("@go 1 2 c");
    EXPECT_EQ(h.c.variables.entry(1).Value, "C");  // keyword lines fold the argument
    EXPECT_TRUE(h.has("Running Macro : @go a.b,c;d!e?f\r\n"));
}

TEST(Macros, NameAndArgumentsAreExpandedInUpperCaseOnly) {
    Macros h;
    // A name from a variable is upper case, and so is the file it finds.
    h.file("HIT.macro", "kill %1 %2\n#ifeq %1 BOB @other\r\r\n");
    h.file("OTHER.macro", "say other");
    h.run("#sv m hit\r\n#sv who bob\r\n@%M %WHO %who\r\n@%m x");
    EXPECT_EQ(h.fp.socket.writes, (Writes{"kill BOB %who\r\n", "say other\r\n"}));
    EXPECT_TRUE(h.has(h.fp.files.absolute("macros/%m.macro") + " UNKNOWN MACRO for command x\r\n\r\n"));
}

TEST(Macros, MissingFilesAndCaseAreTold) {
    Macros h;
    h.file("Bash.macro", "say bash");
    h.run("@nothere 1 2\r\n@bash\r\nsay after");
    EXPECT_TRUE(h.has("Running Macro : @nothere 1 2\r\n\r\n" + h.fp.files.absolute("macros/nothere.macro") +
                      " UNKNOWN MACRO for command 1 2\r\n\r\n"));
    EXPECT_TRUE(h.has(" UNKNOWN MACRO for command \r\n\r\nMacro names count case: there is macros/Bash.macro\r\n"));
    EXPECT_EQ(h.fp.socket.writes, Writes{"say after\r\n"});
}

TEST(Macros, OverrideFolderGoesFirstAndFallsBackToMain) {
    Macros h;
    h.file("go.macro", "say main %1");
    h.file("only.macro", "say only main");
    h.file("AREA/go.macro", "say area %1");
    h.run("#override area\r\n@go x\r\n@only\r\n#override\r\n@go y");
    EXPECT_EQ(h.fp.socket.writes, (Writes{"say area x\r\n", "say only main\r\n", "say main y\r\n"}));
}

TEST(Macros, DeepCallsRunAndCirclesStopAtTheLimit) {
    Macros h;
    for (int i = 1; i < 30; ++i) h.file("m" + std::to_string(i) + ".macro", "@m" + std::to_string(i + 1) + " %1");
    h.file("m30.macro", "say deep %1");
    h.file("loop.macro", "@loop\r\nsay never");
    h.file("ping.macro", "@pong");
    h.file("pong.macro", "@ping");
    h.run("@m1 z\r\n@loop\r\n@ping\r\nsay alive");
    EXPECT_EQ(h.fp.socket.writes.front(), "say deep z\r\n");
    EXPECT_EQ(h.count("Running Macro : @loop\r\n"), 64u);
    EXPECT_EQ(h.count("Commands nested more than 64 deep, not run: "), 2u);
    EXPECT_TRUE(h.has("Commands nested more than 64 deep, not run: @loop\r\n"));
    // Each stopped level goes on with its next line.
    EXPECT_EQ(std::count(h.fp.socket.writes.begin(), h.fp.socket.writes.end(), "say never\r\n"), 63);
    EXPECT_EQ(h.fp.socket.writes.back(), "say alive\r\n");
}

TEST(Macros, BranchingCallsStopAtTheBudgetOfOneRun) {
    Macros h;
    h.file("tree.macro", "@tree\r\n@tree");
    h.run("@tree\r\nsay alive");
    EXPECT_EQ(h.count("More than 1000 nested commands in one run, stopped at: @tree\r\n"), 1u);
    EXPECT_EQ(h.fp.socket.writes, Writes{"say alive\r\n"});
    // The next command from outside has the whole budget again.
    h.c.windows.text[kDebugWindow].clear();
    h.run("@tree");
    EXPECT_EQ(h.count("More than 1000 nested commands in one run"), 1u);
}
