#pragma once

#include "qellib10/gtk/toolkit.h"
#include "qellib10/platform/shell/folder_browser.h"

namespace qel {

/// GTK's folder chooser. Its window, as callbacks get it, is the dialog.
class GtkFolderDialog : public FolderBrowser {
public:
    std::optional<CString> Browse(const BrowseRequest& request) override;
    /// Goes into the folder; passes over one that is not there.
    void OnMessage(HWND window, UINT message, WPARAM byPath, LPARAM path) override;

private:
    OwnThread m_thread;
    GtkWidget* m_pOpen = nullptr;  // the dialog that is shown now, of several the last
};

}  // namespace qel
