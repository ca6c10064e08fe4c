// The main window on the fakes: what it shows at start, the connection bar,
// the command line and the Bulk dialog down to the bytes on the socket, and
// the flags dialog following the core's table both ways.
#include <gtest/gtest.h>

#include <QScreen>
#include <QScrollBar>

#include <filesystem>
#include <memory>
#include <stdexcept>

#include "command/bulk_dialog_qt.h"
#include "form_fixture.h"
#include "output/output_view_qt.h"
#include "shell/qt_platform_qt.h"
#include "sites/site_book.h"
#include "toolkit/tab_control_qt.h"
#include "toolkit/widget_kit_qt.h"
#include "triggers/flags_form_qt.h"

namespace kelpa::test {
namespace {

TEST(ConnectionBar, PickingASiteFillsTheBoxesAndConnectUsesWhatTheBoxesHold) {
    FormFixture f;
    f.fake.folder.write("CONN.ZIG", formatSites({{"Alpha Realm", "alpha", "alpha.example", "", 4000, 4001, "", ""},
                                                 {"Beta World", "beta", "beta.example", "", 6000, 0, "", ""}}));
    EXPECT_EQ(f.text("Site"), "alpha.example") << "the first site at start";
    QTest::keyClick(f.control("CB_Connections"), Qt::Key_Down);
    f.form().syncFromCore();
    EXPECT_EQ(f.text("Site") + " " + f.text("SPort"), "beta.example 0");
    // A port copied from a web page comes with its line end.
    f.control<QLineEdit>("PPort")->selectAll();
    f.control<QLineEdit>("PPort")->insert(QStringLiteral("6001\n"));
    EXPECT_EQ(f.text("PPort"), "6001 ");
    ASSERT_TRUE(f.activate());
    QTest::mouseClick(f.control("CMD_CONNECT"), Qt::LeftButton);
    f.form().syncFromCore();
    EXPECT_EQ(f.fake.socket.connects, std::vector<std::string>{"beta.example:6001 "});  // the socket trims
    EXPECT_TRUE(!f.control("CMD_CONNECT")->isEnabled() && f.control("CMD_DISCONNECT")->isEnabled());
    // The player goes on typing after either button, and a button greyed
    // under the focus hands it to the command line, not to the status tabs.
    EXPECT_EQ(QApplication::focusWidget(), f.control("Text1"));
    f.fake.socket.connected = true;
    f.form().client().s_Connect();
    f.form().syncFromCore();
    f.control("CMD_DISCONNECT")->setFocus();
    f.fake.socket.connected = false;
    f.form().client().s_Close();
    f.form().syncFromCore();
    EXPECT_EQ(QApplication::focusWidget(), f.control("Text1"));
    QTest::mouseClick(f.control("CMD_CONNECT"), Qt::LeftButton);
    f.form().client().s_Error(10061, "Connection refused", 0);
    f.form().syncFromCore();
    EXPECT_TRUE(f.control("CMD_CONNECT")->isEnabled());
    EXPECT_EQ(QApplication::focusWidget(), f.control("Text1"));
}

TEST(StartUp, TabsOpenOnTheirFirstPageAndTheCheckBoxesOfThePageSystemSwitchTheCore) {
    FormFixture f;
    for (const char* name : {"SSTab1", "SSTab2", "ToolsTabs", "InfoTabs"})
        EXPECT_EQ(f.control<qt::TabControl>(name)->currentIndex(), 0) << name;
    EXPECT_TRUE(f.control("t")->isVisible() && !f.control("DBGWindow")->isVisible());
    // Centred, but a form wider than the screen keeps its title bar on it.
    EXPECT_TRUE(f.form().screen()->availableGeometry().contains(f.form().pos())) << f.form().pos().x();
    // A small screen at a large scale (1024x600 at 1.25) still shows the
    // command line under the title bar; a large one leaves the size alone.
    EXPECT_EQ(qt::sizeOnScreen({802, 520}, {0, 0, 819, 480}), QSize(802, 440));
    EXPECT_EQ(qt::sizeOnScreen({802, 520}, {0, 0, 1280, 984}), QSize(802, 520));
    ASSERT_TRUE(f.activate());
    EXPECT_EQ(QApplication::focusWidget(), f.control("Text1")) << "typing at start goes to the command line";
    {
        // The program's folder heads the debug window, before what the
        // start-up finds wrong in it (a site book that cannot be read).
        TempFolder folder;
        std::filesystem::create_directory(folder.path() / "CONN.ZIG");
        const auto form = qt::MainForm::createOn(std::make_unique<qt::QtPlatform>(folder.path().string()), "Program folder: x");
        const std::string debug(form->client().parts().windows.text[kDebugWindow].text());
        EXPECT_TRUE(debug.starts_with("Program folder: x\r\nCannot read the site book")) << debug;
    }
    f.clickTab("SSTab1", 1);
    EXPECT_TRUE(f.control("DBGWindow")->isVisible() && !f.control("t")->isVisible());
    for (const char* box : {"IG", "CT", "DebugInfo"}) f.control<QCheckBox>(box)->click();
    const ClientParts& c = f.form().client().parts();
    EXPECT_TRUE(!c.windows.Graphics && !c.pipeline.CleanerText && c.debug.enabled);
}

// A caption longer than its tab (a long #LABELWINDOW) shows its beginning.
TEST(TabControl, ALongCaptionShowsItsBeginning) {
    qt::TabControl tabs(QStringLiteral("tabs"), QColor(128, 128, 128), 4);
    for (int i = 0; i < 4; ++i) tabs.addPage(QStringLiteral("page"));
    tabs.resize(400, 60);
    tabs.show();
    auto picture = [&](const QString& caption) {
        tabs.setTabCaption(1, caption);
        QCoreApplication::processEvents();
        return tabs.grab(tabs.tabRect(1)).toImage();
    };
    // Digits share one width: only the first one differs.
    const QString rest(40, u'0');
    EXPECT_NE(picture(u'1' + rest), picture(u'7' + rest));
}

// Without a mouse: Ctrl+Tab steps through the main tabs, Ctrl+PageDown
// through the tabs inside a page, Tab reaches the status tabs (turned with
// the arrows), the history page and the list of a Filter, and focus on a
// page that went out of sight comes back to the command line.
TEST(Keyboard, PagesAndTheHistoryAreReachedWithoutAMouse) {
    FormFixture f;
    ASSERT_TRUE(f.activate());
    auto* text1 = f.control<QLineEdit>("Text1");
    text1->setFocus();
    QTest::keyClick(text1, Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(f.form().tabs()->currentIndex(), 1);
    QTest::keyClick(text1, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(text1, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(f.form().tabs()->currentIndex(), 6) << "round to Tools";
    QTest::keyClick(text1, Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(f.control<qt::TabControl>("ToolsTabs")->currentIndex(), 1);
    QTest::keyClick(text1, Qt::Key_Tab, Qt::ControlModifier);
    QTest::keyClick(text1, Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(f.control<qt::TabControl>("SSTab2")->currentIndex(), 1);

    const auto tabTo = [](QWidget* w) {
        for (int i = 0; i < 30 && !w->hasFocus(); ++i) QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        return w->hasFocus();
    };
    auto* info = f.control<qt::TabControl>("InfoTabs");
    ASSERT_TRUE(tabTo(info));
    std::vector<int> pages;
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_End, Qt::Key_Right, Qt::Key_Left, Qt::Key_Home, Qt::Key_Left}) {
        QTest::keyClick(info, key);
        pages.push_back(info->currentIndex());
    }
    EXPECT_EQ(pages, (std::vector<int>{1, 3, 3, 2, 0, 0}));
    auto* HistT = f.form().outputWindow(kHistT);
    ASSERT_TRUE(tabTo(HistT));
    QTest::keyClick(HistT, Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(f.control<qt::TabControl>("SSTab2")->currentIndex(), 0);
    EXPECT_TRUE(text1->hasFocus()) << QApplication::focusWidget()->objectName().toStdString();
    // The same from the trigger editor's body.
    f.form().tabs()->setCurrentIndex(6);
    f.control<qt::TabControl>("ToolsTabs")->setCurrentIndex(0);
    EXPECT_TRUE(tabTo(f.form().outputWindow(kHistView)));
    f.control<qt::TabControl>("ToolsTabs")->setCurrentIndex(1);
    f.control("txtTRGBody")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_TRUE(text1->hasFocus()) << QApplication::focusWidget()->objectName().toStdString();
}

TEST(CommandLine, EnterSendsTheWholeLineInTheCodePageEscapeHidesAndAFailureIsToldOnTheDebugChannel) {
    FormFixture f;
    f.fake.socket.connected = true;
    auto* text1 = f.control<QLineEdit>("Text1");
    f.enter("Text1", "look");
    QTest::keyClick(text1, Qt::Key_Enter);  // the keypad's Enter, on an empty box
    text1->setText(QString::fromUtf8("say caf\u00e9 \u20ac5 \u4e2d"));
    QTest::keyClick(text1, Qt::Key_Return);
    const std::string line(100000, 'k');
    text1->setText(QString::fromStdString(line));
    text1->end(false);
    f.enter("Text1", "ab");  // typing goes on past any length
    QTest::keyClicks(text1, "hm");
    QTest::keyClick(text1, Qt::Key_M, Qt::ControlModifier);  // as a terminal's CR
    EXPECT_EQ(f.fake.socket.sent, "look\r\n\r\nsay caf\xE9 \x80" "5 ?\r\n" + line + "ab\r\nhm\r\n");
    // A pasted list of commands runs line by line, whatever its line ends.
    f.fake.socket.sent.clear();
    text1->insert(QStringLiteral("say a\nsay b\r\nsay c\rsay d\n"));
    QTest::keyClick(text1, Qt::Key_Return);
    EXPECT_EQ(f.fake.socket.sent, "say a\r\nsay b\r\nsay c\r\nsay d\r\n");

    QTest::keyClicks(text1, "north");
    // An Alt chord that no button takes types nothing.
    QTest::keyClick(text1, Qt::Key_X, Qt::AltModifier);
    QTest::keyClick(text1, Qt::Key_A, Qt::AltModifier);
    QTest::keyClick(text1, Qt::Key_Escape);
    EXPECT_TRUE(f.fake.host.hidden);
    EXPECT_EQ(text1->text(), "north");

    // The program goes on after a failure in the core.
    f.fake.socket.onSend = [](const std::string&) { throw std::runtime_error("socket broke"); };
    f.control<QCheckBox>("DebugInfo")->setChecked(true);
    QTest::keyClick(text1, Qt::Key_Return);
    const std::string debug(f.form().client().parts().windows.text[kDebugWindow].text());
    EXPECT_NE(debug.find("Text1_KeyPress: socket broke"), std::string::npos) << debug;
    EXPECT_TRUE(text1->text().isEmpty());
}

TEST(BulkDialog, SendSendsEveryLineCancelAndEscapeSendNothingAndKeepTheText) {
    FormFixture f;
    f.fake.socket.connected = true;
    ASSERT_TRUE(f.activate());
    // Writes the box (unless null) and closes the dialog as `close` says;
    // the box has the focus when it opens, the command line after.
    const auto bulk = [&f](const QString& text, const std::function<void(qt::BulkDialog*)>& close) {
        f.control("BTN_BULK")->setFocus();  // as a click leaves it
        f.whileOpen<qt::BulkDialog>("BTN_BULK", [&](qt::BulkDialog* d) {
            EXPECT_EQ(d->focusWidget(), d->TXT_Bulk);
            if (!text.isNull()) d->TXT_Bulk->setPlainText(text);
            close(d);
        });
        EXPECT_EQ(f.form().focusWidget(), f.control("Text1"));
    };
    const auto ok = [](qt::BulkDialog* d) { QTest::mouseClick(d->OKButton, Qt::LeftButton); };
    bulk({}, ok);
    // A long line folds at the box's width and still goes out as one line.
    const QString along(300, u'x');
    bulk(QString::fromUtf8("north\nsay\u00a0hi ") + along, [&](qt::BulkDialog* d) {
        EXPECT_EQ(d->TXT_Bulk->horizontalScrollBar()->maximum(), 0);
        ok(d);
    });
    EXPECT_EQ(f.fake.socket.sent, "\r\nnorth\r\nsay\xA0hi " + along.toStdString() + "\r\n")
        << "an empty box sends a bare line end";
    EXPECT_TRUE(f.form().bulkDialog()->TXT_Bulk->toPlainText().isEmpty());

    f.fake.socket.sent.clear();
    bulk("kill rat", [](qt::BulkDialog* d) { QTest::mouseClick(d->CancelButton, Qt::LeftButton); });
    bulk({}, [](qt::BulkDialog* d) { QTest::keyClick(d, Qt::Key_Escape); });
    EXPECT_TRUE(f.fake.socket.sent.empty());
    EXPECT_EQ(f.form().bulkDialog()->TXT_Bulk->toPlainText(), "kill rat");
}

TEST(FlagsForm, KeywordsShowWhileOpenAndClicksReachTheNextKeyword) {
    FormFixture f;
    f.fake.socket.connected = true;
    ASSERT_TRUE(f.activate());
    qt::FlagsForm* flags = f.form().flagsForm();
    f.click("BTN_Flags");
    EXPECT_TRUE(QTest::qWaitFor([&] { return flags->focusWidget() == flags->TRGFLAG(0); }, 2000));
    {
        // Its focus frame shows before any key: the flag Space would tick.
        flags->activateWindow();
        ASSERT_TRUE(QTest::qWaitFor([&] { return flags->TRGFLAG(0)->hasFocus(); }, 2000));
        const QImage focused = flags->TRGFLAG(0)->grab().toImage();
        flags->TRGFLAG(1)->setFocus();
        EXPECT_NE(focused, flags->TRGFLAG(0)->grab().toImage());
        flags->TRGFLAG(0)->setFocus();
    }
    // Types a line; the mirrors follow within a frame.
    const auto type = [&](const char* line, auto shown) {
        f.enter("Text1", line);
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
    f.click("BTN_Flags");
    EXPECT_TRUE(box(12)->isChecked());
    f.control("BTN_Flags")->setFocus();
    QTest::mouseClick(flags->BTN_Close, Qt::LeftButton);
    EXPECT_FALSE(flags->isVisible());
    EXPECT_EQ(f.form().focusWidget(), f.control("Text1")) << "typing goes on in the command line";
    // Left on Close, it opens on a flag again.
    flags->BTN_Close->setFocus();
    f.click("BTN_Flags");
    EXPECT_TRUE(QTest::qWaitFor([&] { return flags->focusWidget() == box(0); }, 2000));
    QTest::keyClick(flags, Qt::Key_Escape);

    // The grid fits the dialog without overlaps.
    std::vector<QRect> taken{flags->BTN_Close->geometry()};
    for (int i = 0; i < FlagTable::kCount; ++i) {
        const QRect r = box(i)->geometry();
        EXPECT_TRUE(flags->rect().contains(r)) << i;
        for (const QRect& other : taken) EXPECT_FALSE(r.intersects(other)) << i;
        taken.push_back(r);
    }
}

}  // namespace
}  // namespace kelpa::test
