// A main window over the fakes, shown on the offscreen screen.
#pragma once

#include <QApplication>
#include <QListWidget>
#include <QTest>
#include <QWidget>

#include <memory>

#include "shell/main_form_qt.h"
#include "support/fakes.h"

namespace kelpa::test {

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

private:
    std::unique_ptr<qt::MainForm> form_;
};

// The texts of a list's entries, top to bottom.
inline QStringList itemsOf(QListWidget* list) {
    QStringList out;
    for (int i = 0; i < list->count(); ++i) out << list->item(i)->text();
    return out;
}

// A double click on a list's entry; it counts only on the entry just pressed.
inline void doubleClick(QListWidget* list, int row) {
    QListWidgetItem* item = list->item(row);
    list->setCurrentItem(item);
    const QPoint at = list->visualItemRect(item).center();
    QTest::mousePress(list->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
}

}  // namespace kelpa::test
