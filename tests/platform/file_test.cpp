#include "qellib10/platform/storage/file.h"

#include <sys/stat.h>

#include <functional>

#include "../support/file_error_code.h"
#include "../support/test.h"
#include "qellib10/platform/storage/mem_file.h"

namespace {

class DiskFile : public CFile {
public:
    DiskFile() : CFile(m_folder.Path("a"), modeReadWrite | modeCreate) {}

private:
    static inline TempFolder m_folder;
};

std::string Content(CFile& file) {
    file.SeekToBegin();
    std::string bytes(file.GetLength(), '\0');
    bytes.resize(file.Read(bytes.data(), static_cast<UINT>(bytes.size())));
    return bytes;
}

constexpr UINT kRead = CFile::modeRead, kWrite = CFile::modeWrite, kReadWrite = CFile::modeReadWrite;
constexpr UINT kCreate = CFile::modeCreate;

}  // namespace

template <class T> class AnyFile : public testing::Test {};
using FileTypes = testing::Types<DiskFile, CMemFile>;
TYPED_TEST_SUITE(AnyFile, FileTypes);

TYPED_TEST(AnyFile, ReadsAndWritesAtItsPosition) {
    TypeParam file;
    file.Write("abcdef", 6);
    EXPECT_EQ(file.GetPosition(), 6u);
    EXPECT_EQ(file.Seek(-4, CFile::end), 2u);
    file.Write("XY", 2);
    EXPECT_EQ(file.Seek(-1, CFile::current), 3u);
    char bytes[8] = {};
    EXPECT_EQ(file.Read(bytes, 8), 3u);
    EXPECT_STREQ(bytes, "Yef");
    file.Write(nullptr, 0);
    EXPECT_EQ(Line({file.Read(bytes, 8), file.Read(nullptr, 0)}), "0 0");
    EXPECT_EQ(Line({file.Seek(3, CFile::end), file.GetLength(), file.Read(bytes, 1)}), "9 6 0");
    file.Write("z", 1);
    EXPECT_EQ(Content(file), std::string("abXYef\0\0\0z", 10));
    file.SetLength(3);
    EXPECT_EQ(Line({file.GetPosition(), file.SeekToEnd()}), "3 3");
    file.SetLength(5);
    EXPECT_EQ(Content(file), std::string("abX\0\0", 5));
    file.Flush();

    for (const auto& [offset, from] : Cases<LONGLONG, UINT>{
             {-6, CFile::current},
             {INT64_MAX, CFile::current},
             {0, 3},
         })
        EXPECT_EQ(CodeOf([&, by = offset, base = from] { file.Seek(by, base); }), 131) << offset;
    EXPECT_EQ(file.GetPosition(), 5u);
}

TEST(File, OpensAndEmptiesByItsFlags) {
    const TempFolder folder;
    const std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::current_path(folder.Posix());
    CFile file("./a.b.txt", kWrite | kCreate);
    std::filesystem::current_path(here);
    const CString name = file.GetFilePath();  // that of the moment of opening
    EXPECT_EQ(Line({file.GetFileName(), file.GetFileTitle()}), "a.b.txt a.b");
    EXPECT_EQ(name, folder.Path("a.b.txt"));
    EXPECT_NE(HANDLE{file}, CFile::hFileNull);
    EXPECT_NE(HANDLE{file}, nullptr);
    file.Write("old", 3);
    ASSERT_TRUE(file.Open(name, kReadWrite | kCreate | CFile::modeNoTruncate));
    EXPECT_EQ(file.GetPosition(), 0u);
    EXPECT_EQ(Content(file), "old");
    ASSERT_TRUE(file.Open(name, kRead | kCreate));  // empties though it cannot write
    EXPECT_EQ(file.GetLength(), 0u);
    file.Close();
    file.Close();
    EXPECT_EQ(file.GetFilePath(), "");
    EXPECT_EQ(HANDLE{file}, CFile::hFileNull);
    EXPECT_EQ(CodeOf([&] { file.GetLength(); }), 6);
}

TEST(File, AFailedOpeningHasItsCause) {
    const TempFolder folder;
    for (const char* name : {"file", "fixed"}) folder.Write(name, "");
    ::chmod(folder.Posix("fixed").c_str(), 0444);
    ASSERT_EQ(::mkfifo(folder.Posix("pipe").c_str(), 0600), 0);
    using Cause = CFileException;
    for (const auto& [name, flags, cause, code] : Cases<std::string, UINT, int, LONG>{
             {folder.Name("none"), kRead, Cause::fileNotFound, 2},
             {folder.Name("none/none"), kRead | kCreate, Cause::badPath, 3},
             {folder.Name("file/none"), kRead, Cause::badPath, 3},
             {folder.Name(""), kRead, Cause::accessDenied, 5},
             {folder.Name("pipe"), kRead, Cause::accessDenied, 5},
             {folder.Name("fixed"), kWrite, Cause::accessDenied, 5},
             {folder.Name("fixed"), kRead | kCreate, Cause::accessDenied, 5},
             {"", kRead, Cause::badPath, 3},
             {std::string(260, 'x'), kRead, Cause::badPath, 206},
         }) {
        CFileException error;
        EXPECT_FALSE(CFile().Open(name.c_str(), flags, &error));
        EXPECT_EQ(error.m_cause, cause) << name;
        EXPECT_EQ(error.m_strFileName, name.c_str()) << name;
        EXPECT_EQ(error.m_lOsError, code) << name;
        EXPECT_EQ(CodeOf([path = name.c_str(), mode = flags] { CFile(path, mode); }), code) << name;
    }
    EXPECT_FALSE(CFile().Open(nullptr, kRead));
}

