#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// How fields are written.
struct CsvSyntax {
    char separator = ',';
    char mark = '"';              // 0: none
    bool isLineARow = false;      // a line break ends a row between marks too
    bool mayHaveBorders = false;  // bars before the first field and after the last one are not separators
};

/// Finds the fields of one row after the other in a text that may not be there as a whole.
class CsvRowScanner {
public:
    explicit CsvRowScanner(const CsvSyntax& syntax) : m_syntax(syntax) {}

    /// Finds the fields of the row that @p text starts with.
    /// @param isAll whether the table ends with @p text
    /// @return the row's bytes with its line end, or nothing when it may go on after @p text. The other operations are
    /// about the row that was found last.
    std::optional<std::size_t> Scan(std::string_view text, bool isAll);

    /// Takes the marks out of fields that have them inside. @param text the one that was scanned, which is changed in
    /// place
    void TakeOutMarks(char* text);

    /// The fields, within the text.
    const std::vector<std::string_view>& Fields() const { return m_fields; }
    /// Line breaks in the row, that at its end too.
    std::size_t LineBreaks() const { return m_lineBreaks; }
    /// The line breaks before the mark that no other one closes up to the end of the text.
    std::optional<std::size_t> OpenMark() const { return m_openMark; }

private:
    bool IsBlank(char c) const { return c == ' ' || (c == '\t' && m_syntax.separator != '\t'); }
    bool IsSeparator(char c) const { return c == m_syntax.separator || (c == '\t' && m_syntax.separator == ' '); }
    void SkipBlanks() {
        while (m_at != m_end && IsBlank(*m_at)) ++m_at;
    }
    static bool IsLineEnd(char c) { return c == '\n' || c == '\r'; }
    void ScanBare();
    void ScanMarked();
    void ScanToMark();
    bool GoOverSeparator();
    std::optional<std::size_t> EndRow(std::string_view text, bool isAll);
    void DropBorders(std::string_view row);

    CsvSyntax m_syntax;
    std::vector<std::string_view> m_fields;
    std::vector<std::size_t> m_withMarks;  // indexes of fields whose marks are to be taken out
    std::size_t m_lineBreaks = 0;
    std::optional<std::size_t> m_openMark;
    bool m_isUndoubled = true;  // what ScanToMark went over has no mark in it
    const char* m_start = nullptr;
    const char* m_at = nullptr;
    const char* m_end = nullptr;
};

}  // namespace qel
