#include "qellib10/file/csv_reader.h"

#include <sys/resource.h>

#include <cstring>

#include "qellib10/file/q_csv_file.h"
#include "qellib10/platform/storage/mem_file.h"
#include "qellib10/platform/text/code_page.h"

#include "../support/child_process.h"
#include "../support/test.h"

namespace {

using qel::CsvEncoding;
using std::string_literals::operator""s;

// "1(a)(b) 2(c)": each row after its line, at the end what went wrong.
std::string Rows(qel::CsvReader table) {
    std::string rows;
    while (table.Next()) {
        rows += (rows.empty() ? "" : " ") + std::to_string(table.Line());
        for (const std::string_view field : table.Fields()) rows += '(' + std::string(field) + ')';
    }
    return table.Failure() ? rows + (rows.empty() ? "" : " ") + table.Failure()->Text() : rows;
}
std::string Rows(const std::string& text, const qel::CsvFormat& format = {}) {
    return Rows(qel::CsvReader(text, format));
}

}  // namespace

TEST(CsvReader, ReadsTablesAsTheyAreWritten) {
    for (const auto& [text, expected] : Cases<std::string, std::string>{
             {"", ""},
             {"a,b\r\nc,d", "1(a)(b) 2(c)(d)"},
             {"a\r\rb,\n\n", "1(a) 2() 3(b)() 4()"},
             {"1,5;2,5\n", "1(1,5)(2,5)"},
             {"t\tV\n1,5\t2,5\n", "1(t)(V) 2(1,5)(2,5)"},
             {"1 2,5\n 3   4,5 \n", "1(1)(2,5) 2(3)(4,5)"},
             {"0,5 215\n1,0 230\n", "1(0,5)(215) 2(1,0)(230)"},
             {"1 000,7\n", "1(1 000)(7)"},
             {"0,1 | 7,2\n", "1(0,1)(7,2)"},
             {"| mL | pH |\n| 1 | 7 |\n1|2", "1(mL)(pH) 2(1)(7) 3(1)(2)"},
             {"1.5 mL|7\n|\"\"|x|", "1(1.5 mL)(7) 2()(x)"},
             {" a , \"b\" ,\" c\"\n", "1(a)(b)( c)"},
             {"\"a\"\"b\",\"\"\"\"", "1(a\"b)(\")"},
             {"5\" pipe,\"a\"b,\"a\" \"b,c\"", "1(5\" pipe)(ab)(a b,c)"},
             {"\"x\ny\r\nz\",1\n2,3", "1(x\ny\r\nz)(1) 4(2)(3)"},
             {"sep=|\r\n1,2|3\n", "2(1,2)(3)"},
             {"\xEF\xBB\xBF\"\xC2\xB5L\";1", "1(\xC2\xB5L)(1)"},
             {"\xFF\xFE\xB5\0;\0\x3D\xD8\0\xDE"s, "1(\xC2\xB5)(\xF0\x9F\x98\x80)"},
             {"\xFE\xFF\0a\0,\0b"s, "1(a)(b)"},
         })
        EXPECT_EQ(Rows(text), expected) << text;
}

TEST(CsvReader, ReadsAsTheFormatSays) {
    for (const auto& [text, format, expected] : Cases<std::string, qel::CsvFormat, const char*>{
             {"|a;1|", {.separator = '|'}, "1()(a;1)()"},
             {"a  b\tc", {.separator = ' '}, "1(a)(b)(c)"},
             {"'a,b',\"c", {.mark = '\''}, "1(a,b)(\"c)"},
             {"\"a,b", {.mark = 0}, "1(\"a)(b)"},
             {"\"a;1\n\"b\";2", {.separator = ';', .isLineARow = true}, "1(a;1) 2(b)(2)"},
             {"\x83\x7C|\xB1", {.separator = '|', .encoding = CsvEncoding::kCodePage932}, "1(\u30DD)(\uFF71)"},
             {"\xB5L,\x80", {.encoding = CsvEncoding::kCodePage1252}, "1(\u00B5L)(\u20AC)"},
             {"\xB5L,\x80", {.encoding = CsvEncoding::kUnchecked}, "1(\xB5L)(\x80)"},
             {"\xEF\xBB\xBF\xB5,1", {.encoding = CsvEncoding::kUnchecked}, "1(\xB5)(1)"},
         })
        EXPECT_EQ(Rows(text, format), expected) << text;
}

