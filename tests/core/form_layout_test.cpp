// Form_Resize: a tiny window skips rules that would give negative sizes and
// restores cleanly. The places themselves are held by the widget test of a
// resize, which compares moves, not copied numbers.
#include <gtest/gtest.h>

#include "shell/form_layout.h"

using namespace kelpa;

TEST(FormLayout, ATinyWindowSkipsTheRulesThatWouldGoNegativeAndRestores) {
    FormLayout f;
    f.Form_Resize(12150, 8130);
    const auto normal = f.all();
    f.Form_Resize(100, 100);
    for (const auto& [name, r] : f.all()) EXPECT_TRUE(r.width >= 0 && r.height >= 0) << name;
    EXPECT_EQ(f["PlayGround"].width, normal.at("PlayGround").width) << "the failing rule is skipped";
    EXPECT_LT(f["InfoTabs"].top, 0) << "later rules still run";
    f.Form_Resize(0, 0);
    f.Form_Resize(12150, 8130);
    EXPECT_EQ(f.all(), normal);
}
