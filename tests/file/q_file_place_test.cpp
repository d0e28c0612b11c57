#include <gtest/gtest.h>

#include "../support/environment_scope.h"
#include "../support/temp_folder.h"
#include "qellib10/file/q_file.h"
#include "qellib10/runtime/system_info.h"

TEST(FilePlace, TemporaryFilesAreMade) {
    const TempFolder folder;
    const EnvironmentScope temporary("TMPDIR", folder.Posix().c_str());
    EXPECT_EQ(CQFile::GetTempFolder(), folder.Path() + '\\');
    for (const char* prefix : {"qel", static_cast<const char*>(nullptr)}) CQFile::GetTempFilePath(prefix);
    EXPECT_TRUE(CQFile::GetFolderFromPath(CQFile::GetTempFilename(folder.Path(), "abcd")) == folder.Path());
    EXPECT_EQ(folder.Count(), 3);
    EXPECT_EQ(CQFile::GetTempFilename(folder.Path("none"), "a"), "");
}

TEST(FilePlace, FoldersOfModulesAndOfTheSystem) {
    const CString program = CQFile::GetModuleFilePath(nullptr);
    EXPECT_EQ(CQFile::GetFilenameFromPath(program), "file_tests");
    EXPECT_EQ(CQFile::GetModuleFolder(nullptr), CQFile::GetFolderFromPath(program));
    EXPECT_EQ(CQFile::GetModuleIniFile(nullptr), program + ".ini");
    const auto library = reinterpret_cast<HINSTANCE>(&std::free);
    EXPECT_EQ(CQFile::GetModuleIniFile(library), CQFile::DeleteFileExt(CQFile::GetModuleFilePath(library)) + ".ini");

    const EnvironmentScope config("XDG_CONFIG_HOME", "/c"), folders("XDG_CONFIG_DIRS", "/d");
    EXPECT_EQ(CQFile::GetStartupFolder(0), "\\c\\autostart");
    EXPECT_EQ(CQFile::GetStartupFolder(1), "\\d\\autostart");
    qel::SetSystemFamily(qel::SystemFamily::Win95);
    EXPECT_EQ(CQFile::GetStartupFolder(1), "\\c\\autostart");
    qel::SetSystemFamily(qel::SystemFamily::Nt);
    EXPECT_EQ(CQFile::GetAppDataFolder(), "\\c\\");
}
