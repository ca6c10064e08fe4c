// DLG_SiteMan: the window over the SiteManager model. It copies the boxes
// into the model before each click and mirrors the model after it.
#pragma once

#include <QDialog>
#include <QTimer>

#include <string>

#include "sites/site_manager.h"

class QFrame;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace kelpa::qt {

class SiteManagerDialog : public QDialog {
    Q_OBJECT
public:
    // How long "Saved successfully" stays on screen.
    static constexpr int kSavedMs = 500;

    explicit SiteManagerDialog(FileSystem& files, QWidget* parent = nullptr);

    SiteManager& model() { return model_; }

    QListWidget* SitesList;
    QLineEdit* TXT_SiteName;
    QLineEdit* TXT_SSname;
    QLineEdit* TXT_DNSIP;
    QLineEdit* TXT_DnsIPAlternate;
    QLineEdit* TXT_Dport;
    QLineEdit* TXT_Aport;
    QLineEdit* TXT_STRI;
    QPlainTextEdit* TXT_DESC;
    QPushButton* CMD_SiteAdd;
    QPushButton* CMD_SiteDelete;
    QPushButton* OKButton;
    QPushButton* CancelButton;
    QFrame* frmSaved;

protected:
    bool eventFilter(QObject* watched, QEvent* e) override;

private:
    void build();
    void collect();
    void mirror();
    void tell(const std::string& why);
    void SitesList_Click();
    void CMD_SiteAdd_Click();
    void CMD_SiteDelete_Click();
    void OKButton_Click();

    SiteManager model_;
    QTimer savedTimer_;
    bool mirroring_ = false;
};

}  // namespace kelpa::qt
