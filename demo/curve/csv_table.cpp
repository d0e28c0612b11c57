#include "demo/curve/csv_table.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <optional>

#include <qellib10/qellib10.h>

#include "demo/curve/columns.h"
#include "demo/curve/field_rows.h"
#include "demo/curve/table_doubts.h"
#include "demo/curve/table_refusals.h"

namespace titration {
namespace {

constexpr std::size_t kMinimumRows = 5;  // of a table whose columns are numbers
constexpr double kFarFromTable = 10;     // times the range of its volumes
constexpr std::string_view kDigits = "0123456789";

enum class Kind { kPoint, kMissing, kNote };

struct Line {
    Kind kind = Kind::kNote;
    qel::MeasuredValue volume, signal;
    bool isUnreadable = false;  // readings are there, but not such that can be read
};

std::string_view FieldOf(const Row& row, std::size_t column) {
    return column < row.size() ? std::string_view(row[column]) : std::string_view();
}

bool IsDigit(char c) { return kDigits.find(c) != std::string_view::npos; }

bool HasDigit(std::string_view field) { return field.find_first_of(kDigits) != std::string_view::npos; }

bool BeginsWithLetter(std::string_view field) {
    return !field.empty() && ((field[0] >= 'A' && field[0] <= 'Z') || (field[0] >= 'a' && field[0] <= 'z'));
}

// "12:30"
bool HasTimeOfDay(std::string_view field) {
    const std::size_t colon = field.find(':');
    return colon != std::string_view::npos && colon > 0 && colon + 1 < field.size() && IsDigit(field[colon - 1]) &&
           IsDigit(field[colon + 1]);
}

// "Column 1;Column 2" and "2026-01-05;12:30" are not readings. "Start 0.0;3.1" may be one.
bool IsHeading(const Row& row, const Columns& columns) {
    const std::string_view volume = FieldOf(row, columns.volume), signal = FieldOf(row, columns.signal);
    return (BeginsWithLetter(volume) && BeginsWithLetter(signal)) || HasTimeOfDay(volume) || HasTimeOfDay(signal);
}

Line Read(const Row& row, const Columns& columns) {
    if (IsBlankOrComment(row)) return {};
    const std::string_view volumeField = FieldOf(row, columns.volume), signalField = FieldOf(row, columns.signal);
    const auto volume = qel::ReadMeasuredValue(volumeField), signal = qel::ReadMeasuredValue(signalField);
    if (volume && signal) return {Kind::kPoint, *volume, *signal, false};
    // "Temperature;25" after a table is a note, "16.40;7.2*" a reading.
    const bool isUnreadable = HasDigit(volumeField) && HasDigit(signalField);
    if (volume) return {Kind::kMissing, *volume, {}, isUnreadable};
    return {signal ? Kind::kMissing : Kind::kNote, {}, {}, isUnreadable};
}

// Which of the fields before the columns' last one are numbers: in "mean;16.5;8.8" not those of "12;16.5;8.8".
bool HasKindsOf(const Row& first, const Row& row, const Columns& columns) {
    for (std::size_t i = 0; i < std::max(columns.volume, columns.signal); ++i) {
        const std::string_view before = FieldOf(first, i), field = FieldOf(row, i);
        if (before.empty() || field.empty()) continue;
        if (qel::ReadMeasuredValue(before).has_value() != qel::ReadMeasuredValue(field).has_value()) return false;
    }
    return true;
}

struct Lines {
    std::size_t count = 0, first = 0;

    void Add(std::size_t number) {
        if (count++ == 0) first = number;
    }
};

// Collects the rows of tables, one row after the other.
class Tables {
public:
    explicit Tables(Columns columns) : m_columns(std::move(columns)) {}

    void Take(const Row& row, std::size_t number) {
        if (FindNames(row, number, m_columns)) {
            End();
            m_isNew = true;
            m_missing = 0;
            return;
        }
        const Line line = Read(row, m_columns);
        if (line.kind == Kind::kPoint) {
            RequireNamedFields(row, number);
            AddPoint(line, row, number);
        } else if (line.isUnreadable) {
            const bool isBeforeAll = m_tables.empty() && !m_columns.haveNames;
            if (isBeforeAll && IsHeading(row, m_columns)) return;
            m_unreadable.Add(number);
            ++m_missing;
        } else {
            TakeWithoutPoint(line, row, number);
        }
    }

    /// Readings after the last point that cannot be read are of its table, and so are volumes with "---" or "OVL".
    void End() { End(SinceLastPoint()); }

    std::vector<Table>& Found() { return m_tables; }

private:
    std::size_t SinceLastPoint() const { return m_unreadable.count + m_withoutSignal.count; }

