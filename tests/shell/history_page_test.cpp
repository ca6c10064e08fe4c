// The history on the window: the keys of HistT, a day loaded with the
// event loop turning between pieces, and Seek and Filter from the page.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "form_fixture.h"
#include "history/history_page_qt.h"
#include "output/output_view_qt.h"
#include "toolkit/tab_control_qt.h"

namespace kelpa::test {
namespace {

std::string numberedLines(int from, int to, const char* word = "line") {
    std::string s;
    for (int i = from; i <= to; ++i) s += std::string(word) + " " + std::to_string(i) + "\r\n";
    return s;
}

template <typename Done>
bool waitFor(Done done) {
    QElapsedTimer t;
    t.start();
    while (!done() && t.elapsed() < 10000) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    return done();
}

TEST(HistoryPage, HistTShowsAPageAndTakesTheKeys) {
    FormFixture f;
    f.form().client().parts().history.append(numberedLines(1, 100));
    auto* tab2 = f.control<qt::TabControl>("SSTab2");
    QTest::mouseClick(tab2, Qt::LeftButton, {}, tab2->tabRect(1).center());
    auto* HistT = f.form().outputWindow(kHistT);
    EXPECT_EQ(HistT->lineText(0), "line 73");
    HistT->setFocus();
    QTest::keyClick(HistT, Qt::Key_PageUp);
    EXPECT_EQ(HistT->lineText(0), "line 46");
    QTest::keyClick(HistT, Qt::Key_Home);
    QTest::keyClick(HistT, Qt::Key_Down);
    EXPECT_EQ(HistT->lineText(0), "line 2");
    QTest::keyClick(HistT, Qt::Key_A);  // other keys do nothing
    QTest::keyClick(HistT, Qt::Key_Right);
    EXPECT_EQ(HistT->lineText(0), "line 2");
}

TEST(HistoryPage, ADayLoadsWithTheEventLoopTurningBetweenPieces) {
    FormFixture f;
    const std::string day = numberedLines(1, 20000, "old");  // about 200 KB
    f.fake.folder.write("logs/H.20261122.txt", day);
    f.fake.folder.write("logs/H.20261123.txt", "today\r\n");
    qt::HistoryPage* page = f.form().historyPage();
    f.form().tabs()->setCurrentIndex(6);
    ASSERT_EQ(itemsOf(page->DList), (QStringList{"H.20261122.txt", "H.20261123.txt"}));

    doubleClick(page->DList, 0);
    // Other events run while the load goes on, and see part of the day.
    std::vector<std::size_t> seen;
    QTimer other;
    QObject::connect(&other, &QTimer::timeout, [&] { seen.push_back(f.form().client().parts().history.size()); });
    other.start(0);
    f.form().syncFromCore();
    EXPECT_FALSE(f.control("HistView")->isVisible());
    EXPECT_TRUE(page->Label8->isVisible());
    ASSERT_TRUE(waitFor([&] { return !f.form().client().historyViews().browser.loading(); }));
    f.form().syncFromCore();
    EXPECT_TRUE(std::any_of(seen.begin(), seen.end(), [&](std::size_t n) { return n > 0 && n < day.size(); }));
    EXPECT_EQ(page->Label8->text(), "Loading (100%)");
    EXPECT_FALSE(page->Label8->isVisible());
    EXPECT_TRUE(f.control("HistView")->isVisible());
    EXPECT_TRUE(f.form().client().parts().history.text() == day);
}

TEST(HistoryPage, SeekShowsTheLineOnTheHistoryPageAndFilterListsThem) {
    FormFixture f;
    std::string run = numberedLines(1, 50);
    run += "The \x1b[31mdragon\x1b[0m sleeps.\r\n";
    run += numberedLines(51, 90);
    run += "A DRAGON wakes.\r\n";
    f.form().client().parts().history.append(run);
    qt::HistoryPage* page = f.form().historyPage();
    f.form().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f.form()));
    f.form().tabs()->setCurrentIndex(6);
    QTest::keyClicks(page->Tseek, "Dragon");
    QTest::keyClick(page->Tseek, Qt::Key_Return);
    EXPECT_EQ(f.form().tabs()->currentIndex(), 0);
    EXPECT_EQ(f.control<qt::TabControl>("SSTab2")->currentIndex(), 1);
    auto* HistT = f.form().outputWindow(kHistT);
    EXPECT_EQ(HistT->lineText(0), "A DRAGON wakes.");  // from the last page's top line on
    EXPECT_TRUE(HistT->hasFocus());
    QTest::keyClick(HistT, Qt::Key_Up);
    EXPECT_EQ(HistT->lineText(0), "line 90");

    f.form().tabs()->setCurrentIndex(6);
    QTest::mouseClick(page->BSeek, Qt::LeftButton);  // goes on below the top line
    EXPECT_EQ(HistT->lineText(0), "A DRAGON wakes.");
    f.form().tabs()->setCurrentIndex(6);
    QTest::mouseClick(page->BFilter, Qt::LeftButton);
    f.form().syncFromCore();
    auto* HistView = f.form().outputWindow(kHistView);
    EXPECT_EQ(HistView->lineText(0), "2 lines hold \"Dragon\"");
    EXPECT_EQ(HistView->lineText(2), "A DRAGON wakes.");
}

}  // namespace
}  // namespace kelpa::test
