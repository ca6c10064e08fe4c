// The main window on the fakes: what it shows at start, the connection bar,
// the resize rules on the real widgets, the command line and the Bulk
// dialog down to the bytes on the socket, and the flags dialog following the
// core's table both ways.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

#include <stdexcept>

#include "command/bulk_dialog_qt.h"
#include "form_fixture.h"
#include "toolkit/tab_control_qt.h"
#include "toolkit/widget_kit_qt.h"
#include "sites/site_book.h"
#include "triggers/flags_form_qt.h"

namespace kelpa::test {
namespace {

TEST(ConnectionBar, PickingASiteFillsTheBoxesAndConnectUsesWhatTheBoxesHold) {
    FormFixture f;
    f.fake.folder.write("CONN.ZIG", formatSites({{"Alpha Realm", "alpha", "alpha.example", "", 4000, 4001, "", ""},
                                                     {"Beta World", "beta", "beta.example", "", 6000, 0, "", ""}}));
    auto* list = f.control<QComboBox>("CB_Connections");
    EXPECT_EQ(f.control<QLineEdit>("Site")->text(), "alpha.example") << "the first site at start";
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Down);
    f.form().syncFromCore();
    EXPECT_EQ(f.control<QLineEdit>("Site")->text(), "beta.example");
    EXPECT_EQ(f.control<QLineEdit>("SPort")->text(), "0");

