#include "history/history_page_qt.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "toolkit/widget_kit_qt.h"

namespace kelpa::qt {

void buildHistoryPage(QWidget* page) {
    auto* dlist = new QListWidget(page);
    dlist->setObjectName(QStringLiteral("DList"));
    dlist->setSortingEnabled(true);
    dlist->setFont(monospaceFont(8.25));

    auto* dates = new QLabel(QStringLiteral("Dates"), page);
    dates->setObjectName(QStringLiteral("Label1"));

    auto* loading = new QLabel(QStringLiteral("Loading ....."), page);
    loading->setObjectName(QStringLiteral("Label8"));
    QFont big(QStringLiteral("DejaVu Sans"));
    big.setPointSizeF(24);
    big.setBold(true);
    big.setItalic(true);
    loading->setFont(big);
    QPalette p = loading->palette();
    p.setColor(QPalette::WindowText, QColor(128, 64, 0));
    loading->setPalette(p);
    loading->hide();

    auto* seek = new QLineEdit(page);
    seek->setObjectName(QStringLiteral("Tseek"));
    for (auto [name, caption] : {std::pair{"BSeek", "Seek"}, {"BFilter", "Filter"}, {"brefresh", "Refresh"}}) {
        auto* b = new QPushButton(QString::fromLatin1(caption), page);
        b->setObjectName(QString::fromLatin1(name));
    }
}

}  // namespace kelpa::qt
