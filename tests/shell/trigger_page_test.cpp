// The "Triggers" tab over the core's editor: boxes, list, options, buttons
// and the message boxes.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include "form_fixture.h"

namespace kelpa::test {
namespace {

// Answers the next message box with `button` and notes what it said.
struct BoxAnswer {
    QString seen;
    explicit BoxAnswer(QMessageBox::StandardButton button) {
        auto* poll = new QTimer;
        QObject::connect(poll, &QTimer::timeout, [this, poll, button] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box) return;
            seen = box->windowTitle() + "/" + box->text();
            poll->deleteLater();
            box->button(button)->click();
        });
        poll->start(10);
    }
};

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
};

TEST(TriggerPage, StartsWithTheTemplateAndLoadsEditsAndSavesFiles) {
    TriggerPageFixture f;
    EXPECT_EQ(f.control<QLineEdit>("txtTRGLabel")->text(), "?.trigger");
    EXPECT_EQ(f.text("TxtTrgFlags"), "flag1=1");
    EXPECT_EQ(f.text("txtTRGBody"), "pattern1=?\naction=#nop\npattern1=?\naction=#nop");
    EXPECT_TRUE(f.control<QRadioButton>("Option1(0)")->isChecked());
    EXPECT_EQ(f.list(), QStringList({"a.trigger", "b.trigger"}));

    auto* list = f.control<QListWidget>("TList");
    QRect row = list->visualItemRect(list->item(1));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, row.center());
    f.form().syncFromCore();
    EXPECT_EQ(f.control<QLineEdit>("txtTRGLabel")->text(), "b.trigger");
    EXPECT_EQ(f.text("TxtTrgFlags"), "flag1=2\n");
    EXPECT_EQ(f.text("txtTRGBody"), "pattern1=bee\naction=sting\n");

    auto* body = f.control<QPlainTextEdit>("txtTRGBody");
    body->moveCursor(QTextCursor::End);
    QTest::keyClicks(body, "pattern1=wasp");
    QTest::keyClick(body, Qt::Key_Return);
    QTest::keyClicks(body, "action=run");
    auto* label = f.control<QLineEdit>("txtTRGLabel");
    label->selectAll();
    QTest::keyClicks(label, "c.trigger");
    f.click("btnTRGSave");
    EXPECT_EQ(f.fake.folder.read("triggers/c.trigger"),
              "flag1=2\r\n\r\npattern1=bee\r\naction=sting\r\npattern1=wasp\r\naction=run\r\n");
    f.click("brefresh2");
    EXPECT_EQ(f.list().size(), 3);

    f.click("Option1(1)");
    EXPECT_EQ(f.list(), QStringList({"g.trigger"}));
    EXPECT_EQ(label->text(), "c.trigger");  // the boxes stay
    f.click("btnTRGSave");
    EXPECT_TRUE(f.fake.files.exists("gtriggers/c.trigger"));
}

TEST(TriggerPage, DeletionAsksAndFailuresShowInABoxThatKeepsTheText) {
    TriggerPageFixture f;
    auto* label = f.control<QLineEdit>("txtTRGLabel");
    label->selectAll();
    QTest::keyClicks(label, "a.trigger");
    {
        BoxAnswer no(QMessageBox::No);
        f.click("btnTRGDelete");
        EXPECT_EQ(no.seen, "Deletion confirmation/Please confirm trigger deletion");
    }
    EXPECT_TRUE(f.fake.files.exists("triggers/a.trigger"));
    {
        BoxAnswer yes(QMessageBox::Yes);
        f.click("btnTRGDelete");
    }
    EXPECT_FALSE(f.fake.files.exists("triggers/a.trigger"));
    EXPECT_EQ(f.list(), QStringList({"b.trigger"}));
    EXPECT_EQ(label->text(), "?.trigger");

    std::filesystem::remove_all(f.fake.folder.path() / "triggers");
    QTest::keyClicks(f.control<QPlainTextEdit>("TxtTrgFlags"), "x");
    {
        BoxAnswer ok(QMessageBox::Ok);
        f.click("btnTRGSave");
        EXPECT_EQ(ok.seen, QString::fromStdString("Triggers/Cannot save the trigger: the folder " +
                                                  f.fake.files.absolute("triggers") + " does not exist."));
    }
    EXPECT_EQ(f.text("TxtTrgFlags"), "xflag1=1");
    EXPECT_EQ(label->text(), "?.trigger");
}

}  // namespace
}  // namespace kelpa::test
