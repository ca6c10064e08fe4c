// Small helpers shared by the windows: twips to pixels, colours, fonts and
// the text of the core (one byte per character) as Qt strings.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QColor>
#include <QFont>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QRect>
#include <QString>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "toolkit/twips.h"

class QPlainTextEdit;

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

// The text of a multi-line box as the core keeps it: lines joined by CR LF
// and every character as shown. (toPlainText would give a no-break space
// back as a blank, and a pattern holding one would stop matching.)
std::string boxText(const QPlainTextEdit* box);
// Shows the core's text (lines ending in CR LF) in a multi-line box.
void setBoxText(QPlainTextEdit* box, std::string_view core);
// Whether every character of a box's text has its byte in the code page:
// one that has none goes out as "?", and the box must then show that.
bool fitsCodePage(const QString& text);
// Shows the core's text in a one-line box, if it is not there already (so
// that typing is not disturbed), with the caret at the start: a value longer
// than the box shows its beginning, not its end.
void setLineText(QLineEdit* box, std::string_view core);
// A command line's text as the core takes it: the line breaks of a pasted
// text (LF from this desktop, CR LF or CR from elsewhere) become CR LF, so
// that each line runs as its own command, as in the Bulk box.
std::string commandLineText(const QLineEdit* box);
// From now on a button's mnemonic (Alt+letter) clicks it at once, without
// the pressed look that would swallow an Escape typed right behind it.
void mnemonicsClickAtOnce();
// A text box where an Alt chord that pressed no button types nothing.
// oneLineBox and multiLineBox make their boxes so.
void typesNoAltChords(QWidget* box);
// A one-line box that holds a name, a host or a number: a line break pasted
// into it becomes a blank, as the box shows it, since what it holds has no
// room for one (a site's field in CONN.ZIG would break the file).
void oneLineBox(QLineEdit* box);
// The ways of a multi-line text box: long lines fold at its width, as in
// text boxes with at most a vertical scroll bar (the text itself keeps its
// line breaks), and Tab moves on to the next control instead of typing a
// tab that would reach the server.
void multiLineBox(QPlainTextEdit* box);

// A fixed-pitch font at the given size: DejaVu Sans Mono, or another
// fixed-pitch family with every line graphic, never a proportional
// substitute.
QFont monospaceFont(double pointSize);
// The first of `families` that is fixed-pitch and draws every line graphic
// itself; else the first fixed-pitch one; else none.
QString firstTextFamily(const QStringList& families);

// The font of the forms' own controls: a narrow sans serif at 8.25 points,
// so that captions fit the places made for them.
QFont formFont();

// Puts a window's inside with its centre on `centre`, but never with its
// top-left corner off the screen's free area: a window larger than the
// screen still shows its title bar and its left edge.
void placeCentred(QWidget* window, QPoint centre);
// The size a window opens at on a screen with `free` room: what it wants, but
// no larger than the room, less the height of a title bar, so that a small
// screen at a large scale still shows the bottom of the window.
QSize sizeOnScreen(QSize wanted, const QRect& free);

// Names a control and puts it at a place given in twips.
template <typename W>
W* placed(W* w, const char* name, int left, int top, int width, int height) {
    if (name) w->setObjectName(QString::fromLatin1(name));
    w->setGeometry(pxRect(left, top, width, height));
    return w;
}

// A push button that Enter presses while it has the focus, as Space does,
// without taking Enter from the rest of its window.
class CommandButton : public QPushButton {
public:
    explicit CommandButton(const QString& caption, QWidget* parent);

protected:
    void keyPressEvent(QKeyEvent* e) override;
};

// A CommandButton with its control name and a Latin-1 caption.
CommandButton* commandButton(const char* name, const char* caption, QWidget* parent);

// A list that reports a double click of the left button anywhere in it,
// with the row under the mouse: -1 beside the entries, where no entry is
// chosen. With no entry chosen yet, the first arrow key chooses the entry
// the focus sits on (the first) rather than the one after it.
class EntryList : public QListWidget {
public:
    using QListWidget::QListWidget;
    std::function<void(int row)> onDoubleClick;

protected:
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    // Enter opens the chosen entry, as a double click does.
    void keyPressEvent(QKeyEvent* e) override;
};

// A drop-down list whose open list is at most half its window wide (or its
// own width): a very long entry shows its beginning rather than spreading
// the list over the whole screen.
class DropDownList : public QComboBox {
public:
    using QComboBox::QComboBox;
    void showPopup() override;
};

// A check box that takes a click anywhere in its rectangle, not only on
// its box and caption.
class CheckBox : public QCheckBox {
public:
    using QCheckBox::QCheckBox;

protected:
    bool hitButton(const QPoint& p) const override { return rect().contains(p); }
};

// A modal message box that shows `text` as it stands: words in angle
// brackets are not taken for markup. Returns the button clicked.
QMessageBox::StandardButton showMessage(QWidget* parent, QMessageBox::Icon icon, const QString& title,
                                        const QString& text, QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                        QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);

// Paints the widget's own background in a solid colour.
void setBackground(QWidget* w, const QColor& colour);

}  // namespace kelpa::qt
