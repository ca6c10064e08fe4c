#include "command/macro_page_qt.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>

#include "shell/widget_kit_qt.h"

namespace kelpa::qt {

// These controls keep their places at any window size.
void buildMacroPage(QWidget* page) {
    const QFont small = monospaceFont(8.25);
    placed(new QLabel(QStringLiteral("Label"), page), nullptr, 120, 480, 960, 285);
    placed(new QLineEdit(page), "txtMacrosLabel", 1080, 480, 4560, 285)->setFont(small);
    placed(new QLabel(QStringLiteral("Commands"), page), nullptr, 120, 840, 960, 285);
    placed(new QPlainTextEdit(page), "txtMacrosCommands", 1080, 840, 4560, 4935)->setFont(small);

    placed(new QLabel(QStringLiteral("Main"), page), "MListName", 5880, 480, 3255, 285);
    auto* list = placed(new QListWidget(page), "Mlist", 5880, 840, 3255, 4215);
    list->setSortingEnabled(true);
    list->setFont(small);
    placed(new QPushButton(QStringLiteral("Main"), page), "brefresh3", 5880, 5160, 1575, 375);
    placed(new QPushButton(QStringLiteral("OverDir"), page), "Command1", 7560, 5160, 1575, 375);
    placed(new QPushButton(QStringLiteral("New"), page), "BTNMacrosNew", 1080, 5880, 1215, 375);
    placed(new QPushButton(QStringLiteral("Save"), page), "BTNMacrosSave", 2400, 5880, 1215, 375);
    placed(new QPushButton(QStringLiteral("Delete"), page), "BTNMacrosDelete", 3720, 5880, 1215, 375);
}

}  // namespace kelpa::qt