    // @param without lines of the table without a point, after its last one
    void End(std::size_t without) {
        if (m_tables.empty()) return;
        if (!m_isNew) m_tables.back().curve.linesWithoutPoint += without;
        Keep(m_unreadable);
        Keep(m_withoutSignal);
        m_beforeNote = 0;
    }

    void TakeWithoutPoint(const Line& line, const Row& row, std::size_t number) {
        if (line.kind == Kind::kNote) {
            m_isAfterNote = true;
            m_beforeNote = SinceLastPoint();
            if (m_isNew && !m_columns.haveNames) m_missing = m_unreadable.count;
            return;
        }
        const bool hasVolume = qel::ReadMeasuredValue(FieldOf(row, m_columns.volume)).has_value();
        const bool isWithoutSignal = hasVolume && !FieldOf(row, m_columns.signal).empty();
        if (isWithoutSignal) m_withoutSignal.Add(number);
        if (isWithoutSignal || !m_isNew) ++m_missing;
    }

    // A comma that separates and is the decimal sign as well makes two fields of a number.
    void RequireNamedFields(const Row& row, std::size_t number) const {
        const std::size_t named = m_columns.namesFields;
        if (named == 0 || row.size() <= named || !qel::ReadMeasuredValue(row[named])) return;
        RefuseUnnamedField(row, number, m_columns);
    }

    void AddPoint(const Line& line, const Row& row, std::size_t number) {
        if (IsOfNextTable(line, row)) {
            const std::size_t beforeNext = m_isAfterNote ? m_beforeNote : SinceLastPoint();
            const std::size_t ofNext = SinceLastPoint() - beforeNext;
            if (!m_isNew) End(beforeNext);
            Table& next = m_tables.emplace_back();
            next.curve.firstLine = number;
            next.volumeUnit = line.volume.unit;
            next.signalUnit = line.signal.unit;
            m_firstRow = row;
            if (!m_isNew) m_missing = ofNext;
            m_isNew = false;
        }
        if (!HasUnits(line)) RefuseUnits(row, number, m_tables.back());
        Keep(m_unreadable);
        Table& table = m_tables.back();
        std::vector<double>& volumes = table.curve.volume;
        if (!volumes.empty()) {
            const double rise = volumes.back() - volumes.front();
            table.isMonotone = table.isMonotone && (line.volume.value - volumes.back()) * rise >= 0;
        }
        volumes.push_back(line.volume.value);
        table.curve.signal.push_back(line.signal.value);
        table.lines.push_back(number);
        table.curve.lastLine = number;
        table.curve.linesWithoutPoint = m_missing;
        m_withoutSignal = {};
        m_isAfterNote = false;
    }

    bool IsOfNextTable(const Line& line, const Row& row) const {
        if (m_isNew || !HasKindsOf(m_firstRow, row, m_columns)) return true;
        const bool isShort = m_tables.back().curve.volume.size() < kMinimumRows;
        if (!HasUnits(line) && isShort && !m_columns.haveNames) return true;
        return (m_isAfterNote && StartsAgain(line.volume.value)) || GoesBackToStart(line.volume.value);
    }

    bool HasUnits(const Line& line) const {
        const Table& table = m_tables.back();
        return line.volume.unit == table.volumeUnit && line.signal.unit == table.signalUnit;
    }

    // The volumes rose up to here, or fell, and no longer do.
    bool StartsAgain(double volume) const {
        const std::vector<double>& before = m_tables.back().curve.volume;
        const bool isFalling = before.back() < before.front();
        return isFalling ? volume > before.back() : volume < before.back();
    }

    // The next titration of a file that has nothing between two of them.
    bool GoesBackToStart(double volume) const {
        const Table& table = m_tables.back();
        const double first = table.curve.volume.front(), last = table.curve.volume.back();
        if (table.curve.volume.size() < kMinimumRows || first == last) return false;
        const double share = (volume - first) / (last - first);
        return share <= 0 || (table.isMonotone && share < 0.5);
    }

    void Keep(Lines& lines) {
        Table& table = m_tables.back();
        if (lines.count > 0 && table.unreadable == 0) table.firstUnreadable = lines.first;
        table.unreadable += lines.count;
        lines = {};
    }

