// Small helpers shared by the windows: twips to pixels, colours, fonts and
// the text of the core (one byte per character) as Qt strings.
#pragma once

#include <QCheckBox>
#include <QColor>
#include <QFont>
#include <QRect>
#include <QString>
#include <QWidget>

#include <cstdint>
#include <string>
#include <string_view>

#include "toolkit/twips.h"

namespace kelpa::qt {

inline int px(int twips) { return static_cast<int>(twips >= 0 ? (twips + 7) / 15 : -((-twips + 7) / 15)); }
inline QRect pxRect(int left, int top, int width, int height) {
    return QRect(px(left), px(top), px(width), px(height));
}
inline QRect pxRect(const TwipRect& r) { return pxRect(r.left, r.top, r.width, r.height); }

// A core colour: RGB with red in the low byte.
inline QColor qColor(std::uint32_t rgb) {
    return QColor(static_cast<int>(rgb & 0xFF), static_cast<int>((rgb >> 8) & 0xFF),
                  static_cast<int>((rgb >> 16) & 0xFF));
}

// The core's bytes as the user sees them (code page 1252).
QString toQString(std::string_view bytes);
// Typed text as the core's bytes; characters outside the code page become '?'.
std::string toCoreBytes(const QString& text);

// A fixed-pitch font at the given size. The old program asked for "Lucida
// Console" and "Courier"; DejaVu Sans Mono stands in for both, and a
// proportional substitute is never accepted.
QFont monospaceFont(double pointSize);

// The font of the forms' own controls: a narrow sans serif at 8.25 points,
// so that captions fit the places made for them.
QFont formFont();

// Names a control and puts it at a place given in twips.
template <typename W>
W* placed(W* w, const char* name, int left, int top, int width, int height) {
    if (name) w->setObjectName(QString::fromLatin1(name));
    w->setGeometry(pxRect(left, top, width, height));
    return w;
}

// A check box that takes a click anywhere in its rectangle, as the old
// toolkit's did, not only on its box and caption.
class CheckBox : public QCheckBox {
public:
    using QCheckBox::QCheckBox;

protected:
    bool hitButton(const QPoint& p) const override { return rect().contains(p); }
};

// Paints the widget's own background in a solid colour.
void setBackground(QWidget* w, const QColor& colour);

}  // namespace kelpa::qt
