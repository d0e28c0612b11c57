#include "qellib10/platform/storage/file_status.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "../support/temp_folder.h"
#include "qellib10/platform/storage/file.h"

TEST(FileStatus, NeedsNoOpening) {
    const TempFolder folder;
    folder.Write(".a", "0123");
    std::filesystem::create_directory(folder.Posix("d"));
    std::filesystem::create_symlink("nowhere", folder.Posix("l"));
    CFile holder(folder.Path(".a"), CFile::modeWrite | CFile::shareExclusive);
    CFileStatus status;
    ASSERT_TRUE(CFile::GetStatus(folder.Path(".a"), status));
    EXPECT_EQ(status.m_size, 4U);
    EXPECT_EQ(status.m_attribute, CFileStatus::hidden | CFileStatus::archive);
    EXPECT_EQ(CString(status.m_szFullName), folder.Path(".a"));
    EXPECT_LE(CTime::GetCurrentTime().GetTime() - status.m_mtime.GetTime(), 60);
    EXPECT_GE(status.m_mtime, status.m_ctime);
    EXPECT_TRUE(holder.GetStatus(status));
    ::chmod(folder.Posix(".a").c_str(), 0444);
    ASSERT_TRUE(CFile::GetStatus(folder.Path(".a"), status));
    EXPECT_EQ(status.m_attribute & CFileStatus::readOnly, CFileStatus::readOnly);
    ASSERT_TRUE(CFile::GetStatus(folder.Path("d"), status));
    EXPECT_EQ(status.m_attribute, CFileStatus::directory);
    for (const char* none : {"no", "l", "*", ""})
        EXPECT_FALSE(CFile::GetStatus(folder.Path() + "\\x\\" + none, status));
    EXPECT_FALSE(CFile::GetStatus(folder.Path("l"), status));
}

TEST(File, KnowsItsNameFromTheMomentOfOpening) {
    const TempFolder folder;
    folder.Write("a.b.txt", "");
    const std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::current_path(folder.Posix());
    CFile file("./a.b.txt", CFile::modeRead);
    std::filesystem::current_path(here);
    EXPECT_EQ(file.GetFilePath(), folder.Path("a.b.txt"));
    EXPECT_EQ(file.GetFileName(), "a.b.txt");
    EXPECT_EQ(file.GetFileTitle(), "a.b");
    file.Close();
    EXPECT_EQ(file.GetFilePath(), "");
}
