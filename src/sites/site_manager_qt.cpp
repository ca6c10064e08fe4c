#include "sites/site_manager_qt.h"

#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>

#include "toolkit/widget_kit_qt.h"

namespace kelpa::qt {

namespace {

const QColor kGrey(64, 64, 64);

// Verdana's stand-in, as for the other faces of the forms.
QFont dialogFont(double points, bool bold) {
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setStyleHint(QFont::SansSerif);
    f.setPointSizeF(points);
    f.setBold(bold);
    return f;
}

QLabel* caption(const char* text, int left, int top, int width, QWidget* parent) {
    auto* l = placed(new QLabel(QString::fromLatin1(text), parent), nullptr, left, top, width, 225);
    l->setFont(dialogFont(8.25, true));
    QPalette p = l->palette();
    p.setColor(QPalette::WindowText, QColor(255, 255, 0));
    l->setPalette(p);
    return l;
}

// The description's lines as the core keeps them (CR LF), every byte as typed.
std::string descriptionOf(const QPlainTextEdit* box) {
    QString t = box->document()->toRawText();
    t.replace(QChar::ParagraphSeparator, QStringLiteral("\r\n"));
    t.replace(QChar::LineSeparator, QStringLiteral("\r\n"));
    return toCoreBytes(t);
}

QString shownDescription(const std::string& d) {
    QString t = toQString(d);
    t.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return t;
}

}  // namespace

SiteManagerDialog::SiteManagerDialog(FileSystem& files, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::MSWindowsFixedSizeDialogHint),
      model_(files) {
    setObjectName(QStringLiteral("DLG_SiteMan"));
    setWindowTitle(QStringLiteral("Servers Management"));
    setModal(true);
    setFont(dialogFont(8.25, false));
    setFixedSize(px(8430), px(5760));
    setBackground(this, kGrey);
    build();

    savedTimer_.setSingleShot(true);
    savedTimer_.setInterval(kSavedMs);
    connect(&savedTimer_, &QTimer::timeout, frmSaved, &QWidget::hide);

    model_.Form_Load();
    mirror();
    if (!model_.loadProblem().empty())
        QTimer::singleShot(0, this, [this] { tell(model_.loadProblem()); });
    if (parent) placeCentred(this, parent->window()->geometry().center());
}

void SiteManagerDialog::build() {
    caption("Servers List", 120, 120, 2640, this);
    SitesList = placed(new EntryList(this), "SitesList", 120, 345, 2640, 4695);

    const int x = 2880, w = 5430, half = 2655;
    auto box = [this](const char* name, int left, int top, int width) {
        QLineEdit* line = placed(new QLineEdit(this), name, left, top, width, 285);
        oneLineBox(line);
        return line;
    };
    caption("Server Name", x, 120, w, this);
    TXT_SiteName = box("TXT_SiteName", x, 345, w);
    caption("Short Name", x, 690, w, this);
    TXT_SSname = box("TXT_SSname", x, 915, w);
    caption("Server DNS Name or IP", x, 1260, w, this);
    TXT_DNSIP = box("TXT_DNSIP", x, 1485, w);
    caption("Server alternate DNS Name or IP", x, 1830, w, this);
    TXT_DnsIPAlternate = box("TXT_DnsIPAlternate", x, 2055, w);
    caption("Default Port", x, 2400, half, this);
    TXT_Dport = box("TXT_Dport", x, 2625, half);
    caption("Alternate Port", x + w - half, 2400, half, this);
    TXT_Aport = box("TXT_Aport", x + w - half, 2625, half);
    caption("Init String (if any)", x, 2970, w, this);
    TXT_STRI = box("TXT_STRI", x, 3195, w);
    caption("Description", x, 3540, w, this);
    TXT_DESC = placed(new QPlainTextEdit(this), "TXT_DESC", x, 3765, w, 1275);

    auto button = [this](const char* name, const char* text, int left) {
        auto* b = placed(new QPushButton(QString::fromLatin1(text), this), name, left, 5220, 1215, 375);
        // The focused button takes Enter; otherwise Close does.
        b->setAutoDefault(true);
        return b;
    };
    CMD_SiteAdd = button("CMD_SiteAdd", "&Add/Modify", 120);
    CMD_SiteDelete = button("CMD_SiteDelete", "&Delete", 1455);
    OKButton = button("OKButton", "&Save", 5760);
    CancelButton = button("CancelButton", "&Close", 7095);
    CancelButton->setDefault(true);

    frmSaved = placed(new QFrame(this), "frmSaved", 2115, 2280, 4200, 1200);
    setBackground(frmSaved, kGrey);
    auto* saved = new QLabel(QStringLiteral("Saved successfully"), frmSaved);
    saved->setGeometry(frmSaved->rect());
    saved->setAlignment(Qt::AlignCenter);
    saved->setFont(dialogFont(14.25, true));
    QPalette red = saved->palette();
    red.setColor(QPalette::WindowText, QColor(255, 0, 0));
    saved->setPalette(red);
    frmSaved->hide();

    const QWidget* order[] = {OKButton,  TXT_SiteName, TXT_SSname, TXT_DNSIP,          TXT_Dport,
                              TXT_Aport, TXT_DESC,     CancelButton, SitesList, TXT_DnsIPAlternate,
                              TXT_STRI,  CMD_SiteAdd,  CMD_SiteDelete};
    for (std::size_t i = 0; i + 1 < std::size(order); ++i)
        setTabOrder(const_cast<QWidget*>(order[i]), const_cast<QWidget*>(order[i + 1]));
    TXT_DESC->setTabChangesFocus(true);
    typesNoAltChords(TXT_DESC);
    TXT_DESC->installEventFilter(this);
    OKButton->setFocus();

    connect(SitesList, &QListWidget::itemClicked, this, [this] { SitesList_Click(); });
    // A selection, by mouse or keys, fills the boxes; the focus arriving
    // on the list (which makes a row current) does not. The list keeps its
    // one selection: a click below the entries does not clear it, so what
    // Delete removes is always shown.
    connect(SitesList, &QListWidget::itemSelectionChanged, this, [this] {
        if (mirroring_) return;
        if (!SitesList->selectedItems().isEmpty()) {
            SitesList_Click();
        } else if (model_.listIndex >= 0) {
            mirroring_ = true;
            SitesList->setCurrentRow(model_.listIndex);
            mirroring_ = false;
        }
    });
    connect(CMD_SiteAdd, &QPushButton::clicked, this, &SiteManagerDialog::CMD_SiteAdd_Click);
    connect(CMD_SiteDelete, &QPushButton::clicked, this, &SiteManagerDialog::CMD_SiteDelete_Click);
    connect(OKButton, &QPushButton::clicked, this, &SiteManagerDialog::OKButton_Click);
    connect(CancelButton, &QPushButton::clicked, this, &QDialog::reject);
}

bool SiteManagerDialog::eventFilter(QObject* watched, QEvent* e) {
    // Enter in the description presses the default button, as in every box
    // of the dialog; Ctrl+Enter starts a new line.
    if (watched == TXT_DESC && e->type() == QEvent::KeyPress) {
        const auto* k = static_cast<QKeyEvent*>(e);
        if ((k->key() == Qt::Key_Return || k->key() == Qt::Key_Enter) && !(k->modifiers() & Qt::ControlModifier)) {
            CancelButton->click();
            return true;
        }
        if (k->key() == Qt::Key_Return || k->key() == Qt::Key_Enter) {
            TXT_DESC->insertPlainText(QStringLiteral("\n"));
            return true;
        }
    }
    return QDialog::eventFilter(watched, e);
}

void SiteManagerDialog::collect() {
    SiteBoxes& b = model_.boxes;
    b.SiteName = toCoreBytes(TXT_SiteName->text());
    b.SSname = toCoreBytes(TXT_SSname->text());
    b.DNSIP = toCoreBytes(TXT_DNSIP->text());
    b.DnsIPAlternate = toCoreBytes(TXT_DnsIPAlternate->text());
    b.Dport = toCoreBytes(TXT_Dport->text());
    b.Aport = toCoreBytes(TXT_Aport->text());
    b.STRI = toCoreBytes(TXT_STRI->text());
    b.DESC = descriptionOf(TXT_DESC);
}

void SiteManagerDialog::mirror() {
    mirroring_ = true;
    QStringList names;
    for (const std::string& n : model_.items) names << toQString(n);
    QStringList shown;
    for (int i = 0; i < SitesList->count(); ++i) shown << SitesList->item(i)->text();
    if (names != shown) {
        SitesList->clear();
        SitesList->addItems(names);
    }
    SitesList->setCurrentRow(model_.listIndex);
    if (model_.listIndex < 0) SitesList->clearSelection();
    const SiteBoxes& b = model_.boxes;
    for (auto [box, text] : {std::pair{TXT_SiteName, &b.SiteName}, {TXT_SSname, &b.SSname}, {TXT_DNSIP, &b.DNSIP},
                             {TXT_DnsIPAlternate, &b.DnsIPAlternate}, {TXT_Dport, &b.Dport},
                             {TXT_Aport, &b.Aport}, {TXT_STRI, &b.STRI}})
        setLineText(box, *text);
    if (descriptionOf(TXT_DESC) != b.DESC) TXT_DESC->setPlainText(shownDescription(b.DESC));
    mirroring_ = false;
}

void SiteManagerDialog::tell(const std::string& why) {
    showMessage(this, QMessageBox::Warning, windowTitle(), toQString(why));
}

void SiteManagerDialog::SitesList_Click() {
    collect();
    model_.SitesList_Click(SitesList->currentRow());
    mirror();
}

void SiteManagerDialog::CMD_SiteAdd_Click() {
    collect();
    const std::string why = model_.CMD_SiteAdd_Click();
    mirror();
    if (!why.empty()) tell(why);
}

void SiteManagerDialog::CMD_SiteDelete_Click() {
    collect();
    model_.CMD_SiteDelete_Click();
    mirror();
}

void SiteManagerDialog::OKButton_Click() {
    collect();
    const std::string why = model_.OKButton_Click();
    if (!why.empty()) {
        tell(why);
        return;
    }
    // Shown for a moment while everything else goes on running.
    frmSaved->show();
    frmSaved->raise();
    savedTimer_.start();
}

}  // namespace kelpa::qt
