#include "command/bulk_dialog_qt.h"

#include <QPlainTextEdit>
#include <QPushButton>

#include "toolkit/widget_kit_qt.h"

namespace kelpa::qt {

BulkDialog::BulkDialog(QWidget* parent)
    : QDialog(parent, Qt::Tool | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      TXT_Bulk(new QPlainTextEdit(this)),
      OKButton(new CommandButton(QStringLiteral("&Send"), this)),
      CancelButton(new CommandButton(QStringLiteral("&Cancel"), this)) {
    setObjectName(QStringLiteral("Bulk"));
    setWindowTitle(QStringLiteral("Bulk"));
    setModal(true);
    setFont(formFont());
    setFixedSize(px(9825), px(5625));
    setBackground(this, QColor(64, 64, 64));

    TXT_Bulk->setObjectName(QStringLiteral("TXT_Bulk"));
    TXT_Bulk->setGeometry(pxRect(120, 120, 9585, 4815));
    TXT_Bulk->setFont(monospaceFont(9.75));
    TXT_Bulk->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    multiLineBox(TXT_Bulk);
    QPalette p = TXT_Bulk->palette();
    p.setColor(QPalette::Base, Qt::black);
    p.setColor(QPalette::Text, Qt::yellow);
    TXT_Bulk->setPalette(p);

    OKButton->setObjectName(QStringLiteral("OKButton"));
    OKButton->setGeometry(pxRect(7080, 5100, 1215, 375));
    CancelButton->setObjectName(QStringLiteral("CancelButton"));
    CancelButton->setGeometry(pxRect(8490, 5100, 1215, 375));

    // Both only hide the dialog, so that a cancelled text is there next time.
    connect(OKButton, &QPushButton::clicked, this, [this] {
        BulkResult = true;
        accept();
    });
    connect(CancelButton, &QPushButton::clicked, this, [this] {
        BulkResult = false;
        reject();
    });
    // Escape and the window's close box count as Cancel.
    connect(this, &QDialog::rejected, this, [this] { BulkResult = false; });
}

std::string BulkDialog::commandText() const { return boxText(TXT_Bulk); }

void BulkDialog::clearText() { TXT_Bulk->clear(); }

}  // namespace kelpa::qt
