#include "status/status_panel_qt.h"

#include <QEvent>
#include <QFrame>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "status/status_model.h"
#include "toolkit/tab_control_qt.h"
#include "toolkit/widget_kit_qt.h"

namespace kelpa::qt {

namespace {

constexpr int kRow = 240;   // twips per line of the panel
constexpr int kTop = 120;   // first line inside a frame
const QColor kGrey(128, 128, 128);

int rowTop(int row) { return kTop + row * kRow; }
// Frame3 is only 1335 high: its five lines start higher.
int frameRowTop(int row) { return 45 + row * kRow; }

QColor itemColour(int item) {
    if (item <= 6 || (item >= 31 && item <= 41 && item % 2 == 1)) return QColor(128, 255, 128);
    if (item >= 32 && item <= 42) return QColor(255, 128, 128);
    if (item >= 7 && item <= 15 && item % 2 == 1) return QColor(255, 255, 128);
    if (item >= 8 && item <= 16) return QColor(255, 192, 128);
    if (item >= 43 && item <= 47) return QColor(128, 255, 255);
    if (item == 52) return QColor(255, 128, 255);
    return QColor(255, 255, 192);
}

QColor colourOf(std::uint32_t rgbValue) {
    return QColor(static_cast<int>(rgbValue & 0xFF), static_cast<int>((rgbValue >> 8) & 0xFF),
                  static_cast<int>((rgbValue >> 16) & 0xFF));
}

// A bar lies over its cells and merges with them pixel by pixel: the
// bitwise OR of its colour and what is painted beneath, so that the text
// under it stays readable.
class BarShape : public QWidget {
public:
    BarShape(QWidget* parent, const QColor& colour) : QWidget(parent), colour_(colour) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_NoSystemBackground);
    }
    void setColour(const QColor& c) {
        if (c == colour_) return;
        colour_ = c;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.setCompositionMode(QPainter::RasterOp_SourceOrDestination);
        p.fillRect(rect(), colour_);
    }

private:
    QColor colour_;
};

// Forwards the panel's mouse events to the model.
class PanelEvents : public QObject {
public:
    PanelEvents(StatusPanel& panel, StatusModel& model, QWidget* label11, std::function<void()> changed,
                std::function<void()> released)
        : QObject(panel.InfoTabs), panel_(panel), model_(model), label11_(label11),
          changed_(std::move(changed)), released_(std::move(released)) {}

protected:
    bool eventFilter(QObject* watched, QEvent* e) override {
        const auto& cells = panel_.Info1;
        const auto it = std::find(cells.begin(), cells.end(), watched);
        if (e->type() == QEvent::MouseMove) {
            if (it != cells.end()) {
                model_.Info1_MouseMove(static_cast<int>(it - cells.begin()));
                changed_();
            }
        } else if (e->type() == QEvent::MouseButtonDblClick && watched == label11_) {
            model_.Label11_DblClick();
            changed_();
        } else if (e->type() == QEvent::MouseButtonRelease && watched != label11_ && it == cells.end()) {
            // Only on the tab control's own ground and tabs: a release on a
            // cell or a caption comes up to the page and leaves the focus.
            auto* w = static_cast<QWidget*>(watched);
            const QWidget* hit = w->childAt(static_cast<QMouseEvent*>(e)->position().toPoint());
            if (!hit) hit = w;
            if (hit == panel_.InfoTabs || hit->parentWidget() == panel_.InfoTabs) released_();
        }
        return QObject::eventFilter(watched, e);
    }

private:
    StatusPanel& panel_;
    StatusModel& model_;
    QWidget* label11_;
    std::function<void()> changed_;
    std::function<void()> released_;
};

QLabel* label(QWidget* parent, const QString& name, const QColor& colour, int left, int top, int width) {
    auto* l = new QLabel(parent);
    l->setTextFormat(Qt::PlainText);  // the server's words, never markup
    // From the top, as labels of the form toolkit are: a value of two lines
    // shows its first whole rather than half of each.
    l->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    if (!name.isEmpty()) l->setObjectName(name);
    l->setGeometry(pxRect(left, top, width, kRow));
    QPalette p = l->palette();
    p.setColor(QPalette::WindowText, colour);
    l->setPalette(p);
    return l;
}

class Builder {
public:
    explicit Builder(StatusPanel& s) : s_(s) {}

