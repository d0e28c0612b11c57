#include "qellib10/platform/storage/file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "../support/temp_folder.h"
#include "qellib10/platform/storage/mem_file.h"

namespace {

class DiskFile : public CFile {
public:
    DiskFile() : CFile(m_folder.Name("a").c_str(), modeReadWrite | modeCreate) {}

private:
    static inline TempFolder m_folder;
};

std::string Content(CFile& file) {
    file.SeekToBegin();
    std::string bytes(file.GetLength(), '\0');
    bytes.resize(file.Read(bytes.data(), static_cast<UINT>(bytes.size())));
    return bytes;
}

template <class Body> CFileException Failure(Body&& body) {
    try {
        body();
    } catch (const CFileException& exception) {
        return exception;
    }
    return CFileException();
}

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
    EXPECT_EQ(file.Read(bytes, 8), 0u);
    EXPECT_EQ(file.Read(nullptr, 0), 0u);
    file.Write(nullptr, 0);

    EXPECT_EQ(file.Seek(3, CFile::end), 9u);
    EXPECT_EQ(file.GetLength(), 6u);
    EXPECT_EQ(file.Read(bytes, 1), 0u);
    file.Write("z", 1);
    EXPECT_EQ(Content(file), std::string("abXYef\0\0\0z", 10));
    file.SetLength(3);
    EXPECT_EQ(file.GetPosition(), 3u);
    EXPECT_EQ(file.SeekToEnd(), 3u);
    file.SetLength(5);
    EXPECT_EQ(Content(file), std::string("abX\0\0", 5));
    file.Flush();

    for (const LONGLONG offset : {LONGLONG{-6}, LONGLONG{INT64_MIN}}) {
        const CFileException failure = Failure([&] { file.Seek(offset, CFile::current); });
        EXPECT_EQ(failure.m_cause, CFileException::badSeek);
        EXPECT_EQ(failure.m_lOsError, 131);
    }
    EXPECT_EQ(Failure([&] { file.Seek(0, 3); }).m_cause, CFileException::badSeek);
    EXPECT_EQ(file.GetPosition(), 5u);
}

TEST(File, OpensAsItsFlagsSay) {
    const TempFolder folder;
    const std::string name = folder.Name("a.b.txt");
    CFile file(name.c_str(), CFile::modeWrite | CFile::modeCreate);
    file.Write("old", 3);
    EXPECT_EQ(file.GetFilePath(), name.c_str());
    EXPECT_EQ(file.GetFileName(), "a.b.txt");
    EXPECT_EQ(file.GetFileTitle(), "a.b");
    EXPECT_NE(HANDLE{file}, CFile::hFileNull);
    EXPECT_NE(HANDLE{file}, nullptr);
    ASSERT_TRUE(file.Open(name.c_str(), CFile::modeReadWrite | CFile::modeCreate | CFile::modeNoTruncate));
    EXPECT_EQ(file.GetPosition(), 0u);
    EXPECT_EQ(Content(file), "old");
    ASSERT_TRUE(file.Open(name.c_str(), CFile::modeRead | CFile::modeCreate));  // empties though it cannot write
    EXPECT_EQ(file.GetLength(), 0u);
    file.Close();
    file.Close();
    EXPECT_EQ(file.GetFilePath(), "");
    EXPECT_EQ(HANDLE{file}, CFile::hFileNull);
    EXPECT_EQ(Failure([&] { file.GetLength(); }).m_lOsError, 6);
}

