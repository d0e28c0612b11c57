#include "qellib10/file/q_file.h"

#include <sys/stat.h>

#include "../support/file_error_code.h"
#include "../support/test.h"

namespace {

class QFile : public testing::Test {
protected:
    void Open(const std::string& bytes, UINT flags = CFile::modeReadWrite, LONGLONG position = 0) {
        folder.Write("a", bytes);
        ASSERT_TRUE(file.Open(folder.Path("a"), flags));
        file.Seek(position, CFile::begin);
    }
    CString Temporary() {
        EXPECT_EQ(file.CreateTempFile("qel", 1), 1);
        file.Write("abc", 3);
        return file.GetFilePath();
    }

    const TempFolder folder;
    const EnvironmentScope temporary{"TMPDIR", folder.Posix().c_str()};
    CQFile file;
};

}  // namespace

TEST_F(QFile, ATemporaryFileGoesAtCloseOrToAnotherName) {
    const mode_t before = ::umask(022);
    Temporary();
    file.Close();
    EXPECT_EQ(folder.Count(), 0);
    const CString name = Temporary();
    ASSERT_TRUE(file.Open(name, CFile::modeRead | CFile::shareDenyNone));
    CFile other(name, CFile::modeRead | CFile::shareDenyNone);
    file.Close();
    ASSERT_TRUE(file.Open(name, CFile::modeRead | CFile::shareDenyNone)) << "only a temporary file goes at Close";
    EXPECT_EQ(file.CloseTo(folder.Path("c")), 0);
    EXPECT_EQ(file.GetLastError(), 4099u);
    Temporary();
    EXPECT_EQ(file.CloseTo(folder.Path("none/c")), 0);
    EXPECT_EQ(file.GetLastError(), 4098u);
    Temporary();
    EXPECT_EQ(Line({file.CloseTo(folder.Path("c")), file.CloseTo(folder.Path("d"))}), "1 1")
        << "nothing to do is a success";
    EXPECT_EQ(folder.Read("c"), "abc");
    EXPECT_EQ(std::filesystem::status(folder.Posix("c")).permissions(), std::filesystem::perms{0644});
    ::umask(before);
    ASSERT_TRUE(file.Open(folder.Path("c"), CFile::modeRead));
    EXPECT_EQ(Line({file.CloseToDestroy(), file.CloseToDestroy()}), "1 1");
    EXPECT_EQ(folder.Count(), 2) << "the one in use and the one that could not be copied";
    const EnvironmentScope missing("TMPDIR", folder.Posix("none").c_str());
    EXPECT_EQ(file.CreateTempFile("qel", 1), 0);
    EXPECT_EQ(file.GetLastError(), 4097u);
    const CodePageScope utf8(65001);
    EXPECT_EQ(CQFile::GetErrorMessage(4097), "不明なエラーです。");
}

TEST_F(QFile, ChecksumsCoverWhatIsAskedAndLeaveThePosition) {
    DWORD crc = 0, sum = 0;
    EXPECT_EQ(file.GetFileCRC(&crc, 0), 0) << "closed";
    for (const auto& [bytes, size, expectedCrc, expectedSum] : Cases<std::string, DWORD, DWORD, DWORD>{
             {"", 0, 0, 1},
             {"123456789x", 9, 0xFC891918, 477},
             {std::string(4, '\0'), 100, 0x38FB2284, 1},
         }) {
        Open(bytes, CFile::modeRead | CFile::shareDenyNone, 2);
        EXPECT_EQ(Line({file.GetFileCRC(&crc, size), CQFile::GetFileSum(folder.Path("a"), &sum, size)}), "1 1");
        EXPECT_EQ(crc, expectedCrc) << bytes;
        EXPECT_EQ(sum, expectedSum) << bytes;
        EXPECT_EQ(file.GetPosition(), 2u);
    }
}

