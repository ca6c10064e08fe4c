// Keyword lines through S_RunCommands, family by family: the bytes sent,
// the tables, the windows and the debug lines; and the words, numbers and
// number texts of the command language.
#include <gtest/gtest.h>

#include "command/words.h"
#include "support/client_harness.h"

using namespace kelpa;

namespace {

using Writes = std::vector<std::string>;

struct Lines : test::ClientHarness {
    void run(const std::string& text) { c.commands.S_RunCommands(text); }
    std::string value(const std::string& name) {
        const int n = c.variables.S_FindVal(name);
        return n <= c.variables.VariableCount() ? c.variables.entry(n).Value : "<unset>";
    }
    bool has(const std::string& debugLine) { return debugText().find(debugLine) != std::string::npos; }
};

}  // namespace

TEST(Keywords, VariablesFoldOnKeywordLinesOnly) {
    Lines h;
    h.run("#sv target orc\r\nkill %TARGET\r\nkill %target\r\n# e 0 %target\r\n#SV x  a b\r\n#uv never\r\nsay [%NEVER]");
    EXPECT_EQ(h.fp.socket.writes, (Writes{"kill ORC\r\n", "kill %target\r\n", "say []\r\n"}));
    EXPECT_EQ(h.window(kMainWindow), "kill ORC\r\nkill %target\r\nORC\r\nsay []\r\n");
    // Two blanks behind the name: the value starts with a blank.
    EXPECT_EQ(h.value("X"), " A B");
    EXPECT_EQ(h.value("NEVER"), "");
    EXPECT_TRUE(h.has("Setting value of 1 TARGET to ORC  operation took 0 seconds.\r\n"));

    // The keyword itself may come from a variable; CR leaves a value.
    h.run("#sv k echo\r\n#%k 2 via var\r\n#sv cr a\rb");
    EXPECT_EQ(h.window(kCustom1), "VIA VAR\r\n");
    EXPECT_EQ(h.value("CR"), "AB");

    // SETVAL alone names the empty name, whose reference is every "%".
    h.run("#sv\r\n#sv  pc\r\nsay 100% %TARGET");
    EXPECT_EQ(h.value(""), "PC");
    EXPECT_EQ(h.fp.socket.writes.back(), "say 100PC ORC\r\n");
}

TEST(Keywords, FlagsByNumberAndLabel) {
    Lines h;
    h.run("#sf 5\r\n#sf 6 0\r\n#sf 7 1\r\n#swf 7\r\n#switchflag 8\r\n#lf 3 hunting now\r\n#sf 83\r\n#sf 84\r\n"
          "#sf 83.4\r\n#sf 0.6\r\n#setflag 2.5\r\n#sf\r\n#sf -1\r\n#labelflag x\r\n");
    std::vector<int> set;
    for (int i = 0; i < FlagTable::kCount; ++i)
        if (h.c.flags.value[static_cast<std::size_t>(i)]) set.push_back(i);
    EXPECT_EQ(set, (std::vector<int>{0, 1, 2, 5, 8, 83}));
    EXPECT_EQ(h.c.flags.caption[3] + "|" + h.c.flags.caption[0], "HUNTING|");
    EXPECT_EQ(h.debugText(), "Flag 84 out of boundries 0,83\r\nFlag 83.4 out of boundries 0,83\r\n"
                             "Flag -1 out of boundries 0,83\r\n");
    h.run("#cf");
    EXPECT_TRUE(h.has("Clearing all flags\r\n"));
    EXPECT_EQ(std::count(h.c.flags.value.begin(), h.c.flags.value.end(), true), 0);
    EXPECT_EQ(h.c.flags.caption[3], "3");
}

