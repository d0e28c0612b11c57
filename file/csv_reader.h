#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/file.h"

namespace qel {

/// The encoding of a file's text. A byte order mark overrides it: after one of UTF-16 or UTF-8 the file is read as
/// that; after one of UTF-8, kUnchecked stays unchecked.
enum class CsvEncoding {
    kUtf8,
    kCodePage932,
    kCodePage1252,
    kUnchecked  ///< any with single bytes for ASCII: other bytes are passed on as they are, whatever they mean
};

/// How a table is written.
struct CsvFormat {
    char separator = 0;       ///< an ASCII character; 0: found from the start of the table. A blank: runs of blanks
    char mark = '"';          ///< the quotation mark, an ASCII character; 0: none
    bool isLineARow = false;  ///< a line break ends a row between quotation marks too
    CsvEncoding encoding = CsvEncoding::kUtf8;
};

/// Why a table is not read to its end.
struct QELLIB10_API CsvFailure {
    enum class Kind {
        kNotRead,           ///< the file cannot be read
        kInvalidCharacter,  ///< a zero byte, or bytes that are not a character of the encoding
        kOpenMark,          ///< no quotation mark closes the one in the line
        kLongRow            ///< a row of more than CsvReader::kLongestRow bytes
    };
    Kind kind = Kind::kNotRead;
    std::size_t line = 0;         ///< from 1; the first line of a row that is too long
    unsigned long long byte = 0;  ///< from 1, in what is read: the first of the invalid character; else 0
    std::string cause;            ///< in English, of kNotRead and kInvalidCharacter

    /// One line for people: "line 3, byte 57: not a character of UTF-8, or a zero byte"
    std::string Text() const;
};

/// Reads a table of comma-separated text row by row, in constant memory: what CQCSVFile writes, and what spreadsheets
/// and instruments write. A row that is cut or read in part would become a wrong result without a sign of it, so what
/// is damaged ends the table with a failure that has its line.
///
/// @code
/// CFile file("curve.csv", CFile::modeRead | CFile::shareDenyWrite);
/// qel::CsvReader table(file);
/// qel::TitrationCurve curve;
/// while (table.Next()) {
///     if (table.Fields().size() < 2) continue;
///     const auto volume = qel::ReadMeasuredValue(table.Fields()[0]);
///     const auto signal = qel::ReadMeasuredValue(table.Fields()[1]);
///     if (volume && signal) {
///         curve.volume.push_back(volume->value);
///         curve.signal.push_back(signal->value);
///     } else {
///         std::printf("line %zu is not a reading\n", table.Line());  // a heading, or a reading that is lost
///     }
/// }
/// if (table.Failure()) std::puts(table.Failure()->Text().c_str());  // the curve is not whole
/// @endcode
///
/// Fields are UTF-8. Blanks and tabs around a field do not belong to it; between quotation marks everything does, also
/// separators and line breaks, and a doubled mark is one. A mark inside a bare field is a character like any other.
/// Text after a closing mark belongs to the field. Rows end with LF, CR LF or CR. A blank line is a row with one empty
/// field.
///
/// The separator that is found is the one that gives the most rows with two measured values (ReadMeasuredValue) in the
/// first 256 KiB (4000 rows at most), so "1,5;2,5" is two numbers with decimal commas. A first line "sep=;" names it,
/// and is not a row. Where bars are found, those at both ends of a row are its border.
///
/// Nothing is thrown but std::bad_alloc. One thread at a time.
class QELLIB10_API CsvReader {
public:
    /// Bytes of a row in UTF-8 with its line end, at most.
    static constexpr std::size_t kLongestRow = 1 << 20;

    /// Reads @p file from its position on. The file must stay open as long as this object is used; the reader is ahead
    /// in it.
    explicit CsvReader(CFile& file, const CsvFormat& format = {});
    /// Reads @p text, which must outlive this object.
    explicit CsvReader(std::string_view text, const CsvFormat& format = {});
    ~CsvReader();
    CsvReader(CsvReader&& other) noexcept;
    CsvReader& operator=(CsvReader&& other) noexcept;

    /// Goes to the next row.
    /// @return false after the last one and after a failure; there are no fields then
    bool Next();

    /// The fields of the row, at least one; valid up to the next call of Next.
    std::span<const std::string_view> Fields() const;
    /// The line in which the row starts, from 1.
    std::size_t Line() const;
    /// The separator, also the one that was found; 0 before the first call of Next.
    char Separator() const;
    /// Why there is no further row; nothing while all is well and at the end of the table.
    const std::optional<CsvFailure>& Failure() const;

private:
    class Table;

    std::unique_ptr<Table> m_table;
};

}  // namespace qel