    QLabel* cell(QWidget* parent, int item, int left, int top, int width) {
        QLabel* l = label(parent, QStringLiteral("Info1(%1)").arg(item), itemColour(item), left, top, width);
        setBackground(l, kGrey);
        if (item == 52) {
            QFont f = l->font();
            f.setBold(true);
            l->setFont(f);
        }
        s_.Info1[static_cast<std::size_t>(item)] = l;
        return l;
    }
    void caption(QWidget* parent, const QString& text, int left, int top, int width) {
        QLabel* l = label(parent, QStringLiteral("Label5(%1)").arg(captions_++), QColor(64, 64, 64), left, top, width);
        l->setText(text);
    }
    void slash(QWidget* parent, int left, int top) {
        label(parent, QString(), QColor(64, 64, 64), left, top, 90)->setText(QStringLiteral("/"));
    }
    QLabel* xinfo(QWidget* parent, int i, int left, int top, int width) {
        QLabel* l = label(parent, QStringLiteral("XInfo(%1)").arg(i), QColor(255, 255, 192), left, top, width);
        s_.XInfo[static_cast<std::size_t>(i)] = l;
        return l;
    }
    QLabel* info2(QWidget* parent, int i, const QColor& colour, int left, int top, int width) {
        QLabel* l = label(parent, QStringLiteral("Info2(%1)").arg(i), colour, left, top, width);
        s_.Info2[static_cast<std::size_t>(i)] = l;
        return l;
    }
    // Bars start empty; their width is all they show.
    void bar(QWidget* parent, int i, const QColor& colour, int left, int top, int height) {
        auto* b = new BarShape(parent, colour);
        b->setObjectName(QStringLiteral("ShapeParam(%1)").arg(i));
        b->setGeometry(px(left), px(top), 0, px(height));
        s_.ShapeParam[static_cast<std::size_t>(i)] = b;
    }

    void frame3(QWidget* form);
    void life(QWidget* page);
    void gen(QWidget* page);
    void other(QWidget* page);
    void dbg(QWidget* page);

private:
    StatusPanel& s_;
    int captions_ = 0;
};

QFrame* pageFrame(QWidget* page, const char* name) {
    auto* f = new QFrame(page);
    f->setObjectName(QString::fromLatin1(name));
    f->setFrameShape(QFrame::NoFrame);
    f->setGeometry(pxRect(60, 780, 1905, 3735));
    return f;
}

void Builder::frame3(QWidget* form) {
    auto* f = new QFrame(form);
    f->setObjectName(QStringLiteral("Frame3"));
    f->setFrameShape(QFrame::Box);
    f->setFrameShadow(QFrame::Sunken);
    s_.Frame3 = f;
    QLabel* bold = info2(f, 2, Qt::white, 60, frameRowTop(0), 1695);
    QFont font = bold->font();
    font.setBold(true);
    bold->setFont(font);
    info2(f, 4, QColor(128, 255, 128), 60, frameRowTop(1), 1695);
    info2(f, 3, QColor(128, 255, 128), 60, frameRowTop(2), 1695);
    xinfo(f, 5, 60, frameRowTop(3), 1695);
    // Inside the frame's border, which is two pixels each side.
    cell(f, 19, 30, frameRowTop(4), 1755);
    bar(f, 5, QColor(0, 192, 0), 30, frameRowTop(4), kRow);
}

void Builder::life(QWidget* page) {
    QFrame* f = s_.Frame2 = pageFrame(page, "Frame2");
    xinfo(f, 2, 60, rowTop(0), 900);
    xinfo(f, 3, 960, rowTop(0), 840);
    int row = 1, k = 0;
    for (const char* name : {"Hp", "Pow", "Mana", "Song", "Move"}) {
        caption(f, QString::fromLatin1(name), 60, rowTop(row), 540);
        cell(f, 8 + 2 * k, 600, rowTop(row), 600);
        slash(f, 1200, rowTop(row));
        cell(f, 7 + 2 * k, 1290, rowTop(row), 540);
        bar(f, k, QColor(192, 0, 0), 600, rowTop(row), kRow);
        ++row, ++k;
    }
    caption(f, QStringLiteral("Gold"), 60, rowTop(row), 540);
    cell(f, 17, 600, rowTop(row++), 1230);
    k = 0;
    for (const char* name : {"Hun", "Thr", "Full", "Drunk"}) {
        caption(f, QString::fromLatin1(name), 60, rowTop(row), 540);
        cell(f, 48 + k, 600, rowTop(row), 600);
        bar(f, 6 + k, QColor(0, 0, 255), 600, rowTop(row), kRow);
        ++row, ++k;
    }
    info2(f, 0, QColor(255, 255, 192), 60, rowTop(row), 1740);
    xinfo(f, 4, 60, rowTop(row + 1), 1740);
    info2(f, 1, QColor(255, 255, 192), 60, rowTop(row + 2), 1740);
    bar(f, 10, QColor(192, 0, 192), 60, rowTop(row), 3 * kRow);
}

void Builder::gen(QWidget* page) {
    QFrame* f = s_.Frame4 = pageFrame(page, "Frame4");
    int row = 0;
    for (const char* name : {"Str", "Int", "Wis", "Dex", "Con", "Cha", "Luck"}) {
        caption(f, QString::fromLatin1(name), 60, rowTop(row), 420);
        cell(f, row, 480, rowTop(row), 420);
        ++row;
    }
    int k = 0;
    for (const char* name : {"Para", "Petr", "Brea", "Spel", "Wan"}) {
        caption(f, QString::fromLatin1(name), 960, rowTop(k), 420);
        cell(f, 43 + k, 1380, rowTop(k), 420);
        ++k;
    }
    k = 0;
    for (const char* name : {"Head", "Body", "Arms", "Hands", "Legs", "Feet"}) {
        caption(f, QString::fromLatin1(name), 60, rowTop(row), 540);
        cell(f, 31 + 2 * k, 600, rowTop(row), 540);
        slash(f, 1140, rowTop(row));
        cell(f, 32 + 2 * k, 1230, rowTop(row), 540);
        ++row, ++k;
    }
}

