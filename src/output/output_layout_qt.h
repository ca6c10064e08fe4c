// A window's bytes and styled runs turned into the lines a view draws:
// Unicode text with colour spans, before any wrapping.
#pragma once

#include <QColor>
#include <QString>

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

// The character the user sees for one byte, or a null QChar for a byte
// that draws nothing.
QChar displayChar(unsigned char byte, bool graphics);

}  // namespace kelpa::qt
