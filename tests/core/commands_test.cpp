// Keyword lines and macro calls through S_RunCommands, family by family:
// the bytes sent, the tables, the windows and the debug lines; the words,
// numbers and number texts of the command language; and the variable
// table: table-order substitution and its corners, and the indexed
// expansion against one plain pass per entry on random tables.
#include <gtest/gtest.h>

#include <fstream>

#include <random>

#include "command/variables.h"
#include "command/words.h"
#include "common/text.h"
#include "support/client_harness.h"

using namespace kelpa;

namespace {

using Writes = std::vector<std::string>;

// Command texts through S_RunCommands, with macro files in the program folder.
struct Lines : test::ClientHarness {
    void run(const std::string& text) { c.parts().commands.S_RunCommands(text); }
    void file(const std::string& name, const std::string& text) { fp.folder.write("macros/" + name, text); }
    const Writes& writes() const { return fp.socket.writes; }
    std::size_t count(const std::string& piece) { return countOf(debugText(), piece); }
    std::string value(const std::string& name) {
        const int n = c.parts().variables.S_FindVal(name);
        return n <= c.parts().variables.VariableCount() ? c.parts().variables.entry(n).Value : "<unset>";
    }
    bool has(const std::string& debugLine) { return debugText().find(debugLine) != std::string::npos; }
    // The flags set, then the captions of flags 3 and 0.
    std::string flags() const {
        const FlagTable& f = c.parts().flags;
        std::string s;
        for (std::size_t i = 0; i < FlagTable::kCount; ++i) s += f.value[i] ? std::to_string(i) + " " : "";
        return s + "|" + f.caption[3] + "|" + f.caption[0];
    }
};

struct Table {
    OutputWindow debugWindow;
    DebugChannel debug{debugWindow};
    test::FakeClock clock;
    VariableTable vars{debug, clock};
};

// The plain substitution: one pass over the text for each entry, in order.
std::string byPasses(const VariableTable& t, std::string text) {
    for (int n = 1; n <= t.VariableCount(); ++n) text = replaceAll(text, "%" + t.entry(n).Name, t.entry(n).Value);
    return text;
}

std::string randomText(std::mt19937& rng, std::string_view alphabet, std::size_t most) {
    std::string s(rng() % (most + 1), ' ');
    for (char& c : s) c = alphabet[rng() % alphabet.size()];
    return s;
}

// Three words taken off a text, each followed by "|", then what is left.
std::string threeWords(std::string s) {
    std::string out;
    for (int i = 0; i < 3; ++i) out += getword(s) + "|";
    return out + s;
}

}  // namespace

TEST(Keywords, VariablesFoldOnKeywordLinesOnly) {
    Lines h;
    // The README's first steps: a name set in lower case is referred to in upper case.
    h.run("#sv target orc\r\nkill %TARGET\r\nkill %target\r\n# e 0 %target\r\n#SV x  a b\r\n#uv never\r\nsay [%NEVER]");
    EXPECT_EQ(h.writes(), (Writes{"kill ORC\r\n", "kill %target\r\n", "say []\r\n"}));
    EXPECT_EQ(h.window(kMainWindow), "kill ORC\r\nkill %target\r\nORC\r\nsay []\r\n");
    // Two blanks behind the name: the value starts with a blank.
    EXPECT_EQ(h.value("X") + "|" + h.value("NEVER"), " A B|");
    EXPECT_TRUE(h.has("Setting value of 1 TARGET to ORC  operation took 0 seconds.\r\n"));
    // The keyword itself may come from a variable; CR leaves a value.
    h.run("#sv k echo\r\n#%k 2 via var\r\n#setval cr a\rb");
    EXPECT_EQ(h.window(kCustom1) + "|" + h.value("CR"), "VIA VAR\r\n|AB");
    // SETVAL alone names the empty name, whose reference is every "%".
    h.run("#sv\r\n#sv  pc\r\nsay 100% %TARGET\r\n#unsetval x");
    EXPECT_EQ(h.value("") + "|" + h.value("X") + "|" + h.writes().back(), "PC||say 100PC ORC\r\n");
}

