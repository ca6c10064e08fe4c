// getword, Val, the rounding and the number text of the command language.
#include <gtest/gtest.h>

#include "command/words.h"

using namespace kelpa;

TEST(Words, GetwordEndsAtOneBlankOrTheFirstPairAndFolds) {
    std::string s = "sv  x\r\ny z";
    EXPECT_EQ(getword(s), "SV");
    EXPECT_EQ(getword(s), "");  // two blanks make an empty word
    EXPECT_EQ(getword(s), "X");
    EXPECT_EQ(s, "\ny z");  // only the CR of the pair goes
    std::string empty;
    EXPECT_EQ(getword(empty), "");
    EXPECT_EQ(empty, "");
    std::string accents = "\xE9t\xE9 \xFF";
    EXPECT_EQ(getword(accents), "\xC9T\xC9");
    EXPECT_EQ(getword(accents), "\x9F");
}

TEST(Words, ValReadsTheNumberAtTheHead) {
    const std::vector<std::pair<std::string, double>> rows = {
        {"12abc", 12},   {"", 0},        {"abc", 0},     {"%HP", 0},       {" - 1 2", -12},
        {"\t3\n4", 34},  {"1.5.2", 1.5}, {".5", 0.5},    {"+7", 7},        {"2e3", 2000},
        {"2D-1", 0.2},   {"1e", 1},      {"&HFF", 255},  {"&o17", 15},     {"&H", 0},
        {"1e999", 1.7976931348623157e308},             {"1e-999", 0},    {"-", 0},
    };
    for (const auto& [text, value] : rows) EXPECT_EQ(Val(text), value) << text;
}

TEST(Words, RoundingGoesToEvenAndNumbersPrintShortest) {
    EXPECT_EQ(roundHalfEven(0.5), 0);
    EXPECT_EQ(roundHalfEven(1.5), 2);
    EXPECT_EQ(roundHalfEven(2.5), 2);
    EXPECT_EQ(roundHalfEven(0.6), 1);
    EXPECT_EQ(roundHalfEven(-2.5), -2);
    const std::vector<std::pair<double, std::string>> rows = {
        {3, "3"},           {0.5, "0.5"},       {1e20, "1E+20"},  {0.1 + 0.2, "0.3"}, {-0.0, "0"},
        {1.0 / 3, "0.333333333333333"},         {1e-5, "1E-05"},  {1e15, "1E+15"},
        {123456789012345, "123456789012345"},   {-2.5, "-2.5"},
    };
    for (const auto& [value, text] : rows) EXPECT_EQ(numberText(value), text) << value;
}
