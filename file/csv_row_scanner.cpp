#include "qellib10/file/csv_row_scanner.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace qel {
namespace {

constexpr std::uint64_t kOnes = 0x0101010101010101, kHighBits = kOnes * 0x80;

constexpr std::uint64_t Eight(char c) { return kOnes * static_cast<unsigned char>(c); }

// High bits of the bytes that are zero; of those after the first one perhaps too many.
constexpr std::uint64_t ZeroBytes(std::uint64_t bytes) { return (bytes - kOnes) & ~bytes & kHighBits; }

// The first @p wanted or line end. Fields are short, so eight bytes at once are mostly all.
const char* FindOrLineEnd(const char* at, const char* end, char wanted) {
    if constexpr (std::endian::native == std::endian::little) {
        for (std::uint64_t bytes; end - at >= static_cast<std::ptrdiff_t>(sizeof bytes); at += sizeof bytes) {
            std::memcpy(&bytes, at, sizeof bytes);
            const std::uint64_t found =
                ZeroBytes(bytes ^ Eight(wanted)) | ZeroBytes(bytes ^ Eight('\n')) | ZeroBytes(bytes ^ Eight('\r'));
            if (found != 0) return at + std::countr_zero(found) / 8;
        }
    }
    while (at != end && *at != wanted && *at != '\n' && *at != '\r') ++at;
    return at;
}

// In place. A doubled mark between marks is one.
std::string_view WithoutMarks(char* text, std::size_t size, char mark) {
    bool isWithin = false;
    char* to = text;
    for (std::size_t i = 0; i < size; ++i) {
        if (text[i] != mark) {
            *to++ = text[i];
        } else if (isWithin && i + 1 < size && text[i + 1] == mark) {
            *to++ = text[i++];
        } else {
            isWithin = !isWithin;
        }
    }
    return {text, static_cast<std::size_t>(to - text)};
}

}  // namespace

std::optional<std::size_t> CsvRowScanner::Scan(std::string_view text, bool isAll) {
    m_fields.clear();
    m_withMarks.clear();
    m_openMark.reset();
    m_lineBreaks = 0;
    m_start = m_at = text.data();
    m_end = m_start + text.size();
    do {
        SkipBlanks();
        if (m_at != m_end && *m_at == m_syntax.mark && m_syntax.mark != 0) {
            ScanMarked();
        } else {
            ScanBare();
        }
        if (m_at == m_end && !isAll) return std::nullopt;
    } while (GoOverSeparator());
    return EndRow(text, isAll);
}

void CsvRowScanner::ScanBare() {
    const char* const start = m_at;
    const char* at = FindOrLineEnd(start, m_end, m_syntax.separator);
    if (m_syntax.separator == ' ') at = FindOrLineEnd(start, at, '\t');
    m_at = at;
    while (at != start && IsBlank(at[-1])) --at;
    m_fields.emplace_back(start, static_cast<std::size_t>(at - start));
}

void CsvRowScanner::ScanMarked() {
    const char* const start = m_at;
    ScanToMark();
    const char* const closed = m_openMark ? nullptr : m_at - 1;
    bool isPlain = closed != nullptr && m_isUndoubled;
    while (m_at != m_end && !IsSeparator(*m_at) && !IsLineEnd(*m_at)) {
        if (*m_at == m_syntax.mark) {
            isPlain = false;
            ScanToMark();
        } else {
            isPlain &= IsBlank(*m_at++);
        }
    }
    if (isPlain) return void(m_fields.emplace_back(start + 1, static_cast<std::size_t>(closed - start - 1)));
    const char* end = m_at;
    while (IsBlank(end[-1])) --end;
    m_withMarks.push_back(m_fields.size());
    m_fields.emplace_back(start, static_cast<std::size_t>(end - start));
}

// Moves past the closing mark. Without one, moves to the end of the text, or of the line if a row ends there.
void CsvRowScanner::ScanToMark() {
    const char mark = m_syntax.mark;
    m_openMark = m_lineBreaks;
    m_isUndoubled = true;
    for (++m_at; (m_at = FindOrLineEnd(m_at, m_end, mark)) != m_end; ++m_at) {
        if (*m_at == mark) {
            if (m_at + 1 == m_end || m_at[1] != mark) {
                ++m_at;
                return m_openMark.reset();
            }
            m_isUndoubled = false;
            ++m_at;
        } else {
            if (m_syntax.isLineARow) return;
            if (*m_at == '\r' || m_at[-1] != '\r') ++m_lineBreaks;
        }
    }
}

// @return whether a field follows
bool CsvRowScanner::GoOverSeparator() {
    if (m_syntax.separator == ' ') {
        const char* const before = m_at;
        SkipBlanks();
        return m_at != before && m_at != m_end && !IsLineEnd(*m_at);
    }
    if (m_at == m_end || !IsSeparator(*m_at)) return false;
    ++m_at;
    return true;
}

std::optional<std::size_t> CsvRowScanner::EndRow(std::string_view text, bool isAll) {
    if (m_syntax.mayHaveBorders) DropBorders(text.substr(0, static_cast<std::size_t>(m_at - m_start)));
    if (m_syntax.isLineARow) m_openMark.reset();
    if (m_at == m_end && !isAll) return std::nullopt;
    if (m_at != m_end) {
        const bool isReturn = *m_at++ == '\r';
        if (isReturn && m_at == m_end && !isAll) return std::nullopt;  // a line feed may belong to it
        if (isReturn && m_at != m_end && *m_at == '\n') ++m_at;
        ++m_lineBreaks;
    }
    return static_cast<std::size_t>(m_at - m_start);
}

void CsvRowScanner::DropBorders(std::string_view row) {
    const std::size_t first = row.find_first_not_of(" \t");
    if (m_syntax.separator != '|' || m_fields.size() < 3 || row[first] != '|') return;
    if (row[row.find_last_not_of(" \t")] != '|') return;
    m_fields.pop_back();
    m_fields.erase(m_fields.begin());
    for (std::size_t& field : m_withMarks) --field;
}

void CsvRowScanner::TakeOutMarks(char* text) {
    for (const std::size_t index : m_withMarks) {
        std::string_view& field = m_fields[index];
        field = WithoutMarks(text + (field.data() - m_start), field.size(), m_syntax.mark);
    }
}

}  // namespace qel
