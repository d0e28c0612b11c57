#include "qellib10/file/csv_reader.h"

#include <cstdint>
#include <stdexcept>
#include <utility>

#include "qellib10/file/csv_row_scanner.h"
#include "qellib10/file/csv_separator.h"
#include "qellib10/file/csv_text_source.h"

namespace qel {
namespace {

constexpr std::size_t kSample = 256 * 1024;  // of the text, in which the separator is found
constexpr std::string_view kSeparatorLine = "sep=";

std::size_t LineBreaks(std::string_view text) {
    std::size_t breaks = 0;
    for (std::size_t i = 0; i < text.size(); ++i)
        breaks += text[i] == '\r' || (text[i] == '\n' && (i == 0 || text[i - 1] != '\r')) ? 1 : 0;
    return breaks;
}

}  // namespace

class CsvReader::Table {
public:
    Table(CFile* file, std::string_view text, const CsvFormat& format)
        : m_source(file, text, format.encoding),
          m_format(format),
          m_scanner({format.separator, format.mark, format.isLineARow, false}) {}

    bool Next() {
        m_hasRow = false;
        if (!m_failure && (m_isStarted || Start())) m_hasRow = ReadRow();
        return m_hasRow;
    }

    std::span<const std::string_view> Fields() const {
        return m_hasRow ? std::span(m_scanner.Fields()) : std::span<const std::string_view>();
    }
    std::size_t Line() const { return m_line; }
    char Separator() const { return m_isStarted ? m_format.separator : '\0'; }
    const std::optional<CsvFailure>& Failure() const { return m_failure; }

private:
    std::string_view Rest() const { return std::string_view(m_text).substr(m_at); }

    bool Fail(CsvFailure::Kind kind, std::size_t line, std::uint64_t byte = 0, const std::string& cause = {}) {
        m_failure = CsvFailure{kind, line, byte, cause};
        return false;
    }

    // Appends the next blocks to what is not read yet. What comes before an invalid character is given out first.
    bool Fill() {
        m_text.erase(0, std::exchange(m_at, 0));
        try {
            const std::size_t enough = 2 * m_text.size();  // a long row is not scanned again for each block
            const bool wasValid = m_isValid;
            do {
                m_isValid = m_source.Append(m_text);
            } while (m_isValid && !m_source.IsAll() && m_text.size() < enough);
            if (wasValid) return true;
        } catch (const CFileException& failure) {
            return Fail(CsvFailure::Kind::kNotRead, m_nextLine, 0, failure.what());
        } catch (const std::runtime_error& failure) {  // the system does not know the code page
            return Fail(CsvFailure::Kind::kNotRead, m_nextLine, 0, failure.what());
        }
        const std::size_t line = m_nextLine + LineBreaks(m_text);
        return Fail(CsvFailure::Kind::kInvalidCharacter, line, m_source.InvalidByte(), m_source.InvalidCause());
    }

    bool Start() {
        const bool isGiven = m_format.separator != 0;
        do {
            if (!Fill()) return false;
        } while (!isGiven && m_text.size() < kSample && m_isValid && !m_source.IsAll());
        m_isStarted = true;
        if (isGiven || TakeSeparatorLine()) return true;
        CsvSyntax syntax{0, m_format.mark, m_format.isLineARow, true};
        syntax.separator = m_format.separator = FindSeparator(m_text, m_source.IsAll(), syntax);
        m_scanner = CsvRowScanner(syntax);
        return true;
    }

    bool TakeSeparatorLine() {
        if (!m_text.starts_with(kSeparatorLine)) return false;
        const std::size_t end = m_text.find_first_of("\r\n");
        if (end != kSeparatorLine.size() + 1 || m_text[end - 1] == m_format.mark) return false;
        m_format.separator = m_text[end - 1];
        m_at = end + (m_text.compare(end, 2, "\r\n") == 0 ? 2 : 1);
        m_nextLine = 2;
        m_scanner = CsvRowScanner({m_format.separator, m_format.mark, m_format.isLineARow, false});
        return true;
    }

    bool ReadRow() {
        std::optional<std::size_t> size;
        while (!(size = ScanRow())) {
            if (Rest().empty() && m_source.IsAll()) return false;
            if (Rest().size() > kLongestRow) break;
            if (!Fill()) return false;
        }
        if (!size || *size > kLongestRow) return Fail(CsvFailure::Kind::kLongRow, m_nextLine);
        if (m_scanner.OpenMark()) return Fail(CsvFailure::Kind::kOpenMark, m_nextLine + *m_scanner.OpenMark());
        m_scanner.TakeOutMarks(m_text.data() + m_at);
        m_at += *size;
        m_line = std::exchange(m_nextLine, m_nextLine + m_scanner.LineBreaks());
        return true;
    }

    std::optional<std::size_t> ScanRow() {
        return Rest().empty() ? std::nullopt : m_scanner.Scan(Rest(), m_source.IsAll());
    }

    CsvTextSource m_source;
    CsvFormat m_format;
    CsvRowScanner m_scanner;
    std::string m_text;
    std::size_t m_at = 0;  // the start of what is not read yet
    std::size_t m_line = 0, m_nextLine = 1;
    bool m_isStarted = false, m_isValid = true, m_hasRow = false;
    std::optional<CsvFailure> m_failure;
};

std::string CsvFailure::Text() const {
    const std::string place = "line " + std::to_string(line);
    switch (kind) {
        case Kind::kNotRead:
            return place + ": " + cause;
        case Kind::kInvalidCharacter:
            return place + ", byte " + std::to_string(byte) + ": " + cause;
        case Kind::kOpenMark:
            return place + ": a quotation mark that none closes";
        case Kind::kLongRow:
            break;
    }
    return place + ": a row of more than " + std::to_string(CsvReader::kLongestRow) +
           " bytes; perhaps a quotation mark that none closes";
}

CsvReader::CsvReader(CFile& file, const CsvFormat& format)
    : m_table(std::make_unique<Table>(&file, std::string_view(), format)) {}
CsvReader::CsvReader(std::string_view text, const CsvFormat& format)
    : m_table(std::make_unique<Table>(nullptr, text, format)) {}
CsvReader::~CsvReader() = default;
CsvReader::CsvReader(CsvReader&& other) noexcept = default;
CsvReader& CsvReader::operator=(CsvReader&& other) noexcept = default;

bool CsvReader::Next() { return m_table->Next(); }
std::span<const std::string_view> CsvReader::Fields() const { return m_table->Fields(); }
std::size_t CsvReader::Line() const { return m_table->Line(); }
char CsvReader::Separator() const { return m_table->Separator(); }
const std::optional<CsvFailure>& CsvReader::Failure() const { return m_table->Failure(); }

}  // namespace qel
