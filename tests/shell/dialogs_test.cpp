// The two dialogs of the page "System": the site manager over the program's
// folder, with the reload after it closes, and About.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QElapsedTimer>
#include <QFrame>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QScreen>

#include <csignal>
#include <filesystem>

#include <sys/resource.h>

#include "form_fixture.h"
#include "shell/about_dialog_qt.h"
#include "shell/qt_platform_qt.h"
#include "shell/system_info.h"
#include "sites/site_book.h"
#include "sites/site_manager_qt.h"

namespace kelpa::test {
namespace {

using SiteManager = qt::SiteManagerDialog;

const std::string kOldBook =
    "SITE=Old\r\nSSNA=old\r\nSDNS=old.org\r\nSDNA=\r\nSDP_=4000\r\nSAP_=0\r\n"
    "STRI=connect Hero secret#10#look at everything in the room#10#score\r\nSDSC=\r\n\r\n#\r\n";

// While it lives, no file grows beyond `bytes`: writes past it fail, as
// on a full disk, whoever runs the test.
struct FileSizeLimit {
    explicit FileSizeLimit(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &old);
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit now{bytes, old.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &now);
    }
    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &old); }
    rlimit old{};
};

// A dialog with a fixed frame: the window manager is told to show no
// minimise or maximise button.
bool fixedFrame(const QWidget* d) {
    return d->windowFlags().testFlag(Qt::CustomizeWindowHint) &&
           !(d->windowFlags() & (Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint));
}

// Notes the text of the next message box and closes it with its default
// button; text the box would read as markup is marked so.
QString nextMessage(const std::function<void()>& action, QMessageBox::StandardButton* defaultButton = nullptr) {
    QString seen;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            seen = (box->textFormat() == Qt::PlainText ? "" : "markup: ") + box->text();
            if (defaultButton) *defaultButton = box->standardButton(box->defaultButton());
            box->defaultButton() ? box->defaultButton()->click() : box->accept();
        }
    });
    poll.start(10);
    action();
    return seen;
}

TEST(SiteManagerDialog, TabOrderAndSavedSitesInTheBarAfterCloseWithTheFirstSelected) {
    FormFixture f;
    f.fake.folder.write("CONN.ZIG", kOldBook);
    f.control<QLineEdit>("Site")->setText("typed.host");
    f.whileOpen<SiteManager>("CMD_SaveConnection", [&](SiteManager* d) {
        EXPECT_EQ(std::tuple(d->SitesList->count(), d->SitesList->currentRow(), d->TXT_SiteName->text()),
                  std::tuple(1, -1, QString()));
        EXPECT_EQ(d->geometry().center(), f.form().geometry().center()) << "the insides, whatever the frames";
        // Tab goes from Save through the boxes to Close.
        QStringList order;
        // Bounded: a chain without eight such widgets would otherwise go round forever.
        int steps = 0;
        for (QWidget* w = d->OKButton; order.size() < 8 && steps++ < 200; w = w->nextInFocusChain())
            if ((w->focusPolicy() & Qt::TabFocus) && !w->objectName().isEmpty()) order << w->objectName();
        EXPECT_EQ(order, QStringList({"OKButton", "TXT_SiteName", "TXT_SSname", "TXT_DNSIP", "TXT_Dport",
                                      "TXT_Aport", "TXT_DESC", "CancelButton"}));
        d->TXT_SiteName->setText("New");
        d->TXT_DNSIP->setText("new.org");
        d->TXT_Dport->setText("4201");
        // Tabbing on into the list selects nothing and keeps what was typed.
        d->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(d));
        d->CancelButton->setFocus();

        QTest::keyClick(d->CancelButton, Qt::Key_Tab);
        EXPECT_EQ(std::tuple(d->focusWidget(), d->SitesList->selectedItems().size(), d->TXT_SiteName->text()),
                  std::tuple(static_cast<QWidget*>(d->SitesList), 0, u"New"_qs));
        d->CMD_SiteAdd->click();
        EXPECT_EQ(f.fake.folder.read("CONN.ZIG"), kOldBook) << "only Save writes";

        // The message shows for a while, and the program goes on meanwhile.
        QElapsedTimer clock;
        clock.start();
        QTest::keyClick(d, Qt::Key_S, Qt::AltModifier);  // saves at once: an Escape behind it closes
        EXPECT_TRUE(d->frmSaved->isVisible());
        EXPECT_LT(clock.elapsed(), 200);
        while (d->frmSaved->isVisible() && clock.elapsed() < 3000) QTest::qWait(20);
        EXPECT_GE(clock.elapsed(), SiteManager::kSavedMs - 50);
        EXPECT_FALSE(d->frmSaved->isVisible());
        EXPECT_NE(f.fake.folder.read("CONN.ZIG").find("SITE=New\r\n"), std::string::npos);

        // Enter in a box presses Close.
        d->activateWindow();

        d->TXT_SSname->setFocus();
        QTest::keyClick(d->TXT_SSname, Qt::Key_Return);
    });
    auto* list = f.control<QComboBox>("CB_Connections");
    EXPECT_EQ(std::tuple(list->count(), list->itemText(1), list->currentIndex()), std::tuple(2, u"New"_qs, 0));
    EXPECT_EQ(f.text("Site"), "old.org") << "the first site overwrites what was typed";
    EXPECT_EQ(f.control<QLineEdit>("Site")->cursorPosition(), 0);
    EXPECT_EQ(f.form().findChild<SiteManager*>(), nullptr) << "the next opening is a fresh dialog";

    // A very long name does not spread the open list over the screen.
    f.fake.folder.write("CONN.ZIG", "SITE=" + std::string(300, 'x') + kOldBook.substr(8));
    f.form().client().SiteManagerClosed();
    f.form().syncFromCore();
    list->showPopup();
    const QWidget* popup = list->view()->window();
    EXPECT_TRUE(popup->isVisible());
    EXPECT_LE(popup->width(), f.form().width() / 2);
    EXPECT_EQ(popup->x(), list->mapToGlobal(QPoint(0, 0)).x());
    list->hidePopup();
}

