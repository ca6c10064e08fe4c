// The status panel's widgets: what a frame from the server shows, the flash
// until Timer3, bars merged with their cells, and the mouse on the panel.
#include <gtest/gtest.h>

#include "form_fixture.h"
#include "toolkit/widget_kit_qt.h"

namespace kelpa::test {
namespace {

const std::string F24 = "\x18", I25 = "\x19", F26 = "\x1A";

struct PanelFixture : FormFixture {
    void receive(const std::string& chunk) {
        qt::MainForm& main = form();  // made before the socket is connected, as at start
        fake.socket.connected = true;
        fake.socket.incoming = chunk;
        main.s_DataArrival();
        main.syncFromCore();
    }
    template <typename W = QWidget>
    W* cell(int n) { return control<W>(QStringLiteral("Info1(%1)").arg(n).toLatin1().constData()); }
    QWidget* bar(int n) { return control(QStringLiteral("ShapeParam(%1)").arg(n).toLatin1().constData()); }
};

TEST(StatusPanelView, BarsMergeWithTheirCellsByOr) {
    PanelFixture f;
    f.receive(F24 + "1,7,100" + I25 + "1,8,100" + I25 + F26);  // full, blue
    f.form().client().Timer3_Timer();
    f.form().syncFromCore();
    const QImage shot = f.bar(0)->parentWidget()->grab().toImage();
    // A point of the cell's ground under the bar: grey 128 OR blue 255.
    const QPoint p = f.bar(0)->geometry().topLeft() + QPoint(f.bar(0)->width() - 2, 1);
    EXPECT_EQ(QColor(shot.pixel((QPointF(p) * shot.devicePixelRatio()).toPoint())), QColor(128, 128, 255));
}

TEST(StatusPanelView, MouseOnThePanel) {
    PanelFixture f;
    f.receive(F24 + "1,23,abc" + I25 + "1,24,<b>x</b>" + I25 + F26);
    EXPECT_EQ(f.cell<QLabel>(24)->textFormat(), Qt::PlainText) << "the server's words are never markup";
    // A value of two lines shows its first line where a value of one does.
    const auto firstRows = [&] {
        const QImage shot = f.cell(23)->grab().toImage();
        return shot.copy(0, 0, shot.width(), shot.height() / 2);
    };
    const QImage one = firstRows();
    f.receive(F24 + "1,23,abc\r\ndef" + I25 + F26);
    EXPECT_EQ(firstRows(), one);
    f.receive(F24 + "1,23,abc" + I25 + F26);
    QMouseEvent move(QEvent::MouseMove, QPointF(2, 2), QPointF(2, 2), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(f.cell(23), &move);
    f.form().syncFromCore();
    EXPECT_EQ(f.text("Label9"), "23=abc");

    // A double click on Label11 shows the debug frame, the next one hides it.
    std::vector<bool> hidden{f.control("FRM_DBG")->isHidden()};
    for (int i = 0; i < 2; ++i) {
        QTest::mouseDClick(f.control("Label11"), Qt::LeftButton);
        f.form().syncFromCore();
        hidden.push_back(f.control("FRM_DBG")->isHidden());
    }
    EXPECT_EQ(hidden, (std::vector<bool>{true, false, true}));

    f.control("CB_Connections")->setFocus();
    QTest::mouseClick(f.cell(19), Qt::LeftButton);
    QTest::mouseClick(f.cell(8), Qt::LeftButton);
    EXPECT_EQ(f.form().focusWidget(), f.control("CB_Connections")) << "a click on a cell leaves the focus";
    f.clickTab("InfoTabs", 1);
    EXPECT_EQ(f.control<qt::TabControl>("InfoTabs")->currentIndex(), 1);
    EXPECT_EQ(f.form().focusWidget(), f.control("Text1"));
}

}  // namespace
}  // namespace kelpa::test
