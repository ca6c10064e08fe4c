// Paints one output window of the core. The view holds no text of its own:
// it lays out what the model gained since it last looked (all of it after a
// cut), wraps again what that changed or all when the width changed, draws
// only the rows in sight, and follows the end of the text. Rows already on
// the screen move with the text (the pixels are shifted, not drawn again):
// a new line repaints that line, not the window.
#pragma once

#include <QAbstractScrollArea>
#include <QColor>
#include <QFont>
#include <QPoint>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "output/output_layout_qt.h"
#include "output/window_state.h"

namespace kelpa::qt {

class OutputView : public QAbstractScrollArea {
    Q_OBJECT
public:
    OutputView(const OutputWindow& model, const WindowInfo& info, QWidget* parent = nullptr);

    // Follows the model; cheap when it did not change. A hidden view waits
    // until it is shown.
    void sync();
    // Whether new text shows from the first line instead of the end, asked
    // at each change: for a window that is only ever drawn whole, a page
    // whose top must be in sight.
    void setShowsFromTop(std::function<bool()> fromTop) { fromTop_ = std::move(fromTop); }

    // The text of a line as it is drawn (lines end at LF, before wrapping).
    int lineCount();
    QString lineText(int line);
    QString selectedText() const;
    // The width in cells.
    int columns() const;

protected:
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void showEvent(QShowEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    struct Row {
        int line;
        int start;
        int length;
    };
    struct Pos {
        int line = 0;
        int col = 0;
        auto operator<=>(const Pos&) const = default;
    };

    void ensureLaidOut();
    // Rewraps the lines from `line` on; the rows before it stay.
    void wrapFrom(int line);
    void updateScrollRange(bool toEnd);
    int visibleRows() const;
    Pos posAt(const QPoint& p) const;
    void dragScrollTick();
    void offerSelection() const;
    // The row's text in its runs' colours, or all of it in `pen`.
    void paintRow(QPainter& p, const Row& row, int y, const QColor* pen = nullptr);
    void paintSelection(QPainter& p, const Row& row, int y);
    // The selected cells of a row, from its start; equal when none.
    std::pair<int, int> selectionIn(const Row& row) const;
    // Screen rows, the last one perhaps in part.
    int screenRows() const;
    // What the screen row showing row `r` of the text looks like, as a
    // hash: text, colours, underline and selection.
    std::uint64_t rowLook(int r) const;
    // Shifts the pixels of rows that are still in sight to their new place
    // and asks for a paint of the rows that changed.
    void refreshScreen();

    const OutputWindow& model_;
    QColor background_;
    QColor plainColour_;
    QFont font_;
    int charWidth_ = 8;
    int lineHeight_ = 16;
    int ascent_ = 12;

    std::uint64_t laidRevision_ = ~std::uint64_t{0};
    // What the layout covers: new text behind it is laid out on its own; a
    // cut or a reshape lays out everything again.
    std::size_t laidSize_ = 0;
    std::uint64_t laidCut_ = 0;
    std::uint64_t laidReshapes_ = ~std::uint64_t{0};
    int wrappedColumns_ = -1;
    std::vector<LaidLine> lines_;
    std::vector<Row> rows_;

    bool selecting_ = false;
    // A drag beyond the top or bottom scrolls the text a row at a tick.
    QTimer* dragScroll_ = nullptr;
    QPoint dragPoint_;
    std::function<bool()> fromTop_;
    Pos anchor_, caret_;

    // The look of what each screen row shows now, from the paints and
    // shifts so far; 0 where it is not known.
    std::vector<std::uint64_t> shown_;
};

}  // namespace kelpa::qt