TEST(File, RefusesWhatItsModeDoesNotAllow) {
    const TempFolder folder;
    char byte = 0;
    const CString name = folder.Path("a");
    CFile writing(name, kWrite | kCreate | CFile::shareDenyNone), reading(name, kRead | CFile::shareDenyNone);
    CMemFile block, memory;
    block.Attach(reinterpret_cast<const BYTE*>("abc"), 3);
    memory.Write("abc", 3);
    for (const auto& [use, code] : Cases<std::function<void()>, LONG>{
             {[&] { writing.Read(&byte, 1); }, 5},
             {[&] { reading.Write(&byte, 1); }, 5},
             {[&] { reading.SetLength(1); }, 5},
             {[&] { reading.Flush(); }, 5},
             {[&] { block.Write(&byte, 1); }, 5},
             {[&] { block.Duplicate(); }, 6},
             {[&] { memory.SetLength(UINT64_MAX); }, 8},
             {[&] { reading.Write(&byte, 0); }, 0},
             {[&] { CFile().Read(&byte, 0); }, 0},
         })  // nothing can always be done
        EXPECT_EQ(CodeOf(use), code);
    EXPECT_EQ(Content(block), "abc");
    EXPECT_EQ(memory.Detach(), (std::vector<BYTE>{'a', 'b', 'c'}));
    EXPECT_EQ(memory.GetLength(), 0u);
    CFileException error;
    EXPECT_FALSE(memory.Open("a", kRead, &error));
    EXPECT_EQ(error.m_cause, CFileException::invalidFile);
}

TEST(File, DuplicatesShareThePositionAndLocksKeepOthersOut) {
    const TempFolder folder;
    const CString name = folder.Path("a");
    CFile file(name, kReadWrite | kCreate | CFile::shareDenyNone);
    CFile other(name, kReadWrite | CFile::shareDenyNone);
    file.Write("abc", 3);
    const auto twin = file.Duplicate();
    EXPECT_EQ(twin->GetPosition(), 3u);
    EXPECT_EQ(twin->GetFilePath(), name);
    file.LockRange(10, 5);
    EXPECT_EQ(CodeOf([&] { other.LockRange(14, 1); }), 33);
    other.LockRange(15, 1);
    file.UnlockRange(10, 5);
    other.LockRange(14, 1);
    // The marks of the programs that have the file open are after any data; unlocking all must not remove them.
    EXPECT_EQ(CodeOf([&] { other.LockRange(0, INT64_MAX); }), 131);
    EXPECT_EQ(CodeOf([&] { other.UnlockRange(UINT64_MAX, 1); }), 131);
    other.UnlockRange(1, 0x7FFFFFFFFFEFFFFF);
    EXPECT_FALSE(CFile().Open(name, kRead | CFile::shareExclusive));
}

TEST(FileStatus, IsReadWithoutOpening) {
    const TempFolder folder;
    folder.Write(".a", "0123");
    std::filesystem::create_directory(folder.Posix("d"));
    std::filesystem::create_symlink("nowhere", folder.Posix("l"));
    const CFile holder(folder.Path(".a"), kWrite | CFile::shareExclusive);
    CFileStatus status;
    EXPECT_TRUE(holder.GetStatus(status));
    for (const auto& [mode, attributes] : Cases<mode_t, int>{
             {0600, 0x22},
             {0444, 0x23},
         }) {
        ::chmod(folder.Posix(".a").c_str(), mode);
        ASSERT_TRUE(CFile::GetStatus(folder.Path(".a"), status));
        EXPECT_EQ(status.m_attribute, attributes);
    }
    EXPECT_EQ(status.m_size, 4U);
    EXPECT_EQ(CString(status.m_szFullName), folder.Path(".a"));
    EXPECT_LE(CTime::GetCurrentTime().GetTime() - status.m_mtime.GetTime(), 60);
    EXPECT_GE(status.m_mtime, status.m_ctime);
    ASSERT_TRUE(CFile::GetStatus(folder.Path("d"), status));
    EXPECT_EQ(status.m_size, 0U);
    EXPECT_EQ(status.m_attribute, 0x10);
    for (const char* none : {"\\no", "\\l", "\\*", "\\no\\no"})
        EXPECT_FALSE(CFile::GetStatus(folder.Path() + none, status));
}