void Builder::other(QWidget* page) {
    QFrame* f = s_.Frame5 = pageFrame(page, "Frame5");
    int row = 0;
    for (auto [name, item] : {std::pair{"Bank", 18}, {"Weight", 27}, {"Practices", 30}}) {
        caption(f, QString::fromLatin1(name), 60, rowTop(row), 780);
        cell(f, item, 840, rowTop(row++), 960);
    }
    caption(f, QStringLiteral("Age"), 60, rowTop(row), 780);
    xinfo(f, 0, 840, rowTop(row++), 960);
    caption(f, QStringLiteral("Height"), 60, rowTop(row), 780);
    xinfo(f, 1, 840, rowTop(row), 960);
}

void Builder::dbg(QWidget* page) {
    QFrame* f = s_.FRM_DBG = pageFrame(page, "FRM_DBG");
    int i = 0;
    for (int item : {20, 21, 22, 23, 24, 25, 26, 28, 29, 52, 53, 54, 55, 56}) {
        QLabel* l = cell(f, item, 60 + (i / 7) * 900, rowTop(i % 7), 840);
        // These only drive other displays.
        if (item == 20 || item == 21 || item == 25) l->hide();
        ++i;
    }
    s_.Label9 = label(f, QStringLiteral("Label9"), QColor(64, 64, 64), 60, 3360, 1740);
    f->hide();
}

}  // namespace

void StatusPanel::build(QWidget* form) {
    Builder b(*this);
    b.frame3(form);
    InfoTabs = new TabControl(QStringLiteral("InfoTabs"), kGrey, 2, form);
    b.life(InfoTabs->addPage(QStringLiteral("Life")));
    b.gen(InfoTabs->addPage(QStringLiteral("Gen")));
    b.other(InfoTabs->addPage(QStringLiteral("Other")));
    b.dbg(InfoTabs->addPage(QStringLiteral("Dbg")));
    // Tab reaches the status tabs, so that a player without a mouse can
    // turn their pages with the arrow keys; a click leaves the focus where
    // it was.
    InfoTabs->setFocusPolicy(Qt::TabFocus);
}

void StatusPanel::listen(StatusModel& model, QWidget* label11, std::function<void()> changed,
                         std::function<void()> releasedOnTabs) {
    auto* events = new PanelEvents(*this, model, label11, std::move(changed), std::move(releasedOnTabs));
    events_ = events;
    for (QLabel* cell : Info1) {
        cell->setMouseTracking(true);
        cell->installEventFilter(events);
    }
    if (label11) label11->installEventFilter(events);
    // The tab row and the pages' bare ground are the tab control's own.
    InfoTabs->installEventFilter(events);
    for (QWidget* part : InfoTabs->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        part->installEventFilter(events);
}

void StatusPanel::sync(StatusModel& model) {
    const StatusModel::Changes c = model.takeChanges();
    if (!c.any()) return;
    ++repaints;
    for (int i = 0; i < StatusModel::kInfo1Count; ++i) {
        if (!c.info1.test(static_cast<std::size_t>(i))) continue;
        QLabel* cell = Info1[static_cast<std::size_t>(i)];
        cell->setText(toQString(model.Info1(i)));
        setBackground(cell, colourOf(model.Info1Back(i)));
    }
    for (int i = 0; i < StatusModel::kInfo2Count; ++i)
        if (c.info2.test(static_cast<std::size_t>(i))) Info2[static_cast<std::size_t>(i)]->setText(toQString(model.Info2(i)));
    for (int i = 0; i < StatusModel::kXInfoCount; ++i)
        if (c.xinfo.test(static_cast<std::size_t>(i))) XInfo[static_cast<std::size_t>(i)]->setText(toQString(model.XInfo(i)));
    if (c.xinfo.test(2)) {
        QPalette p = XInfo[2]->palette();
        p.setColor(QPalette::WindowText, colourOf(model.XInfo2Colour()));
        XInfo[2]->setPalette(p);
    }
    for (int i = 0; i < StatusModel::kBarCount; ++i) {
        if (!c.bars.test(static_cast<std::size_t>(i))) continue;
        auto* bar = static_cast<BarShape*>(ShapeParam[static_cast<std::size_t>(i)]);
        const StatusModel::Bar& b = model.ShapeParam(i);
        // Beyond its frame a bar shows nothing more; the width is held there.
        const int limit = bar->parentWidget()->width() * kTwipsPerPixel;
        bar->resize(px(static_cast<int>(std::min<long long>(b.width, limit))), bar->height());
        bar->setColour(colourOf(b.colour));
    }
    if (c.label9) Label9->setText(toQString(model.Label9()));
    if (c.dbg) FRM_DBG->setVisible(model.FRM_DBG_Visible());
}

}  // namespace kelpa::qt
