#include "output/output_view_qt.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFontMetrics>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTimer>

#include "toolkit/widget_kit_qt.h"

namespace kelpa::qt {

namespace {

// Repaints only when what it shows changes. A long text that follows its end
// changes the range and the value at every line, but the handle stays put at
// the bottom, and each repaint of it cost up to half a millisecond, which a
// line from the server could have to wait behind. While the text grows the
// handle shrinks by a pixel every line or two: those repaints are gathered,
// at most one every kLagMs; anything else is painted at once.
class SteadyScrollBar : public QScrollBar {
public:
    SteadyScrollBar(Qt::Orientation o, QWidget* parent) : QScrollBar(o, parent) {
        lag_.setSingleShot(true);
        connect(&lag_, &QTimer::timeout, this, &SteadyScrollBar::check);
        painted_.start();
    }

    static constexpr int kLagMs = 100;

protected:
    void sliderChange(SliderChange change) override {
        if (change == SliderOrientationChange) return QScrollBar::sliderChange(change);
        // A new line sets the range before it moves the value: the look is
        // compared once they are both done.
        if (checkPosted_) return;
        checkPosted_ = true;
        QMetaObject::invokeMethod(
            this,
            [this] {
                checkPosted_ = false;
                check();
            },
            Qt::QueuedConnection);
    }
    void paintEvent(QPaintEvent* e) override {
        shown_ = look();
        painted_.start();
        lag_.stop();
        QScrollBar::paintEvent(e);
    }

private:
    // What range, value and steps change: the handle, and the arrows, which
    // are drawn greyed at either end.
    struct Look {
        QRect handle;
        bool atMinimum = false, atMaximum = false;
        bool operator==(const Look&) const = default;
    };
    Look look() const {
        QStyleOptionSlider opt;
        initStyleOption(&opt);
        return {style()->subControlRect(QStyle::CC_ScrollBar, &opt, QStyle::SC_ScrollBarSlider, this),
                value() == minimum(), value() == maximum()};
    }
    void check() {
        const Look now = look();
        if (now == shown_) return;
        const bool following = now.atMaximum && shown_.atMaximum && !isSliderDown();
        const qint64 since = painted_.elapsed();
        if (!following || since >= kLagMs)
            update();
        else if (!lag_.isActive())
            lag_.start(static_cast<int>(kLagMs - since));
    }
    Look shown_;
    bool checkPosted_ = false;
    QTimer lag_;
    QElapsedTimer painted_;
};

}  // namespace

OutputView::OutputView(const OutputWindow& model, const WindowInfo& info, QWidget* parent)
    : QAbstractScrollArea(parent), model_(model), background_(qColor(info.background)),
      // The debug window keeps the system's black on white; elsewhere the
      // control's own colour is black as well.
      plainColour_(Qt::black), font_(monospaceFont(info.pointSize)) {
    setObjectName(QString::fromLatin1(info.controlName));
    setVerticalScrollBar(new SteadyScrollBar(Qt::Vertical, this));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setFocusPolicy(Qt::ClickFocus);
    viewport()->setCursor(Qt::IBeamCursor);
    viewport()->setAutoFillBackground(false);
    // Every paint fills its area: the pixels may be shifted in place.
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    const QFontMetrics fm(font_);
    charWidth_ = qMax(1, fm.horizontalAdvance(QLatin1Char('M')));
    // The font's own advance is fractional (7.83 px at 9.75 pt) while runs
    // start on whole-pixel cells: spacing the glyphs out to the cell keeps
    // every character, box lines and the selection on one grid.
    font_.setLetterSpacing(QFont::AbsoluteSpacing,
                           charWidth_ - QFontMetricsF(font_).horizontalAdvance(QLatin1Char('M')));
    lineHeight_ = qMax(1, fm.lineSpacing());
    ascent_ = fm.ascent();
    dragScroll_ = new QTimer(this);
    dragScroll_->setInterval(50);
    connect(dragScroll_, &QTimer::timeout, this, &OutputView::dragScrollTick);
}

void OutputView::sync() {
    if (model_.revision() == laidRevision_ || !isVisible()) return;
    ensureLaidOut();
    refreshScreen();
}

int OutputView::lineCount() {
    ensureLaidOut();
    return static_cast<int>(lines_.size());
}

QString OutputView::lineText(int line) {
    ensureLaidOut();
    if (line < 0 || line >= static_cast<int>(lines_.size())) return {};
    return lines_[static_cast<std::size_t>(line)].text;
}

int OutputView::columns() const { return qMax(1, viewport()->width() / charWidth_); }

int OutputView::visibleRows() const { return qMax(1, viewport()->height() / lineHeight_); }

void OutputView::ensureLaidOut() {
    if (model_.revision() != laidRevision_) {
        int changed = 0;
        if (lines_.empty() || model_.reshapes() != laidReshapes_ || model_.cutTotal() != laidCut_ ||
            model_.size() < laidSize_) {
            lines_ = layoutLines(model_, plainColour_);
        } else {
            changed = static_cast<int>(lines_.size()) - 1;
            layoutMore(lines_, model_, laidSize_, plainColour_);
        }
        laidRevision_ = model_.revision();
        laidSize_ = model_.size();
        laidCut_ = model_.cutTotal();
        laidReshapes_ = model_.reshapes();
        // New text moves the caret to the end, which drops a selection.
        anchor_ = caret_ = Pos{};
        selecting_ = false;
        wrapFrom(wrappedColumns_ == columns() ? changed : 0);
        const bool fromTop = fromTop_ && fromTop_();
        updateScrollRange(!fromTop);
        if (fromTop) verticalScrollBar()->setValue(0);
    } else if (wrappedColumns_ != columns()) {
        QScrollBar* bar = verticalScrollBar();
        const bool atEnd = bar->value() >= bar->maximum();
        const int topLine = rows_.empty() ? 0 : rows_[static_cast<std::size_t>(qMin<int>(bar->value(), static_cast<int>(rows_.size()) - 1))].line;
        wrapFrom(0);
        updateScrollRange(atEnd);
        if (!atEnd) {
            int row = 0;
            while (row < static_cast<int>(rows_.size()) && rows_[static_cast<std::size_t>(row)].line < topLine) ++row;
            bar->setValue(row);
        }
    }
}

void OutputView::wrapFrom(int line) {
    const int cols = columns();
    wrappedColumns_ = cols;
    while (!rows_.empty() && rows_.back().line >= line) rows_.pop_back();
    for (int i = line; i < static_cast<int>(lines_.size()); ++i)
        wrapLine(lines_[static_cast<std::size_t>(i)].text, cols,
                 [&](int start, int length) { rows_.push_back({i, start, length}); });
}

void OutputView::updateScrollRange(bool toEnd) {
    QScrollBar* bar = verticalScrollBar();
    const int page = visibleRows();
    bar->setPageStep(page);
    bar->setSingleStep(1);
    bar->setRange(0, qMax(0, static_cast<int>(rows_.size()) - page));
    if (toEnd) bar->setValue(bar->maximum());
}

void OutputView::resizeEvent(QResizeEvent* e) {
    QAbstractScrollArea::resizeEvent(e);
    if (!isVisible()) return;
    // New text first: it decides where the view stands (the end, or the
    // top of a page), and the new size keeps that.
    ensureLaidOut();
    const QScrollBar* bar = verticalScrollBar();
    updateScrollRange(bar->value() >= bar->maximum());
}

void OutputView::showEvent(QShowEvent* e) {
    QAbstractScrollArea::showEvent(e);
    ensureLaidOut();
}

// Paints the text as the last sync laid it out: laying out newer text here
// would move the scroll bar, whose move asks for another paint, and a flood
// would repaint at every turn of the event loop instead of once a frame.
void OutputView::paintEvent(QPaintEvent* e) {
    const int n = screenRows();
    if (static_cast<int>(shown_.size()) != n) shown_.assign(static_cast<std::size_t>(n), 0);
    QPainter p(viewport());
    p.fillRect(e->rect(), background_);
    p.setFont(font_);
    const QRect area = e->rect() & viewport()->rect();
    const int first = verticalScrollBar()->value();
    const int top = qMax(0, area.top() / lineHeight_), bottom = qMin(n - 1, area.bottom() / lineHeight_);
    for (int i = top; i <= bottom; ++i) {
        const int r = first + i, y = i * lineHeight_;
        const QRect rowRect = QRect(0, y, viewport()->width(), lineHeight_) & viewport()->rect();
        if (r < static_cast<int>(rows_.size())) {
            // Some glyphs reach a pixel into the next row, which may not be
            // drawn again with this one.
            p.setClipRect(rowRect);
            const Row& row = rows_[static_cast<std::size_t>(r)];
            paintSelection(p, row, y);
            paintRow(p, row, y);
            // Selected text in the selection's own colour, readable on it
            // whatever colour the server gave it.
            if (const auto [a, b] = selectionIn(row); a < b) {
                const QColor pen = palette().color(QPalette::HighlightedText);
                p.setClipRect(QRect(a * charWidth_, y, (b - a) * charWidth_, lineHeight_) & rowRect);
                paintSelection(p, row, y);
                paintRow(p, row, y, &pen);
            }
        }
        // A row drawn only in part is known only if it did not change.
        const std::uint64_t look = rowLook(r);
        std::uint64_t& shown = shown_[static_cast<std::size_t>(i)];
        if (QRegion(rowRect).subtracted(e->region()).isEmpty())
            shown = look;
        else if (shown != look)
            shown = 0;
    }
}

int OutputView::screenRows() const { return qMax(1, (viewport()->height() + lineHeight_ - 1) / lineHeight_); }

namespace {

struct LookHash {
    std::uint64_t h = 0x243F6A8885A308D3ULL;
    void add(std::uint64_t v) {
        h = (h ^ v) * 0x9E3779B97F4A7C15ULL;
        h ^= h >> 32;
    }
};

}  // namespace

std::uint64_t OutputView::rowLook(int r) const {
    LookHash m;
    if (r >= 0 && r < static_cast<int>(rows_.size())) {
        const Row& row = rows_[static_cast<std::size_t>(r)];
        const LaidLine& line = lines_[static_cast<std::size_t>(row.line)];
        const int end = row.start + row.length;
        m.add(static_cast<std::uint64_t>(row.length));
        for (int c = row.start; c < end; ++c) m.add(line.text[c].unicode());
        for (const LaidSpan& s : line.spans) {
            const int a = qMax(s.start, row.start), b = qMin(s.start + s.length, end);
            if (a >= b) continue;
            m.add(static_cast<std::uint64_t>(a - row.start) << 32 | static_cast<std::uint32_t>(b - a));
            m.add(static_cast<std::uint64_t>(s.colour.rgba()) << 1 | (s.underline ? 1 : 0));
        }
        const auto [a, b] = selectionIn(row);
        m.add(static_cast<std::uint64_t>(static_cast<std::uint32_t>(a)) << 32 | static_cast<std::uint32_t>(b));
    }
    return m.h ? m.h : 1;
}

void OutputView::refreshScreen() {
    if (!isVisible()) return;
    const int n = screenRows();
    if (static_cast<int>(shown_.size()) != n) {
        shown_.assign(static_cast<std::size_t>(n), 0);
        viewport()->update();
        return;
    }
    const int first = verticalScrollBar()->value();
    std::vector<std::uint64_t> now(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) now[static_cast<std::size_t>(i)] = rowLook(first + i);
    // The shift that keeps the most rows; no shift when that keeps as many.
    auto kept = [&](int k) {
        int same = 0;
        for (int i = qMax(0, -k); i < n && i + k < n; ++i)
            same += shown_[static_cast<std::size_t>(i + k)] == now[static_cast<std::size_t>(i)];
        return same;
    };
    int shift = 0, best = kept(0);
    for (int k = 1 - n; k < n; ++k) {
        if (k == 0) continue;
        if (const int same = kept(k); same > best) {
            best = same;
            shift = k;
        }
    }
    if (shift != 0) {
        viewport()->scroll(0, -shift * lineHeight_);
        std::vector<std::uint64_t> moved(static_cast<std::size_t>(n), 0);
        for (int i = qMax(0, -shift); i < n && i + shift < n; ++i)
            moved[static_cast<std::size_t>(i)] = shown_[static_cast<std::size_t>(i + shift)];
        shown_.swap(moved);
    }
    for (int i = 0; i < n; ++i)
        if (shown_[static_cast<std::size_t>(i)] != now[static_cast<std::size_t>(i)])
            viewport()->update(0, i * lineHeight_, viewport()->width(), lineHeight_);
}

void OutputView::scrollContentsBy(int, int) { refreshScreen(); }

namespace {
constexpr QChar kSoftHyphen = QChar(0xAD);
}  // namespace

void OutputView::paintRow(QPainter& p, const Row& row, int y, const QColor* pen) {
    const LaidLine& line = lines_[static_cast<std::size_t>(row.line)];
    const int end = row.start + row.length;
    for (const LaidSpan& s : line.spans) {
        const int a = qMax(s.start, row.start);
        const int b = qMin(s.start + s.length, end);
        if (a >= b) continue;
        // The painter's font, which the row before may have left underlined.
        if (p.font().underline() != s.underline) {
            QFont f = font_;
            f.setUnderline(s.underline);
            p.setFont(f);
        }
        p.setPen(pen ? *pen : s.colour);
        // A view of the line's characters, not a copy, but for a soft
        // hyphen: the font gives it no width, which would pull the rest of
        // the run out of its cells. It shows as the hyphen it stands for.
        QString run = QString::fromRawData(line.text.constData() + a, b - a);
        if (run.contains(kSoftHyphen)) run = QString(run).replace(kSoftHyphen, u'-');
        p.drawText(QPoint((a - row.start) * charWidth_, y + ascent_), run);
    }
}

std::pair<int, int> OutputView::selectionIn(const Row& row) const {
    const Pos from = qMin(anchor_, caret_), to = qMax(anchor_, caret_);
    if (from == to || row.line < from.line || row.line > to.line) return {0, 0};
    int a = row.start, b = row.start + row.length;
    if (row.line == from.line) a = qMax(a, from.col);
    if (row.line == to.line) b = qMin(b, to.col);
    // A selected line end shows as one cell.
    if (row.line < to.line && b == static_cast<int>(lines_[static_cast<std::size_t>(row.line)].text.size())) ++b;
    if (a >= b) return {0, 0};
    return {a - row.start, b - row.start};
}

void OutputView::paintSelection(QPainter& p, const Row& row, int y) {
    const auto [a, b] = selectionIn(row);
    if (a >= b) return;
    p.fillRect(a * charWidth_, y, (b - a) * charWidth_, lineHeight_, palette().color(QPalette::Highlight));
}

OutputView::Pos OutputView::posAt(const QPoint& pt) const {
    if (rows_.empty()) return {};
    const int r = qBound(0, verticalScrollBar()->value() + pt.y() / lineHeight_, static_cast<int>(rows_.size()) - 1);
    const Row& row = rows_[static_cast<std::size_t>(r)];
    const int col = qBound(0, (pt.x() + charWidth_ / 2) / charWidth_, row.length);
    return {row.line, row.start + col};
}

void OutputView::mousePressEvent(QMouseEvent* e) {
    if (e->button() != Qt::LeftButton) return QAbstractScrollArea::mousePressEvent(e);
    // Shift+click moves the selection's far end; a plain click starts anew.
    caret_ = posAt(e->position().toPoint());
    if (!(e->modifiers() & Qt::ShiftModifier)) anchor_ = caret_;
    selecting_ = true;
    viewport()->update();
}

void OutputView::mouseMoveEvent(QMouseEvent* e) {
    if (!selecting_ || !(e->buttons() & Qt::LeftButton)) return;
    dragPoint_ = e->position().toPoint();
    caret_ = posAt(dragPoint_);
    if ((dragPoint_.y() < 0 || dragPoint_.y() >= viewport()->height()) && !dragScroll_->isActive())
        dragScroll_->start();
    viewport()->update();
}

void OutputView::mouseReleaseEvent(QMouseEvent* e) {
    if (e->button() == Qt::LeftButton) {
        dragScroll_->stop();
        offerSelection();
    }
    QAbstractScrollArea::mouseReleaseEvent(e);
}

// What is selected is the X selection too, as in every X program: a middle
// click in the command line pastes it.
void OutputView::offerSelection() const {
    QClipboard* clipboard = QApplication::clipboard();
    if (!clipboard->supportsSelection()) return;
    if (const QString s = selectedText(); !s.isEmpty()) clipboard->setText(s, QClipboard::Selection);
}

void OutputView::dragScrollTick() {
    const int step = dragPoint_.y() < 0 ? -1 : dragPoint_.y() >= viewport()->height() ? 1 : 0;
    if (!selecting_ || step == 0) return dragScroll_->stop();
    QScrollBar* bar = verticalScrollBar();
    bar->setValue(bar->value() + step);
    caret_ = posAt(dragPoint_);
    viewport()->update();
}

// A double click selects the word under the pointer: the characters up to
// the blanks around it.
void OutputView::mouseDoubleClickEvent(QMouseEvent* e) {
    if (e->button() != Qt::LeftButton || rows_.empty()) return QAbstractScrollArea::mouseDoubleClickEvent(e);
    const Pos at = posAt(e->position().toPoint());
    const QString& t = lines_[static_cast<std::size_t>(at.line)].text;
    int a = qMin(at.col, static_cast<int>(t.size()) - 1), b = a;
    if (a < 0 || t[a] == u' ') return;
    while (a > 0 && t[a - 1] != u' ') --a;
    while (b < t.size() && t[b] != u' ') ++b;
    anchor_ = {at.line, a};
    caret_ = {at.line, b};
    selecting_ = false;
    offerSelection();
    viewport()->update();
}

QString OutputView::selectedText() const {
    const Pos from = qMin(anchor_, caret_), to = qMax(anchor_, caret_);
    if (from == to) return {};
    QStringList parts;
    for (int l = from.line; l <= to.line && l < static_cast<int>(lines_.size()); ++l) {
        const LaidLine& line = lines_[static_cast<std::size_t>(l)];
        const int a = l == from.line ? from.col : 0;
        const int b = l == to.line ? to.col : static_cast<int>(line.text.size());
        // The blanks of a TAB that the selection reaches copy as the TAB.
        QString part;
        int at = a;
        for (const auto& [tabFrom, tabTo] : line.tabs) {
            if (tabTo <= at) continue;
            if (tabFrom >= b) break;
            part += line.text.mid(at, qMax(0, tabFrom - at)) + QLatin1Char('\t');
            at = tabTo;
        }
        if (at < b) part += line.text.mid(at, b - at);
        parts << part;
    }
    return parts.join(QLatin1Char('\n'));
}

void OutputView::keyPressEvent(QKeyEvent* e) {
    if (e->matches(QKeySequence::Copy)) {
        if (const QString s = selectedText(); !s.isEmpty()) QApplication::clipboard()->setText(s);
        return;
    }
    if (e->matches(QKeySequence::SelectAll)) {
        ensureLaidOut();
        anchor_ = {};
        caret_ = lines_.empty() ? Pos{} : Pos{static_cast<int>(lines_.size()) - 1, static_cast<int>(lines_.back().text.size())};
        offerSelection();
        viewport()->update();
        return;
    }
    // Home and End (with Ctrl too) go to the first and the last row.
    if (e->key() == Qt::Key_Home || e->key() == Qt::Key_End) {
        QScrollBar* bar = verticalScrollBar();
        bar->setValue(e->key() == Qt::Key_Home ? bar->minimum() : bar->maximum());
        return;
    }
    QAbstractScrollArea::keyPressEvent(e);
}

}  // namespace kelpa::qt