TEST(Keywords, MathWithEveryOperatorAndItsFailures) {
    Lines h;
    h.run("#math hp + 10 5\r\n#math hp - %hp 1\r\n#math r * 2.5 2\r\n#math q / 1 3\r\n#math s + 0.1 0.2\r\n"
          "#math d / 1 0\r\n#math z % 1 2\r\n#math e * 1e10 1e10\r\n#math n - 0 0.00001\r\n"
          "#math big * 1e300 1e300\r\n#math word + abc 2");
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"HP", "14"}, {"R", "5"},      {"Q", "0.333333333333333"}, {"S", "0.3"}, {"D", "0"},
        {"Z", "0"},   {"E", "1E+20"},  {"N", "-1E-05"},            {"BIG", "0"}, {"WORD", "2"},
    };
    for (const auto& [name, value] : expected) EXPECT_EQ(h.value(name), value) << name;
    EXPECT_TRUE(h.has("Setting value of 1 HP to 14"));
    EXPECT_TRUE(h.has("Division by 0\r\nSetting value of 5 D to 0"));
    EXPECT_TRUE(h.has("Overflow\r\nSetting value of 9 BIG to 0"));
}

TEST(Keywords, ConditionsRunTheirThenPartFoldedAndExpanded) {
    Lines h;
    h.run("#ifgt 5 3 say gt\r\n#ifgt 3 5 say no\r\n#ifgt %unset -1 say unset\r\n#iflt 2 10 say lt\r\n"
          "#ifgte 4 4 say gte\r\n#iflte 4 3 say no\r\n#ifeq 1 1.0 say no\r\n#ifeq ab AB say eq\r\n"
          "#ifneq %a %b say neq\r\n#ifdif x x say no\r\n#ifeq 1 1 #ifeq 2 2 n;;e\r\n#ifeq 1 1");
    EXPECT_EQ(h.fp.socket.writes,
              (Writes{"SAY GT\r\n", "SAY UNSET\r\n", "SAY LT\r\n", "SAY GTE\r\n", "SAY EQ\r\n", "SAY NEQ\r\n",
                      "N\r\nE\r\n"}));
}

TEST(Keywords, NullTestsLookAtWhatExpansionLeft) {
    Lines h;
    h.run("#ifnull %x #sv hit1 y\r\n#sv x\r\n#ifnull %x #sv hit2 y\r\n#ifnotnull %x #sv no y\r\n"
          "#sv x five\r\n#ifnull %x #sv no y\r\n#ifnotnull %x #sv hit3 y\r\n#sv x a b\r\n#ifnotnull %x say\r\n"
          "#ifnull %nothing say plain\r\n#ifnotnull");
    EXPECT_EQ(h.value("HIT1") + h.value("HIT2") + h.value("HIT3") + h.value("NO"), "YYY<unset>");
    // Only the first word of a value with blanks is dropped.
    EXPECT_EQ(h.fp.socket.writes, (Writes{"B SAY\r\n", "SAY PLAIN\r\n"}));
}

TEST(Keywords, WindowsInkAndLabels) {
    Lines h;
    h.run("#echo 2 hello world\r\n#e 1 dbg\r\n#echo x lost word\r\n#echo 2.5 even\r\n#echo 3.5\r\n#echo 9 x\r\n"
          "#echo  2 shifted");
    EXPECT_EQ(h.window(kCustom1), "HELLO WORLD\r\nEVEN\r\n");
    EXPECT_EQ(h.window(kCustom1 + 2), "\r\n");
    EXPECT_EQ(h.window(kMainWindow), "LOST WORD\r\n2 SHIFTED\r\n");
    EXPECT_EQ(h.debugText(), "DBG\r\nNo such window :9\r\n");

    for (const auto& [word, ink] : std::vector<std::pair<std::string, bool>>{
             {"off", false}, {"1", true}, {"0", false}, {"true", true}, {"", false}, {"ON", true}}) {
        h.run("#ink " + word);
        EXPECT_EQ(h.state(kMainWindow).Ink, ink) << word;
    }

    h.run("#lw 1 hunt\r\n#labelwindow 4 bank\r\n#lw 5 x\r\n#lw 0.5 y\r\n#lw 2");
    const auto& tabs = h.c.keywords.tabs.caption;
    EXPECT_EQ(std::vector<std::string>(tabs.begin(), tabs.end()),
              (std::vector<std::string>{"Main", "System", "HUNT", "", "Custom 3", "BANK", "Tools"}));
    EXPECT_TRUE(h.has("Window 5 out of boundries 1,4\r\nWindow 0.5 out of boundries 1,4\r\n"));
    h.run("#ulw");
    EXPECT_EQ(tabs[2] + tabs[5], "Custom 1Custom 4");
}