TEST(Keywords, FlagsByNumberAndLabel) {
    Lines h;
    h.run("#sf 5\r\n#sf 6 0\r\n#sf 7 1\r\n#swf 7\r\n#switchflag 8\r\n#lf 3 hunting now\r\n#sf 83\r\n#sf 84\r\n"
          "#sf 83.4\r\n#sf 0.6\r\n#setflag 2.5\r\n#sf\r\n#sf -1\r\n#labelflag x\r\n#swf 0\r\n");
    EXPECT_EQ(h.flags(), "1 2 5 8 83 |HUNTING|");
    EXPECT_EQ(h.debugText(), "Flag 84 out of boundries 0,83\r\nFlag 83.4 out of boundries 0,83\r\n"
                             "Flag -1 out of boundries 0,83\r\n");
    // Both spellings clear, and each says so.
    h.run("#clearflags\r\n#sf 1\r\n#lf 3 x\r\n#cf");
    EXPECT_EQ(h.count("Clearing all flags\r\n"), 2u);
    EXPECT_EQ(h.flags(), "|3|0");
}

TEST(Keywords, MathWithEveryOperatorAndItsFailures) {
    Lines h;
    h.run("#math hp + 10 5\r\n#math hp - %hp 1\r\n#math r * 2.5 2\r\n#math q / 1 3\r\n#math s + 0.1 0.2\r\n"
          "#math d / 1 0\r\n#math z % 1 2\r\n#math e * 1e10 1e10\r\n#math n - 0 0.00001\r\n"
          "#math big * 1e300 1e300\r\n#math word + abc 2");
    std::string values;
    for (const char* name : {"HP", "R", "Q", "S", "D", "Z", "E", "N", "BIG", "WORD"})
        values += h.value(name) + " ";
    EXPECT_EQ(values, "14 5 0.333333333333333 0.3 0 0 1E+20 -1E-05 0 2 ");
    EXPECT_TRUE(h.has("Division by 0\r\nSetting value of 5 D to 0"));
    EXPECT_TRUE(h.has("Overflow\r\nSetting value of 9 BIG to 0"));
}

TEST(Keywords, ConditionsRunTheirThenPartFoldedExpandedAndNestedUpToTheLimit) {
    Lines h;
    h.run("#ifgt 5 3 say gt\r\n#ifgt 3 5 say no\r\n#ifgt 4 4 say no\r\n#iflt 4 4 say no\r\n"
          "#ifgt %unset -1 say unset\r\n#iflt 2 10 say lt\r\n#ifgte 4 4 say gte\r\n#iflte 4 3 say no\r\n"
          "#iflte 4 4 say lte\r\n#ifeq 1 1.0 say no\r\n#ifeq ab AB say eq\r\n#ifneq %a %b say neq\r\n"
          "#ifdif x x say no\r\n#ifeq 1 1 #ifeq 2 2 n;;e\r\n#ifeq 1 1");
    // The null tests look at what expansion left; only the first word of a
    // value with blanks is dropped.
    h.run("#ifnull %x #sv hit1 y\r\n#sv x\r\n#ifnull %x #sv hit2 y\r\n#ifnotnull %x #sv no y\r\n"
          "#sv x five\r\n#ifnull %x #sv no y\r\n#ifnotnull %x #sv hit3 y\r\n#sv x a b\r\n#ifnotnull %x say\r\n"
          "#ifnull %nothing say plain\r\n#ifnotnull");
    // Y holds a condition whose then-part runs Y again.
    h.run("#ifdif x y say dif\r\n#sv y ifeq 1 1 #%y\r\n#%y\r\nsay after");
    EXPECT_TRUE(h.has("Commands nested more than 900 deep, not run: \"#%Y\"\r\n"));
    EXPECT_EQ(h.writes(), (Writes{"SAY GT\r\n", "SAY UNSET\r\n", "SAY LT\r\n", "SAY GTE\r\n", "SAY LTE\r\n",
                                  "SAY EQ\r\n", "SAY NEQ\r\n", "N\r\nE\r\n", "B SAY\r\n", "SAY PLAIN\r\n",
                                  "SAY DIF\r\n", "say after\r\n"}));
    EXPECT_EQ(h.value("HIT1") + h.value("HIT2") + h.value("HIT3") + h.value("NO"), "YYY<unset>");
}

