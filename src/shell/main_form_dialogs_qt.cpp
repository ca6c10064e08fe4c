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
    // Typing goes on in the command line, as after Bulk and Flags, not on
    // the button that opened the dialog.
    focusCommandLine();
}

void MainForm::CMD_About_Click() {
    AboutDialog dialog(this);
    dialog.exec();
    focusCommandLine();
}

}  // namespace kelpa::qt
