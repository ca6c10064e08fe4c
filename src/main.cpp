#include <QApplication>

#include "shell/main_form_qt.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kelpa"));
    QApplication::setApplicationVersion(QStringLiteral("2.1.293"));
    auto form = kelpa::qt::MainForm::createForThisSystem();
    form->show();
    return app.exec();
}