TEST(Keywords, WindowsInkAndLabels) {
    Lines h;
    h.run("#echo 2 hello world\r\n#e 1 dbg\r\n#echo x lost word\r\n#echo 2.5 even\r\n#echo 3.5\r\n#echo 9 x\r\n"
          "#echo  2 shifted\r\n#e 4294967296 x\r\n#e -1e400 x");
    EXPECT_EQ(h.window(kCustom1) + "|" + h.window(kCustom1 + 2) + "|" + h.window(kMainWindow),
              "HELLO WORLD\r\nEVEN\r\n|\r\n|LOST WORD\r\n2 SHIFTED\r\n");
    EXPECT_EQ(h.debugText(), "DBG\r\nNo such window :9\r\nNo such window :4294967296\r\n"
                             "No such window :-1.79769313486232E+308\r\n");
    std::string ink;
    for (const char* word : {"off", "1", "0", "true", "", "ON"}) {
        h.run("#ink " + std::string(word));
        ink += h.state(kMainWindow).Ink ? "+" : "-";
    }
    EXPECT_EQ(ink, "-+-+-+");

    h.run("#lw 1 hunt\r\n#labelwindow 4 bank\r\n#lw 5 x\r\n#lw 0.5 y\r\n#lw 2");
    const auto& tabs = h.c.parts().keywords.tabs.caption;
    EXPECT_EQ(Writes(tabs.begin(), tabs.end()),
              (Writes{"Main", "System", "HUNT", "", "Custom 3", "BANK", "Tools"}));
    EXPECT_TRUE(h.has("Window 5 out of boundries 1,4\r\nWindow 0.5 out of boundries 1,4\r\n"));
    h.run("#ulw\r\n#lw 2 a\r\n#lw 3 b");
    EXPECT_EQ(tabs[2] + tabs[5], "Custom 1Custom 4");
    h.run("#unlabelwindow");
    EXPECT_EQ(tabs[3] + tabs[4], "Custom 2Custom 3");
}

TEST(Keywords, InjectQueueMessageBossOverrideHelpAndUnknown) {
    Lines h;
    h.openLog();
    // INJECT goes through the line pipeline but not the history.
    h.run("#inject hello;;there\r\n#i x\r\n#nop say\r\n#rem say\r\n#q north;;\r\n#queue south");
    EXPECT_EQ(h.window(kMainWindow) + "|" + h.logFile() + "|" + h.history(),
              "HELLO;;THEREX|HELLO;;THERE\r\nX\r\n|");
    EXPECT_TRUE(h.writes().empty());
    for (int tick = 0; tick < 2; ++tick) h.c.Queue_Timer();
    EXPECT_EQ(h.writes(), (Writes{"NORTH\r\n", "SOUTH"}));

    h.run("#mb Are you there\r\n#msgbox two\r\n#boss\r\n#override area1\r\n#override\r\n#\r\n#frob x\r\n#help");
    EXPECT_EQ(std::tuple(h.fp.host.messages, h.fp.host.hidden, h.c.parts().keywords.OverrideDir),
              std::tuple(Writes{"ARE YOU THERE", "TWO"}, true, ""));
    EXPECT_TRUE(h.has("Override Directory is now: AREA1\r\nOverride Directory has been cleared.\r\n"
                      "Unknown key word \r\nUnknown key word FROB\r\n"
                      "OVERRIDE par1 : sets an override directory for macros\r\n"));
    EXPECT_EQ(h.count("Unknown key word"), 2u);
}

// Macro calls: parameters, missing files, the override folder, nesting.
TEST(Macros, ParametersAreCleanedAndPutInAscendingOrder) {
    Lines h;
    h.file("go.macro", "say %1 and %2\r\n   \r\n#sv last %3\r\nsay %10|%20\r\n");
    h.run("@go a b\r\n@go\r\n@go a.b,c;d!e?f\r\n@go %2 q\r\n@go x          y\r\n@go %4 b c d\r\n@go a %1");
    // %10 lost its head to %1; ten blanks: three halvings leave two, an empty
    // word. A word put in may hold a later number, which its own pass fills,
    // but an earlier one stays.
    EXPECT_EQ(h.writes(), (Writes{"say a and b\r\n", "say a0|b0\r\n", "say  and\r\n", "say 0|0\r\n",
                                  "say a and b\r\n", "say a0|b0\r\n", "say q and q\r\n", "say q0|q0\r\n",
                                  "say x and\r\n", "say x0|0\r\n", "say d and b\r\n", "say d0|b0\r\n",
                                  "say a and %1\r\n", "say a0|\r\n"}));
    h.run("@go 1 2 c");
    EXPECT_EQ(h.c.parts().variables.entry(1).Value, "C");  // keyword lines fold the argument
    h.run("@go x          y");
    EXPECT_EQ(h.value("LAST"), "Y") << "ten blanks leave two: the third word is y";
    EXPECT_TRUE(h.has("Running Macro : @go a.b,c;d!e?f\r\n"));
}

