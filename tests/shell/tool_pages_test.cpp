// The pages "Macros" and "Triggers" over a temporary program folder: list,
// open, edit, save, delete, and failures that keep the boxes.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include "command/macro_page_qt.h"
#include "common/text.h"
#include "form_fixture.h"
#include "toolkit/tab_control_qt.h"

namespace kelpa::test {
namespace {

// A page of "Tools" on screen: 1 for triggers, 2 for macros.
qt::MacroPage* shownPage(FormFixture& f, int tool = 2) {
    f.form().tabs()->setCurrentIndex(6);
    f.control<qt::TabControl>("ToolsTabs")->setCurrentIndex(tool);
    return f.form().macroPage();
}

TEST(MacroPage, ListsOpensSavesAndReloads) {
    FormFixture f;
    f.fake.folder.write("macros/b.macro", "say b\r\nsay c");
    f.fake.folder.write("macros/a.macro", "x");
    f.fake.folder.write("macros/notes.txt", "-");
    f.fake.folder.write("macros/AREA/o.macro", "o");
    qt::MacroPage* page = shownPage(f);
    EXPECT_EQ(itemsOf(page->Mlist), (QStringList{"a.macro", "b.macro"}));
    EXPECT_EQ(page->txtMacrosLabel->text(), "?.macro");

    doubleClick(page->Mlist, 1);
    EXPECT_EQ(page->txtMacrosLabel->text(), "b.macro");
    EXPECT_EQ(page->txtMacrosCommands->toPlainText(), "say b\nsay c");

    // Typed text is what Save writes, trimmed, with one CR LF behind it.
    page->txtMacrosLabel->clear();
    QTest::keyClicks(page->txtMacrosLabel, "new.macro");
    page->txtMacrosCommands->setPlainText("  say new\nsay more  ");
    QTest::mouseClick(page->BTNMacrosSave, Qt::LeftButton);
    EXPECT_EQ(f.fake.folder.read("macros/new.macro"), "say new\r\nsay more\r\n");
    EXPECT_EQ(page->Mlist->count(), 2);  // not refreshed by Save
    QTest::mouseClick(page->brefresh3, Qt::LeftButton);
    EXPECT_EQ(itemsOf(page->Mlist), (QStringList{"a.macro", "b.macro", "new.macro"}));

    // The override list; Save goes where the label says.
    f.form().client().Text1_Enter("#override area");
    QTest::mouseClick(page->Command1, Qt::LeftButton);
    EXPECT_EQ(page->MListName->text(), "Override(AREA)");
    EXPECT_EQ(itemsOf(page->Mlist), QStringList{"o.macro"});
    QTest::mouseClick(page->BTNMacrosSave, Qt::LeftButton);
    EXPECT_EQ(f.fake.folder.read("macros/AREA/new.macro"), "say new\r\nsay more\r\n");
}

TEST(MacroPage, DeleteAsksAndFailuresKeepTheBoxes) {
    FormFixture f;
    f.fake.folder.write("macros/a.macro", "x");
    f.fake.folder.write("macros/b.macro", "y");
    qt::MacroPage* page = shownPage(f);

    doubleClick(page->Mlist, 0);
    f.fake.host.answerYes = false;
    QTest::mouseClick(page->BTNMacrosDelete, Qt::LeftButton);
    EXPECT_EQ(f.fake.host.questions, std::vector<std::string>{"Deletion confirmation: Please confirm macro deletion"});
    EXPECT_EQ(f.fake.folder.read("macros/a.macro"), "x");
    f.fake.host.answerYes = true;
    QTest::mouseClick(page->BTNMacrosDelete, Qt::LeftButton);
    EXPECT_FALSE(std::filesystem::exists(f.fake.folder.path() / "macros/a.macro"));
    EXPECT_EQ(itemsOf(page->Mlist), QStringList{"b.macro"});
    EXPECT_EQ(page->txtMacrosLabel->text(), "?.macro");

    // The template's "?" and a folder that does not exist: told, text kept.
    page->txtMacrosCommands->setPlainText("say kept");
    QTest::mouseClick(page->BTNMacrosSave, Qt::LeftButton);
    page->txtMacrosLabel->clear();
    QTest::keyClicks(page->txtMacrosLabel, "gone.macro");
    f.form().client().Text1_Enter("#override missing");
    QTest::mouseClick(page->Command1, Qt::LeftButton);
    QTest::mouseClick(page->BTNMacrosSave, Qt::LeftButton);
    QTest::mouseClick(page->BTNMacrosDelete, Qt::LeftButton);
    ASSERT_EQ(f.fake.host.messages.size(), 3u);
    EXPECT_EQ(f.fake.host.messages[0], refusedNameMessage("macro", "?.macro"));
    EXPECT_EQ(f.fake.host.messages[1], "Cannot save the macro " + f.fake.files.absolute("macros/MISSING/gone.macro"));
    EXPECT_EQ(f.fake.host.messages[2], "Cannot delete the macro " + f.fake.files.absolute("macros/MISSING/gone.macro"));
    EXPECT_EQ(page->txtMacrosCommands->toPlainText(), "say kept");
    EXPECT_EQ(page->txtMacrosLabel->text(), "gone.macro");
}

struct TriggerPageFixture : FormFixture {
    TriggerPageFixture() {
        fake.folder.write("triggers/b.trigger", "flag1=2\r\npattern1=bee\r\n; note\r\naction=sting");
        fake.folder.write("triggers/a.trigger", "pattern1=x\r\naction=y");
        fake.folder.write("gtriggers/g.trigger", "pattern1=g\r\naction=global");
    }
    QStringList list() { return itemsOf(control<QListWidget>("TList")); }
    void click(const char* name) {
        QTest::mouseClick(control<QAbstractButton>(name), Qt::LeftButton);
        form().syncFromCore();
    }
    QString text(const char* box) { return control<QPlainTextEdit>(box)->toPlainText(); }
    void openEntry(int row) {
        doubleClick(control<QListWidget>("TList"), row);
        form().syncFromCore();
    }
};

// The editor's rules are held by the core's tests; these follow the clicks
// and keys of the page down to the files.
TEST(TriggerPage, StartsWithTheTemplateAndLoadsEditsSavesAndDeletesFiles) {
    TriggerPageFixture f;
    auto* label = f.control<QLineEdit>("txtTRGLabel");
    EXPECT_EQ(label->text(), "?.trigger");
    EXPECT_EQ(f.text("TxtTrgFlags") + "|" + f.text("txtTRGBody"),
              "flag1=1|pattern1=?\naction=#nop\npattern1=?\naction=#nop");
    EXPECT_TRUE(f.control<QRadioButton>("Option1(0)")->isChecked());
    EXPECT_EQ(f.list(), QStringList({"a.trigger", "b.trigger"}));

    f.openEntry(1);
    EXPECT_EQ(label->text(), "b.trigger");
    EXPECT_EQ(f.text("TxtTrgFlags") + "|" + f.text("txtTRGBody"), "flag1=2\n|pattern1=bee\naction=sting\n");

    auto* body = f.control<QPlainTextEdit>("txtTRGBody");
    body->moveCursor(QTextCursor::End);
    QTest::keyClicks(body, "pattern1=wasp");
    QTest::keyClick(body, Qt::Key_Return);
    QTest::keyClicks(body, "action=run");
    label->selectAll();
    QTest::keyClicks(label, "c.trigger");
    f.click("btnTRGSave");
    EXPECT_EQ(f.fake.folder.read("triggers/c.trigger"),
              "flag1=2\r\n\r\npattern1=bee\r\naction=sting\r\npattern1=wasp\r\naction=run\r\n");
    f.click("brefresh2");
    EXPECT_EQ(f.list().size(), 3);

    f.fake.host.answerYes = false;
    f.click("btnTRGDelete");
    EXPECT_TRUE(f.fake.files.exists("triggers/c.trigger"));
    f.fake.host.answerYes = true;
    f.click("btnTRGDelete");
    EXPECT_FALSE(f.fake.files.exists("triggers/c.trigger"));
    EXPECT_EQ(f.list(), QStringList({"a.trigger", "b.trigger"}));
    EXPECT_EQ(label->text(), "?.trigger");

    f.click("Option1(1)");
    EXPECT_EQ(f.list(), QStringList({"g.trigger"}));
}

// A double click beside the entries finds no entry selected.
void doubleClickBeside(QListWidget* list) {
    const QPoint below(5, list->viewport()->height() - 3);
    QTest::mousePress(list->viewport(), Qt::LeftButton, {}, below);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, below);
}

TEST(ToolPages, DoubleClickBesideTheEntriesEmptiesTheBoxes) {
    TriggerPageFixture f;
    f.fake.folder.write("macros/a.macro", "x");
    qt::MacroPage* page = shownPage(f);
    doubleClick(page->Mlist, 0);
    ASSERT_EQ(page->txtMacrosLabel->text(), "a.macro");
    doubleClickBeside(page->Mlist);
    EXPECT_EQ(page->txtMacrosLabel->text(), "");
    EXPECT_EQ(page->txtMacrosCommands->toPlainText(), "");

    shownPage(f, 1);
    f.openEntry(1);
    ASSERT_EQ(f.control<QLineEdit>("txtTRGLabel")->text(), "b.trigger");
    doubleClickBeside(f.control<QListWidget>("TList"));
    f.form().syncFromCore();
    EXPECT_EQ(f.control<QLineEdit>("txtTRGLabel")->text(), "");
    EXPECT_EQ(f.text("TxtTrgFlags") + f.text("txtTRGBody"), "");
}

// A no-break space (0xA0) shows as one and must come back as one: a pattern
// holding it would otherwise stop matching after any edit.
TEST(ToolPages, EditorsGiveBackEveryByteTheyShow) {
    TriggerPageFixture f;
    f.fake.folder.write("triggers/n.trigger", "pattern1=a\xA0" "b\r\naction=say \xA0\xE9");
    f.fake.folder.write("macros/n.macro", "say \xA0" "x\r\nsay y");
    shownPage(f, 1);
    f.click("brefresh2");
    f.openEntry(2);
    auto* body = f.control<QPlainTextEdit>("txtTRGBody");
    body->moveCursor(QTextCursor::End);
    QTest::keyClicks(body, "x");  // any edit
    f.click("btnTRGSave");
    EXPECT_EQ(f.fake.folder.read("triggers/n.trigger"), "pattern1=a\xA0" "b\r\naction=say \xA0\xE9\r\nx\r\n");

    qt::MacroPage* page = shownPage(f);
    doubleClick(page->Mlist, 0);
    QTest::keyClicks(page->txtMacrosCommands, "z");
    QTest::mouseClick(page->BTNMacrosSave, Qt::LeftButton);
    EXPECT_EQ(f.fake.folder.read("macros/n.macro"), "zsay \xA0" "x\r\nsay y\r\n");
}

}  // namespace
}  // namespace kelpa::test
