// A main window over the fakes, shown on the offscreen screen, with the
// clicks and keys the widget tests give it.
#pragma once

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

#include "shell/main_form_qt.h"
#include "support/fakes.h"
#include "toolkit/tab_control_qt.h"

namespace kelpa::test {

// "line 1\r\n" up to "line <to>\r\n", or with another word.
inline std::string numberedLines(int from, int to, const char* word = "line") {
    std::string s;
    for (int i = from; i <= to; ++i) s += std::string(word) + " " + std::to_string(i) + "\r\n";
    return s;
}

struct FormFixture {
    FakePlatform fake;

    // Created on demand, so that a test can prepare the folder first.
    qt::MainForm& form() {
        if (!form_) {
            form_ = std::make_unique<qt::MainForm>(fake.platform);
            form_->show();
        }
        return *form_;
    }

    template <typename W = QWidget>
    W* control(const char* name) {
        W* w = form().findChild<W*>(QString::fromLatin1(name));
        if (!w) ADD_FAILURE() << "no control " << name;
        return w;
    }

    // What a box, label or button of that name shows, every character as it
    // is (toPlainText would show a no-break space as a blank).
    QString text(const char* name) {
        if (auto* box = qobject_cast<QPlainTextEdit*>(control(name)))
            return box->document()->toRawText().replace(QChar::ParagraphSeparator, '\n');
        return control(name)->property("text").toString();
    }
    // The texts of a list's entries, top to bottom.
    QStringList list(const char* name) {
        QStringList out;
        auto* list = control<QListWidget>(name);
        for (int i = 0; i < list->count(); ++i) out << list->item(i)->text();
        return out;
    }

    // Each action brings the mirrors up to date afterwards, as the frame does.
    void click(const char* name) {
        QTest::mouseClick(control<QAbstractButton>(name), Qt::LeftButton);
        form().syncFromCore();
    }
    void clickTab(const char* name, int index) {
        auto* tabs = control<qt::TabControl>(name);
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(index).center());
        form().syncFromCore();
    }
    // A double click on a list's entry; it counts only on the entry just pressed.
    void open(const char* name, int row) {
        auto* list = control<QListWidget>(name);
        list->setCurrentItem(list->item(row));
        const QPoint at = list->visualItemRect(list->item(row)).center();
        QTest::mousePress(list->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
        form().syncFromCore();
    }
    void retype(const char* box, const QString& text) {
        control<QLineEdit>(box)->selectAll();
        QTest::keyClicks(control(box), text);
    }
    // The window active, as the player's clicks and keys leave it.
    bool activate() {
        form().activateWindow();
        return QTest::qWaitForWindowActive(&form());
    }
    // The window active and the button in focus, as a click leaves them.
    void pressedByThePlayer(const char* button) {
        EXPECT_TRUE(activate());
        control(button)->setFocus();
    }
    void enter(const char* box, const QString& line) {
        control(box)->setFocus();
        QTest::keyClicks(control(box), line);
        QTest::keyClick(control(box), Qt::Key_Return);
    }

    // Presses a button and runs `inside` while the modal dialog it opens is
    // up; returns once the dialog has closed, closing it if the test did not.
    template <typename D>
    void whileOpen(const char* button, const std::function<void(D*)>& inside) {
        bool ran = false;
        QTimer::singleShot(0, &form(), [&] {
            D* d = form().findChild<D*>();
            ran = d && d->isVisible() && d->isModal();
            if (ran) inside(d);
            if (d && d->isVisible()) {
                ADD_FAILURE() << "the dialog is still open";
                d->reject();
            }
        });
        control<QAbstractButton>(button)->click();
        EXPECT_TRUE(ran);
    }

private:
    std::unique_ptr<qt::MainForm> form_;
};

}  // namespace kelpa::test
