#include "toolkit/widget_kit_qt.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetrics>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPalette>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QScreen>
#include <QShortcutEvent>
#include <QTextDocument>
#include <QWidget>

#include <limits>

#include "common/codepage.h"
#include "common/text.h"
#include "common/box_chars.h"

namespace kelpa::qt {

QString toQString(std::string_view bytes) {
    QString s;
    s.reserve(static_cast<qsizetype>(bytes.size()));
    for (char c : bytes) s.append(QChar(static_cast<char16_t>(cp1252ToUnicode(static_cast<unsigned char>(c)))));
    return s;
}

std::string toCoreBytes(const QString& text) { return toBytes(text.toStdU32String()); }

namespace {

// A text from a box or the desktop with its line breaks, whichever they are
// (LF, CR LF, CR, or a document's paragraph and line separators), as CR LF.
std::string withCrLf(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    for (const QChar br : {QChar(u'\r'), QChar(QChar::ParagraphSeparator), QChar(QChar::LineSeparator)})
        text.replace(br, QLatin1Char('\n'));
    return replaceAll(toCoreBytes(text), "\n", kCrLf);
}

}  // namespace

std::string boxText(const QPlainTextEdit* box) { return withCrLf(box->document()->toRawText()); }

void setBoxText(QPlainTextEdit* box, std::string_view core) { box->setPlainText(toQString(replaceAll(core, kCrLf, "\n"))); }

std::string commandLineText(const QLineEdit* box) { return withCrLf(box->text()); }

namespace {

// An Alt chord that reaches a text box found no mnemonic to press: it types
// nothing, so that Alt+X pressed by mistake puts no "x" into the next command.
// AltGr is not Alt here, so the letters it gives still type.
class AltChordGuard final : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() != QEvent::KeyPress) return false;
        const auto* k = static_cast<const QKeyEvent*>(e);
        return (k->modifiers() & Qt::AltModifier) && !(k->modifiers() & Qt::ControlModifier) &&
               !k->text().isEmpty() && k->text().front().isPrint();
    }
};

// Qt shows a button pressed for 100 ms before a mnemonic clicks it; an
// Escape typed within that time would only release the button, so that
// Alt+S and Escape saved and left the dialog open.
class MnemonicClick final : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* e) override {
        if (e->type() != QEvent::Shortcut || static_cast<QShortcutEvent*>(e)->isAmbiguous()) return false;
        auto* button = qobject_cast<QAbstractButton*>(watched);
        if (!button) return false;
        if (button->focusPolicy() != Qt::NoFocus) button->setFocus(Qt::ShortcutFocusReason);
        button->click();
        return true;
    }
};

}  // namespace

void mnemonicsClickAtOnce() {
    const QString name = QStringLiteral("kelpaMnemonicClick");
    if (!qApp || qApp->findChild<QObject*>(name, Qt::FindDirectChildrenOnly)) return;
    auto* filter = new MnemonicClick(qApp);
    filter->setObjectName(name);
    qApp->installEventFilter(filter);
}

void typesNoAltChords(QWidget* box) { box->installEventFilter(new AltChordGuard(box)); }

