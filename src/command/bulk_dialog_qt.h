// The Bulk dialog: a box for several command lines, sent together.
#pragma once

#include <QDialog>

#include <string>

class QPlainTextEdit;
class QPushButton;

namespace kelpa::qt {

class BulkDialog : public QDialog {
    Q_OBJECT
public:
    explicit BulkDialog(QWidget* parent = nullptr);

    // True when the dialog was closed with Send.
    bool BulkResult = false;

    // The text with CR LF between its lines, as command texts have them,
    // every byte as shown.
    std::string commandText() const;
    void clearText();

    QPlainTextEdit* TXT_Bulk;
    QPushButton* OKButton;
    QPushButton* CancelButton;
};

}  // namespace kelpa::qt
