// The page "Macros" over a temporary program folder: list, open, save,
// delete, and failures that keep the boxes.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>

#include "command/macro_page_qt.h"
#include "form_fixture.h"
#include "shell/tab_control_qt.h"

namespace kelpa::test {
namespace {

// The page on screen: "Tools", then "Macros".
qt::MacroPage* shownPage(FormFixture& f) {
    f.form().tabs()->setCurrentIndex(6);
    f.control<qt::TabControl>("ToolsTabs")->setCurrentIndex(2);
    return f.form().macroPage();
}

void doubleClick(QListWidget* list, int row) {
    QListWidgetItem* item = list->item(row);
    list->setCurrentItem(item);
    const QPoint at = list->visualItemRect(item).center();
    // A double click in a list counts only on the entry just pressed.
    QTest::mousePress(list->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
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
    EXPECT_EQ(f.fake.host.messages[0], "Cannot use the macro name \"?.macro\"; write the name in place of \"?\"");
    EXPECT_EQ(f.fake.host.messages[1], "Cannot save the macro " + f.fake.files.absolute("macros/MISSING/gone.macro"));
    EXPECT_EQ(f.fake.host.messages[2], "Cannot delete the macro " + f.fake.files.absolute("macros/MISSING/gone.macro"));
    EXPECT_EQ(page->txtMacrosCommands->toPlainText(), "say kept");
    EXPECT_EQ(page->txtMacrosLabel->text(), "gone.macro");
}

}  // namespace
}  // namespace kelpa::test