void oneLineBox(QLineEdit* box) {
    typesNoAltChords(box);
    // A pasted init string or description is kept whole, however long.
    box->setMaxLength(std::numeric_limits<int>::max());
    QObject::connect(box, &QLineEdit::textEdited, box, [box](const QString& text) {
        if (!text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r'))) return;
        QString one = text;
        one.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
        one.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
        const int at = box->cursorPosition() - static_cast<int>(text.size() - one.size());
        box->setText(one);
        box->setCursorPosition(at);
    });
}

bool fitsCodePage(const QString& text) { return toQString(toCoreBytes(text)) == text; }

void setLineText(QLineEdit* box, std::string_view core) {
    if (toCoreBytes(box->text()) == core && fitsCodePage(box->text())) return;
    box->setText(toQString(core));
    box->setCursorPosition(0);
}

void multiLineBox(QPlainTextEdit* box) {
    typesNoAltChords(box);
    box->setTabChangesFocus(true);
    box->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    box->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

CommandButton::CommandButton(const QString& caption, QWidget* parent) : QPushButton(caption, parent) {
    // Never the default button of a dialog: Enter elsewhere in it stays
    // where it is.
    setAutoDefault(false);
}

CommandButton* commandButton(const char* name, const char* caption, QWidget* parent) {
    auto* b = new CommandButton(QString::fromLatin1(caption), parent);
    b->setObjectName(QString::fromLatin1(name));
    return b;
}

void CommandButton::keyPressEvent(QKeyEvent* e) {
    if ((e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter) && !e->isAutoRepeat()) {
        click();
        return;
    }
    QPushButton::keyPressEvent(e);
}

void EntryList::mouseDoubleClickEvent(QMouseEvent* e) {
    QListWidget::mouseDoubleClickEvent(e);
    if (e->button() != Qt::LeftButton) return;
    const QModelIndex under = indexAt(e->position().toPoint());
    if (onDoubleClick) onDoubleClick(under.isValid() ? under.row() : -1);
}

void DropDownList::showPopup() {
    QComboBox::showPopup();
    QWidget* popup = view()->window();
    const int most = std::max(width(), window()->width() / 2);
    if (popup->width() <= most) return;
    popup->setGeometry(mapToGlobal(QPoint(0, 0)).x(), popup->y(), most, popup->height());
}

void EntryList::keyPressEvent(QKeyEvent* e) {
    if ((e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter) && onDoubleClick) {
        // Only a chosen entry opens. A focus frame alone (after a click
        // beside the entries, or Shift+Tab) chooses nothing, and a key must
        // not empty boxes that may hold unsaved work.
        if (!selectedItems().isEmpty()) onDoubleClick(row(selectedItems().front()));
        return;
    }
    if ((e->key() == Qt::Key_Up || e->key() == Qt::Key_Down) && selectedItems().isEmpty() && currentItem()) {
        setCurrentRow(currentRow(), QItemSelectionModel::ClearAndSelect);
        return;
    }
    QListWidget::keyPressEvent(e);
}

namespace {

// Whether the family itself (no other font filling in) is fixed-pitch and
// draws every line graphic.
bool fitForText(const QString& family) {
    QFont f(family);
    f.setStyleStrategy(QFont::NoFontMerging);
    const QFontInfo info(f);
    if (!info.fixedPitch() || info.family().compare(family, Qt::CaseInsensitive) != 0) return false;
    const QFontMetrics metrics(f);
    for (const BoxChar& b : BoxChars)
        if (!metrics.inFontUcs4(b.codePoint)) return false;
    return true;
}

}  // namespace

QString firstTextFamily(const QStringList& families) {
    for (const QString& family : families)
        if (fitForText(family)) return family;
    for (const QString& family : families)
        if (QFontInfo(QFont(family)).fixedPitch()) return family;
    return {};
}

QFont monospaceFont(double pointSize) {
    // What the system calls "monospace" may be a proportional font, which
    // would break every frame and column: any fixed-pitch family is better.
    static const QString family = [] {
        QStringList candidates{QStringLiteral("DejaVu Sans Mono"),
                               QFontDatabase::systemFont(QFontDatabase::FixedFont).family()};
        for (const QString& f : QFontDatabase::families())
            if (QFontDatabase::isFixedPitch(f)) candidates << f;
        const QString chosen = firstTextFamily(candidates);
        return chosen.isEmpty() ? candidates.front() : chosen;
    }();
    QFont f(family);
    f.setStyleHint(QFont::TypeWriter, QFont::PreferMatch);
    f.setFixedPitch(true);
    f.setPointSizeF(pointSize);
    return f;
}

QFont formFont() {
    // The condensed face comes close to the widths the places were made for.
    QFont f(QStringLiteral("DejaVu Sans Condensed"));
    f.setStyleHint(QFont::SansSerif);
    f.setPointSizeF(8.25);
    return f;
}

namespace {

// A text the box's label would make taller than a screen, or with a word it
// cannot break (a label breaks only between words).
bool tooLongForALabel(const QString& text) {
    if (text.size() > 1500 || text.count(QLatin1Char('\n')) > 25) return true;
    int word = 0;
    for (const QChar c : text)
        if ((word = c.isSpace() ? 0 : word + 1) > 80) return true;
    return false;
}

// Shows the text in a scrolling view of a bounded size in the label's place,
// wrapped between words or anywhere, so that the buttons stay on screen.
void scrollTheText(QMessageBox& box) {
    auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    auto* grid = qobject_cast<QGridLayout*>(box.layout());
    if (!label || !grid || grid->indexOf(label) < 0) return;
    int row = 0, column = 0, rows = 0, columns = 0;
    grid->getItemPosition(grid->indexOf(label), &row, &column, &rows, &columns);
    auto* view = new QPlainTextEdit(box.text(), &box);
    view->setObjectName(QStringLiteral("MessageText"));
    view->setReadOnly(true);
    view->setFrameShape(QFrame::NoFrame);
    view->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QPalette p = view->palette();
    p.setColor(QPalette::Base, box.palette().color(QPalette::Window));
    view->setPalette(p);
    const QRect free = box.screen() ? box.screen()->availableGeometry() : QRect(0, 0, 800, 600);
    const int width = qMin(520, free.width() - 120);
    // As high as the folded text, up to half the screen.
    const int margins = 2 * static_cast<int>(view->document()->documentMargin()) + 4;
    const int folded =
        view->fontMetrics()
            .boundingRect(QRect(0, 0, width - margins - view->verticalScrollBar()->sizeHint().width(), 1 << 24),
                          Qt::TextWordWrap, box.text())
            .height();
    view->setFixedSize(width, qBound(3 * view->fontMetrics().lineSpacing(), folded + margins, qMin(420, free.height() / 2)));
    grid->removeWidget(label);
    label->hide();
    grid->addWidget(view, row, column, rows, columns);
}

}  // namespace

QMessageBox::StandardButton showMessage(QWidget* parent, QMessageBox::Icon icon, const QString& title,
                                        const QString& text, QMessageBox::StandardButtons buttons,
                                        QMessageBox::StandardButton defaultButton) {
    QMessageBox box(icon, title, text, buttons, parent);
    box.setTextFormat(Qt::PlainText);
    if (defaultButton != QMessageBox::NoButton) box.setDefaultButton(defaultButton);
    if (tooLongForALabel(text)) scrollTheText(box);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

void setBackground(QWidget* w, const QColor& colour) {
    QPalette p = w->palette();
    p.setColor(QPalette::Window, colour);
    w->setPalette(p);
    w->setAutoFillBackground(true);
}

QSize sizeOnScreen(QSize wanted, const QRect& free) {
    constexpr int kTitleBar = 40;
    return {qMin(wanted.width(), free.width()), qMin(wanted.height(), qMax(1, free.height() - kTitleBar))};
}

void placeCentred(QWidget* window, QPoint centre) {
    // A move places the window manager's frame; a dialog gets the frame its
    // owner has, so counting that frame centres the dialog's inside on the
    // owner's, not a title bar lower.
    QMargins frame;
    if (const QWidget* owner = window->parentWidget() ? window->parentWidget()->window() : nullptr) {
        const QRect in = owner->geometry(), out = owner->frameGeometry();
        frame = QMargins(in.left() - out.left(), in.top() - out.top(), out.right() - in.right(),
                         out.bottom() - in.bottom());
    }
    const QSize outer = window->size().grownBy(frame);
    QPoint at = centre - window->rect().center() - QPoint(frame.left(), frame.top());
    if (const QScreen* screen = window->screen()) {
        const QRect free = screen->availableGeometry();
        at.setX(qMax(free.left(), qMin(at.x(), free.right() + 1 - outer.width())));
        at.setY(qMax(free.top(), qMin(at.y(), free.bottom() + 1 - outer.height())));
    }
    window->move(at);
}

}  // namespace kelpa::qt