TEST(File, TellsWhyItCannotOpen) {
    const TempFolder folder;
    CFile(folder.Name("file").c_str(), CFile::modeWrite | CFile::modeCreate).Close();
    CFile(folder.Name("fixed").c_str(), CFile::modeWrite | CFile::modeCreate).Close();
    ::chmod(folder.Posix("fixed").c_str(), 0444);
    ASSERT_EQ(::mkfifo(folder.Posix("pipe").c_str(), 0600), 0);
    struct Case {
        std::string name;
        UINT flags;
        int cause;
        LONG code;
    };
    for (const Case& c :
         {Case{folder.Name("none"), CFile::modeRead, CFileException::fileNotFound, 2},
          Case{folder.Name("none/none"), CFile::modeRead | CFile::modeCreate, CFileException::badPath, 3},
          Case{folder.Name("file/none"), CFile::modeRead, CFileException::badPath, 3},
          Case{folder.Name(""), CFile::modeRead, CFileException::accessDenied, 5},
          Case{folder.Name("pipe"), CFile::modeRead, CFileException::accessDenied, 5},
          Case{folder.Name("fixed"), CFile::modeWrite, CFileException::accessDenied, 5},
          Case{folder.Name("fixed"), CFile::modeRead | CFile::modeCreate, CFileException::accessDenied, 5},
          Case{"", CFile::modeRead, CFileException::badPath, 3},
          Case{std::string(260, 'x'), CFile::modeRead, CFileException::badPath, 206}}) {
        SCOPED_TRACE(c.name);
        CFile file;
        CFileException error;
        EXPECT_FALSE(file.Open(c.name.c_str(), c.flags, &error));
        EXPECT_EQ(error.m_cause, c.cause);
        EXPECT_EQ(error.m_lOsError, c.code);
        EXPECT_EQ(error.m_strFileName, c.name.c_str());
        EXPECT_EQ(Failure([&] { CFile(c.name.c_str(), c.flags); }).m_cause, c.cause);
    }
    EXPECT_FALSE(CFile().Open(nullptr, CFile::modeRead));
}

TEST(File, RefusesWhatItsAccessDoesNotAllow) {
    const TempFolder folder;
    const std::string name = folder.Name("a");
    char byte = 0;
    CFile file(name.c_str(), CFile::modeWrite | CFile::modeCreate);
    EXPECT_EQ(Failure([&] { file.Read(&byte, 1); }).m_lOsError, 5);
    file.Open(name.c_str(), CFile::modeRead);
    EXPECT_EQ(Failure([&] { file.Write(&byte, 1); }).m_lOsError, 5);
    EXPECT_EQ(Failure([&] { file.SetLength(1); }).m_lOsError, 5);
    EXPECT_EQ(Failure([&] { file.Flush(); }).m_lOsError, 5);
    CMemFile block;
    block.Attach(reinterpret_cast<const BYTE*>("abc"), 3);
    EXPECT_EQ(Failure([&] { block.Write(&byte, 1); }).m_lOsError, 5);
    EXPECT_EQ(Content(block), "abc");
    EXPECT_EQ(Failure([&] { block.Duplicate(); }).m_lOsError, 6);
}

TEST(File, DuplicatesShareThePositionAndLocksKeepOthersOut) {
    const TempFolder folder;
    const std::string name = folder.Name("a");
    CFile file(name.c_str(), CFile::modeReadWrite | CFile::modeCreate | CFile::shareDenyNone);
    CFile other(name.c_str(), CFile::modeReadWrite | CFile::shareDenyNone);
    file.Write("abc", 3);
    const auto twin = file.Duplicate();
    EXPECT_EQ(twin->GetPosition(), 3u);
    EXPECT_EQ(twin->GetFilePath(), file.GetFilePath());
    file.LockRange(10, 5);
    EXPECT_EQ(Failure([&] { other.LockRange(14, 1); }).m_lOsError, 33);
    other.LockRange(15, 1);
    file.UnlockRange(10, 5);
    other.LockRange(14, 1);
    // Behind any data stand the marks of who has the file open; unlocking all must not take them back.
    EXPECT_EQ(Failure([&] { other.LockRange(0, INT64_MAX); }).m_cause, CFileException::badSeek);
    EXPECT_EQ(Failure([&] { other.UnlockRange(UINT64_MAX, 1); }).m_cause, CFileException::badSeek);
    other.UnlockRange(1, 0x7FFFFFFFFFEFFFFF);
    EXPECT_FALSE(CFile().Open(name.c_str(), CFile::modeRead | CFile::shareExclusive));
}

TEST(MemFile, HandsItsBytesOutAndRefusesMoreThanMemory) {
    CMemFile file;
    file.Write("abc", 3);
    EXPECT_EQ(Failure([&] { file.SetLength(UINT64_MAX); }).m_lOsError, 8);
    EXPECT_EQ(file.GetLength(), 3u);
    EXPECT_EQ(file.Detach(), (std::vector<BYTE>{'a', 'b', 'c'}));
    EXPECT_EQ(file.GetLength(), 0u);
    CFileException error;
    EXPECT_FALSE(file.Open("a", CFile::modeRead, &error));
    EXPECT_EQ(error.m_cause, CFileException::invalidFile);
}