    auto* port = f.control<QLineEdit>("PPort");
    port->selectAll();
    QTest::keyClicks(port, "6001");
    QTest::mouseClick(f.control<QPushButton>("CMD_CONNECT"), Qt::LeftButton);
    f.form().syncFromCore();
    EXPECT_EQ(f.fake.socket.connects, std::vector<std::string>{"beta.example:6001"});
    EXPECT_TRUE(!f.control("CMD_CONNECT")->isEnabled() && f.control("CMD_DISCONNECT")->isEnabled());
}

TEST(StartUp, TabsOpenOnTheirFirstPageAndTheCheckBoxesOfThePageSystemSwitchTheCore) {
    FormFixture f;
    for (const char* name : {"SSTab1", "SSTab2", "ToolsTabs", "InfoTabs"})
        EXPECT_EQ(f.control<qt::TabControl>(name)->currentIndex(), 0) << name;
    EXPECT_TRUE(f.control("t")->isVisible() && !f.control("DBGWindow")->isVisible());
    auto* tab1 = f.control<qt::TabControl>("SSTab1");
    QTest::mouseClick(tab1, Qt::LeftButton, {}, tab1->tabRect(1).center());
    EXPECT_TRUE(f.control("DBGWindow")->isVisible() && !f.control("t")->isVisible());

    Client& c = f.form().client();
    for (const char* box : {"IG", "CT", "DebugInfo"}) f.control<QCheckBox>(box)->click();
    EXPECT_TRUE(!c.parts().windows.Graphics && !c.parts().pipeline.CleanerText && c.parts().debug.enabled);
}

TEST(MainFormLayout, WidthWidensTheWorkAreaHeightMovesTheCommandLineAndATinyWindowRestores) {
    FormFixture f;
    f.form().resize(802, 520);
    std::map<QWidget*, QRect> before;
    for (QWidget* w : f.form().findChildren<QWidget*>()) before[w] = w->geometry();
    const auto was = [&](const char* name) { return before[f.control(name)]; };

    f.form().resize(802 + 137, 520 + 60);
    for (const char* name : {"t", "HistT", "DBGWindow", "Mwindow(0)", "Mwindow(3)", "Text1", "SSTab1", "SSTab2",
                             "ToolsTabs", "HistView", "PlayGround"})
        EXPECT_EQ(f.control(name)->width(), was(name).width() + 137) << name;
    // The buttons stay at the end of the command line, which moves down with
    // the status tabs; the left column stays put.
    for (const char* name : {"BTN_BULK", "BTN_Flags"})
        EXPECT_EQ(f.control(name)->geometry(), was(name).translated(137, 60)) << name;
    EXPECT_EQ(f.control("BTN_BULK")->y(), f.control("Text1")->y() + qt::px(50));
    EXPECT_EQ(f.control("InfoTabs")->geometry(), was("InfoTabs").translated(0, 60));
    for (const char* name : {"CB_Connections", "Site", "SPort", "CMD_DISCONNECT", "Frame3"})
        EXPECT_EQ(f.control(name)->geometry(), was(name)) << name;
    EXPECT_EQ(f.control("t")->height(), was("t").height() + 60);

    f.form().resize(12, 9);
    EXPECT_GE(f.control("t")->width(), 0);
    f.form().resize(802, 520);
    for (QWidget* w : f.form().findChildren<QWidget*>())
        EXPECT_EQ(w->geometry(), before[w]) << w->objectName().toStdString();
}

TEST(CommandLine, EnterSendsTheWholeLineInTheCodePageAndEmptiesTheBoxEscapeHidesAndKeepsIt) {
    FormFixture f;
    f.fake.socket.connected = true;
    auto* text1 = f.control<QLineEdit>("Text1");
    QTest::keyClicks(text1, "look");
    QTest::keyClick(text1, Qt::Key_Return);
    EXPECT_TRUE(text1->text().isEmpty());
    QTest::keyClick(text1, Qt::Key_Enter);  // the keypad's Enter, on an empty box
    text1->setText(QString::fromUtf8("say caf\u00e9 \u20ac5 \u4e2d"));
    QTest::keyClick(text1, Qt::Key_Return);
    const std::string line(100000, 'k');
    text1->setText(QString::fromStdString(line));
    text1->end(false);
    QTest::keyClicks(text1, "ab");  // typing goes on past any length
    QTest::keyClick(text1, Qt::Key_Return);
    EXPECT_EQ(f.fake.socket.sent, "look\r\n\r\nsay caf\xE9 \x80" "5 ?\r\n" + line + "ab\r\n");

    QTest::keyClicks(text1, "north");
    QTest::keyClick(text1, Qt::Key_Escape);
    EXPECT_TRUE(f.fake.host.hidden);
    EXPECT_EQ(text1->text(), "north");
}

class ThrowingSocket : public FakeSocket {
public:
    bool sendData(const std::string&) override { throw std::runtime_error("socket broke"); }
};

TEST(CommandLine, AFailureInTheCoreIsToldOnTheDebugChannelAndTheProgramGoesOn) {
    FormFixture f;
    ThrowingSocket broken;
    broken.connected = true;
    Platform platform{broken, f.fake.clock, f.fake.random, f.fake.files, f.fake.host};
    qt::MainForm form(platform);
    form.findChild<QCheckBox*>("DebugInfo")->setChecked(true);
    auto* text1 = form.findChild<QLineEdit*>("Text1");
    text1->setText("look");
    QTest::keyClick(text1, Qt::Key_Return);
    const std::string debug(form.client().parts().windows.text[kDebugWindow].text());
    EXPECT_NE(debug.find("Text1_KeyPress: socket broke"), std::string::npos) << debug;
    EXPECT_TRUE(text1->text().isEmpty());
}

// Runs `inside` once the modal dialog is up, then presses BTN_BULK.
template <typename F>
void withBulkOpen(FormFixture& f, F inside) {
    qt::BulkDialog* bulk = f.form().bulkDialog();
    QTimer::singleShot(0, bulk, [bulk, inside] {
        EXPECT_TRUE(bulk->isVisible());
        inside(bulk);
    });
    // A safety net, so that a failed test does not hang in the dialog.
    QTimer::singleShot(3000, bulk, [bulk] { bulk->reject(); });
    QTest::mouseClick(f.control<QPushButton>("BTN_BULK"), Qt::LeftButton);
}

TEST(BulkDialog, SendSendsEveryLineCancelAndEscapeSendNothingAndKeepTheText) {
    FormFixture f;
    f.fake.socket.connected = true;
    withBulkOpen(f, [](qt::BulkDialog* bulk) { QTest::mouseClick(bulk->OKButton, Qt::LeftButton); });
    withBulkOpen(f, [](qt::BulkDialog* bulk) {
        bulk->TXT_Bulk->setPlainText(QString::fromUtf8("north\nsay\u00a0hi"));
        QTest::mouseClick(bulk->OKButton, Qt::LeftButton);
    });
    EXPECT_EQ(f.fake.socket.sent, "\r\nnorth\r\nsay\xA0hi\r\n") << "an empty box sends a bare line end";
    EXPECT_TRUE(f.form().bulkDialog()->TXT_Bulk->toPlainText().isEmpty());
    EXPECT_FALSE(f.form().bulkDialog()->isVisible());

    f.fake.socket.sent.clear();
    withBulkOpen(f, [](qt::BulkDialog* bulk) {
        bulk->TXT_Bulk->setPlainText("kill rat");
        QTest::mouseClick(bulk->CancelButton, Qt::LeftButton);
    });
    withBulkOpen(f, [](qt::BulkDialog* bulk) { QTest::keyClick(bulk, Qt::Key_Escape); });
    EXPECT_TRUE(f.fake.socket.sent.empty());
    EXPECT_EQ(f.form().bulkDialog()->TXT_Bulk->toPlainText(), "kill rat");
}

TEST(FlagsForm, KeywordsShowWhileOpenAndClicksReachTheNextKeyword) {
    FormFixture f;
    f.fake.socket.connected = true;
    qt::FlagsForm* flags = f.form().flagsForm();
    QTest::mouseClick(f.control<QPushButton>("BTN_Flags"), Qt::LeftButton);
    auto* text1 = f.control<QLineEdit>("Text1");
    // Types a line; the mirrors follow within a frame.
    auto type = [&](const char* line, auto shown) {
        QTest::keyClicks(text1, line);
        QTest::keyClick(text1, Qt::Key_Return);
        return QTest::qWaitFor(shown, 2000);
    };
    const auto box = [&](int i) { return flags->TRGFLAG(i); };
    ASSERT_TRUE(type("#sf 7", [&] { return box(7)->isChecked(); }));
    ASSERT_TRUE(type("#lf 7 hunting", [&] { return box(7)->text() == "HUNTING"; }));
    QTest::mouseClick(box(9), Qt::LeftButton);
    ASSERT_TRUE(type("#cf", [&] { return !box(7)->isChecked() && !box(9)->isChecked() && box(7)->text() == "7"; }));
    // Window labels reach the custom tabs the same way.
    ASSERT_TRUE(type("#lw 1 hunt", [&] { return f.form().tabs()->tabCaption(2) == "HUNT"; }));

    // Escape and Close only hide the dialog.
    QTest::mouseClick(box(12), Qt::LeftButton);
    QTest::keyClick(flags, Qt::Key_Escape);
    EXPECT_FALSE(flags->isVisible());
    EXPECT_TRUE(f.form().client().parts().flags.value[12]);
    QTest::mouseClick(f.control<QPushButton>("BTN_Flags"), Qt::LeftButton);
    EXPECT_TRUE(box(12)->isChecked());
    QTest::mouseClick(flags->BTN_Close, Qt::LeftButton);
    EXPECT_FALSE(flags->isVisible());
}

TEST(FlagsForm, TheGridFitsTheDialogWithoutOverlaps) {
    FormFixture f;
    qt::FlagsForm* flags = f.form().flagsForm();
    std::vector<QRect> taken{flags->BTN_Close->geometry()};
    for (int i = 0; i < FlagTable::kCount; ++i) {
        const QRect r = flags->TRGFLAG(i)->geometry();
        EXPECT_TRUE(flags->rect().contains(r)) << i;
        for (const QRect& other : taken) EXPECT_FALSE(r.intersects(other)) << i;
        taken.push_back(r);
    }
}

}  // namespace
}  // namespace kelpa::test
