#include "qellib10/gtk/dialogs.h"

#include "qellib10/gtk/folder_dialog.h"
#include "qellib10/gtk/print_dialog.h"

namespace qel {

bool UseGtkDialogs() {
    if (!gtk_init_check(nullptr, nullptr)) return false;
    static GtkFolderDialog folderDialog;
    static GtkPrintDialog printDialog;
    SetFolderBrowser(&folderDialog);
    SetPrintDialogProvider(&printDialog);
    return true;
}

}  // namespace qel
