// What the output views draw: characters, line breaks, wrapping, following
// the end, and how often a flood repaints.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QElapsedTimer>
#include <QImage>
#include <QScreen>
#include <QScrollBar>

#include <random>
#include <set>

#include "form_fixture.h"
#include "output/output_layout_qt.h"
#include "output/output_view_qt.h"
#include "toolkit/widget_kit_qt.h"

namespace kelpa::test {
namespace {

// Each line laid out, or with `spans` as its spans: the text of each, its
// colour and "_" when underlined.
QStringList linesOf(const OutputWindow& w, bool spans = false) {
    QStringList out;
    for (const qt::LaidLine& l : qt::layoutLines(w, Qt::darkGreen)) {
        QString line = spans ? QString() : l.text;
        for (std::size_t i = 0; spans && i < l.spans.size(); ++i) {
            const qt::LaidSpan& s = l.spans[i];
            line += QString("[%1 %2%3]").arg(l.text.mid(s.start, s.length), s.colour.name(), s.underline ? "_" : "");
        }
        out << line;
    }
    return out;
}

// Text written to the main window, with the view brought up to date.
void print(FormFixture& f, const std::string& text) {
    f.form().client().parts().writer.W_Print(text, kMainWindow);
    f.form().syncFromCore();
}

TEST(OutputLayout, BytesBecomeTheCharactersTheUserSeesInTheColoursOfTheirRuns) {
    struct Row { const char* name; std::string bytes; bool graphics; QStringList lines; };
    const Row rows[] = {
        {"box bytes with graphics", "\xC9\xCD\xBB\r\n\xBA\xB1\xBA", true, {u"╔═╗"_qs, u"║░║"_qs}},
        {"the same bytes without", "\xC9\xCD\xBB", false, {u"ÉÍ»"_qs}},
        {"code page 1252 above 127", "caf\xE9 \x80 \x93q\x94", true, {u"café € “q”"_qs}},
        {"CR LF is one break, a lone CR nothing", "a\r\nb\rc\n\nd", false, {"a", "bc", "", "d"}},
        {"TAB to the next multiple of eight", "ab\tc\t\td", false, {"ab      c               d"}},
        {"other controls draw nothing", std::string("x\0\x07\x08y\x1B", 6), false, {"xy"}},
    };
    for (const Row& row : rows) {
        OutputWindow w;
        w.append(row.bytes, {.graphics = row.graphics});
        EXPECT_EQ(linesOf(w), row.lines) << row.name;
    }
    OutputWindow w;
    w.append("ab", {.colour = rgb(255, 0, 0)});
    w.append("cd\r\nef", {.colour = rgb(0, 0, 255), .underline = true});
    w.append("g", {.plain = true});
    EXPECT_EQ(linesOf(w, true), (QStringList{"[ab #ff0000][cd #0000ff_]", "[ef #0000ff_][g #008000]"}))
        << "plain text takes the view's colour";
}

// Rows of a line at a width: between words, the blanks of a break on no
// row, a word longer than a row cut.
TEST(OutputLayout, LongLinesWrapBetweenWords) {
    struct Row { const char* text; int columns; QStringList rows; };
    const Row rows[] = {
        {"", 5, {""}},
        {"short", 5, {"short"}},
        {"the orc hits", 7, {"the orc", "hits"}},
        {"the orc hits", 8, {"the orc", "hits"}},
        {"ab   cd", 3, {"ab", "cd"}},
        {"abcdefghij klm", 4, {"abcd", "efgh", "ij", "klm"}},
        {"   indented long", 6, {"   ind", "ented", "long"}},
        {"ends in blanks     ", 7, {"ends in", "blanks"}},
    };
    for (const Row& row : rows) {
        const QString text = QString::fromLatin1(row.text);
        QStringList got;
        qt::wrapLine(text, row.columns, [&](int start, int length) { got << text.mid(start, length); });
        EXPECT_EQ(got, row.rows) << row.text << " at " << row.columns;
    }
}

// The paints of a widget, and those of less than the whole of it, while
// the counter lives.
struct PaintCounter : QObject {
    explicit PaintCounter(QWidget* w) { w->installEventFilter(this); }
    int paints = 0, partial = 0;
    bool eventFilter(QObject* o, QEvent* e) override {
        if (e->type() != QEvent::Paint) return false;
        ++paints;
        partial += static_cast<QPaintEvent*>(e)->region() != QRegion(static_cast<QWidget*>(o)->rect());
        return false;
    }
};

// The pixels the window holds after many small repaints, each drawing only
// what changed and shifting the rest, and every line laid out piece by
// piece, are what a new view of the same text draws from scratch: after new
// text of every kind of byte and style, cuts, a restyle, a resize, a
// selection and the player's scrolling.
TEST(OutputView, TheScreenAfterManySmallRepaintsIsWhatAWholePaintDraws) {
    std::mt19937 rng(23);
    OutputWindow seen, same;
    const WindowInfo& info = windowInfo(kMainWindow);
    qt::OutputView view(seen, info);
    view.resize(260, 170);
    view.show();
    QCoreApplication::processEvents();
    const std::string alphabet = "ab \t\t\r\n\n\n\xC9\xCD\xBA\xE9\x80\x07q";
    const std::uint32_t colours[] = {rgb(255, 0, 0), rgb(0, 255, 0), rgb(192, 192, 192)};
    auto both = [&](auto&& op) { op(seen); op(same); };
    auto onScreen = [&] {
        const QRect vp(view.viewport()->mapTo(&view, QPoint(0, 0)), view.viewport()->size());
        return view.screen()->grabWindow(view.winId()).toImage().copy(vp).convertToFormat(QImage::Format_RGB32);
    };
    PaintCounter partial(view.viewport());
    int changed = 0;
    for (int step = 0; step < 300; ++step) {
        const TextStyle s{colours[rng() % 3], rng() % 4 == 0, rng() % 5 == 0, rng() % 2 == 0};
        std::string bytes(rng() % 14, ' ');
        for (char& c : bytes) c = alphabet[rng() % alphabet.size()];
        if (rng() % 8 == 0) bytes.append(rng() % 60, 'x');
        both([&](OutputWindow& w) { w.append(bytes, s); });
        if (seen.size() > 700) both([n = seen.size() - 500](OutputWindow& w) { w.cutAfterFirst(n); });
        if (step == 120) both([](OutputWindow& w) { w.flattenToPlain(); });
        if (step == 200) view.resize(300, 150);
        view.sync();
        QScrollBar* bar = view.verticalScrollBar();
        if (rng() % 6 == 0) bar->setValue(bar->value() - static_cast<int>(rng() % 4));
        if (rng() % 9 == 0) bar->setValue(bar->value() + 1);
        if (step % 25 == 10) {
            const QPoint from(static_cast<int>(rng() % 200), static_cast<int>(rng() % 100));
            QTest::mousePress(view.viewport(), Qt::LeftButton, {}, from);
            QTest::mouseMove(view.viewport(), from + QPoint(static_cast<int>(rng() % 50), 40));
        }
        const QImage before = onScreen();
        QCoreApplication::processEvents();
        const QImage after = onScreen();
        if (before != after) ++changed;
        qt::OutputView fresh(same, info);
        fresh.resize(view.size());
        fresh.show();
        QCoreApplication::processEvents();
        fresh.verticalScrollBar()->setValue(bar->value());
        QCoreApplication::processEvents();
        ASSERT_EQ(fresh.verticalScrollBar()->value(), bar->value()) << "step " << step;
        ASSERT_EQ(view.lineCount(), fresh.lineCount()) << "step " << step;
        for (int i = 0; i < view.lineCount(); ++i) ASSERT_EQ(view.lineText(i), fresh.lineText(i)) << "step " << step;
        // The selection is the one thing the fresh view lacks.
        if (!view.selectedText().isEmpty()) continue;
        ASSERT_EQ(after, fresh.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32)) << "step " << step;
    }
    EXPECT_GT(changed, 150) << "the screen changed at most steps";
    EXPECT_GT(partial.partial, 100) << "most paints drew only the rows that changed";
}

TEST(OutputView, ASelectionCopiesTheTextAcrossLines) {
    FormFixture f;
    print(f, "abc\r\ndef");
    qt::OutputView* t = f.form().outputWindow(kMainWindow);
    QWidget* vp = t->viewport();
    const QFontMetrics fm(qt::monospaceFont(9.75));
    // The view sits at the end, with both lines in sight from the top.
    const QPoint from(fm.horizontalAdvance('M') + 1, fm.lineSpacing() / 2);
    const QPoint to = from + QPoint(from.x() - 1, fm.lineSpacing());
    QTest::mousePress(vp, Qt::LeftButton, {}, from);
    QTest::mouseMove(vp, to);  // with the button held
    QTest::mouseRelease(vp, Qt::LeftButton, {}, to);
    EXPECT_EQ(t->selectedText(), "bc\nde");

    // The blanks of a TAB copy as the TAB, also when the selection starts
    // among them.
    FormFixture g;
    print(g, "x\tT\r\nab\t\tc");
    qt::OutputView* u = g.form().outputWindow(kMainWindow);
    QTest::keyClick(u, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(u->selectedText(), "x\tT\nab\t\tc");
    const QPoint inTab(3 * fm.horizontalAdvance('M') + 1, fm.lineSpacing() / 2);
    QTest::mousePress(u->viewport(), Qt::LeftButton, {}, inTab);
    QTest::mouseMove(u->viewport(), inTab + QPoint(6 * fm.horizontalAdvance('M'), 0));
    QTest::mouseRelease(u->viewport(), Qt::LeftButton, {}, inTab + QPoint(6 * fm.horizontalAdvance('M'), 0));
    EXPECT_EQ(u->selectedText(), "\tT");
}

// The mouse and keys on an output window: a double click takes a word,
// Shift+click and a drag past the bottom move the far end, Ctrl+A takes
// everything, and letters typed or pasted there land in the command line.
TEST(OutputView, SelectingAndTypingAsPlayersKnowThem) {
    FormFixture f;
    print(f, numberedLines(1, 60) + "\x1B[1;34mthe blue dragon\x1B[0m");
    qt::OutputView* t = f.form().outputWindow(kMainWindow);
    QWidget* vp = t->viewport();
    const QFontMetrics fm(qt::monospaceFont(9.75));
    const int w = fm.horizontalAdvance('M'), h = fm.lineSpacing();
    const int rows = vp->height() / h;
    // The last row holds the blue text; the view sits at the end.
    const int lastY = (t->lineCount() - 1 - t->verticalScrollBar()->value()) * h + h / 2;
    QTest::mouseDClick(vp, Qt::LeftButton, {}, QPoint(6 * w, lastY));
    EXPECT_EQ(t->selectedText(), "blue");
    QTest::mouseClick(vp, Qt::LeftButton, Qt::ShiftModifier, QPoint(15 * w, lastY));
    EXPECT_EQ(t->selectedText(), "blue dragon");

    // A drag that leaves the bottom scrolls the text under it.
    t->verticalScrollBar()->setValue(0);
    QTest::mousePress(vp, Qt::LeftButton, {}, QPoint(0, h / 2));
    QTest::mouseMove(vp, QPoint(w, vp->height() + 5));
    QTest::qWait(400);
    QTest::mouseRelease(vp, Qt::LeftButton, {}, QPoint(w, vp->height() + 5));
    EXPECT_GT(t->verticalScrollBar()->value(), 2);
    EXPECT_TRUE(t->selectedText().startsWith("line 1\nline 2\n"));
    EXPECT_GT(t->selectedText().count('\n'), rows + 1);

    QTest::keyClick(t, Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(t->verticalScrollBar()->value(), t->verticalScrollBar()->maximum());
    QTest::keyClick(t, Qt::Key_Home);
    EXPECT_EQ(t->verticalScrollBar()->value(), 0);
    QTest::keyClick(t, Qt::Key_A, Qt::ControlModifier);
    EXPECT_TRUE(t->selectedText().startsWith("line 1\n") && t->selectedText().endsWith("the blue dragon"));
    t->setFocus();
    QTest::keyClicks(t, "look");
    EXPECT_EQ(f.control<QLineEdit>("Text1")->text(), "look");
    EXPECT_TRUE(f.control("Text1")->hasFocus());
    EXPECT_FALSE(t->selectedText().isEmpty()) << "Ctrl+A stayed with the window";
    QApplication::clipboard()->setText(" north");
    t->setFocus();
    QTest::keyClick(t, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(f.control<QLineEdit>("Text1")->text(), "look north") << "a paste goes to the command line";
}

// Pictures that must match: a soft hyphen draws as the hyphen in its own
// cell, so the text behind it stays in its columns; selected text looks the
// same whatever colour the server gave it.
TEST(OutputView, ASoftHyphenKeepsItsCellAndSelectedTextTakesTheSelectionsColour) {
    OutputWindow soft, hard, blue, plain;
    const TextStyle grey{.colour = rgb(192, 192, 192)};
    soft.append("ab\xAD" "cd|", grey);
    hard.append("ab-cd|", grey);
    blue.append("the blue dragon", {.colour = rgb(0, 0, 255)});
    plain.append("the blue dragon", grey);
    const WindowInfo& info = windowInfo(kMainWindow);
    qt::OutputView a(soft, info), b(hard, info), c(blue, info), d(plain, info);
    for (qt::OutputView* v : {&a, &b, &c, &d}) {
        v->resize(200, 60);
        v->show();
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(a.viewport()->grab().toImage(), b.viewport()->grab().toImage());
    EXPECT_EQ(a.lineText(0), QString::fromUtf16(u"ab\u00ADcd|")) << "the text itself keeps it";

    const int w = QFontMetrics(qt::monospaceFont(info.pointSize)).horizontalAdvance('M');
    const QRect word(4 * w, 0, 4 * w, 10);
    auto selectedWord = [&](qt::OutputView& v) {
        QTest::mouseDClick(v.viewport(), Qt::LeftButton, {}, QPoint(5 * w, 5));
        EXPECT_EQ(v.selectedText(), "blue");
        return v.viewport()->grab().toImage().copy(word);
    };
    const QImage before = c.viewport()->grab().toImage().copy(word);
    EXPECT_EQ(selectedWord(c), selectedWord(d));
    EXPECT_NE(before, selectedWord(c));
}

// A colour change starts the next run on its cell: the glyphs after it stand
// where they stand in a line of one colour, so box lines meet and the
// selection covers what it shows.
TEST(OutputView, GlyphsKeepTheirCellsAcrossColourChanges) {
    OutputWindow one, two;
    const TextStyle grey{.colour = rgb(192, 192, 192)}, white{.colour = rgb(255, 255, 255)};
    one.append("MMMMMMMMMMMMMMMMMMMMI", white);
    two.append("MMMMMMMMMMMMMMMMMMMM", grey);
    two.append("I", white);
    const WindowInfo& info = windowInfo(kMainWindow);
    qt::OutputView a(one, info), b(two, info);
    auto ink = [](qt::OutputView& v) {
        v.resize(300, 40);
        v.show();
        QCoreApplication::processEvents();
        QImage img = v.viewport()->grab().toImage();
        const QRgb bg = img.pixel(img.width() - 1, img.height() - 1);
        // Where there is ink, not which colour: the runs differ in colour.
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x) img.setPixel(x, y, img.pixel(x, y) == bg ? 0 : 0xFFFFFF);
        return img;
    };
    EXPECT_EQ(ink(a), ink(b));
    // The text's font is chosen for a fixed pitch and the line graphics of
    // its own, whatever the system calls "monospace".
    EXPECT_EQ(qt::firstTextFamily({"DejaVu Serif", "DejaVu Sans", "DejaVu Sans Mono"}), "DejaVu Sans Mono");
    EXPECT_EQ(qt::firstTextFamily({"DejaVu Serif", "DejaVu Sans"}), "");
    EXPECT_EQ(qt::monospaceFont(9.75).family(), "DejaVu Sans Mono");
}

// A flood repaints at most once per frame. A long text that follows its end
// leaves the scroll bar's handle at the bottom: new lines repaint the text but
// not the bar.
TEST(OutputView, AFloodRepaintsAtMostOncePerFrameAndTheScrollBarOnlyWhenItsHandleMoves) {
    FormFixture f;
    f.fake.socket.connected = true;
    qt::OutputView* t = f.form().outputWindow(kMainWindow);
    // Each chunk is its own socket event, with the event loop running between;
    // on an empty window, then on one whose bar moves at every line.
    auto flood = [&] {
        QTest::qWait(50);
        PaintCounter counter(t->viewport());
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < 200; ++i) {
            f.fake.socket.incoming = "chunk " + std::to_string(i) + "\r\n";
            f.form().s_DataArrival();
            QCoreApplication::processEvents();
        }
        QTest::qWait(50);
        const qint64 ms = clock.elapsed();
        EXPECT_GE(counter.paints, 1);
        EXPECT_LE(counter.paints, ms / 16 + 2) << ms << " ms";
        EXPECT_EQ(t->lineText(t->lineCount() - 2), "chunk 199");
    };
    flood();
    print(f, numberedLines(0, 2999));
    flood();
    PaintCounter bar(t->verticalScrollBar()), text(t->viewport());
    // A loaded machine may still be painting the first sync: wait for quiet.
    for (int tries = 0; tries < 40; ++tries) {
        bar.paints = text.paints = 0;
        QTest::qWait(50);
        if (bar.paints == 0 && text.paints == 0) break;
    }
    print(f, "one more\r\n");
    QTest::qWait(50);
    EXPECT_GE(text.paints, 1);
    EXPECT_EQ(bar.paints, 0);
}

// While a short text grows the handle shrinks with nearly every line: it is
// moved at most ten times a second, and its last place is shown.
TEST(OutputView, AGrowingTextMovesTheHandleAtMostTenTimesASecond) {
    FormFixture f;
    qt::OutputView* t = f.form().outputWindow(kMainWindow);
    print(f, numberedLines(0, 39));
    QTest::qWait(150);
    PaintCounter bar(t->verticalScrollBar());
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 60; ++i) {
        print(f, numberedLines(i, i, "more"));
        QCoreApplication::processEvents();
    }
    const qint64 ms = clock.elapsed();
    const int during = bar.paints;
    EXPECT_LE(during, ms / 100 + 1) << ms << " ms";
    QTest::qWait(200);
    EXPECT_GT(bar.paints, during) << "the handle's last place is shown";

    // The player's own scrolling is shown at once, even right after a paint.
    for (int i = 0; i < 2; ++i) {
        print(f, "again\r\n");
        QCoreApplication::processEvents();
    }
    const int beforeScroll = bar.paints;
    t->verticalScrollBar()->setValue(0);
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    EXPECT_GT(bar.paints, beforeScroll);
    // And the bar is drawn: its picture is more than its background.
    const QImage drawn = t->verticalScrollBar()->grab().toImage();
    std::set<QRgb> colours;
    for (int y = 0; y < drawn.height(); ++y)
        for (int x = 0; x < drawn.width(); ++x) colours.insert(drawn.pixel(x, y));
    EXPECT_GT(colours.size(), 2u);
}

}  // namespace
}  // namespace kelpa::test