TEST(Macros, NameAndArgumentsAreExpandedInUpperCaseOnlyAndMissingFilesAreTold) {
    Lines h;
    // A name from a variable is upper case, and so is the file it finds.
    h.file("HIT.macro", "kill %1 %2\n#ifeq %1 BOB @other\r\r\n");
    h.file("OTHER.macro", "say other");
    h.run("#sv m hit\r\n#sv who bob\r\n@%M %WHO %who\r\n@%m x\r\n@nothere 1 2\r\nsay after");
    EXPECT_EQ(h.writes(), (Writes{"kill BOB %who\r\n", "say other\r\n", "say after\r\n"}));
    EXPECT_TRUE(h.has(h.fp.files.absolute("macros/%m.macro") + " UNKNOWN MACRO for command x\r\n\r\n"));
    EXPECT_TRUE(h.has("Running Macro : @nothere 1 2\r\n\r\n" + h.fp.files.absolute("macros/nothere.macro") +
                      " UNKNOWN MACRO for command 1 2\r\n\r\n"));
}

// Extensions are found in any case, names count case; the override folder
// goes first and falls back to the main one.
TEST(Macros, FilesInAnyExtensionCaseAndTheOverrideFolder) {
    Lines h;
    // On a fresh install a save from the main list makes the folder, an
    // override set or not.
    MacroEditor& editor = h.c.parts().macroEditor;
    h.run("#override area");
    editor.txtMacrosLabel = "first.macro";
    editor.txtMacrosCommands = "say first";
    editor.BTNMacrosSave_Click();
    EXPECT_EQ(h.fp.folder.read("macros/first.macro"), "say first\r\n");
    h.run("#override");
    for (const auto& [name, text] : std::vector<std::pair<std::string, std::string>>{
             {"x.Macro", "say x"}, {"AREA/Y.MACRO", "say y %1"}, {"z.macro.txt", "say z"},
             {"Y.macro", "say main y %1"}, {"only.macro", "say only main"}, {"AREA/SUB/v.macro", "say v"},
             {"AREA/w.macro", "say w"}})
        h.file(name, text);
    // Backslashes name sub-folders, as in macro sets written on Windows.
    h.run("@x\r\n@X\r\n#override area\r\n@Y a\r\n@only\r\n@z\r\n#override area\\sub\r\n@v\r\n#override\r\n@Y b\r\n"
          "@AREA\\w");
    EXPECT_EQ(h.writes(), (Writes{"say x\r\n", "say y a\r\n", "say only main\r\n", "say v\r\n", "say main y b\r\n",
                                  "say w\r\n"}));
    EXPECT_TRUE(h.has(" UNKNOWN MACRO for command \r\n\r\nMacro names count case: there is macros/x.Macro\r\n"));
    // Nothing outside macros/ runs: a name that climbs out names no macro,
    // and an override folder's ".." parts are passed over.
    h.file("../evil.macro", "say evil");
    h.file("wide.macro", std::string("\xFF\xFEs\0a\0y\0", 8));
    h.fp.socket.writes.clear();
    h.run("@../evil\r\n@AREA/../only\r\n#override ..\r\n@evil\r\n#override ../AREA/./\r\n@w\r\n#override\r\n@wide");
    EXPECT_EQ(h.writes(), (Writes{"say only main\r\n", "say w\r\n"}));
    EXPECT_EQ(h.count(" UNKNOWN MACRO for command "), 4);
    EXPECT_EQ(h.count("Macro wide not run: it is UTF-16 text (\"Unicode\" in Notepad); save it as ANSI text"), 1);
    editor.brefresh3_Click();
    EXPECT_EQ(editor.Mlist, (Writes{"Y.macro", "first.macro", "only.macro", "wide.macro", "x.Macro"}));
    // A UTF-16 macro is not opened: Save would write other bytes.
    editor.Mlist_DblClick("wide.macro");
    EXPECT_EQ(h.fp.host.messages.back(), "Cannot read the macro " + h.fp.files.absolute("macros/wide.macro") +
                                             ": it is UTF-16 text (\"Unicode\" in Notepad); save it as ANSI text.");
    EXPECT_EQ(editor.txtMacrosLabel + "|" + editor.txtMacrosCommands, "first.macro|say first");
}