TEST(CsvReader, ReportsDamageWithItsPlace) {
    const qel::CsvFormat japanese{.encoding = CsvEncoding::kCodePage932};
    const std::string longest(qel::CsvReader::kLongestRow, 'a');
    for (const auto& [text, format, expected] : Cases<std::string, qel::CsvFormat, const char*>{
             {"a\n\"\r\n\"b\xFF,1\n", {}, "1(a) line 3, byte 8: not a character of UTF-8, or a zero byte"},
             {"a\n\xE3\x81", {}, "1(a) line 2, byte 3: not a character of UTF-8, or a zero byte"},
             {"\xEF\xBB\xBF\xED\xA0\x80", {}, "line 1, byte 4: not a character of UTF-8, or a zero byte"},
             {"a\n\0b"s, {.encoding = CsvEncoding::kUnchecked}, "1(a) line 2, byte 3: a zero byte"},
             {"\xFF\xFE"
              "a\0\n\0b"s,
              {},
              "1(a) line 2, byte 7: not a character of UTF-16, or a zero byte"},
             {"\xFE\xFF\xDC\0"s, {}, "line 1, byte 3: not a character of UTF-16, or a zero byte"},
             {"\xFE\xFF\xD8\0\0a"s, {}, "line 1, byte 3: not a character of UTF-16, or a zero byte"},
             {"\x82\x3D", japanese, "line 1, byte 1: not a character of code page 932, or a zero byte"},
             {"1\n2,\x82", japanese, "1(1) line 2, byte 5: not a character of code page 932, or a zero byte"},
             {"a\n\"b\n\",\"c\n", {}, "1(a) line 3: a quotation mark that none closes"},
             {"a\n" + longest + "\n",
              {},
              "1(a) line 2: a row of more than 1048576 bytes; perhaps a quotation mark that none closes"},
         })
        EXPECT_EQ(Rows(text, format), expected);
    EXPECT_EQ(Rows(longest), "1(" + longest + ')');
    CFile closed;
    EXPECT_EQ(Rows(qel::CsvReader(closed)).substr(0, 8), "line 1: ");
}

// Blocks of 16 KiB end in each place of what follows.
TEST(CsvReader, RowsDoNotDependOnBlocks) {
    const std::string end = "\r\n\"b\"\"c\" ,\xE3\x81\x82\xF0\x9F\x98\x80\r\n\"d\r\n\"\r\r\n\"e";
    for (std::size_t shift = 0; shift <= end.size(); ++shift) {
        const std::string first((64 << 10) - shift, 'a');
        const std::string text = first + end;
        CMemFile file;
        file.Attach(reinterpret_cast<const BYTE*>(text.data()), static_cast<UINT>(text.size()));
        const std::string expected =
            "1(" + first + ") 2(b\"c)(\u3042\U0001F600) 3(d\r\n) 5() " + "line 6: a quotation mark that none closes";
        EXPECT_EQ(Rows(qel::CsvReader(file, {.separator = ','})), expected) << shift;
    }
}

TEST(CsvReader, ReadsWhatIsWrittenFieldForField) {
    const std::vector<std::string> fields = {"", " a ", "a\"b", "\"", "1,5", "x\r\ny\n", "\t;|,", "\x83\x7C\x83\x5C"};
    for (const char separator : {',', ';', '\t', '|', ' '}) {
        const TempFolder folder;
        CQCSVFile file;
        ASSERT_TRUE(file.Open(folder.Path("a"), CFile::modeReadWrite | CFile::modeCreate));
        file.SetDelimiter(CString(separator));
        for (std::size_t i = 0; i < fields.size(); ++i) {
            if (i > 0) file.WriteDelimiter();
            file.WriteCSVString(fields[i].c_str());
        }
        file.WriteCRLF();
        file.SeekToBegin();
        qel::CsvReader table(file, {.separator = separator, .encoding = CsvEncoding::kCodePage932});
        ASSERT_TRUE(table.Next());
        std::vector<std::string> expected;
        for (const std::string& field : fields) expected.push_back(qel::ToUtf8(field));
        EXPECT_EQ(std::vector<std::string>(table.Fields().begin(), table.Fields().end()), expected) << separator;
        EXPECT_FALSE(table.Next());
    }
}

namespace {

// A table of 128 MiB that is nowhere.
class LongTable : public CMemFile {
public:
    UINT Read(void* buffer, UINT count) override {
        constexpr std::string_view kRow = "0.125;\"-7.005\";x\n";
        const UINT size = static_cast<UINT>(std::min<std::size_t>(count / kRow.size(), m_left) * kRow.size());
        for (std::size_t at = 0; at < size; at += kRow.size())
            std::memcpy(static_cast<char*>(buffer) + at, kRow.data(), kRow.size());
        m_left -= size / kRow.size();
        return size;
    }

private:
    std::size_t m_left = 8 << 20;
};

}  // namespace

TEST(CsvReader, NeedsNoMemoryForALongTable) {
    EXPECT_TRUE(HoldsInChild([] {
        rusage before = {}, after = {};
        ::getrusage(RUSAGE_SELF, &before);
        LongTable file;
        qel::CsvReader table(file);
        std::size_t rows = 0;
        while (table.Next()) rows += table.Fields().size() == 3 ? 1 : 0;
        ::getrusage(RUSAGE_SELF, &after);
        EXPECT_EQ(rows, 8u << 20);
        EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 8 << 10);  // KiB
    }));
}
