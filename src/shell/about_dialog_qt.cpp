#include "shell/about_dialog_qt.h"

#include <QCoreApplication>
#include <QFrame>
#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>

#include <filesystem>

#include <unistd.h>

#include "shell/kelpa_icon_qt.h"
#include "shell/system_info.h"
#include "toolkit/widget_kit_qt.h"

namespace kelpa::qt {

namespace {

// The version record.
constexpr const char* kComments = "Kelpa is a mainly a telnet client with triggering and macros capabilities.";
constexpr const char* kCompany = "Written by the Kelpa developers, for Linux.";
constexpr const char* kCopyright = "Copyright 2026 the Kelpa developers.";
constexpr const char* kTrademarks = "Kelpa is not a registered trademark.";

QLabel* label(const char* name, const QString& text, int left, int top, int width, int height, QWidget* parent) {
    auto* l = placed(new QLabel(text, parent), name, left, top, width, height);
    l->setWordWrap(true);
    l->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return l;
}

void emphasise(QLabel* l, const QColor& colour) {
    QFont f = l->font();
    f.setBold(true);
    l->setFont(f);
    QPalette p = l->palette();
    p.setColor(QPalette::WindowText, colour);
    l->setPalette(p);
}

bool isExecutableFile(const std::string& path) {
    std::error_code ec;
    return std::filesystem::is_regular_file(path, ec) && access(path.c_str(), X_OK) == 0;
}

}  // namespace

AboutDialog::AboutDialog(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::MSWindowsFixedSizeDialogHint) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About MyApp"));
    setModal(true);
    setFont(formFont());
    setFixedSize(px(6855), px(4800));

    picIcon = new QLabel(this);
    picIcon->setObjectName(QStringLiteral("picIcon"));
    picIcon->setGeometry(px(240), px(240), kPictureWidth, kPictureHeight);
    picIcon->setPixmap(kelpaPicture(kPictureWidth, kPictureHeight));

    lblTitle = label("lblTitle", QStringLiteral("Application Title"), 1050, 240, 5565, 480, this);
    QFont big = formFont();
    big.setPointSizeF(14);
    big.setBold(true);
    lblTitle->setFont(big);
    lblVersion = label("lblVersion", QStringLiteral("Version"), 1050, 780, 5565, 225, this);
    lblDescription = label("lblDescription", QStringLiteral("App Description"), 1050, 1125, 5565, 630, this);

    label("Label1", QStringLiteral("Special Thanx to "), 1050, 1875, 1500, 225, this);
    label("Label2", QStringLiteral("everyone who played with it and said what was missing."), 2550, 1875, 4065, 450,
          this);
    label("Label3", QStringLiteral("Please mail remarks to "), 1050, 2400, 1995, 225, this);
    emphasise(label("Label4", QStringLiteral("the project's issue tracker"), 3045, 2400, 3570, 225, this),
              QColor(0, 0, 255));
    label("Label6", QStringLiteral("Offical Web Site"), 1050, 2760, 1500, 225, this);
    emphasise(label("Label5", QStringLiteral("none yet; README.md comes with the program"), 2550, 2760, 4065,
                    225, this),
              QColor(0, 128, 0));

    // Two rules, grey over white, drawn as one etched line.
    for (auto [name, colour, top] :
         {std::tuple{"Line1_0", QColor(255, 255, 255), 3195}, std::tuple{"Line1_1", QColor(128, 128, 128), 3180}}) {
        auto* line = new QFrame(this);
        line->setObjectName(QString::fromLatin1(name));
        line->setGeometry(px(120), px(top), px(6615), 1);
        setBackground(line, colour);
    }

    lblDisclaimer = label("lblDisclaimer", QStringLiteral("Warning: ..."), 240, 3420, 4935, 1140, this);

    cmdOK = placed(new QPushButton(QStringLiteral("OK"), this), "cmdOK", 5400, 3480, 1260, 375);
    cmdOK->setDefault(true);
    cmdSysInfo = placed(new CommandButton(QStringLiteral("&System Info..."), this), "cmdSysInfo", 5400, 4020, 1260, 375);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdSysInfo, &QPushButton::clicked, this, &AboutDialog::cmdSysInfo_Click);

    startDetached = [](const std::string& program) {
        return QProcess::startDetached(QString::fromStdString(program), {});
    };
    message = [this](const std::string& text) {
        showMessage(this, QMessageBox::NoIcon, QStringLiteral("Kelpa"), QString::fromStdString(text));
    };

    Form_Load();
    cmdOK->setFocus();
    if (parent) placeCentred(this, parent->window()->geometry().center());
}

void AboutDialog::Form_Load() {
    const QString title = QStringLiteral("Kelpa");
    setWindowTitle(QStringLiteral("About ") + title);
    lblVersion->setText(QStringLiteral("Version %1.%2.%3")
                            .arg(KELPA_VERSION_MAJOR)
                            .arg(KELPA_VERSION_MINOR)
                            .arg(KELPA_VERSION_REVISION));
    lblTitle->setText(title);
    lblDescription->setText(QString::fromLatin1(kComments) + QLatin1Char('\n') + QString::fromLatin1(kCompany));
    lblDisclaimer->setText(QString::fromLatin1(kCopyright) + QLatin1Char('\n') + QString::fromLatin1(kTrademarks));
}

void AboutDialog::cmdSysInfo_Click() {
    const std::string why = StartSysInfo(qEnvironmentVariable("PATH").toStdString(), isExecutableFile, startDetached);
    if (!why.empty()) message(why);
}

}  // namespace kelpa::qt
