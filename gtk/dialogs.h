#pragma once

#include "qellib10/platform/export.h"

namespace qel {

/// Makes GTK 3 show the library's dialogs from now on: the print dialog (CPrintDialog) and the choice of a folder
/// (CQFile::SelectFolderDialog). Call it in the thread of the main loop. Dialogs are shown only in that thread:
/// requests from others are cancelled. GTK is initialised if the application has not done so.
///
/// @code
/// int argc = 0;
/// char** argv = nullptr;
/// gtk_init(&argc, &argv);  // of main
/// qel::UseGtkDialogs();
/// CPrintDialog dialog(0);
/// if (dialog.DoModal() == IDOK) std::puts(dialog.GetDeviceName());
/// @endcode
///
/// Owner windows (HWND) are pointers to widgets (GtkWidget*); a dialog is in front of the widget's window, or without
/// an owner in front of the application's active window. The print dialog's "Print to File" is the library's printer
/// PDF, which chooses file names itself. Of the choices in the dialog, printer, paper, orientation, copies and sides
/// are used.
/// @return false without a display; nothing changes then
QELLIB10_API bool UseGtkDialogs();

}  // namespace qel
