// The status panel's widgets: what a frame from the server shows, the flash
// until Timer3, bars merged with their cells, and the mouse on the panel.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include "form_fixture.h"
#include "toolkit/tab_control_qt.h"
#include "toolkit/widget_kit_qt.h"

using namespace kelpa;
using kelpa::test::FormFixture;

namespace {

const std::string F24 = "\x18", I25 = "\x19", F26 = "\x1A";

struct PanelFixture : FormFixture {
    PanelFixture() {
        form();
        fake.socket.connected = true;
    }
    void receive(const std::string& chunk) {
        fake.socket.incoming = chunk;
        form().s_DataArrival();
        form().syncFromCore();
    }
    QLabel* cell(int n) { return control<QLabel>(QStringLiteral("Info1(%1)").arg(n).toLatin1().constData()); }
    QWidget* bar(int n) { return control(QStringLiteral("ShapeParam(%1)").arg(n).toLatin1().constData()); }
};

QColor back(QWidget* w) { return w->palette().color(QPalette::Window); }

}  // namespace

TEST(StatusPanelView, FrameFillsCellsBarsAndWordsAndTheTickGreysThem) {
    PanelFixture f;
    f.form().client().Timer3_Timer();
    f.form().syncFromCore();
    EXPECT_EQ(back(f.cell(8)), QColor(128, 128, 128));

    f.receive("You hit." + F24 + "1,7,300" + I25 + "1,8,150" + I25 + "2,2,Kelpie" + I25 + "1,53,9" + I25 + F26 +
              "\r\n");
    EXPECT_EQ(f.cell(8)->text(), QStringLiteral("150"));
    EXPECT_EQ(f.cell(7)->text(), QStringLiteral("300"));
    EXPECT_EQ(back(f.cell(8)), QColor(192, 192, 192));
    EXPECT_EQ(f.control<QLabel>("Info2(2)")->text(), QStringLiteral("Kelpie"));
    EXPECT_EQ(f.control<QLabel>("XInfo(4)")->text(), QStringLiteral("Fighting"));
    EXPECT_EQ(f.bar(0)->width(), qt::px(300));
    EXPECT_EQ(f.bar(5)->width(), qt::px(1815)) << "bar 5 starts full";

    f.form().client().Timer3_Timer();
    f.form().syncFromCore();
    EXPECT_EQ(back(f.cell(8)), QColor(128, 128, 128));

    // A current value far above its maximum: the bar is held at its frame.
    f.receive(F24 + "1,7,1" + I25 + "1,8,1e300" + I25 + F26);
    EXPECT_EQ(f.bar(0)->width(), f.bar(0)->parentWidget()->width());
}

TEST(StatusPanelView, BarsMergeWithTheirCellsByOr) {
    PanelFixture f;
    f.receive(F24 + "1,7,100" + I25 + "1,8,100" + I25 + F26);  // full, blue
    f.form().client().Timer3_Timer();
    f.form().syncFromCore();
    QWidget* frame = f.bar(0)->parentWidget();
    const QImage shot = frame->grab().toImage();
    // A point of the cell's ground under the bar: grey 128 OR blue 255.
    const QPoint p = f.bar(0)->geometry().topLeft() + QPoint(f.bar(0)->width() - 2, 1);
    const qreal dpr = shot.devicePixelRatio();
    EXPECT_EQ(QColor(shot.pixel(QPoint(int(p.x() * dpr), int(p.y() * dpr)))), QColor(128, 128, 255));
}

TEST(StatusPanelView, MouseOnThePanel) {
    PanelFixture f;
    f.receive(F24 + "1,23,abc" + I25 + F26);
    QLabel* label9 = f.control<QLabel>("Label9");
    QMouseEvent move(QEvent::MouseMove, QPointF(2, 2), QPointF(2, 2), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(f.cell(23), &move);
    f.form().syncFromCore();
    EXPECT_EQ(label9->text(), QStringLiteral("23=abc"));

    QWidget* dbg = f.control("FRM_DBG");
    EXPECT_TRUE(dbg->isHidden());
    QTest::mouseDClick(f.control("Label11"), Qt::LeftButton);
    f.form().syncFromCore();
    EXPECT_FALSE(dbg->isHidden());
    QTest::mouseDClick(f.control("Label11"), Qt::LeftButton);
    f.form().syncFromCore();
    EXPECT_TRUE(dbg->isHidden());

    auto* tabs = f.control<qt::TabControl>("InfoTabs");
    f.control("CB_Connections")->setFocus();
    QTest::mouseClick(tabs, Qt::LeftButton, Qt::NoModifier, tabs->tabRect(1).center());
    EXPECT_EQ(tabs->currentIndex(), 1);
    EXPECT_EQ(f.form().focusWidget(), f.control("Text1"));
}