TEST(Keywords, InjectQueueMessageBossOverrideHelpAndUnknown) {
    Lines h;
    h.openLog();
    h.run("#inject hello;;there\r\n#q north;;\r\n#queue ###\r\n#mb Are you there\r\n#nop say\r\n#rem say");
    EXPECT_EQ(h.window(kMainWindow), "HELLO;;THERE");
    EXPECT_EQ(h.logFile(), "HELLO;;THERE\r\n");
    EXPECT_EQ(h.history(), "");
    EXPECT_EQ(h.fp.host.messages, Writes{"ARE YOU THERE"});
    EXPECT_TRUE(h.fp.socket.writes.empty());
    h.c.Queue_Timer();
    EXPECT_EQ(h.fp.socket.writes, Writes{"NORTH\r\n"});
    EXPECT_FALSE(h.fp.host.ended);
    h.c.Queue_Timer();
    EXPECT_TRUE(h.fp.host.ended);

    h.run("#boss\r\n#override area1\r\n#override\r\n#\r\n#frob x");
    EXPECT_TRUE(h.fp.host.hidden);
    EXPECT_EQ(h.c.keywords.OverrideDir, "");
    EXPECT_TRUE(h.has("Override Directory is now: AREA1\r\nOverride Directory has been cleared.\r\n"
                      "Unknown key word \r\nUnknown key word FROB\r\n"));

    h.run("#help");
    EXPECT_TRUE(h.has("Unknown key word FROB\r\nOVERRIDE par1 : sets an override directory for macros\r\n"));
}

TEST(Keywords, CircularThenPartStopsAtTheNestingLimit) {
    Lines h;
    // X holds a condition whose then-part runs X again.
    h.run("#sv x ifeq 1 1 #%x\r\n#%x\r\nsay after");
    EXPECT_TRUE(h.has("Commands nested more than 64 deep, not run: #%X\r\n"));
    EXPECT_EQ(h.fp.socket.writes, Writes{"say after\r\n"});
}


TEST(Words, GetwordEndsAtOneBlankOrTheFirstPairAndFolds) {
    std::string s = "sv  x\r\ny z";
    EXPECT_EQ(getword(s), "SV");
    EXPECT_EQ(getword(s), "");  // two blanks make an empty word
    EXPECT_EQ(getword(s), "X");
    EXPECT_EQ(s, "\ny z");  // only the CR of the pair goes
    std::string accents = "\xE9t\xE9 \xFF";
    EXPECT_EQ(getword(accents), "\xC9T\xC9");
    EXPECT_EQ(getword(accents), "\x9F");
    EXPECT_EQ(getword(accents), "");
}

TEST(Words, ValReadsTheNumberAtTheHeadAndNumbersRoundToEvenAndPrintShortest) {
    const std::vector<std::pair<std::string, double>> vals = {
        {"12abc", 12},  {"abc", 0},     {" - 1 2", -12}, {"\t3\n4", 34}, {"1.5.2", 1.5}, {".5", 0.5},
        {"2e3", 2000},  {"2D-1", 0.2},  {"1e", 1},       {"&HFF", 255},  {"&o17", 15},   {"&H", 0},
        {"1e999", 1.7976931348623157e308},               {"1e-999", 0},  {"-", 0},
    };
    for (const auto& [text, value] : vals) EXPECT_EQ(Val(text), value) << text;
    for (const auto& [value, rounded] : std::vector<std::pair<double, double>>{{0.5, 0}, {1.5, 2}, {2.5, 2}, {0.6, 1}, {-2.5, -2}})
        EXPECT_EQ(roundHalfEven(value), rounded) << value;
    const std::vector<std::pair<double, std::string>> texts = {
        {0.5, "0.5"}, {-0.0, "0"}, {1e-5, "1E-05"}, {1e15, "1E+15"}, {123456789012345, "123456789012345"}, {-2.5, "-2.5"},
    };
    for (const auto& [value, text] : texts) EXPECT_EQ(numberText(value), text) << value;
}
