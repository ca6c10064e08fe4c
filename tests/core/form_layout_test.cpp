// Form_Resize: each rule takes the size of the control it hangs from, so the
// ends of the chains show a wrong parent; a tiny window skips rules that
// would give negative sizes and restores cleanly.
#include <gtest/gtest.h>

#include "shell/form_layout.h"

using namespace kelpa;

TEST(FormLayout, ChainsOfRulesAndATinyWindow) {
    struct Field { const char* control; int TwipRect::*field; int expected; };
    const Field rows[] = {
        {"Text1", &TwipRect::width, 7950},     {"BTN_Flags", &TwipRect::left, 9255},   {"InfoTabs", &TwipRect::top, 3090},
        {"t", &TwipRect::height, 6255},        {"HistT", &TwipRect::width, 9761},      {"CMD_About", &TwipRect::top, 6615},
        {"DBGWindow", &TwipRect::width, 9736}, {"Mwindow(3)", &TwipRect::height, 6735},
        {"BSeek", &TwipRect::left, 6841},      {"brefresh", &TwipRect::left, 8161},    {"BFilter", &TwipRect::top, 5880},
        {"HistView", &TwipRect::width, 7936},
    };
    FormLayout f;
    f.Form_Resize(12150, 8130);
    for (const Field& row : rows) EXPECT_EQ(f[row.control].*row.field, row.expected) << row.control;

    const auto normal = f.all();
    f.Form_Resize(100, 100);
    for (const auto& [name, r] : f.all()) EXPECT_TRUE(r.width >= 0 && r.height >= 0) << name;
    EXPECT_EQ(f["PlayGround"].width, normal.at("PlayGround").width) << "the failing rule is skipped";
    EXPECT_EQ(f["InfoTabs"].top, -4940) << "later rules still run";
    f.Form_Resize(0, 0);
    f.Form_Resize(12150, 8130);
    EXPECT_EQ(f.all(), normal);
}
