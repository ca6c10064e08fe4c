// The variable table: table-order substitution and its corners, and the
// indexed expansion against one plain pass per entry on random tables.
#include <gtest/gtest.h>

#include <random>

#include "command/variables.h"
#include "common/text.h"
#include "support/fakes.h"

using namespace kelpa;

namespace {

struct Table {
    OutputWindow debugWindow;
    DebugChannel debug{debugWindow};
    test::FakeClock clock;
    VariableTable vars{debug, clock};
};

// The old substitution: one pass over the text for each entry, in order.
std::string byPasses(const VariableTable& t, std::string text) {
    for (int n = 1; n <= t.VariableCount(); ++n) text = replaceAll(text, "%" + t.entry(n).Name, t.entry(n).Value);
    return text;
}

std::string randomText(std::mt19937& rng, std::string_view alphabet, std::size_t most) {
    std::string s(rng() % (most + 1), ' ');
    for (char& c : s) c = alphabet[rng() % alphabet.size()];
    return s;
}

}  // namespace

TEST(Variables, TableOrderDecidesShadowingAndSecondExpansion) {
    Table t;
    t.vars.S_SetVal("A", "1");
    t.vars.S_SetVal("AB", "2");
    EXPECT_EQ(t.vars.S_ExpandVars("%AB %A %a %C 100%"), "1B 1 %a %C 100%");

    Table later;  // the longer name first wins
    later.vars.S_SetVal("AB", "2");
    later.vars.S_SetVal("A", "1");
    EXPECT_EQ(later.vars.S_ExpandVars("%AB%A"), "21");

    // A value is expanded again by later entries only.
    Table chain;
    chain.vars.S_SetVal("X", "%Y");
    chain.vars.S_SetVal("Y", "%X!");
    EXPECT_EQ(chain.vars.S_ExpandVars("%X"), "%X!");
    EXPECT_EQ(chain.vars.S_ExpandVars("%Y"), "%X!");

    // The empty name takes every "%"; setting a name again keeps its place.
    t.vars.S_SetVal("", "pc");
    t.vars.S_SetVal("A", "3");
    EXPECT_EQ(t.vars.S_ExpandVars("%A 100%"), "3 100pc");
    EXPECT_EQ(t.vars.S_FindVal("A"), 1);
    EXPECT_EQ(t.vars.S_FindVal("Z"), 4);
    EXPECT_EQ(t.debugWindow.text(), "");  // the debug switch is off
}

TEST(Variables, IndexedExpansionMatchesOnePassPerEntry) {
    std::mt19937 rng(20261123);
    for (int round = 0; round < 3000; ++round) {
        Table t;
        const int entries = 1 + static_cast<int>(rng() % 8);
        for (int i = 0; i < entries; ++i) {
            // Names never hold "%" here: such tables take the plain road.
            t.vars.S_SetVal(randomText(rng, "ABC", 3), randomText(rng, "ABx%%", 5));
        }
        const std::string text = randomText(rng, "ABCx%%%", 24);
        ASSERT_EQ(t.vars.S_ExpandVars(text), byPasses(t.vars, text)) << "round " << round << " text " << text;
    }
}

TEST(Variables, NamesWithPercentAndRunawayGrowthStaySafe) {
    Table t;
    t.vars.S_SetVal("A%B", "x");
    t.vars.S_SetVal("B", "y");
    EXPECT_EQ(t.vars.S_ExpandVars("%A%B %B"), "x y");

    // Each entry doubles the text: 40 doublings would need terabytes.
    Table big;
    big.debug.enabled = true;
    const std::string padding(1000, 'x');
    for (int i = 0; i < 40; ++i) {
        const std::string next = "%V" + std::to_string(i + 1);
        big.vars.S_SetVal("V" + std::to_string(i), next + padding + next);
    }
    EXPECT_EQ(big.vars.S_ExpandVars("%V0"), "%V0");
    EXPECT_NE(big.debugWindow.text().find("Text too long after expansion, left as it was"), std::string::npos);
}