    Columns m_columns;
    std::vector<Table> m_tables;
    Row m_firstRow;                               // of the last table
    std::size_t m_missing = 0, m_beforeNote = 0;  // lines without a point: of the table; after the last point
    Lines m_unreadable, m_withoutSignal;          // since the last point
    bool m_isNew = true, m_isAfterNote = false;
};

void RequireOneColumnEach(const Row& names, const Columns& columns) {
    for (const std::string& name : {columns.volumeName, columns.signalName}) {
        const auto first = FindIn(names, name);
        if (ColumnNumber(name) || !first) continue;
        Row others(names);
        others.erase(others.begin() + static_cast<std::ptrdiff_t>(*first));
        if (FindIn(others, name)) RefuseSameNames(name, columns.namesLine);
    }
}

// "Date;20260105;123000" above "1;0.5;7.1": a name where that table has numbers, and a volume far from all of its.
bool IsHeadingOf(const Table& table, const Table& before, const std::vector<Row>& rows, const Columns& columns) {
    const auto hasNumbers = [&](std::size_t column) {
        return std::ranges::all_of(table.lines, [&](std::size_t line) {
            return qel::ReadMeasuredValue(FieldOf(rows[line - 1], column)).has_value();
        });
    };
    const auto isNamed = [&](std::size_t line) {
        for (std::size_t i = 0; i < std::max(columns.volume, columns.signal); ++i) {
            if (BeginsWithLetter(FieldOf(rows[line - 1], i)) && hasNumbers(i)) return true;
        }
        return false;
    };
    const auto [low, high] = std::ranges::minmax(table.curve.volume);
    const double middle = std::midpoint(low, high), far = kFarFromTable * (high - low);
    const auto isFar = [&](double volume) { return far > 0 && std::abs(volume - middle) > far; };
    return std::ranges::all_of(before.lines, isNamed) && std::ranges::all_of(before.curve.volume, isFar);
}

// With numbers for columns, headings with two numbers seem to be a table.
void DropHeadings(std::vector<Table>& tables, const std::vector<Row>& rows, const Columns& columns) {
    const auto isLong = [](const Table& table) { return table.curve.volume.size() >= kMinimumRows; };
    const auto first = std::ranges::find_if(tables, isLong);
    const auto isHeading = [&](const Table& table) { return IsHeadingOf(*first, table, rows, columns); };
    if (first == tables.end() || !std::all_of(tables.begin(), first, isHeading)) return;
    std::for_each(std::make_reverse_iterator(first), tables.rend(), [&](const Table& heading) {
        if (heading.unreadable > 0) first->firstUnreadable = heading.firstUnreadable;
        first->unreadable += heading.unreadable;
        first->curve.linesWithoutPoint += heading.curve.linesWithoutPoint;
    });
    tables.erase(tables.begin(), first);
}

Curve Chosen(std::string_view text, const Rows& split, std::vector<Table>& tables, const Columns& columns, int number) {
    const auto count = static_cast<int>(tables.size());
    if (number > count) RefuseTableNumber(number, tables, columns);
    if (number == 0 && count > 1) RefuseSeveralTables(tables, columns);
    Table& table = tables[number == 0 ? 0 : static_cast<std::size_t>(number) - 1];
    RequireOneMeaning(table, split, columns);
    if (number == 0 && table.unreadable > 0) RefuseUnreadable(text, table, split.rows, columns);
    if (number == 0 || count > 1) RequireNoSummary(table, split.rows, columns, count == 1);
    table.curve.table = number;
    return std::move(table.curve);
}

}  // namespace

Curve ReadCurve(std::string_view text, const std::string& volumeColumn, const std::string& signalColumn, int table) {
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) RefuseEmptyFile();
    const Rows split = SplitAsWritten(text);
    for (const std::string& column : {volumeColumn, signalColumn}) {
        const auto number = ColumnNumber(column);  // a row has a field a byte at most
        if (number && *number >= qel::CsvReader::kLongestRow) RefuseColumnNumber(column);
    }
    const auto volume = ColumnNumber(volumeColumn), signal = ColumnNumber(signalColumn);
    Columns columns{volumeColumn, signalColumn, volume.value_or(0), signal.value_or(0), !volume || !signal};
    for (std::size_t i = 0; columns.haveNames && columns.namesLine == 0; ++i) {
        if (i == split.rows.size()) RefuseNames(text, split, columns);
        FindNames(split.rows[i], i + 1, columns);
    }
    if (columns.volume == columns.signal) RefuseSameColumn(columns);
    if (columns.haveNames) RequireOneColumnEach(split.rows[columns.namesLine - 1], columns);

    Tables tables(columns);
    for (std::size_t i = columns.namesLine; i < split.rows.size(); ++i) tables.Take(split.rows[i], i + 1);
    tables.End();
    if (!columns.haveNames) DropHeadings(tables.Found(), split.rows, columns);
    if (tables.Found().empty()) RefuseNumbers(text, split, columns);
    return Chosen(text, split, tables.Found(), columns, table);
}

}  // namespace titration
