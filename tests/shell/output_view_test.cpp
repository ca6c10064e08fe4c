// What the output views draw: characters, line breaks, wrapping, following
// the end, and how often a flood repaints.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QImage>

#include <random>
#include <QScrollBar>

#include "form_fixture.h"
#include "toolkit/widget_kit_qt.h"
#include "output/output_layout_qt.h"
#include "output/output_view_qt.h"

namespace kelpa::test {
namespace {

QStringList linesOf(const OutputWindow& w) {
    QStringList out;
    for (const qt::LaidLine& l : qt::layoutLines(w, Qt::black)) out << l.text;
    return out;
}

TEST(OutputLayout, BytesBecomeTheCharactersTheUserSees) {
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
        TextStyle s;
        s.graphics = row.graphics;
        w.append(row.bytes, s);
        EXPECT_EQ(linesOf(w), row.lines) << row.name;
    }
}

TEST(OutputLayout, ColoursAndUnderlineFollowTheRuns) {
    OutputWindow w;
    TextStyle red{rgb(255, 0, 0), false, false, false};
    TextStyle underlinedBlue{rgb(0, 0, 255), true, false, false};
    TextStyle plain;
    plain.plain = true;
    w.append("ab", red);
    w.append("cd\r\nef", underlinedBlue);
    w.append("g", plain);
    const auto lines = qt::layoutLines(w, Qt::darkGreen);
    ASSERT_EQ(lines.size(), 2u);
    ASSERT_EQ(lines[0].spans.size(), 2u);
    ASSERT_EQ(lines[1].spans.size(), 2u);
    const auto& [red0, blue0] = std::tie(lines[0].spans[0], lines[0].spans[1]);
    EXPECT_TRUE(red0.colour == QColor(255, 0, 0) && !red0.underline);
    EXPECT_TRUE(blue0.colour == QColor(0, 0, 255) && blue0.underline);
    EXPECT_EQ(lines[1].spans[1].start, 2);
    EXPECT_EQ(lines[1].spans[1].colour, QColor(Qt::darkGreen)) << "plain text takes the view's colour";
}

TEST(OutputView, LongLinesWrapAtTheViewsWidthAndNewTextBringsTheViewToTheEnd) {
    FormFixture f;
    qt::OutputView* t = f.form().outputWindow(kMainWindow);
    const int cols = t->columns();
    ASSERT_GT(cols, 10);
    const std::string longLine(static_cast<std::size_t>(cols * 2 + 1), 'x');
    f.form().client().parts().writer.W_Print(longLine + "\r\nshort", kMainWindow);
    f.form().syncFromCore();
    EXPECT_EQ(t->lineCount(), 2);
    EXPECT_EQ(t->rowCount(), 4);

    f.form().resize(f.form().width() + 200, f.form().height());
    EXPECT_GT(t->columns(), cols);
    EXPECT_EQ(t->rowCount(), 3);

    // New text brings the view back to the end.
    Client& c = f.form().client();
    for (int i = 0; i < 100; ++i) c.parts().writer.W_Print("line " + std::to_string(i) + "\r\n", kMainWindow);
    f.form().syncFromCore();
    QScrollBar* bar = t->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(0);
    c.parts().writer.W_Print("more\r\n", kMainWindow);
    f.form().syncFromCore();
    EXPECT_EQ(bar->value(), bar->maximum());
}

TEST(OutputView, TextLaidOutPieceByPieceDrawsAsALayoutFromScratch) {
    // Pieces of every kind of byte and style, cuts at a limit, a restyle and
    // a resize; whenever the view looks, it must draw what a new view of the
    // same text draws.
    std::mt19937 rng(16);
    OutputWindow seen, same;
    const WindowInfo& info = windowInfo(kMainWindow);
    qt::OutputView view(seen, info);
    view.resize(240, 160);
    view.show();
    const std::string alphabet = "ab \t\t\r\n\n\xC9\xCD\xBA\xE9\x80\x07";
    const std::uint32_t colours[] = {rgb(255, 0, 0), rgb(0, 255, 0), rgb(192, 192, 192)};
    auto both = [&](auto&& op) { op(seen); op(same); };
    for (int step = 0; step < 400; ++step) {
        const TextStyle s{colours[rng() % 3], rng() % 4 == 0, rng() % 5 == 0, rng() % 2 == 0};
        std::string bytes(rng() % 12, ' ');
        for (char& c : bytes) c = alphabet[rng() % alphabet.size()];
        if (rng() % 8 == 0) bytes.append(rng() % 70, 'x');
        both([&](OutputWindow& w) { w.append(bytes, s); });
        if (seen.size() > 500) both([n = seen.size() - 400](OutputWindow& w) { w.cutAfterFirst(n); });
        if (step == 150) both([](OutputWindow& w) { w.flattenToPlain(); });
        if (step == 250) view.resize(330, 160);
        if (rng() % 3 != 0) continue;
        view.sync();
        qt::OutputView fresh(same, info);
        fresh.resize(view.size());
        fresh.show();
        QCoreApplication::processEvents();
        ASSERT_EQ(view.lineCount(), fresh.lineCount()) << "step " << step;
        for (int i = 0; i < view.lineCount(); ++i) ASSERT_EQ(view.lineText(i), fresh.lineText(i)) << "step " << step;
        ASSERT_EQ(view.rowCount(), fresh.rowCount()) << "step " << step;
        ASSERT_EQ(view.viewport()->grab().toImage(), fresh.viewport()->grab().toImage()) << "step " << step;
    }
}

TEST(OutputView, ASelectionCopiesTheTextAcrossLines) {
    FormFixture f;
    f.form().client().parts().writer.W_Print("abc\r\ndef", kMainWindow);
    f.form().syncFromCore();
    qt::OutputView* t = f.form().outputWindow(kMainWindow);
    QWidget* vp = t->viewport();
    const QFontMetrics fm(qt::monospaceFont(9.75));
    const int cw = fm.horizontalAdvance('M'), lh = fm.lineSpacing();
    // The view sits at the end, with both lines in sight from the top.
    QTest::mousePress(vp, Qt::LeftButton, {}, QPoint(cw + 1, lh / 2));
    QMouseEvent move(QEvent::MouseMove, QPointF(2 * cw + 1, lh + lh / 2), vp->mapToGlobal(QPointF(2 * cw + 1, lh + lh / 2)),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(vp, &move);
    QTest::mouseRelease(vp, Qt::LeftButton, {}, QPoint(2 * cw + 1, lh + lh / 2));
    EXPECT_EQ(t->selectedText(), "bc\nde");
}

class PaintCounter : public QObject {
public:
    int paints = 0;
    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() == QEvent::Paint) ++paints;
        return false;
    }
};

