// A window's bytes and styled runs turned into the lines a view draws:
// Unicode text with colour spans, before any wrapping.
#pragma once

#include <QColor>
#include <QString>
#include <QStringView>

#include <utility>
#include <vector>

#include "output/output_window.h"

namespace kelpa::qt {

struct LaidSpan {
    int start = 0;  // in characters of the line
    int length = 0;
    QColor colour;
    bool underline = false;
};

struct LaidLine {
    QString text;
    std::vector<LaidSpan> spans;
    // The blanks that stand for a TAB, as [start, end) columns in order:
    // a copy gives the TAB itself.
    std::vector<std::pair<int, int>> tabs;
};

// LF ends a line and CR is dropped, so CR LF is one break; TAB goes to the
// next multiple of 8 columns; other control bytes draw nothing. A box byte
// of a run written with graphics on becomes its line graphic, every other
// byte its code page 1252 character. `plainColour` is the control's own
// text colour, for runs marked plain.
std::vector<LaidLine> layoutLines(const OutputWindow& model, const QColor& plainColour);

// Lays out the model's text from position `from` on behind `lines`, the
// layout of the text before it: the last line may grow, new lines follow.
void layoutMore(std::vector<LaidLine>& lines, const OutputWindow& model, std::size_t from,
                const QColor& plainColour);

// The rows of one laid line at `columns` characters a row, each given to
// `row(start, length)`: a row ends before the last blank that still fits,
// and the blanks at a break show on neither row; a word longer than a row,
// or a row with no blank behind a word, is cut at the row's end.
template <class Row>
void wrapLine(QStringView text, int columns, Row&& row) {
    const int len = static_cast<int>(text.size());
    int start = 0;
    while (len - start > columns) {
        const int cut = start + columns;  // the first character past the row
        int blank = cut;
        while (blank > start && text[blank] != u' ') --blank;
        int end = blank;
        while (end > start && text[end - 1] == u' ') --end;
        if (end == start) {
            row(start, columns);
            start = cut;
            continue;
        }
        row(start, end - start);
        start = blank + 1;
        while (start < len && text[start] == u' ') ++start;
    }
    if (start < len || start == 0) row(start, len - start);
}

// The character the user sees for one byte, or a null QChar for a byte
// that draws nothing.
QChar displayChar(unsigned char byte, bool graphics);

}  // namespace kelpa::qt
