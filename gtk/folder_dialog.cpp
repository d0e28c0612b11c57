#include "qellib10/gtk/folder_dialog.h"

#include <utility>

#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {

std::optional<CString> GtkFolderDialog::Browse(const BrowseRequest& request) {
    if (!m_thread.IsThis()) return std::nullopt;
    ModalDialog dialog(gtk_file_chooser_dialog_new(
        ToUtf8(request.title.View()).c_str(), WindowOf(request.owner), GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER,
        GtkText("_Cancel"), GTK_RESPONSE_CANCEL, GtkText("_Select"), GTK_RESPONSE_ACCEPT, nullptr));
    gtk_dialog_set_default_response(GTK_DIALOG(dialog.Widget()), GTK_RESPONSE_ACCEPT);
    gtk_widget_realize(dialog.Widget());

    GtkWidget* const before = std::exchange(m_pOpen, dialog.Widget());
    if (request.callback != nullptr) request.callback(dialog.Widget(), BFFM_INITIALIZED, 0, request.data);
    const int answer = dialog.Run();
    m_pOpen = before;
    if (answer != GTK_RESPONSE_ACCEPT) return std::nullopt;
    const GText folder(gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(dialog.Widget())));
    if (folder == nullptr) return std::nullopt;
    return ToLibraryPath(folder.get());
}

void GtkFolderDialog::OnMessage(HWND window, UINT message, WPARAM byPath, LPARAM path) {
    if (!m_thread.IsThis() || window == nullptr || window != m_pOpen) return;
    if (message != BFFM_SETSELECTIONA || byPath == 0 || path == 0) return;
    try {
        const std::string folder = ToPosixPath(FullPath(reinterpret_cast<const char*>(path)).View());
        if (!g_file_test(folder.c_str(), G_FILE_TEST_IS_DIR)) return;
        gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(m_pOpen), folder.c_str());
    } catch (const CFileException&) {  // not a path
    }
}

}  // namespace qel
