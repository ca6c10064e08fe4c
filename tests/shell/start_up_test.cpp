// What the window shows when it first appears, and the connection bar.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

#include "form_fixture.h"
#include "shell/tab_control_qt.h"
#include "sites/site_book.h"

namespace kelpa::test {
namespace {

std::vector<SiteRecord> twoSites() {
    SiteRecord a{"Alpha Realm", "alpha", "alpha.example", "", 4000, 4001, "", ""};
    SiteRecord b{"Beta World", "beta", "beta.example", "", 6000, 0, "", ""};
    return {a, b};
}

TEST(ConnectionBar, PickingASiteFillsTheBoxesAndConnectUsesWhatTheBoxesHold) {
    FormFixture f;
    f.fake.folder.write("CONN.ZIG", formatSites(twoSites()));
    auto* list = f.control<QComboBox>("CB_Connections");
    EXPECT_EQ(f.control<QLineEdit>("Site")->text(), "alpha.example") << "the first site at start";
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Down);
    f.form().syncFromCore();
    EXPECT_EQ(f.control<QLineEdit>("Site")->text(), "beta.example");
    EXPECT_EQ(f.control<QLineEdit>("SPort")->text(), "0");
    EXPECT_EQ(f.form().client().bar.CurrentSite.ShortName, "beta");

    auto* port = f.control<QLineEdit>("PPort");
    port->selectAll();
    QTest::keyClicks(port, "6001");
    QTest::mouseClick(f.control<QPushButton>("CMD_CONNECT"), Qt::LeftButton);
    f.form().syncFromCore();
    EXPECT_EQ(f.fake.socket.connects, std::vector<std::string>{"beta.example:6001"});
    EXPECT_FALSE(f.control("CMD_CONNECT")->isEnabled());
    EXPECT_TRUE(f.control("CMD_DISCONNECT")->isEnabled());

    f.fake.socket.connected = true;
    f.form().s_Close();
    f.form().syncFromCore();
    EXPECT_TRUE(f.control("CMD_CONNECT")->isEnabled());
    EXPECT_FALSE(f.control("CMD_DISCONNECT")->isEnabled());
}

TEST(StartUp, EveryTabControlOpensOnItsFirstPageAndHidesTheOthers) {
    FormFixture f;
    struct Row {
        const char* tabs;
        QStringList captions;
    };
    const Row rows[] = {
        {"SSTab1", {"Main", "System", "Custom 1", "Custom 2", "Custom 3", "Custom 4", "Tools"}},
        {"SSTab2", {"Actual", "History"}},
        {"ToolsTabs", {"History", "Triggers", "Macros"}},
        {"InfoTabs", {"Life", "Gen", "Other", "Dbg"}},
    };
    for (const Row& row : rows) {
        auto* tabs = f.control<qt::TabControl>(row.tabs);
        ASSERT_EQ(tabs->count(), row.captions.size()) << row.tabs;
        for (int i = 0; i < tabs->count(); ++i) EXPECT_EQ(tabs->tabCaption(i), row.captions[i]);
        EXPECT_EQ(tabs->currentIndex(), 0) << row.tabs;
    }
    EXPECT_TRUE(f.control("t")->isVisible());
    EXPECT_FALSE(f.control("DBGWindow")->isVisible());
    auto* tab1 = f.control<qt::TabControl>("SSTab1");
    QTest::mouseClick(tab1, Qt::LeftButton, {}, tab1->tabRect(1).center());
    EXPECT_EQ(tab1->currentIndex(), 1);
    EXPECT_TRUE(f.control("DBGWindow")->isVisible());
    EXPECT_FALSE(f.control("t")->isVisible());
}

TEST(StartUp, TheCheckBoxesOfThePageSystemSwitchTheCore) {
    FormFixture f;
    Client& c = f.form().client();
    f.control<QCheckBox>("IG")->click();
    f.control<QCheckBox>("CT")->click();
    f.control<QCheckBox>("DebugInfo")->click();
    EXPECT_FALSE(c.windows.Graphics);
    EXPECT_FALSE(c.pipeline.CleanerText);
    EXPECT_TRUE(c.debug.enabled);
}

}  // namespace
}  // namespace kelpa::test
