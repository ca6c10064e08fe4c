#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "common/numbers.h"
#include "triggers/trigger_file.h"

using namespace kelpa;

TEST(Numbers, ValReadsTheNumberAtTheHeadOfAText) {
    const std::vector<std::pair<std::string, double>> rows = {
        {"12abc", 12},  {"abc", 0},     {" - 1 2", -12}, {"\t3\n4", 34}, {"1.5.2", 1.5}, {".5", 0.5},
        {"2e3", 2000},  {"2D-1", 0.2},  {"1e", 1},       {"&HFF", 255},  {"&o17", 15},   {"&H", 0},
        {"&h1g", 1},    {"&O8", 0},     {"1e999", 1.7976931348623157e308},               {"1e-999", 0},
        {"-", 0},       {"", 0},        {"&Ha0", 160}, {"&O70", 56},
    };
    for (const auto& [text, value] : rows) EXPECT_EQ(Val(text), value) << text;
}

TEST(Numbers, WholeNumbersRoundHalfToEvenAndStayInside32Bits) {
    struct Row { const char* text; bool fits; std::int32_t value; };
    const Row rows[] = {
        {"0.5", true, 0},          {"1.5", true, 2},           {"2.5", true, 2},       {"-2.5", true, -2},
        {"2147483647", true, INT32_MAX}, {"-2147483648", true, INT32_MIN}, {"2147483648", false, 0},
        {"&H7FFFFFFF", true, INT32_MAX}, {"1e10", false, 0},
    };
    for (const Row& r : rows) {
        std::int32_t v = 7;
        const bool fits = valInt32(r.text, v);
        EXPECT_EQ(std::pair(fits, fits ? v : 0), std::pair(r.fits, r.value)) << r.text;
    }
    EXPECT_EQ(std::tuple(valInt32Clamped("1e10"), valInt32Clamped("-1e10"), valInt32Clamped("23abc")),
              std::tuple(INT32_MAX, INT32_MIN, 23));
}

// Qt sets the C library's locale from the environment; a German system
// writes 1,5. Numbers in files and commands must not care.
TEST(Numbers, TriggerNumbersValAndNumberTextKeepThePointInAGermanLocale) {
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8") && !std::setlocale(LC_ALL, "de_DE.utf8"))
        GTEST_SKIP() << "no German locale on this system";
    const std::shared_ptr<void> restore(nullptr, [](void*) { std::setlocale(LC_ALL, "C"); });
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    TriggerRecords table;
    ASSERT_TRUE(readTriggerFile("flag1.5=3.5\r\npattern0.5e1=x\r\naction=y\r\n", "t", table, [](const std::string&) {}).ok);
    ASSERT_EQ(table.size(), 1u);
    EXPECT_EQ(std::tuple(table[0].FlagGroupCount, table[0].flagGroup(2).Values, table[0].PatternGroupCount),
              std::tuple(2, std::vector<int>{4}, 5));
    EXPECT_EQ(std::pair(Val("2.25"), numberText(2.25)), std::pair(2.25, std::string("2.25")));
}
