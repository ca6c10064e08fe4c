#include "toolkit/tab_control_qt.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include "toolkit/widget_kit_qt.h"

namespace kelpa::qt {

namespace {
// One row of tabs is 360 twips, so that a child at top 360 sits just under it.
constexpr int kTabRowTwips = 360;
}  // namespace

// The tabs lie over the pages, which cover the whole control.
class TabRow : public QWidget {
public:
    explicit TabRow(TabControl* owner) : QWidget(owner), owner_(owner) {}

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        owner_->paintTabs(p);
    }
    void mousePressEvent(QMouseEvent* e) override { owner_->clickAt(e->position().toPoint()); }

private:
    TabControl* owner_;
};

TabControl::TabControl(const QString& name, const QColor& background, int tabsPerRow, QWidget* parent)
    : QWidget(parent), background_(background), tabsPerRow_(qMax(1, tabsPerRow)),
      tabRow_(new TabRow(this)) {
    setObjectName(name);
    setFocusPolicy(Qt::NoFocus);
}

QWidget* TabControl::addPage(const QString& caption) {
    auto* page = new QWidget(this);
    page->setObjectName(objectName() + QStringLiteral("_page%1").arg(count()));
    setBackground(page, background_);
    page->setGeometry(rect());
    captions_ << caption;
    pages_.push_back(page);
    page->setVisible(false);
    tabRow_->setGeometry(0, 0, width(), tabRowsHeight());
    tabRow_->raise();
    if (current_ < 0) setCurrentIndex(0);
    tabRow_->update();
    return page;
}

void TabControl::setCurrentIndex(int i) {
    if (i < 0 || i >= count() || i == current_) return;
    const int old = current_;
    current_ = i;
    if (old >= 0) pages_[static_cast<std::size_t>(old)]->hide();
    pages_[static_cast<std::size_t>(i)]->show();
    tabRow_->update();
    emit currentChanged(i);
}

void TabControl::setTabCaption(int i, const QString& caption) {
    if (i < 0 || i >= count()) return;
    captions_[i] = caption;
    tabRow_->update();
}

int TabControl::rows() const { return qMax(1, (count() + tabsPerRow_ - 1) / tabsPerRow_); }

int TabControl::tabRowsHeight() const { return rows() * px(kTabRowTwips); }

QRect TabControl::tabRect(int i) const {
    const int rowHeight = px(kTabRowTwips);
    const int row = i / tabsPerRow_, col = i % tabsPerRow_;
    const int w = width() / tabsPerRow_;
    const int left = col * w;
    const int right = col == tabsPerRow_ - 1 ? width() : left + w;
    return QRect(left, row * rowHeight, right - left, rowHeight);
}

void TabControl::resizeEvent(QResizeEvent*) {
    for (QWidget* p : pages_) p->setGeometry(rect());
    tabRow_->setGeometry(0, 0, width(), tabRowsHeight());
}

void TabControl::paintTabs(QPainter& p) {
    p.fillRect(QRect(0, 0, width(), tabRowsHeight()), palette().color(QPalette::Button).darker(115));
    for (int i = 0; i < count(); ++i) {
        const QRect r = tabRect(i).adjusted(0, 0, -1, 0);
        const bool selected = i == current_;
        p.fillRect(r.adjusted(1, 2, 0, 0), selected ? background_ : palette().color(QPalette::Button));
        p.setPen(palette().color(QPalette::Light));
        p.drawLine(r.left() + 1, r.bottom(), r.left() + 1, r.top() + 2);
        p.drawLine(r.left() + 1, r.top() + 2, r.right(), r.top() + 2);
        p.setPen(palette().color(QPalette::Dark));
        p.drawLine(r.right(), r.top() + 2, r.right(), r.bottom());
        const QColor bg = selected ? background_ : palette().color(QPalette::Button);
        p.setPen(bg.lightness() < 128 ? QColor(Qt::white) : QColor(Qt::black));
        QFont f = font();
        f.setBold(selected);
        p.setFont(f);
        // A caption wider than its tab keeps its beginning, not its middle.
        const QRect room = r.adjusted(2, 2, -2, 0);
        p.drawText(room, Qt::AlignCenter | Qt::TextSingleLine,
                   p.fontMetrics().elidedText(captions_.value(i), Qt::ElideRight, room.width()));
        if (selected && hasFocus()) {
            p.setPen(QPen(p.pen().color(), 1, Qt::DotLine));
            p.drawRect(room.adjusted(1, 1, -2, -2));
        }
    }
}

void TabControl::keyPressEvent(QKeyEvent* e) {
    switch (e->key()) {
        case Qt::Key_Left:
        case Qt::Key_Up: setCurrentIndex(current_ - 1); break;
        case Qt::Key_Right:
        case Qt::Key_Down: setCurrentIndex(current_ + 1); break;
        case Qt::Key_Home: setCurrentIndex(0); break;
        case Qt::Key_End: setCurrentIndex(count() - 1); break;
        default: QWidget::keyPressEvent(e); return;
    }
}

void TabControl::focusInEvent(QFocusEvent* e) {
    QWidget::focusInEvent(e);
    tabRow_->update();
}

void TabControl::focusOutEvent(QFocusEvent* e) {
    QWidget::focusOutEvent(e);
    tabRow_->update();
}

void TabControl::mousePressEvent(QMouseEvent* e) { clickAt(e->position().toPoint()); }

void TabControl::clickAt(const QPoint& pt) {
    for (int i = 0; i < count(); ++i)
        if (tabRect(i).contains(pt)) {
            setCurrentIndex(i);
            return;
        }
}

}  // namespace kelpa::qt
