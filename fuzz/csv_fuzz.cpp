// Law: the rows of any text come in the order of their lines, and what is read of it, written with each field in
// quotation marks and read again, is the same. The first byte chooses how the text is read.
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "law.h"
#include "qellib10/file/csv_reader.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 4096;
constexpr char kSeparators[] = {0, ',', ';', '\t', '|', ' ', 'x'};

using Rows = std::vector<std::vector<std::string>>;

qel::CsvFormat Format(std::uint8_t choice) {
    constexpr qel::CsvEncoding kEncodings[] = {qel::CsvEncoding::kUtf8, qel::CsvEncoding::kCodePage932,
                                               qel::CsvEncoding::kCodePage1252, qel::CsvEncoding::kUnchecked};
    qel::CsvFormat format;
    format.encoding = kEncodings[choice % 4];
    format.isLineARow = (choice & 4) != 0;
    format.separator = kSeparators[choice / 8 % std::size(kSeparators)];
    format.mark = choice / 8 >= 2 * std::size(kSeparators) ? '\0' : '"';
    return format;
}

Rows Read(qel::CsvReader& table) {
    Rows rows;
    std::size_t line = 0;
    while (table.Next()) {
        Require(table.Line() > line && !table.Fields().empty());
        line = table.Line();
        rows.emplace_back(table.Fields().begin(), table.Fields().end());
    }
    Require(table.Fields().empty() && (!table.Failure() || table.Failure()->line >= line));
    return rows;
}

std::string Written(const Rows& rows, char separator) {
    std::string text;
    for (const std::vector<std::string>& row : rows) {
        for (const std::string& field : row) {
            text += &field != row.data() ? std::string(1, separator) + '"' : "\"";
            for (const char c : field) text.append(c == '"' ? 2 : 1, c);
            text += '"';
        }
        text += '\n';
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0 || size > kLongestUsefulInput) return 0;
    const std::string text = Text(data + 1, size - 1);
    qel::CsvFormat format = Format(data[0]);
    qel::CsvReader table(text, format);
    const Rows rows = Read(table);
    if (table.Separator() == '"') return 0;  // "sep=" names it where it is not a mark

    const bool isUnchecked = format.encoding == qel::CsvEncoding::kUnchecked;
    format = {table.Separator(), '"', false, isUnchecked ? qel::CsvEncoding::kUnchecked : qel::CsvEncoding::kUtf8};
    const std::string written = Written(rows, table.Separator());
    qel::CsvReader again(written, format);
    Require(Read(again) == rows && !again.Failure());
    return 0;
}
