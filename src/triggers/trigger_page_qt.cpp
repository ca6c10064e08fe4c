#include "triggers/trigger_page_qt.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include "shell/widget_kit_qt.h"

namespace kelpa::qt {

namespace {

void caption(QWidget* page, const char* text, int left, int top) {
    placed(new QLabel(QString::fromLatin1(text), page), nullptr, left, top, 720, 285);
}

}  // namespace

// These controls keep their places at any window size.
void buildTriggerPage(QWidget* page) {
    caption(page, "Label", 120, 480);
    placed(new QLineEdit(page), "txtTRGLabel", 840, 480, 4800, 285);
    caption(page, "Flags", 120, 840);
    placed(new QPlainTextEdit(page), "TxtTrgFlags", 840, 840, 4800, 1215);
    caption(page, "Body", 120, 2160);
    placed(new QPlainTextEdit(page), "txtTRGBody", 840, 2160, 4800, 3615);

    auto* type = placed(new QGroupBox(QStringLiteral("Type"), page), "Frame1", 5880, 420, 3255, 855);
    auto* normal = placed(new QRadioButton(QStringLiteral("Normal"), type), "Option1(0)", 120, 300, 1335, 375);
    placed(new QRadioButton(QStringLiteral("Global"), type), "Option1(1)", 1560, 300, 1335, 375);
    normal->setChecked(true);

    placed(new QListWidget(page), "TList", 5880, 1380, 3255, 3615);
    placed(new QPushButton(QStringLiteral("Refresh"), page), "brefresh2", 5880, 5100, 1575, 375);
    placed(new QPushButton(QStringLiteral("&Reload Triggers"), page), "Reload", 7560, 5100, 1575, 375);
    placed(new QPushButton(QStringLiteral("New"), page), "btnTRGNew", 840, 5880, 1215, 375);
    placed(new QPushButton(QStringLiteral("Save"), page), "btnTRGSave", 2160, 5880, 1215, 375);
    placed(new QPushButton(QStringLiteral("Delete"), page), "btnTRGDelete", 3480, 5880, 1215, 375);
}

}  // namespace kelpa::qt
