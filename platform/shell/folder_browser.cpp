#include "qellib10/platform/shell/folder_browser.h"

#include <atomic>

namespace qel {
namespace {

std::atomic<FolderBrowser*> theBrowser = nullptr;

}  // namespace

FolderBrowser::~FolderBrowser() = default;

FolderBrowser* SetFolderBrowser(FolderBrowser* browser) noexcept { return theBrowser.exchange(browser); }

std::optional<CString> BrowseForFolder(const BrowseRequest& request) {
    FolderBrowser* browser = theBrowser.load();
    return browser != nullptr ? browser->Browse(request) : std::nullopt;
}

void SendBrowserMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (FolderBrowser* browser = theBrowser.load()) browser->OnMessage(window, message, wParam, lParam);
}

}  // namespace qel