// Names hold the program's bytes; on disk they are UTF-8, and a name copied
// byte for byte is still found. A folder of a macro's name is never deleted.
TEST(Macros, LettersBeyondAsciiInNamesAreUtf8OnDisk) {
    Lines h;
    const std::filesystem::path macros = h.fp.folder.path() / "macros";
    h.file("\xE9" "cu.macro", "say raw");
    std::ofstream(macros / "\xC3\xA9p\xC3\xA9" "e.macro") << "say sharp";
    h.run("@\xE9p\xE9" "e\r\n@\xE9" "cu");
    EXPECT_EQ(h.writes(), (Writes{"say sharp\r\n", "say raw\r\n"}));
    MacroEditor& editor = h.c.parts().macroEditor;
    editor.txtMacrosLabel = "d\xE9g\xE2t\x80.macro";
    editor.txtMacrosCommands = "say new";
    editor.BTNMacrosSave_Click();
    EXPECT_EQ(std::ifstream(macros / "d\xC3\xA9g\xC3\xA2t\xE2\x82\xAC.macro").get(), 's');
    editor.brefresh3_Click();
    EXPECT_EQ(editor.Mlist, (Writes{"d\xE9g\xE2t\x80.macro", "\xE9" "cu.macro", "\xE9p\xE9" "e.macro"}));
    EXPECT_EQ(h.fp.files.absolute("macros/d\xE9g\xE2t\x80.macro"),
              h.fp.folder.path().string() + "/macros/d\xE9g\xE2t\x80.macro");

    // A day log goes into its site's folder in UTF-8, or into one copied
    // under the program's own bytes.
    for (const char* site : {"Ch\xE2teau", "\xC9t\xE9"}) h.openLog(site);
    std::filesystem::create_directories(h.fp.folder.path() / "logs" / "\xC9" "cole");
    h.openLog("\xC9" "cole");
    for (const char* folder : {"Ch\xC3\xA2teau", "\xC3\x89t\xC3\xA9", "\xC9" "cole"})
        EXPECT_FALSE(std::filesystem::is_empty(h.fp.folder.path() / "logs" / folder)) << folder;

    std::filesystem::create_directory(macros / "AREA");
    editor.txtMacrosLabel = "AREA";
    editor.BTNMacrosDelete_Click();
    ASSERT_TRUE(std::filesystem::is_directory(macros / "AREA"));
    EXPECT_EQ(h.fp.host.messages.back(),
              "Cannot delete the macro " + h.fp.files.absolute("macros/AREA") + ": it is a folder.");
}

