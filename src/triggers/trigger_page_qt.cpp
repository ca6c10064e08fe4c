#include "triggers/trigger_page_qt.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
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

}  // namespace

// These controls keep their places at any window size.
TriggerPage::TriggerPage(QWidget* page, TriggerEditor& editor, Guard guard)
    : QObject(page), page_(page), editor_(editor), guard_(std::move(guard)) {
    caption(page, "Label", 120, 480);
    txtTRGLabel_ = placed(new QLineEdit(page), "txtTRGLabel", 840, 480, 4800, 285);
    oneLineBox(txtTRGLabel_);
    caption(page, "Flags", 120, 840);
    TxtTrgFlags_ = placed(new QPlainTextEdit(page), "TxtTrgFlags", 840, 840, 4800, 1215);
    caption(page, "Body", 120, 2160);
    txtTRGBody_ = placed(new QPlainTextEdit(page), "txtTRGBody", 840, 2160, 4800, 3615);
    for (QPlainTextEdit* box : {TxtTrgFlags_, txtTRGBody_}) {
        box->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        multiLineBox(box);
    }

    auto* type = placed(new QGroupBox(QStringLiteral("Type"), page), "Frame1", 5880, 420, 3255, 855);
    Option1_[0] = placed(new QRadioButton(QStringLiteral("Normal"), type), "Option1(0)", 120, 300, 1335, 375);
    Option1_[1] = placed(new QRadioButton(QStringLiteral("Global"), type), "Option1(1)", 1560, 300, 1335, 375);
    Option1_[0]->setChecked(true);

    TList_ = placed(new EntryList(page), "TList", 5880, 1380, 3255, 3615);
    placed(new CommandButton(QStringLiteral("Refresh"), page), "brefresh2", 5880, 5100, 1575, 375);
    placed(new CommandButton(QStringLiteral("&Reload Triggers"), page), "Reload", 7560, 5100, 1575, 375);
    placed(new CommandButton(QStringLiteral("New"), page), "btnTRGNew", 840, 5880, 1215, 375);
    placed(new CommandButton(QStringLiteral("Save"), page), "btnTRGSave", 2160, 5880, 1215, 375);
    placed(new CommandButton(QStringLiteral("Delete"), page), "btnTRGDelete", 3480, 5880, 1215, 375);
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
    button("btnTRGSave", "btnTRGSave_Click", [this] { editor_.btnTRGSave_Click(); });
    button("btnTRGDelete", "btnTRGDelete_Click", [this] { editor_.btnTRGDelete_Click(); });
    for (int i = 0; i < 2; ++i)
        connect(Option1_[i], &QRadioButton::clicked, this,
                [this, i] { guard_("Option1_Click", [this, i] { editor_.Option1_Click(i); }); });
    connect(TList_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (!syncing_) editor_.listIndex = row;
    });
    TList_->onDoubleClick = [this](int row) {
        guard_("TList_DblClick", [this, row] {
            editor_.listIndex = row;
            editor_.TList_DblClick();
        });
    };
    connect(txtTRGLabel_, &QLineEdit::textEdited, this,
            [this](const QString& t) { editor_.txtTRGLabel = toCoreBytes(t); });
    connect(TxtTrgFlags_, &QPlainTextEdit::textChanged, this, [this] {
        if (!syncing_) editor_.TxtTrgFlags = boxText(TxtTrgFlags_);
    });
    connect(txtTRGBody_, &QPlainTextEdit::textChanged, this, [this] {
        if (!syncing_) editor_.txtTRGBody = boxText(txtTRGBody_);
    });
}

void TriggerPage::sync() {
    if (editor_.revision == shownRevision_) return;
    shownRevision_ = editor_.revision;
    syncing_ = true;
    txtTRGLabel_->setText(toQString(editor_.txtTRGLabel));
    setBoxText(TxtTrgFlags_, editor_.TxtTrgFlags);
    setBoxText(txtTRGBody_, editor_.txtTRGBody);
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
