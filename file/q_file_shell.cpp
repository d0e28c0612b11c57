#include <mutex>
#include <new>
#include <optional>
#include <utility>

#include "qellib10/file/q_file.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/shell/folder_browser.h"
#include "qellib10/platform/shell/shell_link.h"
#include "qellib10/platform/shell/version_info.h"

namespace {

// The folder that the browser starts in: one value per process, so of two browsers at once both use the later one.
std::mutex theInitialFolderLock;
CString theInitialFolder;

void SetInitialFolder(const CString& folder) {
    const std::lock_guard lock(theInitialFolderLock);
    theInitialFolder = folder;
}

CString InitialFolder() {
    const std::lock_guard lock(theInitialFolderLock);
    return theInitialFolder;
}

constexpr HRESULT ResultOf(LONG code) { return static_cast<HRESULT>(0x80070000U | static_cast<DWORD>(code)); }
constexpr LONG kOutOfMemory = 14;

}  // namespace

int CQFile::SelectFolderDialog(CString& folder, const char* title, HWND owner) {
    return qel::AsResult("CQFile::SelectFolderDialog", [&] {
        SetInitialFolder(folder);
        std::optional<CString> chosen = qel::BrowseForFolder(
            {.owner = owner, .title = title, .flags = BIF_RETURNONLYFSDIRS, .callback = BrowseNotify, .data = 0});
        if (!chosen) return qel::Refuse(qel::FailureKind::kRefused, "", "cancelled, or there is no browser");
        folder = std::move(*chosen);
        return 1;
    });
}

int CQFile::SelectFolderDialog(CString& folder, UINT titleId, HWND owner) {
    return qel::AsResult("CQFile::SelectFolderDialog", [&] {
        CString title;
        title.LoadString(titleId);
        return SelectFolderDialog(folder, title, owner);
    });
}

int CQFile::BrowseNotify(HWND browser, UINT message, LPARAM, LPARAM) {
    if (message != BFFM_INITIALIZED) return 0;
    const CString folder = InitialFolder();
    if (!folder.IsEmpty()) {
        const char* path = folder;
        qel::SendBrowserMessage(browser, BFFM_SETSELECTIONA, 1, reinterpret_cast<LPARAM>(path));
    }
    return 1;
}

HRESULT CQFile::CreateShortcut(const char* target, const char* shortcut, const char* description) {
    qel::Operation operation("CQFile::CreateShortcut");
    try {
        std::optional<CString> text;
        if (description != nullptr) text = description;
        qel::WriteShellLink(CString(target).View(), CString(shortcut).View(), text);
        operation.Ended(true);
        return 0;
    } catch (const CFileException& failure) {
        qel::FailedBy(operation, failure);
        return ResultOf(failure.m_lOsError);
    } catch (const std::bad_alloc&) {
        qel::FailedByMemory(operation);
        return ResultOf(kOutOfMemory);
    }
}

int CQFile::DeleteShortcut(const char* shortcut) {
    return qel::Succeeds("CQFile::DeleteShortcut", [&] { qel::DeleteShellLink(CString(shortcut).View()); });
}

int CQFile::GetVersionInfo(const char* file, const char* key, CString* value) {
    return qel::AsResult("CQFile::GetVersionInfo", [&] {
        CFile opened(file, modeRead | shareDenyNone);
        const std::optional<CString> text = qel::VersionText(opened, CString(key).View());
        if (!text) return qel::Refuse(qel::FailureKind::kMissing, CString(file).View(), "no such version text");
        if (value != nullptr) *value = *text;
        return 1;
    });
}

int CQFile::GetFileVersion(const char* file, CString* value) {
    qel::Operation running("CQFile::GetFileVersion");
    return running.Ended(GetVersionInfo(file, "FileVersion", value));
}
