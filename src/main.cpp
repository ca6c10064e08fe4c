#include <QApplication>
#include <QMessageBox>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include <unistd.h>

#include "shell/kelpa_icon_qt.h"
#include "shell/main_form_qt.h"
#include "shell/program_folder.h"
#include "shell/qt_platform_qt.h"
#include "toolkit/widget_kit_qt.h"

namespace {

// Exits once the window is up: for the install check and for scripts.
constexpr const char* kQuitAfterStart = "--quit-after-start";

std::string environment(const char* name) {
    const char* v = std::getenv(name);
    return v ? v : "";
}

kelpa::ProgramFolderFacts factsOfThisRun(const QStringList& arguments) {
    namespace fs = std::filesystem;
    kelpa::ProgramFolderFacts facts;
    facts.executableFolder = QCoreApplication::applicationDirPath().toStdString();
    facts.executableFolderWritable = access(facts.executableFolder.c_str(), W_OK) == 0;
    std::error_code ec;
    const fs::path exe(facts.executableFolder);
    facts.installed = exe.filename() == "bin" &&
                      fs::exists(exe.parent_path() / "share/applications/kelpa.desktop", ec);
    for (qsizetype i = 1; i < arguments.size(); ++i) facts.arguments.push_back(arguments[i].toStdString());
    facts.xdgDataHome = environment("XDG_DATA_HOME");
    facts.home = environment("HOME");
    return facts;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kelpa"));
    QApplication::setApplicationVersion(
        QStringLiteral("%1.%2.%3").arg(KELPA_VERSION_MAJOR).arg(KELPA_VERSION_MINOR).arg(KELPA_VERSION_REVISION));
    QApplication::setWindowIcon(kelpa::qt::kelpaIcon());

    const QStringList arguments = QCoreApplication::arguments();
    const kelpa::ProgramFolder folder = kelpa::chooseProgramFolder(factsOfThisRun(arguments));
    std::error_code ec;
    const std::filesystem::path path = std::filesystem::absolute(folder.path, ec);
    if (folder.path.empty() || ec || (std::filesystem::create_directories(path, ec), ec) ||
        !std::filesystem::is_directory(path, ec)) {
        const std::string why = folder.path.empty()
                                    ? folder.reason
                                    : "Cannot make the program's folder " + folder.path + ": " + ec.message();
        std::fprintf(stderr, "kelpa: %s\n", why.c_str());
        kelpa::qt::showMessage(nullptr, QMessageBox::Critical, QStringLiteral("Kelpa"), QString::fromStdString(why));
        return 1;
    }

    auto form = kelpa::qt::MainForm::createOn(std::make_unique<kelpa::qt::QtPlatform>(path),
                                              kelpa::programFolderNote(path.string(), folder.reason));
    form->syncFromCore();
    form->show();
    if (arguments.contains(QString::fromLatin1(kQuitAfterStart))) {
        // The terminal reads UTF-8: the path as the system gave it.
        std::printf("Program folder: %s (%s)\n", path.string().c_str(), folder.reason.c_str());
        std::fflush(stdout);
        QTimer::singleShot(0, &app, &QCoreApplication::quit);
    }
    return app.exec();
}
