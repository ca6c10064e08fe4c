#include "triggers/trigger_page_qt.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>

#include "common/text.h"
#include "toolkit/widget_kit_qt.h"

namespace kelpa::qt {

namespace {

void caption(QWidget* page, const char* text, int left, int top) {
    placed(new QLabel(QString::fromLatin1(text), page), nullptr, left, top, 720, 285);
}

// A double click anywhere in the list, also beside its entries, as the old
// list box reported it.
class FileList : public QListWidget {
public:
    using QListWidget::QListWidget;
    std::function<void()> onDoubleClick;

protected:
    void mouseDoubleClickEvent(QMouseEvent* e) override {
        QListWidget::mouseDoubleClickEvent(e);
        if (onDoubleClick) onDoubleClick();
    }
};

// The boxes show lines; the core's text ends them in CR LF.
QString boxText(const std::string& core) { return toQString(replaceAll(core, "\r\n", "\n")); }
std::string coreText(const QString& box) { return replaceAll(toCoreBytes(box), "\n", "\r\n"); }

}  // namespace

// These controls keep their places at any window size.
TriggerPage::TriggerPage(QWidget* page, TriggerEditor& editor, Guard guard)
    : QObject(page), page_(page), editor_(editor), guard_(std::move(guard)) {
    caption(page, "Label", 120, 480);
    txtTRGLabel_ = placed(new QLineEdit(page), "txtTRGLabel", 840, 480, 4800, 285);
    caption(page, "Flags", 120, 840);
    TxtTrgFlags_ = placed(new QPlainTextEdit(page), "TxtTrgFlags", 840, 840, 4800, 1215);
    caption(page, "Body", 120, 2160);
    txtTRGBody_ = placed(new QPlainTextEdit(page), "txtTRGBody", 840, 2160, 4800, 3615);
    for (QPlainTextEdit* box : {TxtTrgFlags_, txtTRGBody_}) {
        box->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        box->setLineWrapMode(QPlainTextEdit::NoWrap);
    }

    auto* type = placed(new QGroupBox(QStringLiteral("Type"), page), "Frame1", 5880, 420, 3255, 855);
    Option1_[0] = placed(new QRadioButton(QStringLiteral("Normal"), type), "Option1(0)", 120, 300, 1335, 375);
    Option1_[1] = placed(new QRadioButton(QStringLiteral("Global"), type), "Option1(1)", 1560, 300, 1335, 375);
    Option1_[0]->setChecked(true);

    TList_ = placed(new FileList(page), "TList", 5880, 1380, 3255, 3615);
    placed(new QPushButton(QStringLiteral("Refresh"), page), "brefresh2", 5880, 5100, 1575, 375);
    placed(new QPushButton(QStringLiteral("&Reload Triggers"), page), "Reload", 7560, 5100, 1575, 375);
    placed(new QPushButton(QStringLiteral("New"), page), "btnTRGNew", 840, 5880, 1215, 375);
    placed(new QPushButton(QStringLiteral("Save"), page), "btnTRGSave", 2160, 5880, 1215, 375);
    placed(new QPushButton(QStringLiteral("Delete"), page), "btnTRGDelete", 3480, 5880, 1215, 375);
    connectControls();
}

void TriggerPage::connectControls() {
    auto button = [this](const char* name, const char* handler, std::function<void()> f) {
        auto* b = page_->findChild<QPushButton*>(QString::fromLatin1(name));
        connect(b, &QPushButton::clicked, this, [this, handler, f] { guard_(handler, f); });
    };
    button("brefresh2", "brefresh2_Click", [this] { editor_.brefresh2_Click(); });
    button("Reload", "Reload_Click", [this] { editor_.Reload_Click(); });
    button("btnTRGNew", "btnTRGNew_Click", [this] { editor_.btnTRGNew_Click(); });
    button("btnTRGSave", "btnTRGSave_Click", [this] { tell(editor_.btnTRGSave_Click()); });
    button("btnTRGDelete", "btnTRGDelete_Click", [this] {
        tell(editor_.btnTRGDelete_Click([this](const std::string& title, const std::string& text) {
            return QMessageBox::question(page_->window(), toQString(title), toQString(text),
                                         QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes) == QMessageBox::Yes;
        }));
    });
    for (int i = 0; i < 2; ++i)
        connect(Option1_[i], &QRadioButton::clicked, this,
                [this, i] { guard_("Option1_Click", [this, i] { editor_.Option1_Click(i); }); });
    connect(TList_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (!syncing_) editor_.listIndex = row;
    });
    static_cast<FileList*>(TList_)->onDoubleClick = [this] {
        guard_("TList_DblClick", [this] {
            editor_.listIndex = TList_->currentRow();
            tell(editor_.TList_DblClick());
        });
    };
    connect(txtTRGLabel_, &QLineEdit::textEdited, this,
            [this](const QString& t) { editor_.txtTRGLabel = toCoreBytes(t); });
    connect(TxtTrgFlags_, &QPlainTextEdit::textChanged, this, [this] {
        if (!syncing_) editor_.TxtTrgFlags = coreText(TxtTrgFlags_->toPlainText());
    });
    connect(txtTRGBody_, &QPlainTextEdit::textChanged, this, [this] {
        if (!syncing_) editor_.txtTRGBody = coreText(txtTRGBody_->toPlainText());
    });
}

void TriggerPage::tell(const std::string& message) {
    if (message.empty()) return;
    QMessageBox::warning(page_->window(), QStringLiteral("Triggers"), toQString(message));
}

void TriggerPage::sync() {
    if (editor_.revision == shownRevision_) return;
    shownRevision_ = editor_.revision;
    syncing_ = true;
    txtTRGLabel_->setText(toQString(editor_.txtTRGLabel));
    TxtTrgFlags_->setPlainText(boxText(editor_.TxtTrgFlags));
    txtTRGBody_->setPlainText(boxText(editor_.txtTRGBody));
    Option1_[editor_.global ? 1 : 0]->setChecked(true);
    QStringList names;
    for (const std::string& n : editor_.TList) names << toQString(n);
    if (TList_->count() != names.size() ||
        [&] {
            for (int i = 0; i < names.size(); ++i)
                if (TList_->item(i)->text() != names[i]) return true;
            return false;
        }()) {
        TList_->clear();
        TList_->addItems(names);
    }
    TList_->setCurrentRow(editor_.listIndex);
    syncing_ = false;
}

}  // namespace kelpa::qt
