// The two dialogs of the page "System": the site manager and About.
#include "shell/about_dialog_qt.h"
#include "shell/main_form_qt.h"
#include "sites/site_manager_qt.h"

namespace kelpa::qt {

void MainForm::CMD_SaveConnection_Click() {
    {
        // A fresh dialog each time; it reads the book as it opens.
        SiteManagerDialog dialog(client_.files(), this);
        dialog.exec();
    }
    guardedCall("CMD_SaveConnection_Click", [this] { client_.SiteManagerClosed(); });
    syncFromCore();
}

void MainForm::CMD_About_Click() {
    AboutDialog dialog(this);
    dialog.exec();
}

}  // namespace kelpa::qt