// Branching calls and huge expansions stop at the budgets of one command
// from outside, and say so with the debug switch off; a pasted text of
// thousands of conditions runs whole, and text that expands to itself costs
// nothing.
TEST(Macros, BranchingCallsAndHugeExpansionsStopAtTheirBudgets) {
    Lines h;
    h.c.setDebugInfo(false);
    h.file("tree.macro", "@tree\r\n@tree");
    h.run("@tree\r\nsay alive\r\n@tree");
    const std::string stopped = "More than 20000 nested commands in one run, stopped at: \"@tree\"\r\n";
    EXPECT_EQ(h.count(stopped), 1u);
    EXPECT_EQ(h.writes(), Writes{"say alive\r\n"});
    h.run("@tree");
    EXPECT_EQ(h.count(stopped), 2u) << "the next command has the whole budget";
    std::string flat;
    for (int i = 0; i < 1005; ++i) flat += "#ifeq 1 1 say " + std::to_string(i) + "\r\n";
    h.run(flat);
    EXPECT_EQ(h.writes().size(), 1006u);
    EXPECT_EQ(h.writes().back(), "SAY 1004\r\n");
    // Eight doublings leave 128 KB in X; a macro that names it 40 times stops
    // a little past 4 MB, with the rest of its text; the next text runs.
    std::string text = "#sv x " + std::string(512, 'a');
    for (int i = 0; i < 8; ++i) text += "\r\n#sv x %x%x";
    h.run(text);
    std::string body;
    for (int i = 0; i < 40; ++i) body += "say %X\r\n";
    h.file("big.macro", body + "say never");
    std::size_t before = h.fp.socket.sent.size();
    h.run("@big\r\nsay never");
    EXPECT_EQ(h.count("More than 4 MB of commands in one run, stopped at: \"say %X\"\r\n"), 1u);
    const std::size_t sent = h.fp.socket.sent.size() - before;
    EXPECT_TRUE(sent > std::size_t{4} << 20 && sent < std::size_t{9} << 19) << sent;
    h.run("say alive");
    EXPECT_EQ(h.writes().back(), "say alive\r\n");
    // 3 MB of plain lines in a macro go out whole; a body whose arguments
    // would pass 1 MB is not run.
    std::string lines, refs;
    for (int i = 0; i < 3000; ++i) lines += std::string(999, 'p') + "\r\n";
    for (int i = 0; i < 2000; ++i) refs += "%1";
    h.file("plain.macro", lines);
    h.file("wide.macro", "say " + refs);
    before = h.fp.socket.sent.size();
    h.run("@plain\r\n@wide " + std::string(1000, 'w'));
    EXPECT_EQ(h.fp.socket.sent.size() - before, 3000u * 1001u);
    EXPECT_TRUE(h.has("Macro wide too long with its arguments, not run\r\n"));
}

TEST(Words, GetwordEndsAtOneBlankOrTheFirstPairAndFolds) {
    // Two blanks make an empty word; only the CR of the pair goes.
    EXPECT_EQ(threeWords("sv  x\r\ny z"), "SV||X|\ny z");
    EXPECT_EQ(threeWords("\xE9t\xE9 \xFF"), "\xC9T\xC9|\x9F||");
}

TEST(Variables, IndexedExpansionMatchesOnePassPerEntry) {
    std::mt19937 rng(20261123);
    for (int round = 0; round < 3000; ++round) {
        Table t;
        // Names never hold "%" here: such tables take the plain road.
        for (int i = 1 + static_cast<int>(rng() % 8); i > 0; --i)
            t.vars.S_SetVal(randomText(rng, "ABC", 3), randomText(rng, "ABx%%", 5));
        const std::string text = randomText(rng, "ABCx%%%", 24);
        ASSERT_EQ(t.vars.S_ExpandVars(text), byPasses(t.vars, text)) << "round " << round << " text " << text;
    }
}

// Table order, shadowing and second expansion are held by the random test
// above against one pass per entry; these are what it cannot see.
TEST(Variables, NamesCountCaseKeepTheirPlaceAndMayHoldPercentAndRunawayGrowthStaysSafe) {
    Table t;
    for (const auto& [name, value] : {std::pair("A", "1"), {"AB", "2"}, {"A", "3"}}) t.vars.S_SetVal(name, value);
    EXPECT_EQ(t.vars.S_ExpandVars("%AB %A %a"), "3B 3 %a");
    EXPECT_EQ(std::pair(t.vars.S_FindVal("A"), t.vars.S_FindVal("Z")), std::pair(1, 3));
    EXPECT_EQ(t.debugWindow.text(), "");  // the debug switch is off
    Table p;
    p.vars.S_SetVal("A%B", "x");
    p.vars.S_SetVal("B", "y");
    EXPECT_EQ(p.vars.S_ExpandVars("%A%B %B"), "x y");
    // Each entry doubles the text: 40 doublings would need terabytes.
    Table big;
    big.debug.enabled = true;
    for (int i = 0; i < 40; ++i) {
        const std::string next = "%V" + std::to_string(i + 1);
        big.vars.S_SetVal("V" + std::to_string(i), next + std::string(1000, 'x') + next);
    }
    EXPECT_EQ(big.vars.S_ExpandVars("%V0"), "%V0");
    EXPECT_NE(big.debugWindow.text().find("Text too long after expansion, left as it was"), std::string::npos);
}
