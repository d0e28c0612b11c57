#pragma once

#include <optional>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

/// Messages between a folder browser and its callback, by the framework's numbers.
inline constexpr UINT BFFM_INITIALIZED = 1;       ///< to the callback: the window is there
inline constexpr UINT BFFM_SETSELECTIONA = 1126;  ///< to the browser: select a folder, lParam being its path (wParam 1)
/// Flag: only folders of the file system are to be offered.
inline constexpr UINT BIF_RETURNONLYFSDIRS = 1;

namespace qel {

/// What a folder browser is asked to do.
struct BrowseRequest {
    HWND owner = nullptr;  ///< the window in front of which it stands; null: none
    CString title;
    UINT flags = BIF_RETURNONLYFSDIRS;
    int (*callback)(HWND browser, UINT message, LPARAM parameter, LPARAM data) = nullptr;
    LPARAM data = 0;
};

/// The dialog of an application's toolkit in which the user chooses a folder.
class QELLIB10_API FolderBrowser {
public:
    virtual ~FolderBrowser();

    /// Shows the dialog and returns when it is closed. Once its window exists, and before the user can act, calls
    /// `request.callback(window, BFFM_INITIALIZED, 0, request.data)`, where there is a callback; the window, which may
    /// be anything but null, comes back in OnMessage. Called in the thread that asks; throws nothing.
    /// @return the folder's path as the library takes it; nothing when cancelled
    virtual std::optional<CString> Browse(const BrowseRequest& request) = 0;

    /// Takes a message that the callback sends to @p window: BFFM_SETSELECTIONA. Others are to be passed over.
    virtual void OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) = 0;
};

/// Sets who shows folder dialogs from now on; it must live until another one is set. Null: nobody, each dialog is
/// cancelled at once. @return the browser until now
QELLIB10_API FolderBrowser* SetFolderBrowser(FolderBrowser* browser) noexcept;

/// Asks the application's folder browser; nothing when it was cancelled or there is none.
QELLIB10_API std::optional<CString> BrowseForFolder(const BrowseRequest& request);

/// Sends @p message to a browser's window.
QELLIB10_API void SendBrowserMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace qel
