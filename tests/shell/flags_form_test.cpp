// The flags dialog follows the core's table both ways.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>

#include "form_fixture.h"
#include "shell/tab_control_qt.h"
#include "triggers/flags_form_qt.h"

namespace kelpa::test {
namespace {

TEST(FlagsForm, KeywordsShowWhileOpenAndClicksReachTheNextKeyword) {
    FormFixture f;
    f.fake.socket.connected = true;
    qt::FlagsForm* flags = f.form().flagsForm();
    QTest::mouseClick(f.control<QPushButton>("BTN_Flags"), Qt::LeftButton);
    auto* text1 = f.control<QLineEdit>("Text1");
    auto type = [&](const char* line) {
        QTest::keyClicks(text1, line);
        QTest::keyClick(text1, Qt::Key_Return);
        // The mirrors follow within a frame.
        QTest::qWait(40);
    };
    type("#sf 7");
    type("#lf 7 hunting");
    EXPECT_TRUE(flags->TRGFLAG(7)->isChecked());
    EXPECT_EQ(flags->TRGFLAG(7)->text(), "HUNTING");

    QTest::mouseClick(flags->TRGFLAG(9), Qt::LeftButton);
    type("#ifgt 1 0 #swf 9");
    EXPECT_FALSE(flags->TRGFLAG(9)->isChecked());
    QTest::mouseClick(flags->TRGFLAG(9), Qt::LeftButton);
    type("#cf");
    EXPECT_FALSE(flags->TRGFLAG(7)->isChecked());
    EXPECT_FALSE(flags->TRGFLAG(9)->isChecked());
    EXPECT_EQ(flags->TRGFLAG(7)->text(), "7");

    // Window labels reach the custom tabs the same way.
    type("#lw 1 hunt");
    EXPECT_EQ(f.form().tabs()->tabCaption(2), "HUNT");
}

TEST(FlagsForm, CloseAndEscapeOnlyHideTheDialog) {
    FormFixture f;
    qt::FlagsForm* flags = f.form().flagsForm();
    QTest::mouseClick(f.control<QPushButton>("BTN_Flags"), Qt::LeftButton);
    QTest::mouseClick(flags->TRGFLAG(12), Qt::LeftButton);
    QTest::keyClick(flags, Qt::Key_Escape);
    EXPECT_FALSE(flags->isVisible());
    EXPECT_TRUE(f.form().client().flags.value[12]);

    QTest::mouseClick(f.control<QPushButton>("BTN_Flags"), Qt::LeftButton);
    EXPECT_TRUE(flags->TRGFLAG(12)->isChecked());
    QTest::mouseClick(flags->BTN_Close, Qt::LeftButton);
    EXPECT_FALSE(flags->isVisible());
    EXPECT_TRUE(f.form().client().flags.value[12]);
}

TEST(FlagsForm, TheGridFitsTheDialogWithoutOverlaps) {
    FormFixture f;
    qt::FlagsForm* flags = f.form().flagsForm();
    EXPECT_EQ(flags->windowTitle(), "Flags");
    std::vector<QRect> taken{flags->BTN_Close->geometry()};
    for (int i = 0; i < FlagTable::kCount; ++i) {
        const QRect r = flags->TRGFLAG(i)->geometry();
        EXPECT_TRUE(flags->rect().contains(r)) << i;
        for (const QRect& other : taken) EXPECT_FALSE(r.intersects(other)) << i;
        taken.push_back(r);
    }
}

}  // namespace
}  // namespace kelpa::test
