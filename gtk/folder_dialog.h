#pragma once

#include "qellib10/gtk/toolkit.h"
#include "qellib10/platform/shell/folder_browser.h"

namespace qel {

/// GTK's folder chooser. The window passed to callbacks is the dialog.
class GtkFolderDialog : public FolderBrowser {
public:
    std::optional<CString> Browse(const BrowseRequest& request) override;
    /// Goes to the folder; ignores a missing one.
    void OnMessage(HWND window, UINT message, WPARAM byPath, LPARAM path) override;

private:
    OwnThread m_thread;
    GtkWidget* m_pOpen = nullptr;  // the dialog shown now; of several the last one
};

}  // namespace qel
