// The resize rules as they reach the real widgets.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>

#include "form_fixture.h"
#include "shell/widget_kit_qt.h"

namespace kelpa::test {
namespace {

constexpr int kStartWidth = 802, kStartHeight = 520;

const char* const kWideningControls[] = {"t", "HistT", "DBGWindow", "Mwindow(0)", "Mwindow(1)",
                                          "Mwindow(2)", "Mwindow(3)", "Text1", "SSTab1", "SSTab2",
                                          "ToolsTabs", "HistView", "PlayGround"};

TEST(MainFormLayout, GrowingTheWidthWidensTheWorkAreaAndKeepsTheButtonsAtTheEndOfTheCommandLine) {
    FormFixture f;
    f.form().resize(kStartWidth, kStartHeight);
    std::map<std::string, int> before;
    for (const char* name : kWideningControls) before[name] = f.control(name)->width();
    const QRect text1 = f.control("Text1")->geometry();
    const int bulkGap = f.control("BTN_BULK")->x() - text1.right();
    const int flagsGap = f.control("BTN_Flags")->x() - text1.right();

    f.form().resize(kStartWidth + 137, kStartHeight);

    for (const char* name : kWideningControls) EXPECT_EQ(f.control(name)->width(), before[name] + 137) << name;
    const QRect grown = f.control("Text1")->geometry();
    EXPECT_EQ(f.control("BTN_BULK")->x() - grown.right(), bulkGap);
    EXPECT_EQ(f.control("BTN_Flags")->x() - grown.right(), flagsGap);
    EXPECT_EQ(f.control("BTN_BULK")->y(), grown.y() + qt::px(50));
}

TEST(MainFormLayout, GrowingTheHeightMovesTheCommandLineAndStatusTabsDownButNotTheLeftColumn) {
    FormFixture f;
    f.form().resize(kStartWidth, kStartHeight);
    const char* moving[] = {"Text1", "BTN_BULK", "BTN_Flags", "InfoTabs"};
    const char* fixed[] = {"CB_Connections", "Site", "PPort", "SPort", "CMD_CONNECT", "CMD_DISCONNECT", "Frame3"};
    std::map<std::string, QRect> before;
    for (const char* n : moving) before[n] = f.control(n)->geometry();
    for (const char* n : fixed) before[n] = f.control(n)->geometry();
    const int tHeight = f.control("t")->height();

    f.form().resize(kStartWidth, kStartHeight + 60);

    for (const char* n : moving) EXPECT_EQ(f.control(n)->geometry(), before[n].translated(0, 60)) << n;
    for (const char* n : fixed) EXPECT_EQ(f.control(n)->geometry(), before[n]) << n;
    EXPECT_EQ(f.control("t")->height(), tHeight + 60);
}

TEST(MainFormLayout, ATinyWindowGivesNoErrorAndTheRestoredWindowLooksAsBefore) {
    FormFixture f;
    f.form().resize(kStartWidth, kStartHeight);
    std::map<QWidget*, QRect> before;
    for (QWidget* w : f.form().findChildren<QWidget*>()) before[w] = w->geometry();

    f.form().resize(12, 9);
    EXPECT_GE(f.control("t")->width(), 0);
    EXPECT_GE(f.control("Text1")->width(), 0);
    f.form().resize(kStartWidth, kStartHeight);

    for (QWidget* w : f.form().findChildren<QWidget*>())
        EXPECT_EQ(w->geometry(), before[w]) << w->objectName().toStdString();
}

TEST(MainFormLayout, TheFormStartsAtItsInsideSizeWithTheWorkAreaBesideTheLeftColumn) {
    FormFixture f;
    EXPECT_EQ(f.form().size(), QSize(802, 520));
    EXPECT_EQ(f.control("PlayGround")->x(), 136);
    // Children of a tab page stand just under its row of tabs.
    QWidget* t = f.control("t");
    QWidget* tab2 = f.control("SSTab2");
    EXPECT_EQ(t->mapTo(tab2, QPoint(0, 0)).y(), 24);
}

}  // namespace
}  // namespace kelpa::test
