#include "history/history_page_qt.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "output/output_view_qt.h"
#include "toolkit/tab_control_qt.h"
#include "toolkit/widget_kit_qt.h"

namespace kelpa::qt {

namespace {

// The key codes the view knows; any other key gives 0.
int keyCode(int qtKey) {
    switch (qtKey) {
        case Qt::Key_PageUp: return HistoryPager::kPageUp;
        case Qt::Key_PageDown: return HistoryPager::kPageDown;
        case Qt::Key_End: return HistoryPager::kEnd;
        case Qt::Key_Home: return HistoryPager::kHome;
        case Qt::Key_Up: return HistoryPager::kUp;
        case Qt::Key_Down: return HistoryPager::kDown;
        default: return 0;
    }
}


}  // namespace

HistoryPage::HistoryPage(const Controls& controls, HistoryViews& views, Guard guard, std::function<bool()> busy)
    : QObject(controls.page), c_(controls), views_(views), guard_(std::move(guard)), busy_(std::move(busy)) {
    QWidget* page = c_.page;
    auto* dlist = new EntryList(page);
    dlist->setObjectName(QStringLiteral("DList"));
    dlist->setSortingEnabled(true);
    dlist->setFont(monospaceFont(8.25));
    // The day's name fills the narrow list; a scroll bar for the last
    // pixels would hide a line.
    dlist->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The day under the selection, also for a click below the entries.
    dlist->onDoubleClick = [this](int) { DList_DblClick(); };
    DList = dlist;

    auto* dates = new QLabel(QStringLiteral("Dates"), page);
    dates->setObjectName(QStringLiteral("Label1"));

    Label8 = new QLabel(QStringLiteral("Loading ....."), page);
    Label8->setObjectName(QStringLiteral("Label8"));
    QFont big(QStringLiteral("DejaVu Sans"));
    big.setPointSizeF(24);
    big.setBold(true);
    big.setItalic(true);
    Label8->setFont(big);
    QPalette p = Label8->palette();
    p.setColor(QPalette::WindowText, QColor(128, 64, 0));
    Label8->setPalette(p);
    Label8->hide();

    Tseek = new QLineEdit(page);
    Tseek->setObjectName(QStringLiteral("Tseek"));
    oneLineBox(Tseek);
    // A seek that finds nothing tints the box until its text changes: the
    // debug window that also says so is off at start.
    connect(Tseek, &QLineEdit::textChanged, this, [this] { showSeekFailed(false); });
    BSeek = commandButton("BSeek", "Seek", page);
    BFilter = commandButton("BFilter", "Filter", page);
    brefresh = commandButton("brefresh", "Refresh", page);

    loader_.setInterval(0);
    searcher_.setInterval(0);
    // A step that comes due while a box is up waits for the next timeout.
    connect(&loader_, &QTimer::timeout, this, [this] {
        if (busy_()) return;
        guard_("DList_DblClick", [&] {
            if (!views_.browser.step()) loader_.stop();
        });
    });
    connect(&searcher_, &QTimer::timeout, this, [this] {
        if (!busy_()) runSearch();
    });
    connect(brefresh, &QPushButton::clicked, this,
            [this] { guard_("brefresh_Click", [&] { views_.browser.brefresh_Click(); }); });
    connect(BSeek, &QPushButton::clicked, this, &HistoryPage::BSeek_Click);
    connect(Tseek, &QLineEdit::returnPressed, this, &HistoryPage::BSeek_Click);
    connect(BFilter, &QPushButton::clicked, this, &HistoryPage::BFilter_Click);
    connect(c_.SSTab2, &TabControl::currentChanged, this, [this](int tab) {
        if (seeking_) return;  // the seek drew the page already
        guard_("SSTab2_Click", [&] { views_.pager.SSTab2_Click(tab); });
    });
    views_.search.showHistoryPage = [this] {
        // A long seek lets the player go on meanwhile: keys typed elsewhere
        // by then stay where they are typed.
        const QWidget* focus = QApplication::focusWidget();
        const bool stillHere = !focus || focus == Tseek || focus == BSeek;
        seeking_ = true;
        c_.SSTab1->setCurrentIndex(0);
        c_.SSTab2->setCurrentIndex(HistoryPager::kHistoryTab);
        seeking_ = false;
        if (stillHere) c_.HistT->setFocus();
    };
    c_.HistT->installEventFilter(this);
}

bool HistoryPage::eventFilter(QObject* watched, QEvent* e) {
    if (watched == c_.HistT && e->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(e)->key();
        if (key == Qt::Key_Tab || key == Qt::Key_Backtab) return false;
        // The view takes every other key itself: none moves a caret or scrolls.
        guard_("HistT_KeyDown", [&] { views_.pager.HistT_KeyDown(keyCode(key)); });
        return true;
    }
    return QObject::eventFilter(watched, e);
}

void HistoryPage::DList_DblClick() {
    const QList<QListWidgetItem*> chosen = DList->selectedItems();
    const std::string item = chosen.isEmpty() ? std::string() : toCoreBytes(chosen.front()->text());
    guard_("DList_DblClick", [&] { views_.browser.DList_DblClick(item); });
    if (views_.browser.loading()) loader_.start();
}

void HistoryPage::BSeek_Click() {
    const std::string text = toCoreBytes(Tseek->text());
    guard_("BSeek_Click", [&] { views_.search.BSeek_Click(text); });
    runSearch();
}

void HistoryPage::BFilter_Click() {
    const std::string text = toCoreBytes(Tseek->text());
    guard_("BFilter_Click", [&] { views_.search.BFilter_Click(text); });
    runSearch();
}

// One step now, so that a short search answers at once; the rest from the timer.
void HistoryPage::runSearch() {
    bool more = false;
    guard_("BSeek_Click", [&] { more = views_.search.step(); });
    if (more)
        searcher_.start();
    else
        searcher_.stop();
    showSeekFailed(views_.search.seekFailed());
}

void HistoryPage::showSeekFailed(bool failed) {
    if (failed == Tseek->property("seekFailed").toBool()) return;
    Tseek->setProperty("seekFailed", failed);
    QPalette p = Tseek->palette();
    p.setColor(QPalette::Base, failed ? QColor(255, 200, 200) : QApplication::palette(Tseek).color(QPalette::Base));
    Tseek->setPalette(p);
}

void HistoryPage::sync() {
    const HistoryBrowser& b = views_.browser;
    if (b.revision == shownRevision_) return;
    shownRevision_ = b.revision;
    QStringList items;
    for (const std::string& name : b.DList) items << toQString(name);
    QStringList shown;
    for (int i = 0; i < DList->count(); ++i) shown << DList->item(i)->text();
    if (items != shown) {
        DList->clear();
        DList->addItems(items);
    }
    Label8->setText(toQString(b.Label8Caption));
    Label8->setVisible(b.Label8Visible);
    c_.HistView->setVisible(b.HistViewVisible);
}

}  // namespace kelpa::qt
