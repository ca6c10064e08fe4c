// Form_Resize: the rules that keep the work area filling the window while
// the left column stays put.
#include <gtest/gtest.h>

#include "shell/form_layout.h"

using namespace kelpa;

namespace {

constexpr int W0 = 12150;
constexpr int H0 = 8130;

struct Field {
    const char* control;
    int TwipRect::*field;
    int expected;
};

}  // namespace

TEST(FormLayout, RulesAtOneSize) {
    FormLayout f;
    f.Form_Resize(W0, H0);
    const std::vector<Field> rows = {
        {"PlayGround", &TwipRect::width, 9990},  {"PlayGround", &TwipRect::height, 7695},
        {"Text1", &TwipRect::top, 7330},         {"Text1", &TwipRect::width, 7950},
        {"BTN_BULK", &TwipRect::top, 7380},      {"BTN_BULK", &TwipRect::left, 8415},
        {"BTN_Flags", &TwipRect::top, 7380},     {"BTN_Flags", &TwipRect::left, 9255},
        {"Label11", &TwipRect::top, 7330},       {"Label11", &TwipRect::left, 8775},
        {"SSTab1", &TwipRect::height, 7215},     {"SSTab1", &TwipRect::width, 9936},
        {"InfoTabs", &TwipRect::top, 3090},      {"SSTab2", &TwipRect::height, 6735},
        {"SSTab2", &TwipRect::width, 9861},      {"t", &TwipRect::height, 6255},
        {"t", &TwipRect::width, 9761},           {"HistT", &TwipRect::width, 9761},
        {"HistT", &TwipRect::height, 6255},      {"DebugInfo", &TwipRect::top, 6615},
        {"IG", &TwipRect::top, 6615},            {"CMD_About", &TwipRect::top, 6615},
        {"DBGWindow", &TwipRect::height, 6255},  {"DBGWindow", &TwipRect::width, 9736},
        {"Mwindow(3)", &TwipRect::width, 9736},  {"Mwindow(3)", &TwipRect::height, 6735},
        {"ToolsTabs", &TwipRect::height, 6735},  {"ToolsTabs", &TwipRect::width, 9736},
        {"Tseek", &TwipRect::top, 6240},         {"Tseek", &TwipRect::width, 6616},
        {"BSeek", &TwipRect::top, 6240},         {"BSeek", &TwipRect::left, 6841},
        {"DList", &TwipRect::left, 8161},        {"DList", &TwipRect::height, 5100},
        {"brefresh", &TwipRect::top, 6240},      {"brefresh", &TwipRect::left, 8161},
        {"BFilter", &TwipRect::left, 8161},      {"BFilter", &TwipRect::top, 5880},
        {"HistView", &TwipRect::width, 7936},    {"HistView", &TwipRect::height, 5775},
    };
    for (const auto& row : rows) EXPECT_EQ(f[row.control].*row.field, row.expected) << row.control;
}

TEST(FormLayout, TinyWindowSkipsNegativeSizesAndRestoresCleanly) {
    FormLayout f;
    f.Form_Resize(W0, H0);
    const auto normal = f.all();
    f.Form_Resize(100, 100);
    for (const auto& [name, r] : f.all()) {
        EXPECT_GE(r.width, 0) << name;
        EXPECT_GE(r.height, 0) << name;
    }
    EXPECT_EQ(f["PlayGround"].width, normal.at("PlayGround").width) << "the failing rule is skipped";
    EXPECT_EQ(f["Text1"].top, -700) << "later rules still run";
    EXPECT_EQ(f["InfoTabs"].top, -4940);
    f.Form_Resize(0, 0);
    f.Form_Resize(W0, H0);
    EXPECT_EQ(f.all(), normal);
}