TEST(OutputView, AFloodOfChunksRepaintsAtMostOncePerFrame) {
    FormFixture f;
    f.fake.socket.connected = true;
    qt::OutputView* t = f.form().outputWindow(kMainWindow);
    QTest::qWait(50);
    PaintCounter counter;
    t->viewport()->installEventFilter(&counter);
    QElapsedTimer clock;
    clock.start();
    // Each chunk is its own socket event, with the event loop running between.
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
}

// A long text that follows its end leaves the scroll bar's handle at the
// bottom: new lines repaint the text but not the bar, until the handle moves.
TEST(OutputView, TheScrollBarRepaintsOnlyWhenItsHandleMoves) {
    FormFixture f;
    Client& c = f.form().client();
    qt::OutputView* t = f.form().outputWindow(kMainWindow);
    for (int i = 0; i < 3000; ++i) c.parts().writer.W_Print("line " + std::to_string(i) + "\r\n", kMainWindow);
    f.form().syncFromCore();
    PaintCounter bar, text;
    t->verticalScrollBar()->installEventFilter(&bar);
    t->viewport()->installEventFilter(&text);
    // A loaded machine may still be painting the first sync: wait for quiet.
    for (int tries = 0; tries < 40; ++tries) {
        bar.paints = text.paints = 0;
        QTest::qWait(50);
        if (bar.paints == 0 && text.paints == 0) break;
    }
    c.parts().writer.W_Print("one more\r\n", kMainWindow);
    f.form().syncFromCore();
    QTest::qWait(50);
    EXPECT_GE(text.paints, 1);
    EXPECT_EQ(bar.paints, 0);
    t->verticalScrollBar()->setValue(0);
    QTest::qWait(50);
    EXPECT_GE(bar.paints, 1);
}

}  // namespace
}  // namespace kelpa::test
