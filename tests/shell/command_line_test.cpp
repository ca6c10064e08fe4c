// The command line and the Bulk dialog, down to the bytes on the socket.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

#include <stdexcept>

#include "command/bulk_dialog_qt.h"
#include "form_fixture.h"

namespace kelpa::test {
namespace {

TEST(CommandLine, EnterSendsTheLineInTheCodePageAndThenEmptiesTheBox) {
    FormFixture f;
    f.fake.socket.connected = true;
    auto* text1 = f.control<QLineEdit>("Text1");
    QTest::keyClicks(text1, "look");
    QTest::keyClick(text1, Qt::Key_Return);
    EXPECT_EQ(f.fake.socket.sent, "look\r\n");
    EXPECT_TRUE(text1->text().isEmpty());
    QTest::keyClick(text1, Qt::Key_Enter);  // the keypad's Enter, on an empty box
    text1->setText(QString::fromUtf8("say caf\u00e9 \u20ac5 \u4e2d"));
    QTest::keyClick(text1, Qt::Key_Return);
    EXPECT_EQ(f.fake.socket.sent, "look\r\n\r\nsay caf\xE9 \x80" "5 ?\r\n");
}

TEST(CommandLine, EscapeHidesTheWindowAndKeepsTheText) {
    FormFixture f;
    auto* text1 = f.control<QLineEdit>("Text1");
    QTest::keyClicks(text1, "north");
    QTest::keyClick(text1, Qt::Key_Escape);
    EXPECT_TRUE(f.fake.host.hidden);
    EXPECT_EQ(text1->text(), "north");
    EXPECT_TRUE(f.fake.socket.sent.empty());
}

class ThrowingSocket : public FakeSocket {
public:
    void sendData(const std::string&) override { throw std::runtime_error("socket broke"); }
};

TEST(CommandLine, AFailureInTheCoreIsToldOnTheDebugChannelAndTheProgramGoesOn) {
    FormFixture f;
    ThrowingSocket broken;
    broken.connected = true;
    Platform platform{broken, f.fake.clock, f.fake.random, f.fake.files, f.fake.host};
    qt::MainForm form(platform);
    form.findChild<QCheckBox*>("DebugInfo")->setChecked(true);
    auto* text1 = form.findChild<QLineEdit*>("Text1");
    text1->setText("look");
    QTest::keyClick(text1, Qt::Key_Return);
    const std::string debug(form.client().windows.text[kDebugWindow].text());
    EXPECT_NE(debug.find("Text1_KeyPress: socket broke"), std::string::npos) << debug;
    EXPECT_TRUE(text1->text().isEmpty());
}

// Runs `inside` once the modal dialog is up, then presses BTN_BULK.
template <typename F>
void withBulkOpen(FormFixture& f, F inside) {
    qt::BulkDialog* bulk = f.form().bulkDialog();
    QTimer::singleShot(0, bulk, [bulk, inside] {
        EXPECT_TRUE(bulk->isVisible());
        inside(bulk);
    });
    // A safety net, so that a failed test does not hang in the dialog.
    QTimer::singleShot(3000, bulk, [bulk] { bulk->reject(); });
    QTest::mouseClick(f.control<QPushButton>("BTN_BULK"), Qt::LeftButton);
}

TEST(BulkDialog, SendSendsEveryLineCancelAndEscapeSendNothingAndKeepTheText) {
    FormFixture f;
    f.fake.socket.connected = true;
    withBulkOpen(f, [](qt::BulkDialog* bulk) { QTest::mouseClick(bulk->OKButton, Qt::LeftButton); });
    EXPECT_EQ(f.fake.socket.sent, "\r\n") << "an empty box sends a bare line end";
    withBulkOpen(f, [](qt::BulkDialog* bulk) {
        bulk->TXT_Bulk->setPlainText("north\nsouth");
        QTest::mouseClick(bulk->OKButton, Qt::LeftButton);
    });
    EXPECT_EQ(f.fake.socket.sent, "\r\nnorth\r\nsouth\r\n");
    EXPECT_TRUE(f.form().bulkDialog()->TXT_Bulk->toPlainText().isEmpty());
    EXPECT_FALSE(f.form().bulkDialog()->isVisible());

    f.fake.socket.sent.clear();
    withBulkOpen(f, [](qt::BulkDialog* bulk) {
        bulk->TXT_Bulk->setPlainText("kill rat");
        QTest::mouseClick(bulk->CancelButton, Qt::LeftButton);
    });
    withBulkOpen(f, [](qt::BulkDialog* bulk) { QTest::keyClick(bulk, Qt::Key_Escape); });
    EXPECT_TRUE(f.fake.socket.sent.empty());
    EXPECT_EQ(f.form().bulkDialog()->TXT_Bulk->toPlainText(), "kill rat");
}

}  // namespace
}  // namespace kelpa::test
