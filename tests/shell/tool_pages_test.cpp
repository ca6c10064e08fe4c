// The pages "Macros" and "Triggers" over a temporary program folder: list,
// open, edit, save, delete, and failures that keep the boxes.
#include <gtest/gtest.h>

#include <QRadioButton>

#include "common/text.h"
#include "form_fixture.h"

namespace kelpa::test {
namespace {

struct ToolsFixture : FormFixture {
    ToolsFixture() {
        fake.folder.write("macros/b.macro", "say b\r\nsay\xA0" "c");
        fake.folder.write("macros/a.macro", "x");
        fake.folder.write("macros/notes.txt", "-");
        fake.folder.write("macros/AREA/o.macro", "o");
        fake.folder.write("triggers/b.trigger", "flag1=2\r\npattern1=b\xA0" "ee\r\n; note\r\naction=st\xE9ng");
        fake.folder.write("triggers/a.trigger", "pattern1=x\r\naction=y");
        fake.folder.write("gtriggers/g.trigger", "pattern1=g\r\naction=global");
    }
    // A page of "Tools" on screen: 1 for triggers, 2 for macros.
    void show(int tool) {
        form().tabs()->setCurrentIndex(6);
        control<qt::TabControl>("ToolsTabs")->setCurrentIndex(tool);
    }
};

TEST(MacroPage, ListsOpensSavesAndReloads) {
    ToolsFixture f;
    f.show(2);
    EXPECT_EQ(f.list("Mlist"), (QStringList{"a.macro", "b.macro"}));
    EXPECT_EQ(f.text("txtMacrosLabel"), "?.macro");
    f.open("Mlist", 1);
    EXPECT_EQ(f.text("txtMacrosLabel") + "|" + f.text("txtMacrosCommands"), "b.macro|say b\nsay\u00a0c");

    // Typed text is what Save writes, trimmed, with one CR LF behind it; a
    // no-break space (0xA0) comes back as one, or a pattern holding it would
    // stop matching after any edit.
    f.retype("txtMacrosLabel", "New.macro");
    f.control<QPlainTextEdit>("txtMacrosCommands")->setPlainText("  say\u00a0new\nsay more  ");
    f.click("BTNMacrosSave");
    EXPECT_EQ(f.fake.folder.read("macros/New.macro"), "say\xA0new\r\nsay more\r\n");
    EXPECT_EQ(f.list("Mlist").size(), 2);  // not refreshed by Save
    f.click("brefresh3");
    EXPECT_EQ(f.list("Mlist"), (QStringList{"a.macro", "b.macro", "New.macro"})) << "in any case, as players read";

    // The override list; Save goes where the label says.
    f.form().client().Text1_Enter("#override area");
    f.click("Command1");
    EXPECT_EQ(f.text("MListName"), "Override(AREA)");
    EXPECT_EQ(f.control<QLabel>("MListName")->textFormat(), Qt::PlainText) << "a folder <B> is no markup";
    EXPECT_EQ(f.list("Mlist"), QStringList{"o.macro"});
    f.click("BTNMacrosSave");
    EXPECT_EQ(f.fake.folder.read("macros/AREA/New.macro"), "say\xA0new\r\nsay more\r\n");

    // A letter the code page lacks is saved as "?", and the boxes show it
    // from the save on, also when the file is opened again.
    for (const char* page : {"Mlist", "TList"}) {
        const bool macros = page[0] == 'M';
        f.show(macros ? 2 : 1);
        const char* box = macros ? "txtMacrosCommands" : "txtTRGBody";
        f.retype(macros ? "txtMacrosLabel" : "txtTRGLabel", macros ? "l.macro" : "l.trigger");
        f.control<QPlainTextEdit>(box)->setPlainText(u"action=\u0142\u00e9\u4e2d"_qs);
        f.click(macros ? "BTNMacrosSave" : "btnTRGSave");
        EXPECT_EQ(f.text(box), u"action=?\u00e9?"_qs) << page;
        f.click(macros ? "Command1" : "brefresh2");  // the macro went to the override folder
        f.open(page, static_cast<int>(f.list(page).indexOf(macros ? "l.macro" : "l.trigger")));
        EXPECT_EQ(f.text(box).trimmed(), u"action=?\u00e9?"_qs) << page;
    }
}

TEST(MacroPage, DeleteAsksAndFailuresKeepTheBoxes) {
    ToolsFixture f;
    f.show(2);
    f.open("Mlist", 0);
    f.fake.host.answerYes = false;
    f.click("BTNMacrosDelete");
    EXPECT_EQ(f.fake.host.questions, std::vector<std::string>{"Deletion confirmation: Please confirm macro deletion"});
    EXPECT_EQ(f.fake.folder.read("macros/a.macro"), "x");
    f.fake.host.answerYes = true;
    f.click("BTNMacrosDelete");
    EXPECT_FALSE(f.fake.files.exists("macros/a.macro"));
    EXPECT_EQ(f.list("Mlist"), QStringList{"b.macro"});
    EXPECT_EQ(f.text("txtMacrosLabel"), "?.macro");

    // The template's "?" and a folder that does not exist: told, text kept.
    f.control<QPlainTextEdit>("txtMacrosCommands")->setPlainText("say kept");
    f.click("BTNMacrosSave");
    f.retype("txtMacrosLabel", "gone.macro");
    f.form().client().Text1_Enter("#override missing");
    f.click("Command1");
    f.click("BTNMacrosSave");
    f.click("BTNMacrosDelete");
    const std::string gone = f.fake.files.absolute("macros/MISSING/gone.macro");
    EXPECT_EQ(f.fake.host.messages,
              (std::vector<std::string>{refusedNameMessage("macro", "?.macro"),
                                        "Cannot save the macro " + gone + ": No such file or directory.",
                                        "Cannot delete the macro " + gone + ": there is no such file."}));
    EXPECT_EQ(f.text("txtMacrosLabel") + "|" + f.text("txtMacrosCommands"), "gone.macro|say kept");
    // A name that differs from a file's only in case would be that file on
    // a case-blind system.
    f.click("brefresh3");
    f.retype("txtMacrosLabel", "B.macro");
    f.click("BTNMacrosSave");
    EXPECT_EQ(f.fake.host.messages.back(), "Cannot use the macro name \"B.macro\": there is b.macro, and names "
                                           "that differ only in case are one file on case-blind systems");
    EXPECT_EQ(f.fake.files.list("macros", ".macro"), std::vector<std::string>{"b.macro"});
}

// The editor's rules are held by the core's tests; these follow the clicks
// and keys of the page down to the files.
TEST(TriggerPage, StartsWithTheTemplateAndLoadsEditsSavesAndDeletesFiles) {
    ToolsFixture f;
    const auto boxes = [&] {
        return f.text("txtTRGLabel") + "|" + f.text("TxtTrgFlags") + "|" + f.text("txtTRGBody");
    };
    EXPECT_EQ(boxes(), "?.trigger|flag1=1|pattern1=?\naction=#nop\npattern1=?\naction=#nop");
    EXPECT_TRUE(f.control<QRadioButton>("Option1(0)")->isChecked());
    EXPECT_EQ(f.list("TList"), QStringList({"a.trigger", "b.trigger"}));
    f.open("TList", 1);
    EXPECT_EQ(boxes(), "b.trigger|flag1=2\n|pattern1=b\u00a0ee\naction=st\u00e9ng\n");

    f.control<QPlainTextEdit>("txtTRGBody")->moveCursor(QTextCursor::End);
    f.enter("txtTRGBody", "pattern1=wasp");
    QTest::keyClicks(f.control("txtTRGBody"), "action=run");
    f.retype("txtTRGLabel", "c.trigger");
    f.click("btnTRGSave");
    EXPECT_EQ(f.fake.folder.read("triggers/c.trigger"),
              "flag1=2\r\n\r\npattern1=b\xA0" "ee\r\naction=st\xE9ng\r\npattern1=wasp\r\naction=run\r\n");
    f.click("brefresh2");
    EXPECT_EQ(f.list("TList").size(), 3);

    f.fake.host.answerYes = false;
    f.click("btnTRGDelete");
    EXPECT_TRUE(f.fake.files.exists("triggers/c.trigger"));
    f.fake.host.answerYes = true;
    f.click("btnTRGDelete");
    EXPECT_FALSE(f.fake.files.exists("triggers/c.trigger"));
    EXPECT_EQ(f.list("TList"), QStringList({"a.trigger", "b.trigger"}));
    EXPECT_EQ(f.text("txtTRGLabel"), "?.trigger");
    f.click("Option1(1)");
    EXPECT_EQ(f.list("TList"), QStringList({"g.trigger"}));
}

// A double click beside the entries finds no entry selected.
TEST(ToolPages, DoubleClickBesideTheEntriesEmptiesTheBoxes) {
    ToolsFixture f;
    const char* const pages[][4] = {{"Mlist", "txtMacrosLabel", "txtMacrosCommands", "txtMacrosCommands"},
                                    {"TList", "txtTRGLabel", "TxtTrgFlags", "txtTRGBody"}};
    for (const auto& [list, label, box, body] : pages) {
        f.show(list[0] == 'M' ? 2 : 1);
        f.open(list, 0);
        ASSERT_FALSE(f.text(label).isEmpty()) << list;
        QWidget* entries = f.control<QListWidget>(list)->viewport();
        const QPoint below(5, entries->height() - 3);
        QTest::mousePress(entries, Qt::LeftButton, {}, below);
        QTest::mouseDClick(entries, Qt::LeftButton, {}, below);
        f.form().syncFromCore();
        EXPECT_EQ(f.text(label) + f.text(box) + f.text(body), "") << list;
        // Enter on a focus frame that marks no chosen entry does nothing:
        // a key does not empty what the player typed since.
        f.retype(label, "unsaved");
        auto* listed = f.control<QListWidget>(list);
        listed->clearSelection();
        listed->setCurrentRow(0, QItemSelectionModel::NoUpdate);
        QTest::keyClick(listed, Qt::Key_Return);
        f.form().syncFromCore();
        EXPECT_EQ(f.text(label) + f.text(box) + f.text(body), "unsaved") << list << " after Enter";
    }
}

// Keys and mouse as players know them: a double click of another button
// than the left does nothing, the entry opened stays marked, Tab leaves a
// box without typing a tab, Enter presses the button that has the focus and
// opens the entry of a list that has it.
TEST(ToolPages, KeysAndButtonsAsPlayersKnowThem) {
    ToolsFixture f;
    ASSERT_TRUE(f.activate());
    const char* const pages[][3] = {{"Mlist", "txtMacrosCommands", "BTNMacrosNew"},
                                    {"TList", "txtTRGBody", "btnTRGNew"}};
    for (const auto& [list, body, newButton] : pages) {
        f.show(list[0] == 'M' ? 2 : 1);
        f.open(list, 1);
        auto* entries = f.control<QListWidget>(list);
        EXPECT_EQ(entries->currentRow(), 1) << list;
        const QString opened = f.text(body);
        const QPoint beside(5, entries->viewport()->height() - 3);
        QTest::mousePress(entries->viewport(), Qt::RightButton, {}, beside);
        QTest::mouseDClick(entries->viewport(), Qt::RightButton, {}, beside);
        f.form().syncFromCore();
        EXPECT_EQ(f.text(body), opened) << list;

        auto* box = f.control<QPlainTextEdit>(body);
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Tab);
        EXPECT_EQ(f.text(body), opened) << list;
        EXPECT_NE(f.form().focusWidget(), box) << list;

        auto* button = f.control<QPushButton>(newButton);
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Return);
        f.form().syncFromCore();
        EXPECT_NE(f.text(body), opened) << list << ": the template is back";
        const QString fresh = f.text(body);
        entries->setFocus();
        QTest::keyClick(entries, Qt::Key_Up);
        QTest::keyClick(entries, Qt::Key_Return);
        f.form().syncFromCore();
        EXPECT_EQ(entries->currentRow(), 0) << list;
        EXPECT_NE(f.text(body), fresh) << list << ": Enter opens the entry";
    }
}

}  // namespace
}  // namespace kelpa::test
