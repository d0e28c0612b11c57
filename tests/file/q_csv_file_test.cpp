#include "qellib10/file/q_csv_file.h"

#include <functional>

#include "../support/file_error_code.h"
#include "../support/full_disk.h"
#include "../support/test.h"
#include "qellib10/platform/text/string_table.h"

namespace {

class CsvFile : public testing::Test {
protected:
    CsvFile() { Open(); }
    void Open() { EXPECT_TRUE(file.Open(folder.Path("a"), CFile::modeReadWrite | CFile::modeCreate)); }

    const TempFolder folder;
    CQCSVFile file;
};

}  // namespace

TEST_F(CsvFile, QuotesByTheMarkThatIsSet) {
    file.WriteCSVString("a\"b");
    file.WriteDelimiter();
    file.WriteCSVString(nullptr);
    file.WriteCRLF();
    file.WriteCSVString(std::string(100, '"').c_str());
    file.Flush();
    EXPECT_EQ(folder.Read("a"), "\"a\"\"b\",\"\"\r\n" + std::string(202, '"'));
    file.SetDelimiter(".");
    for (const auto& [mark, field, expected] : Cases<const char*, const char*, const char*>{
             {"", "a\"b", ".a\"b"},
             {"<>", "a<>b<", ".<>a<><>b<<>"},
             {"|", "\x83\x7C|", ".|\x83\x7C|||"},
         }) {
        Open();
        file.SetQuotationMark(mark);
        file.WriteDelimiter();
        file.WriteCSVString(field);
        file.Close();
        EXPECT_EQ(folder.Read("a"), expected);  // in the last one the first 7C is half of a character
    }
}

TEST_F(CsvFile, AnApplicationsTextsDoNotChangeTheDefaults) {
    static constexpr qel::StringTableEntry kOfAnApplication[] = {
        {28001, "\n", nullptr},
        {28002, ";", nullptr},
        {28003, "'", nullptr},
    };
    // Registered texts stay to the end of a process.
    EXPECT_TRUE(HoldsInChild([] {
        qel::RegisterStringTable(kOfAnApplication);
        const CQCSVFile made;
        EXPECT_EQ(Line({made.GetCRLF(), made.GetDelimiter(), made.GetQuotationMark()}), "\r\n , \"");
    }));
}

TEST_F(CsvFile, IsWrittenOutBeforeAnythingLooksAtIt) {
    char byte = 0;
    CFileStatus status;
    DWORD sum = 0;
    folder.Write("b", "123");
    const std::function<bool()> looks[] = {
        [&] { return file.GetLength() == 3; },
        [&] { return file.Seek(-1, CFile::current) == 2; },
        [&] { return file.Read(&byte, 1) == 0; },
        [&] { return file.SetLength(5), true; },
        [&] { return file.Duplicate()->GetPosition() == 3; },
        [&] { return file.LockRange(0, 3), true; },
        [&] { return file.UnlockRange(0, 0), true; },
        [&] { return file.GetStatus(status) && status.m_size == 3; },
        [&] { return file.GetFileSum(&sum, 0) && sum == 'a' + 'b' + 'c'; },
        [&] { return file.WriteFromFile(folder.Path("b"), 0, 3), true; },
        [&] { return file.Open(folder.Path("b"), CFile::modeWrite) != 0; },
        [&] { return file.CloseTo(folder.Path("c")) && (folder.Write("a", folder.Read("c")), true); }};
    for (const auto& look : looks) {
        Open();
        file.Write("abc");
        EXPECT_TRUE(look());
        EXPECT_EQ(folder.Read("a").substr(0, 3), "abc") << &look - looks;
    }
}

TEST_F(CsvFile, KeepsTheOrderOfPiecesAndReportsWhatCannotBeWritten) {
    std::string expected;
    for (const std::size_t size : {1, 65'530, 10, 65'536, 200'000, 3}) {
        const std::string text(size, static_cast<char>('a' + size % 26));
        file.Write(text.c_str());
        expected += text;
    }
    file.Flush();
    EXPECT_EQ(folder.Read("a"), expected);
    const auto closeOnFullDisk = [&] {
        file.Write("one too many");
        const LONG code = CodeOf([&] { file.Close(); });
        return file.IsOpen() ? -1 : code;
    };
    EXPECT_EQ(OnFullDisk(10, closeOnFullDisk), 112);
    file.Close();
    EXPECT_EQ(CodeOf([&] { file.WriteCRLF(); }), 6);
}
