#include "qellib10/print/table_cells.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace qel {
namespace {

constexpr int kGap = 14;  // tenths of a millimetre, before a table

using Texts = std::vector<std::string>;

// A row of a table: of each column its lines.
using Row = std::vector<Texts>;

std::size_t LinesOf(const Row& row) {
    std::size_t lines = 1;
    for (const Texts& column : row) lines = std::max(lines, column.size());
    return lines;
}

std::size_t ColumnsOf(const PrintTable& table) {
    std::size_t columns = table.columns.size();
    for (const Texts& row : table.rows) columns = std::max(columns, row.size());
    return columns;
}

PrintTable WithoutEmptyColumns(const PrintTable& table) {
    PrintTable result{table.title, {}, std::vector<Texts>(table.rows.size())};
    const auto hasText = [](const Texts& row, std::size_t column) {
        return column < row.size() && !row[column].empty();
    };
    for (std::size_t i = 0; i < ColumnsOf(table); ++i) {
        if (std::ranges::none_of(table.rows, [&](const Texts& row) { return hasText(row, i); })) continue;
        result.columns.push_back(i < table.columns.size() ? table.columns[i] : "");
        for (std::size_t row = 0; row < table.rows.size(); ++row)
            result.rows[row].push_back(hasText(table.rows[row], i) ? table.rows[row][i] : "");
    }
    return result;
}

// The widest columns become narrower until all fit.
std::vector<int> Narrowed(std::vector<int> widths, int width) {
    const auto sumUpTo = [&](int most) {
        return std::accumulate(widths.begin(), widths.end(), 0,
                               [&](int sum, int each) { return sum + std::min(each, most); });
    };
    int most = width;
    while (most > 1 && sumUpTo(most) > width) --most;
    for (int& each : widths) each = std::min(each, most);
    return widths;
}

class Cells {
public:
    Cells(const std::string& continued, const CRect& area, const TableText& titles, const TableText& texts)
        : m_continued(continued), m_area(area), m_titles(titles), m_texts(texts) {
        StartCell();
    }

    void Add(const PrintTable& table) {
        const std::vector<int> widths = WidthsOf(table);
        m_title = table.title;
        m_columns = table.columns.empty() ? Row() : Wrapped(table.columns, widths);
        m_widths = widths;
        const Row first = table.rows.empty() ? Row() : Wrapped(table.rows.front(), widths);
        const int needed = kGap + HeadHeight() + HeightOf(std::min(LinesOf(first), kMostTogether));
        if (!m_cells.back().empty() && m_y + needed > m_area.bottom) StartCell();
        if (!m_cells.back().empty()) m_y += kGap;
        AddHead("");
        for (const Texts& row : table.rows) Add(Wrapped(row, widths));
    }

    std::vector<std::vector<PlacedText>> Take() { return std::move(m_cells); }

private:
    static constexpr std::size_t kMostTogether = 8;  // lines of a row that are not separated

    static int HeightOf(std::size_t lines) { return static_cast<int>(lines) * kTableRow; }
    int HeadHeight() const {
        return HeightOf(TitleLines("").size()) + (m_columns.empty() ? 0 : HeightOf(LinesOf(m_columns)) + 2);
    }

    void StartCell() {
        m_cells.emplace_back();
        m_y = m_area.top;
    }

    // Of the longest text of each column, or of the longest part of one that semicolons divide.
    std::vector<int> WidthsOf(const PrintTable& table, bool isDivided) const {
        std::vector<int> widths;
        const auto take = [&](const Texts& row) {
            widths.resize(std::max(widths.size(), row.size()));
            for (std::size_t i = 0; i < row.size(); ++i) {
                const int text = isDivided ? m_texts.WidthOfParts(row[i]) : m_texts.WidthOf(row[i]);
                widths[i] = std::max(widths[i], text + kTableBetween);
            }
        };
        take(table.columns);
        for (const Texts& row : table.rows) take(row);
        return widths;
    }

    // What does not fit side by side is divided at semicolons first, from the last column on, and then anywhere.
    std::vector<int> WidthsOf(const PrintTable& table) const {
        const std::vector<int> whole = WidthsOf(table, false);
        std::vector<int> widths = WidthsOf(table, true);
        const int width = m_area.Width() - kTableIndent;
        int left = width - std::accumulate(widths.begin(), widths.end(), 0);
        if (left < 0) return Narrowed(std::move(widths), width);
        for (std::size_t i = 0; i < widths.size(); ++i) {
            const int more = std::min(left, whole[i] - widths[i]);
            widths[i] += more;
            left -= more;
        }
        return widths;
    }

    Row Wrapped(const Texts& texts, const std::vector<int>& widths) const {
        Row row;
        for (std::size_t i = 0; i < texts.size(); ++i)
            row.push_back(m_texts.Wrapped(texts[i], widths[i] - kTableBetween));
        return row;
    }

    Texts TitleLines(const std::string& continued) const {
        return m_titles.Wrapped(m_title + continued, m_area.Width());
    }

    void AddHead(const std::string& continued) {
        for (const std::string& line : TitleLines(continued)) {
            StartLine();
            m_cells.back().push_back({{m_area.left, m_y, m_area.right, m_y + kTableRow}, kTableTitle, line});
            m_y += kTableRow;
        }
        if (m_columns.empty()) return;
        for (std::size_t line = 0; line < LinesOf(m_columns); ++line) AddLine(m_columns, line);
        m_cells.back().push_back({{m_area.left + kTableIndent, m_y, m_area.right, m_y}, 0, ""});
        m_y += 2;
    }

    void Add(const Row& row) {
        const std::size_t lines = LinesOf(row);
        if (lines <= kMostTogether) RequireSpace(lines);
        for (std::size_t line = 0; line < lines; ++line) {
            RequireSpace(1);
            AddLine(row, line);
        }
    }
    void RequireSpace(std::size_t lines) {
        if (m_y + HeightOf(lines) <= m_area.bottom) return;
        StartCell();
        if (2 * HeadHeight() <= m_area.Height()) AddHead(m_continued);
    }
    // Of a head that is higher than a cell the lines go on in the next one.
    void StartLine() {
        if (m_y + kTableRow > m_area.bottom) StartCell();
    }

    void AddLine(const Row& row, std::size_t line) {
        StartLine();
        int x = m_area.left + kTableIndent;
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (line < row[i].size() && !row[i][line].empty())
                m_cells.back().push_back({{x, m_y, x + m_widths[i], m_y + kTableRow}, kTablePlain, row[i][line]});
            x += m_widths[i];
        }
        m_y += kTableRow;
    }

    const std::string& m_continued;
    const CRect m_area;
    const TableText& m_titles;
    const TableText& m_texts;
    std::vector<std::vector<PlacedText>> m_cells;
    int m_y = 0;
    std::string m_title;  // of the table that is being added, as the following
    Row m_columns;
    std::vector<int> m_widths;
};

}  // namespace

std::vector<std::vector<PlacedText>> CellsOf(const std::vector<PrintTable>& tables, const std::string& continued,
                                             const CRect& area, const TableText& titles, const TableText& texts) {
    Cells cells(continued, area, titles, texts);
    for (const PrintTable& table : tables) cells.Add(table.columns.empty() ? table : WithoutEmptyColumns(table));
    return cells.Take();
}

}  // namespace qel
