#include "command/macro_page_qt.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>

#include "common/codepage.h"
#include "common/text.h"
#include "toolkit/widget_kit_qt.h"

namespace kelpa::qt {

namespace {

QPushButton* button(const char* caption, const char* name, int left, int top, int width, QWidget* page) {
    return placed(new CommandButton(QString::fromLatin1(caption), page), name, left, top, width, 375);
}

}  // namespace

// These controls keep their places at any window size.
MacroPage::MacroPage(MacroEditor& editor, Runner run, QWidget* page)
    : QObject(page), editor_(editor), run_(std::move(run)) {
    const QFont small = monospaceFont(8.25);
    placed(new QLabel(QStringLiteral("Label"), page), nullptr, 120, 480, 960, 285);
    txtMacrosLabel = placed(new QLineEdit(page), "txtMacrosLabel", 1080, 480, 4560, 285);
    oneLineBox(txtMacrosLabel);
    txtMacrosLabel->setFont(small);
    placed(new QLabel(QStringLiteral("Commands"), page), nullptr, 120, 840, 960, 285);
    txtMacrosCommands = placed(new QPlainTextEdit(page), "txtMacrosCommands", 1080, 840, 4560, 4935);
    txtMacrosCommands->setFont(small);
    multiLineBox(txtMacrosCommands);

    MListName = placed(new QLabel(QStringLiteral("Main"), page), "MListName", 5880, 480, 3255, 285);
    MListName->setTextFormat(Qt::PlainText);  // a folder name, never markup
    Mlist = placed(new EntryList(page), "Mlist", 5880, 840, 3255, 4215);
    Mlist->setFont(small);
    brefresh3 = button("Main", "brefresh3", 5880, 5160, 1575, page);
    Command1 = button("OverDir", "Command1", 7560, 5160, 1575, page);
    BTNMacrosNew = button("New", "BTNMacrosNew", 1080, 5880, 1215, page);
    BTNMacrosSave = button("Save", "BTNMacrosSave", 2400, 5880, 1215, page);
    BTNMacrosDelete = button("Delete", "BTNMacrosDelete", 3720, 5880, 1215, page);

    // What the user types is the model's text at once: Save writes the boxes.
    connect(txtMacrosLabel, &QLineEdit::textEdited, this,
            [this](const QString& t) { editor_.txtMacrosLabel = toCoreBytes(t); });
    connect(txtMacrosCommands, &QPlainTextEdit::textChanged, this,
            [this] { editor_.txtMacrosCommands = boxText(txtMacrosCommands); });
    Mlist->onDoubleClick = [this](int row) {
        const std::string entry = row >= 0 ? toCoreBytes(Mlist->item(row)->text()) : std::string();
        run_("Mlist_DblClick", [&] { editor_.Mlist_DblClick(entry); });
        sync();
    };
    click(brefresh3, "brefresh3_Click", &MacroEditor::brefresh3_Click);
    click(Command1, "Command1_Click", &MacroEditor::Command1_Click);
    click(BTNMacrosNew, "BTNMacrosNew_Click", &MacroEditor::BTNMacrosNew_Click);
    click(BTNMacrosSave, "BTNMacrosSave_Click", &MacroEditor::BTNMacrosSave_Click);
    click(BTNMacrosDelete, "BTNMacrosDelete_Click", &MacroEditor::BTNMacrosDelete_Click);
    sync();
}

void MacroPage::click(QPushButton* b, const char* handler, void (MacroEditor::*action)()) {
    connect(b, &QPushButton::clicked, this, [this, handler, action] {
        MacroEditor& editor = editor_;
        run_(handler, [&editor, action] { (editor.*action)(); });
        sync();
    });
}

void MacroPage::sync() {
    if (editor_.revision == shownRevision_) return;
    shownRevision_ = editor_.revision;
    const QSignalBlocker blockList(Mlist), blockLabel(txtMacrosLabel), blockText(txtMacrosCommands);
    // Filled again only when the files changed, so that the entry last
    // chosen stays marked.
    std::vector<std::string> sorted = editor_.Mlist;
    std::sort(sorted.begin(), sorted.end(), lessIgnoringCase);
    QStringList names, shown;
    for (const std::string& name : sorted) names << toQString(name);
    for (int i = 0; i < Mlist->count(); ++i) shown << Mlist->item(i)->text();
    if (names != shown) {
        Mlist->clear();
        Mlist->addItems(names);
    }
    MListName->setText(toQString(editor_.MListName));
    if (toCoreBytes(txtMacrosLabel->text()) != editor_.txtMacrosLabel || !fitsCodePage(txtMacrosLabel->text()))
        txtMacrosLabel->setText(toQString(editor_.txtMacrosLabel));
    if (boxText(txtMacrosCommands) != editor_.txtMacrosCommands || !fitsCodePage(txtMacrosCommands->toPlainText()))
        setBoxText(txtMacrosCommands, editor_.txtMacrosCommands);
}

}  // namespace kelpa::qt
