#include "status/status_panel_qt.h"

#include <QFrame>
#include <QLabel>

#include <initializer_list>

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

QLabel* label(QWidget* parent, const QString& name, const QColor& colour, int left, int top, int width) {
    auto* l = new QLabel(parent);
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
        auto* b = new QFrame(parent);
        b->setObjectName(QStringLiteral("ShapeParam(%1)").arg(i));
        setBackground(b, colour);
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
}

}  // namespace kelpa::qt
