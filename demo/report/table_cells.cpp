#include "demo/report/table_cells.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "demo/report/point_font.h"

namespace titration {
namespace {

constexpr int kTitle = 80, kPlain = 70;       // tenths of a point
constexpr int kRow = 31, kGap = 14;           // tenths of a millimetre: a line, and the space before a table
constexpr int kBetween = 25, kIndented = 10;  // between columns, and before the first

using Texts = std::vector<std::string>;

// A row of a table: of each column its lines.
using Row = std::vector<Texts>;

std::size_t LinesOf(const Row& row) {
    std::size_t lines = 1;
    for (const Texts& column : row) lines = std::max(lines, column.size());
    return lines;
}

// The bytes of the character of UTF-8 that starts @p text, which is not empty.
std::size_t FirstCharacter(std::string_view text) {
    std::size_t size = 1;
    while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U) ++size;
    return size;
}

qel::TraceTable WithoutEmptyColumns(const qel::TraceTable& table) {
    qel::TraceTable result{table.title, {}, std::vector<Texts>(table.rows.size())};
    const auto hasText = [](const Texts& row, std::size_t column) {
        return column < row.size() && !row[column].empty();
    };
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        if (std::ranges::none_of(table.rows, [&](const Texts& row) { return hasText(row, i); })) continue;
        result.columns.push_back(table.columns[i]);
        for (std::size_t row = 0; row < table.rows.size(); ++row)
            result.rows[row].push_back(hasText(table.rows[row], i) ? table.rows[row][i] : "");
    }
    return result;
}

class Measure {
public:
    explicit Measure(ReportPrinter& printer)
        : m_dotsPerInch(printer.Style().GetDpi()), m_font(&printer.Context(), kPlain) {}

    // In tenths of a millimetre, rounded up.
    int WidthOf(std::string_view text) const { return m_font.SizeOf(std::string(text)).cx * 254 / m_dotsPerInch + 1; }

    // Of the longest part between semicolons.
    int WidthOfParts(std::string_view text) const {
        int width = 0;
        while (!text.empty()) {
            const std::size_t size = std::min(text.find("; "), text.size() - 1) + 1;
            width = std::max(width, WidthOf(qel::Trimmed(text.substr(0, size), " ")));
            text.remove_prefix(size);
        }
        return width;
    }

    // The lines of @p text in a column; broken after blanks, or within a word that is too long.
    Texts Wrapped(std::string_view text, int width) const {
        Texts lines;
        while (WidthOf(text) > width) {
            std::size_t end = 0, afterBlank = 0;
            for (std::size_t next = FirstCharacter(text); next < text.size() && WidthOf(text.substr(0, next)) <= width;
                 next += FirstCharacter(text.substr(next))) {
                end = next;
                if (text[next - 1] == ' ') afterBlank = next;
            }
            if (end < text.size() && text[end] == ' ') afterBlank = end + 1;
            const std::size_t taken = afterBlank > 0 ? afterBlank : std::max(end, FirstCharacter(text));
            if (taken >= text.size()) break;
            lines.push_back(std::string(qel::Trimmed(text.substr(0, taken), " ")));
            text.remove_prefix(taken);
        }
        lines.emplace_back(text);
        return lines;
    }

private:
    int m_dotsPerInch;
    PointFont m_font;
};

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
    Cells(const CRect& area, ReportPrinter& printer) : m_area(area), m_measure(printer) { StartCell(); }

    void Add(const qel::TraceTable& table) {
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

    static int HeightOf(std::size_t lines) { return static_cast<int>(lines) * kRow; }
    int HeadHeight() const { return kRow + (m_columns.empty() ? 0 : HeightOf(LinesOf(m_columns)) + 2); }

    void StartCell() {
        m_cells.emplace_back();
        m_y = m_area.top;
    }

    // Of the longest text of each column, or of the longest part of one that semicolons divide.
    std::vector<int> WidthsOf(const qel::TraceTable& table, bool isDivided) const {
        std::vector<int> widths;
        const auto take = [&](const Texts& row) {
            widths.resize(std::max(widths.size(), row.size()));
            for (std::size_t i = 0; i < row.size(); ++i) {
                const int text = isDivided ? m_measure.WidthOfParts(row[i]) : m_measure.WidthOf(row[i]);
                widths[i] = std::max(widths[i], text + kBetween);
            }
        };
        take(table.columns);
        for (const Texts& row : table.rows) take(row);
        return widths;
    }

    // What does not fit side by side is divided at semicolons first, from the last column on, and then anywhere.
    std::vector<int> WidthsOf(const qel::TraceTable& table) const {
        const std::vector<int> whole = WidthsOf(table, false);
        std::vector<int> widths = WidthsOf(table, true);
        const int width = m_area.Width() - kIndented;
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
        for (std::size_t i = 0; i < texts.size(); ++i) row.push_back(m_measure.Wrapped(texts[i], widths[i] - kBetween));
        return row;
    }

    void AddHead(const char* continued) {
        m_cells.back().push_back({{m_area.left, m_y, m_area.right, m_y + kRow}, kTitle, m_title + continued});
        m_y += kRow;
        if (m_columns.empty()) return;
        for (std::size_t line = 0; line < LinesOf(m_columns); ++line) AddLine(m_columns, line);
        m_cells.back().push_back({{m_area.left + kIndented, m_y, m_area.right, m_y}, 0, ""});
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
        AddHead(" (continued)");
    }

    void AddLine(const Row& row, std::size_t line) {
        int x = m_area.left + kIndented;
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (line < row[i].size() && !row[i][line].empty())
                m_cells.back().push_back({{x, m_y, x + m_widths[i], m_y + kRow}, kPlain, row[i][line]});
            x += m_widths[i];
        }
        m_y += kRow;
    }

    const CRect m_area;
    Measure m_measure;
    std::vector<std::vector<PlacedText>> m_cells;
    int m_y = 0;
    std::string m_title;  // of the table that is being added, as the following
    Row m_columns;
    std::vector<int> m_widths;
};

}  // namespace

std::vector<std::vector<PlacedText>> CellsOf(const std::vector<qel::TraceTable>& tables, const CRect& area,
                                             ReportPrinter& printer) {
    Cells cells(area, printer);
    for (const qel::TraceTable& table : tables) cells.Add(table.columns.empty() ? table : WithoutEmptyColumns(table));
    return cells.Take();
}

}  // namespace titration
