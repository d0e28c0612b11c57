#pragma once

#include <optional>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

/// Messages between a folder browser and its callback, by the framework's numbers.
inline constexpr UINT BFFM_INITIALIZED = 1;       ///< to the callback: the window exists
inline constexpr UINT BFFM_SETSELECTIONA = 1126;  ///< to the browser: select the folder whose path is lParam (wParam 1)
/// Flag: offer only folders of the file system.
inline constexpr UINT BIF_RETURNONLYFSDIRS = 1;

namespace qel {

/// What the application wants from a folder browser.
struct BrowseRequest {
    HWND owner = nullptr;  ///< the window that the dialog is in front of; null: none
    CString title;
    UINT flags = BIF_RETURNONLYFSDIRS;
    int (*callback)(HWND browser, UINT message, LPARAM parameter, LPARAM data) = nullptr;
    LPARAM data = 0;
};

/// The dialog of an application's toolkit in which the user chooses a folder.
class QELLIB10_API FolderBrowser {
public:
    virtual ~FolderBrowser();

    /// Shows the dialog and returns when it is closed. Once its window exists, and before the user can act, it calls
    /// `request.callback(window, BFFM_INITIALIZED, 0, request.data)` if there is a callback. The window, any value
    /// except null, is passed back to OnMessage. Called in the caller's thread; must not throw.
    /// @return the folder's path in the library's form; nothing if cancelled
    virtual std::optional<CString> Browse(const BrowseRequest& request) = 0;

    /// Receives a message that the callback sends to @p window: BFFM_SETSELECTIONA. Others must be ignored.
    virtual void OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) = 0;
};

/// Sets the folder browser; it must live until another one is set. Null: none, each dialog is cancelled at once.
/// @return the former browser
QELLIB10_API FolderBrowser* SetFolderBrowser(FolderBrowser* browser) noexcept;

/// Asks the application's folder browser; nothing if it was cancelled or there is none.
QELLIB10_API std::optional<CString> BrowseForFolder(const BrowseRequest& request);

/// Sends @p message to a browser's window.
QELLIB10_API void SendBrowserMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace qel
