#include <optional>

#include "../support/test.h"
#include "qellib10/file/q_file.h"
#include "qellib10/platform/shell/folder_browser.h"
#include "qellib10/resource/string_ids.h"

namespace {

// Plays the user: picks a subfolder of the folder that is selected when the dialog opens, or cancels.
class ScriptedBrowser : public qel::FolderBrowser {
public:
    std::optional<CString> Browse(const qel::BrowseRequest& request) override {
        asked = request;
        EXPECT_EQ(request.callback(this, BFFM_INITIALIZED, 0, request.data), 1);
        EXPECT_EQ(request.callback(this, 3, 0, request.data), 0);
        return cancels ? std::nullopt : std::optional(selected + "\\chosen");
    }
    void OnMessage(HWND window, UINT message, WPARAM byPath, LPARAM path) override {
        EXPECT_EQ(Line({message, byPath}), "1126 1");
        EXPECT_EQ(window, this);
        selected = reinterpret_cast<const char*>(path);
    }

    bool cancels = false;
    qel::BrowseRequest asked;
    CString selected;
};

}  // namespace

TEST(FolderDialog, AsksTheApplicationsBrowser) {
    CString folder("\\data");
    int window = 0;
    EXPECT_EQ(CQFile::SelectFolderDialog(folder, "Where?", &window), 0);  // there is none
    ScriptedBrowser browser;
    qel::SetFolderBrowser(&browser);
    EXPECT_EQ(CQFile::SelectFolderDialog(folder, "Where?", &window), 1);
    EXPECT_EQ(folder, "\\data\\chosen");
    EXPECT_EQ(Line({browser.asked.title, browser.asked.flags}), "Where? 1");
    EXPECT_EQ(browser.asked.owner, &window);
    browser.cancels = true;
    EXPECT_EQ(CQFile::SelectFolderDialog(folder, qel::kFirstUnitId, nullptr), 0);
    EXPECT_EQ(folder, "\\data\\chosen");
    EXPECT_EQ(browser.selected, folder);
    CString unit;
    unit.LoadString(qel::kFirstUnitId);
    EXPECT_EQ(browser.asked.title, unit);
    EXPECT_EQ(qel::SetFolderBrowser(nullptr), &browser);
}

TEST(Shortcut, IsMadeAndDeletedWithItsExtension) {
    const TempFolder folder;
    for (const char* name : {"a", "b.LNK"}) EXPECT_EQ(CQFile::CreateShortcut("\\t", folder.Path(name), nullptr), 0);
    EXPECT_EQ(Line({folder.Has("a.lnk"), folder.Has("b.LNK"), folder.Count()}), "1 1 2");
    EXPECT_EQ(CQFile::CreateShortcut("\\t", folder.Path("none/a"), ""), static_cast<HRESULT>(0x80070003));
    for (const int result : {1, 0}) EXPECT_EQ(CQFile::DeleteShortcut(folder.Path("a")), result);
}

TEST(VersionInfo, OfOurOwnModuleIsFound) {
    CString text("as it was");
    const CString program = CQFile::GetModuleFilePath(nullptr);
    EXPECT_EQ(CQFile::GetVersionInfo(program, "NoSuchKey", &text), 0);
    for (const char* file : {"\\none", "\\", "", "\\etc\\passwd"}) EXPECT_EQ(CQFile::GetFileVersion(file, &text), 0);
    EXPECT_EQ(text, "as it was");
    EXPECT_EQ(CQFile::GetVersionInfo(program, "productname", &text), 1);
    EXPECT_EQ(text, "QELLIB10");
    EXPECT_EQ(CQFile::GetFileVersion(program, nullptr), 1);
}
