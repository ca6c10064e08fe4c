// What the window shows when it first appears, and the connection bar.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include "form_fixture.h"
#include "shell/tab_control_qt.h"
#include "sites/site_book.h"

namespace kelpa::test {
namespace {

TEST(StartUp, AFirstRunCreatesAnEmptySiteBookAndKeepsTheDefaultServer) {
    FormFixture f;
    f.form();
    EXPECT_TRUE(std::filesystem::exists(f.fake.folder.path() / "CONN.ZIG"));
    EXPECT_EQ(f.fake.folder.read("CONN.ZIG"), "");
    EXPECT_EQ(f.control<QComboBox>("CB_Connections")->count(), 0);
    EXPECT_EQ(f.control<QLineEdit>("Site")->text(), "localhost");
    EXPECT_EQ(f.control<QLineEdit>("PPort")->text(), "23");
    EXPECT_EQ(f.control<QLineEdit>("SPort")->text(), "5023");
    EXPECT_TRUE(f.control("CMD_CONNECT")->isEnabled());
    EXPECT_FALSE(f.control("CMD_DISCONNECT")->isEnabled());
}

std::vector<SiteRecord> twoSites() {
    SiteRecord a{"Alpha Realm", "alpha", "alpha.example", "", 4000, 4001, "", ""};
    SiteRecord b{"Beta World", "beta", "beta.example", "", 6000, 0, "", ""};
    return {a, b};
}

TEST(StartUp, TheFirstSiteIsSelectedAndShownBeforeTheWindowAppears) {
    FormFixture f;
    f.fake.folder.write("CONN.ZIG", formatSites(twoSites()));
    qt::MainForm form(f.fake.platform);  // not shown yet
    auto* list = form.findChild<QComboBox*>("CB_Connections");
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(list->itemText(1), "Beta World");
    EXPECT_EQ(list->currentIndex(), 0);
    EXPECT_EQ(form.findChild<QLineEdit*>("Site")->text(), "alpha.example");
    EXPECT_EQ(form.findChild<QLineEdit*>("PPort")->text(), "4000");
    EXPECT_EQ(form.findChild<QLineEdit*>("SPort")->text(), "4001");
}

TEST(ConnectionBar, PickingASiteFillsTheBoxesAndConnectUsesWhatTheBoxesHold) {
    FormFixture f;
    f.fake.folder.write("CONN.ZIG", formatSites(twoSites()));
    auto* list = f.control<QComboBox>("CB_Connections");
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

TEST(StartUp, TheNamedControlsExistWithTheirCaptions) {
    FormFixture f;
    const std::pair<const char*, const char*> buttons[] = {
        {"CMD_CONNECT", "C&onnect"}, {"CMD_DISCONNECT", "&Disconnect"}, {"BTN_BULK", "&Bulk"},
        {"BTN_Flags", "&Flags"}, {"DebugInfo", "&Debug"}, {"IG", "Graphics"}, {"CT", "Cleaner Text"},
        {"CMD_SaveConnection", "&Connections"}, {"CMD_About", "&About"}, {"BSeek", "Seek"},
        {"BFilter", "Filter"}, {"brefresh", "Refresh"}, {"Option1(0)", "Normal"}, {"Option1(1)", "Global"},
        {"brefresh2", "Refresh"}, {"Reload", "&Reload Triggers"}, {"btnTRGNew", "New"},
        {"btnTRGSave", "Save"}, {"btnTRGDelete", "Delete"}, {"brefresh3", "Main"}, {"Command1", "OverDir"},
        {"BTNMacrosNew", "New"}, {"BTNMacrosSave", "Save"}, {"BTNMacrosDelete", "Delete"}};
    for (auto [name, caption] : buttons) {
        auto* b = f.control<QAbstractButton>(name);
        if (b) {
            EXPECT_EQ(b->text(), caption) << name;
        }
    }
    for (const char* name : {"txtTRGLabel", "TxtTrgFlags", "txtTRGBody", "Frame1", "TList", "txtMacrosLabel",
                             "txtMacrosCommands", "Mlist", "MListName", "HistView", "DList", "Tseek",
                             "Label11", "Frame2", "Frame4", "Frame5", "FRM_DBG", "Label9"})
        f.control(name);
    EXPECT_EQ(f.control<QLabel>("Label1")->text(), "Dates");
    EXPECT_EQ(f.control<QLabel>("Label8")->text(), "Loading .....");
    EXPECT_FALSE(f.control("Label8")->isVisibleTo(f.control("ToolsTabs")));
    EXPECT_TRUE(f.control<QRadioButton>("Option1(0)")->isChecked());
    EXPECT_FALSE(f.control<QCheckBox>("DebugInfo")->isChecked());
    EXPECT_TRUE(f.control<QCheckBox>("IG")->isChecked());
    EXPECT_TRUE(f.control<QCheckBox>("CT")->isChecked());
    EXPECT_EQ(f.form().windowTitle(), "Kelpa");
}

TEST(StartUp, TheStatusPanelHasItsCellsAndStartsBlank) {
    FormFixture f;
    const std::pair<const char*, int> arrays[] = {{"Info1", 57}, {"Info2", 5}, {"XInfo", 6}, {"ShapeParam", 11}};
    for (auto [name, count] : arrays) {
        for (int i = 0; i < count; ++i) {
            const QString n = QStringLiteral("%1(%2)").arg(name).arg(i);
            QWidget* w = f.form().findChild<QWidget*>(n);
            ASSERT_NE(w, nullptr) << n.toStdString();
            if (auto* l = qobject_cast<QLabel*>(w)) {
                EXPECT_TRUE(l->text().isEmpty()) << n.toStdString();
            }
        }
        EXPECT_EQ(f.form().findChild<QWidget*>(QStringLiteral("%1(%2)").arg(name).arg(count)), nullptr);
    }
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

TEST(StartUp, TheTimersRunAtTheirIntervals) {
    FormFixture f;
    const std::pair<const char*, int> timers[] = {{"as_timer", 1000}, {"Timer3", 500}, {"Queue", 42638}};
    for (auto [name, ms] : timers) {
        auto* t = f.form().findChild<QTimer*>(name);
        ASSERT_NE(t, nullptr) << name;
        EXPECT_TRUE(t->isActive()) << name;
        EXPECT_EQ(t->interval(), ms) << name;
    }
}

}  // namespace
}  // namespace kelpa::test
