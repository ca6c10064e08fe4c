// frmAbout: the program's name, version and picture, and a button that
// starts the desktop's system information program.
#pragma once

#include <QDialog>

#include <functional>
#include <string>

class QLabel;
class QPushButton;

namespace kelpa::qt {

class AboutDialog : public QDialog {
    Q_OBJECT
public:
    static constexpr int kPictureWidth = 35;
    static constexpr int kPictureHeight = 34;

    explicit AboutDialog(QWidget* parent = nullptr);

    // Starts a program without waiting for it; true if it started.
    std::function<bool(const std::string&)> startDetached;
    // Shows a message with an OK button and returns when it is closed.
    std::function<void(const std::string&)> message;

    QLabel* picIcon;
    QLabel* lblTitle;
    QLabel* lblVersion;
    QLabel* lblDescription;
    QLabel* lblDisclaimer;
    QPushButton* cmdOK;
    QPushButton* cmdSysInfo;

private:
    void Form_Load();
    void cmdSysInfo_Click();
};

}  // namespace kelpa::qt