TEST(SiteManagerDialog, AFailedSaveKeepsTheDialogAndEscapeDiscards) {
    FormFixture f;
    const std::string book = kOldBook + "SITE=Second\r\nSSNA=2\r\nSDNS=two.org\r\n";
    f.fake.folder.write("CONN.ZIG", book);
    f.pressedByThePlayer("CMD_SaveConnection");
    f.whileOpen<SiteManager>("CMD_SaveConnection", [&](SiteManager* d) {
        EXPECT_TRUE(fixedFrame(d));
        // The first arrow on the list chooses the entry the focus sits on:
        // arriving there makes the first row current, unselected.
        d->SitesList->setCurrentRow(0, QItemSelectionModel::NoUpdate);
        QTest::keyClick(d->SitesList, Qt::Key_Down);
        EXPECT_EQ(d->TXT_DNSIP->text(), "old.org") << "a selection shows its site";
        EXPECT_EQ(d->TXT_STRI->cursorPosition(), 0) << "a long init string shows its beginning";
        QTest::mouseClick(d->SitesList->viewport(), Qt::LeftButton, {}, {5, d->SitesList->viewport()->height() - 5});
        EXPECT_EQ(d->SitesList->selectedItems().size(), 1) << "a click below the entries keeps the selection";
        d->TXT_SiteName->setText("Other");
        d->TXT_Aport->setText("99999999999");
        const QString refused = nextMessage([&] { d->CMD_SiteAdd->click(); });
        EXPECT_TRUE(refused.contains("Alternate Port")) << refused.toStdString();
        d->TXT_Aport->setText("23");
        d->CMD_SiteAdd->click();
        const QString why = nextMessage([&] {
            const FileSizeLimit fullDisk(64);
            d->OKButton->click();
        });
        const std::string says = "Cannot save the site book " + f.fake.files.absolute(kSiteBookFile) + ": ";
        EXPECT_TRUE(why.startsWith(QString::fromStdString(says))) << why.toStdString();
        EXPECT_TRUE(d->isVisible() && !d->frmSaved->isVisible());
        EXPECT_EQ(d->TXT_SiteName->text() + " " + QString::number(d->SitesList->count()), "Other 3");
        d->TXT_STRI->setText(QString(40000, QLatin1Char('x')));
        EXPECT_EQ(d->TXT_STRI->text().size(), 40000) << "a long init string is kept whole";
        QTest::keyClick(d->SitesList, Qt::Key_Escape);
    });
    EXPECT_EQ(f.fake.folder.read("CONN.ZIG"), book);
    EXPECT_EQ(f.control<QComboBox>("CB_Connections")->count(), 2);
    EXPECT_EQ(f.form().focusWidget(), f.control("Text1")) << "typing goes on in the command line";
}

