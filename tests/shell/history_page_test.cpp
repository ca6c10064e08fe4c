// The history on the window: the keys of HistT, a day loaded with the
// event loop turning between pieces, and Seek and Filter from the page.
#include <gtest/gtest.h>

#include <QScrollBar>

#include <algorithm>

#include "form_fixture.h"
#include "history/history_page_qt.h"
#include "output/output_view_qt.h"

namespace kelpa::test {
namespace {

TEST(HistoryPage, HistTShowsAPageAndTakesTheKeys) {
    FormFixture f;
    f.form().client().parts().history.append(numberedLines(1, 100));
    f.clickTab("SSTab2", 1);
    auto* HistT = f.form().outputWindow(kHistT);
    HistT->setFocus();
    // The page is taller than the view. The last page shows its newest
    // line; other pages show their top line, the one the keys go by. Other
    // keys do nothing.
    QScrollBar* bar = HistT->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 0);
    const auto top = [HistT, bar] { return HistT->lineText(bar->value()); };
    const auto atEnd = [bar] { return bar->value() == bar->maximum() ? "end" : "top"; };
    QStringList tops{atEnd()};
    for (Qt::Key key : {Qt::Key_PageUp, Qt::Key_Home, Qt::Key_Down, Qt::Key_A, Qt::Key_Right, Qt::Key_End}) {
        QTest::keyClick(HistT, key);
        // The event loop turns: the scroll bar that came with the first
        // page narrows the view, and the resize must keep the new place.
        QTest::qWait(60);
        f.form().syncFromCore();
        tops << top() + atEnd();
    }
    EXPECT_EQ(tops, QStringList({"end", "line 46top", "line 1top", "line 2top", "line 2top", "line 2top",
                                 "line " + QString::number(73 + bar->maximum()) + "end"}));
    EXPECT_EQ(HistT->lineText(HistT->lineCount() - 2), "line 100");
}

TEST(HistoryPage, ADayLoadsWithTheEventLoopTurningBetweenPieces) {
    FormFixture f;
    const std::string day = numberedLines(1, 20000, "old");  // about 200 KB
    f.fake.folder.write("logs/H.20261122.txt", day);
    f.fake.folder.write("logs/H.20261123.txt", "today\r\n");
    qt::HistoryPage* page = f.form().historyPage();
    f.form().tabs()->setCurrentIndex(6);
    ASSERT_EQ(f.list("DList"), (QStringList{"H.20261122.txt", "H.20261123.txt"}));
    auto* dlist = f.control<QListWidget>("DList");
    EXPECT_FALSE(dlist->horizontalScrollBar()->isVisible()) << "a day's name fits";
    // Only the left button opens a day.
    dlist->setCurrentRow(0);
    QTest::mouseDClick(dlist->viewport(), Qt::RightButton, {}, dlist->visualItemRect(dlist->item(0)).center());
    EXPECT_FALSE(f.form().client().historyViews().browser.loading());
    // Other events run while the load goes on, and see part of the day.
    std::vector<std::size_t> seen;
    QTimer other;
    QObject::connect(&other, &QTimer::timeout, [&] { seen.push_back(f.form().client().parts().history.size()); });
    other.start(0);
    f.open("DList", 0);
    EXPECT_TRUE(!f.control("HistView")->isVisible() && page->Label8->isVisible());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !f.form().client().historyViews().browser.loading(); }, 10000));
    f.form().syncFromCore();
    EXPECT_TRUE(std::any_of(seen.begin(), seen.end(), [&](std::size_t n) { return n > 0 && n < day.size(); }));
    EXPECT_EQ(page->Label8->text(), "Loading (100%)");
    EXPECT_TRUE(!page->Label8->isVisible() && f.control("HistView")->isVisible());
    EXPECT_TRUE(f.form().client().parts().history.text() == day);
}

TEST(HistoryPage, SeekShowsTheLineOnTheHistoryPageAndFilterListsThem) {
    FormFixture f;
    f.form().client().parts().history.append(numberedLines(1, 50) + "The \x1b[31mdragon\x1b[0m sleeps.\r\n" +
                                             numberedLines(51, 90) + "A DRAGON wakes.\r\n");
    ASSERT_TRUE(f.activate());
    f.form().tabs()->setCurrentIndex(6);
    f.enter("Tseek", "Dragon");
    EXPECT_EQ(f.form().tabs()->currentIndex(), 0);
    EXPECT_EQ(f.control<qt::TabControl>("SSTab2")->currentIndex(), 1);
    auto* HistT = f.form().outputWindow(kHistT);
    EXPECT_EQ(HistT->lineText(0), "A DRAGON wakes.");  // from the last page's top line on
    EXPECT_TRUE(HistT->hasFocus());
    QTest::keyClick(HistT, Qt::Key_Up);
    EXPECT_EQ(HistT->lineText(0), "line 90");

    f.form().tabs()->setCurrentIndex(6);
    f.click("BSeek");  // goes on below the top line
    EXPECT_EQ(HistT->lineText(0), "A DRAGON wakes.");
    f.form().tabs()->setCurrentIndex(6);
    f.click("BFilter");
    auto* HistView = f.form().outputWindow(kHistView);
    EXPECT_EQ(HistView->lineText(0) + "|" + HistView->lineText(2), "2 lines hold \"Dragon\"|A DRAGON wakes.");
    // A seek that finds nothing tints the box until the player edits it.
    auto* Tseek = f.control<QLineEdit>("Tseek");
    const QColor plain = Tseek->palette().color(QPalette::Base);
    f.enter("Tseek", "unicorn");
    EXPECT_NE(Tseek->palette().color(QPalette::Base), plain);
    QTest::keyClick(Tseek, Qt::Key_Backspace);
    EXPECT_EQ(Tseek->palette().color(QPalette::Base), plain);
    // A seek through a long run: the player who went back to the command
    // line meanwhile keeps typing there when the line is found.
    std::string filler;
    for (int i = 0; i < 700000; ++i) filler += "filler line\r\n";
    f.form().client().parts().history.append(filler + "The dragon returns.\r\n" + numberedLines(1, 40));
    f.form().tabs()->setCurrentIndex(6);
    f.control<QLineEdit>("Tseek")->setText("returns");
    f.click("BSeek");  // past the end, round to the top and through the filler
    EXPECT_NE(HistT->lineText(0), "The dragon returns.") << "still seeking";
    f.control("Text1")->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return HistT->lineText(0) == "The dragon returns."; }, 10000));
    EXPECT_TRUE(f.control("Text1")->hasFocus());
}

}  // namespace
}  // namespace kelpa::test