TEST_F(QFile, FindLeavesThePositionWhereAWalkByBytesWould) {
    const std::string block(1024, '.'), big(300'000, 'x');
    for (const auto& [bytes, pattern, found, position] : Cases<std::string, std::string, int, ULONGLONG>{
             {block + "ab", ".ab", 1, 1026},
             {big + big + "y", "xxy", 1, 600'001},  // across blocks of any size
             {big + "y" + big, big + "y", 1, 300'001},
             {"a" + block + "ab", "abc", 0, 1027},         // no room for the rest: the search stops at the end
             {"a" + block + "bc", "abc", 0, 7},            // and else it leaves the position
             {".......a" + block, "ab", 0, 7},             // the byte before the last block was written over
             {".......a" + block.substr(10), "ab", 0, 7},  // nothing comes before the first block
             {".........a" + block.substr(5), "ab", 0, 1033}}) {
        Open(bytes, CFile::modeRead, 7);
        EXPECT_EQ(file.Find(pattern.data(), static_cast<DWORD>(pattern.size())), found);
        EXPECT_EQ(file.GetPosition(), position) << bytes.size();
    }
}

TEST_F(QFile, FilesAreComparedByBytesAndSizesAreRight) {
    const std::string big(300'000, 'a');
    folder.Write("a", big);
    const CFile held(folder.Path("a"), CFile::modeRead | CFile::shareDenyNone);
    for (const auto& [bytes, same] : Cases<std::string, int>{
             {big, 1},
             {big.substr(1), 0},
             {big.substr(1) + "b", 0},
         }) {
        folder.Write("b", bytes);
        EXPECT_EQ(CQFile::CompareFile(folder.Path("a"), folder.Path("b")), same);
    }
    for (const auto& [name, there, size, writable] : Cases<const char*, int, DWORD, int>{
             {"a", 1, 300'000, 0},
             {"b", 1, 300'000, 1},
             {"", 1, 0, 0},
             {"none", 0, 77, 1},
         }) {
        DWORD found = 77;
        EXPECT_EQ(CQFile::GetFileSize(folder.Path(name), &found), there) << name;
        EXPECT_EQ(found, size) << name;
        EXPECT_EQ(CQFile::IsCanOverwrite(folder.Path(name)), writable) << name;
    }
    for (const auto& [size, expected] : Cases<ULONGLONG, DWORD>{
             {0xFFFFFFFE, 0xFFFFFFFE},
             {0x100000000, 0xFFFFFFFF},
             {0x200000005, 0xFFFFFFFF},
         }) {
        std::filesystem::resize_file(folder.Posix("b"), size);
        DWORD found = 77;
        EXPECT_EQ(Line({CQFile::GetFileSize(folder.Path("b"), &found), found}), Line({1, expected}));
        EXPECT_EQ(qel::FileSize64(folder.Name("b")), size);
    }
    EXPECT_EQ(qel::FileSize64(folder.Name("none")), std::nullopt);
}

TEST_F(QFile, PartsOfOtherFilesAreCopiedInAndOut) {
    constexpr LONG kGeneric = -1;
    folder.Write("b", "0123456789");
    for (const auto& [offset, count, expected, code] : Cases<UINT, DWORD, std::string, LONG>{
             {0, 0xFFFFFFFF, "ab0123456789", 0},
             {3, 4, "ab3456", 0},
             {50, 0, "ab", 0},
             {50, 0xFFFFFFFF, "ab", kGeneric},
             {7, 4, "ab789", kGeneric},
         }) {
        Open("ab", CFile::modeReadWrite, 2);
        EXPECT_EQ(CodeOf([&, from = offset, size = count] { file.WriteFromFile(folder.Path("b"), from, size); }), code)
            << expected;
        EXPECT_EQ(file.GetPosition(), expected.size());
        EXPECT_EQ(folder.Read("a"), expected);
    }
    const TempFolder shm("/dev/shm");  // from there the kernel may not copy for us
    std::string big;
    for (int i = 0; i < 100'000; ++i) big += std::to_string(i);
    for (const TempFolder* where : {&folder, &shm}) {
        where->Write("big", big);
        Open("ab", CFile::modeReadWrite, 2);
        file.WriteFromFile(where->Path("big"), 7, 0xFFFFFFFF);
        EXPECT_TRUE(folder.Read("a") == "ab" + big.substr(7));
    }
    Open("abcde", CFile::modeRead, 1);
    file.ReadToFile(folder.Path("b"), 3);
    EXPECT_EQ(CodeOf([&] { file.ReadToFile(folder.Path("b"), 2); }), kGeneric);
    EXPECT_EQ(folder.Read("b"), "ecd3456789");
    EXPECT_EQ(CodeOf([&] { file.ReadToFile(folder.Path("none"), 1); }), 2);
}
