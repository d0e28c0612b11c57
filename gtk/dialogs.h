#pragma once

#include "qellib10/platform/export.h"

namespace qel {

/// Lets GTK 3 show the library's dialogs from now on: the print dialog (CPrintDialog) and the choice of a folder
/// (CQFile::SelectFolderDialog). To be called in the thread of the main loop, which is the only one that dialogs are
/// shown in: asked for in another they are cancelled. GTK is begun if the application has not done so.
///
///     int main(int argc, char** argv) {
///         gtk_init(&argc, &argv);
///         qel::UseGtkDialogs();
///
/// Owner windows (HWND) are pointers to widgets (GtkWidget*); a dialog stands in front of the window that the widget is
/// in, without an owner in front of the application's active window. The print dialog's "Print to File" is the
/// library's printer PDF, which names files itself. Of what the dialog offers, printer, paper, orientation, copies and
/// sides count.
/// @return false without a display: nothing is changed then
QELLIB10_API bool UseGtkDialogs();

}  // namespace qel