TEST(QtHost, BoxesShowTheirTextAsTypedAndDeletionDefaultsToNo) {
    qt::QtHost host;
    EXPECT_EQ(nextMessage([&] { host.messageBox("<B>LOW HP</B>"); }), "<B>LOW HP</B>");
    QMessageBox::StandardButton chosen = QMessageBox::NoButton;
    bool yes = true;
    EXPECT_EQ(nextMessage([&] { yes = host.askYesNo("Delete <i>x</i>?", "Delete"); }, &chosen), "Delete <i>x</i>?");
    EXPECT_EQ(chosen, QMessageBox::No);
    EXPECT_FALSE(yes);

    // A text taller than the screen, or one word wider than the box,
    // scrolls inside it: the whole text is there and OK stays on screen.
    QString words;
    for (int i = 0; i < 700; ++i) words += QStringLiteral("potion ");
    const QString path = "Cannot save the trigger /home/player/" + QString(300, QLatin1Char('n')) + ".trigger.";
    for (const QString& text : {words, QString(1500, QLatin1Char('x')), QStringLiteral("short"), path}) {
        QRect shown, free;
        QString held;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || !box->isVisible()) return;
            free = box->screen()->availableGeometry();
            shown = QRect(box->pos(), box->size());
            auto* view = box->findChild<QPlainTextEdit*>();
            held = view ? view->toPlainText() : box->findChild<QLabel*>("qt_msgbox_label")->text();
            QTest::keyClick(box, Qt::Key_Return);
        });
        poll.start(10);
        host.messageBox(text.toStdString());
        EXPECT_EQ(held, text);
        EXPECT_LE(shown.height(), free.height() * 3 / 4) << text.size();
        EXPECT_LE(shown.width(), 600) << text.size();
        if (text == path) {
            EXPECT_LT(shown.height(), 250) << "no room beyond the text's few lines";
        }
    }
}

TEST(AboutDialog, ShowsThePictureAndStartsTheSystemInformation) {
    FormFixture f;
    EXPECT_FALSE(f.form().windowIcon().isNull());
    TempFolder bin;
    bin.write("kinfocenter", "#!/bin/sh\n");
    std::filesystem::permissions(bin.path() / "kinfocenter", std::filesystem::perms::owner_all);
    const QByteArray path = qgetenv("PATH");
    // Over a main window pushed to the screen's corner, the box stays whole on the screen.
    const QRect free = f.form().screen()->availableGeometry();
    f.form().move(free.bottomRight() - QPoint(100, 100));
    f.pressedByThePlayer("CMD_About");
    f.whileOpen<qt::AboutDialog>("CMD_About", [&](qt::AboutDialog* d) {
        EXPECT_TRUE(free.contains(QRect(d->pos(), d->size()))) << d->x() << "," << d->y();
        EXPECT_FALSE(d->picIcon->pixmap().isNull());
        EXPECT_TRUE(fixedFrame(d));
        EXPECT_TRUE(d->cmdOK->isDefault());
        std::vector<std::string> started;
        d->startDetached = [&](const std::string& p) {
            started.push_back(p);
            return false;
        };
        QString shown;
        d->message = [&](const std::string& m) { shown = QString::fromStdString(m); };
        qputenv("PATH", QByteArray::fromStdString(bin.path().string()));
        d->cmdSysInfo->click();
        qputenv("PATH", path);
        EXPECT_EQ(started, std::vector<std::string>{(bin.path() / "kinfocenter").string()});
        EXPECT_EQ(shown.toStdString(), kSysInfoUnavailable) << "a start that fails is told";
        QTest::keyClick(d, Qt::Key_Escape);
    });
    EXPECT_EQ(f.form().focusWidget(), f.control("Text1")) << "typing goes on in the command line";
}

}  // namespace
}  // namespace kelpa::test
