#include "demo/curve/csv_table.h"

#include <algorithm>
#include <optional>

#include <qellib10/qellib10.h>

#include "demo/curve/columns.h"
#include "demo/curve/field_rows.h"
#include "demo/curve/table_refusals.h"

namespace titration {
namespace {

constexpr std::size_t kFewestRows = 5;  // of a table whose columns are numbers
constexpr std::string_view kDigits = "0123456789";

enum class Kind { kPoint, kMissing, kNote };

struct Line {
    Kind kind = Kind::kNote;
    double volume = 0, signal = 0;
    bool isUnreadable = false;  // a reading is there, but not one that can be read
};

bool HasDigit(const Row& row, std::size_t column) {
    return column < row.size() && row[column].find_first_of(kDigits) != std::string::npos;
}

Line Read(const Row& row, const Columns& columns) {
    if (IsBlankOrComment(row)) return {};
    const auto in = [&](std::size_t column) {
        return column < row.size() ? qel::ReadMeasuredValue(row[column]) : std::nullopt;
    };
    const auto volume = in(columns.volume), signal = in(columns.signal);
    if (volume && signal) return {Kind::kPoint, *volume, *signal, false};
    // "Temperature;25" after a table is a note, "16.40;7.2*" a reading.
    const bool isUnreadable = HasDigit(row, columns.volume) && HasDigit(row, columns.signal);
    return {volume || signal ? Kind::kMissing : Kind::kNote, 0, 0, isUnreadable};
}

// Collects the rows of tables, one row after the other.
class Tables {
public:
    explicit Tables(Columns columns) : m_columns(std::move(columns)) {}

    void Take(const Row& row, std::size_t number) {
        if (FindNames(row, number, m_columns)) {
            m_isNew = true;
            return;
        }
        const Line line = Read(row, m_columns);
        if (line.kind == Kind::kPoint) {
            RequireNamedFields(row, number);
            AddPoint(line, number);
            m_isAfterNote = false;
        } else if (!m_isNew) {
            if (line.kind == Kind::kMissing) ++m_missing;
            if (line.kind == Kind::kNote) m_isAfterNote = true;
            Table& table = m_tables.back();
            if (line.isUnreadable && table.unreadable++ == 0) table.firstUnreadable = number;
        }
    }

    std::vector<Table>& Found() { return m_tables; }

private:
    // A comma that separates and is the decimal sign as well makes two fields of a number.
    void RequireNamedFields(const Row& row, std::size_t number) const {
        const std::size_t named = m_columns.namesFields;
        if (named == 0 || row.size() <= named || !qel::ReadMeasuredValue(row[named])) return;
        RefuseUnnamedField(row, number, m_columns);
    }

    void AddPoint(const Line& line, std::size_t number) {
        if (m_isNew || (m_isAfterNote && StartsAgain(line.volume)) || GoesBackToStart(line.volume)) {
            m_tables.emplace_back();
            m_tables.back().curve.firstLine = number;
            m_missing = 0;
            m_isNew = false;
        }
        Table& table = m_tables.back();
        table.curve.volume.push_back(line.volume);
        table.curve.signal.push_back(line.signal);
        table.curve.lastLine = number;
        table.curve.linesWithoutPoint = m_missing;
        table.unreadable = 0;
    }

    // The volumes rose up to here, or fell, and no longer do.
    bool StartsAgain(double volume) const {
        const std::vector<double>& before = m_tables.back().curve.volume;
        const bool isFalling = before.back() < before.front();
        return isFalling ? volume > before.back() : volume < before.back();
    }

    // The next titration of a file that has nothing between two of them.
    bool GoesBackToStart(double volume) const {
        const std::vector<double>& before = m_tables.back().curve.volume;
        if (before.size() < kFewestRows) return false;
        return before.back() > before.front()   ? volume <= before.front()
               : before.back() < before.front() ? volume >= before.front()
                                                : false;
    }

    Columns m_columns;
    std::vector<Table> m_tables;
    std::size_t m_missing = 0;
    bool m_isNew = true, m_isAfterNote = false;
};

// With numbers for columns, pairs of numbers above the table look like one.
void DropRowsBeforeTable(std::vector<Table>& tables) {
    const auto isLong = [](const Table& table) { return table.curve.volume.size() >= kFewestRows; };
    const auto first = std::ranges::find_if(tables, isLong);
    if (first != tables.end()) tables.erase(tables.begin(), first);
}

Curve Chosen(std::vector<Table>& tables, const Columns& columns, int number, const std::vector<Row>& rows) {
    const auto count = static_cast<int>(tables.size());
    if (number > count) RefuseTableNumber(number, tables, columns);
    if (number == 0 && count > 1) RefuseSeveralTables(tables, columns);
    Table& table = tables[number == 0 ? 0 : static_cast<std::size_t>(number) - 1];
    if (number == 0 && table.unreadable > 0) RefuseUnreadable(table, rows);
    table.curve.table = number;
    return std::move(table.curve);
}

}  // namespace

Curve ReadCurve(std::string_view text, const std::string& volumeColumn, const std::string& signalColumn, int table) {
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) RefuseEmptyFile();
    const Rows split = SplitAsWritten(text);
    const auto volume = ColumnNumber(volumeColumn), signal = ColumnNumber(signalColumn);
    Columns columns{volumeColumn, signalColumn, volume.value_or(0), signal.value_or(0), !volume || !signal};
    for (std::size_t i = 0; columns.haveNames && columns.namesLine == 0; ++i) {
        if (i == split.rows.size()) RefuseNames(text, split, columns);
        FindNames(split.rows[i], i + 1, columns);
    }
    if (columns.volume == columns.signal) RefuseSameColumn(columns);

    Tables tables(columns);
    for (std::size_t i = columns.namesLine; i < split.rows.size(); ++i) tables.Take(split.rows[i], i + 1);
    if (!columns.haveNames) DropRowsBeforeTable(tables.Found());
    if (tables.Found().empty()) RefuseNumbers(text, split, columns);
    return Chosen(tables.Found(), columns, table, split.rows);
}

}  // namespace titration
