#include "demo/curve/csv_table.h"

#include <algorithm>
#include <optional>

#include <qellib10/qellib10.h>

#include "demo/curve/field_rows.h"
#include "demo/curve/reading.h"
#include "demo/support/failure.h"
#include "demo/support/number.h"
#include "demo/support/printable.h"
#include "demo/support/text_file.h"

namespace titration {
namespace {

constexpr std::size_t kFewestRows = 5;  // of a table whose columns are numbers
constexpr std::size_t kMostTablesListed = 8;
constexpr std::string_view kDigits = "0123456789";

struct Columns {
    std::string volumeName, signalName;
    std::size_t volume = 0, signal = 0;
    bool haveNames = false;
    std::size_t namesLine = 0, namesFields = 0;  // the line with the names, 0: none

    std::string Text() const { return "\"" + volumeName + "\" and \"" + signalName + "\""; }
};

struct Table {
    Curve curve;
    std::size_t unreadable = 0;  // lines after the last point whose readings cannot be read
    std::size_t firstUnreadable = 0;
};

std::optional<std::size_t> ColumnNumber(const std::string& column) {
    const auto number = ParseWholeNumber(column);
    return number && *number > 0 ? std::optional<std::size_t>(*number - 1) : std::nullopt;
}

bool IsAscii(std::string_view text) {
    return std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

std::optional<std::size_t> FindIn(const Row& row, const std::string& column) {
    if (const auto number = ColumnNumber(column)) return number;
    const CString plain(WithPlainCharacters(column).c_str());
    const auto field = std::ranges::find_if(row, [&](const std::string& text) {
        return plain.CompareNoCase(IsAscii(text) ? text.c_str() : WithPlainCharacters(text).c_str()) == 0;
    });
    return field != row.end() ? std::optional<std::size_t>(field - row.begin()) : std::nullopt;
}

// The names are in one line; a single one may also be further up, as in "pH;7.01".
bool FindNames(const Row& row, std::size_t line, Columns& columns) {
    if (!columns.haveNames) return false;
    const auto volume = FindIn(row, columns.volumeName);
    const auto signal = FindIn(row, columns.signalName);
    if (!volume || !signal) return false;
    columns.volume = *volume;
    columns.signal = *signal;
    columns.namesLine = line;
    columns.namesFields = row.size();
    return true;
}

std::string LineText(std::size_t number, const Row& row) {
    return "line " + std::to_string(number) + " has " + Shown(row);
}

// The line that has one of the names; else the first with the most fields, which is likely the one with the names.
std::string NearestLine(const std::vector<Row>& rows, const Columns& columns) {
    const auto hasOne = [&](const Row& row) {
        return (!ColumnNumber(columns.volumeName) && FindIn(row, columns.volumeName)) ||
               (!ColumnNumber(columns.signalName) && FindIn(row, columns.signalName));
    };
    auto nearest = std::ranges::find_if(rows, hasOne);
    if (nearest == rows.end()) nearest = std::ranges::max_element(rows, {}, &Row::size);
    return LineText(static_cast<std::size_t>(nearest - rows.begin()) + 1, *nearest);
}

constexpr const char* kTried = " (semicolons, tabs, commas, bars and blanks were tried)";

std::string EncodingHint(std::string_view text) {
    return IsUtf8(text) ? ""
                        : std::string(
                              "; the file is not in UTF-8 as the settings are, save it as UTF-8, for example "
                              "with ") +
                              kToUtf8;
}

[[noreturn]] void RefuseNames(std::string_view text, const Rows& split, const Columns& columns) {
    throw Failure("no line has the columns " + columns.Text() + ": " + SeparatedBy(split.separator) + kTried + ", " +
                  NearestLine(split.rows, columns) + EncodingHint(text) +
                  "; name two fields of one line in [curve] of the settings, or give their numbers");
}

[[noreturn]] void RefuseNumbers(std::string_view text, const Rows& split, const Columns& columns) {
    std::string message = "no numbers in the columns " + columns.Text();
    if (columns.namesLine > 0) message += ", which line " + std::to_string(columns.namesLine) + " names";
    message += ": " + SeparatedBy(split.separator) + kTried;
    const auto from = split.rows.begin() + static_cast<std::ptrdiff_t>(columns.namesLine);
    const auto row = std::find_if(from, split.rows.end(), [](const Row& line) { return !IsBlankOrComment(line); });
    const std::size_t line = static_cast<std::size_t>(row - split.rows.begin()) + 1;
    message += row == split.rows.end() ? ", no line follows" : ", " + LineText(line, *row);
    throw Failure(message + "; expected a number in field " + std::to_string(columns.volume + 1) +
                  " and one in field " + std::to_string(columns.signal + 1) + EncodingHint(text) +
                  "; set other columns in [curve] of the settings");
}

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
    const auto in = [&](std::size_t column) { return column < row.size() ? ReadReading(row[column]) : std::nullopt; };
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
        if (named == 0 || row.size() <= named || !ReadReading(row[named])) return;
        throw Failure(LineText(number, row) + ", and line " + std::to_string(m_columns.namesLine) + " names " +
                      Counted(static_cast<long long>(named), "field") +
                      "; separate the fields by semicolons where numbers have decimal commas, or name every column");
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

std::string Listed(const std::vector<Table>& tables) {
    std::string text;
    for (std::size_t i = 0; i < std::min(tables.size(), kMostTablesListed); ++i) {
        const Curve& curve = tables[i].curve;
        text += (i > 0 ? ", " : "") + std::to_string(i + 1) + " in lines " + std::to_string(curve.firstLine) + " to " +
                std::to_string(curve.lastLine) + " with " +
                Counted(static_cast<long long>(curve.volume.size()), "point");
    }
    return tables.size() > kMostTablesListed ? text + " ..." : text;
}

// With numbers for columns, pairs of numbers above the table look like one.
void DropRowsBeforeTable(std::vector<Table>& tables) {
    const auto isLong = [](const Table& table) { return table.curve.volume.size() >= kFewestRows; };
    const auto first = std::ranges::find_if(tables, isLong);
    if (first != tables.end()) tables.erase(tables.begin(), first);
}

Curve Chosen(std::vector<Table>& tables, const Columns& columns, int number, const std::vector<Row>& rows) {
    const auto count = static_cast<int>(tables.size());
    if (number > count) {
        throw Failure("there is no table " + std::to_string(number) + " with the columns " + columns.Text() + ": " +
                      Listed(tables) + "; choose one of these with --table");
    }
    if (number == 0 && count > 1) {
        throw Failure("there are " + std::to_string(count) + " tables with numbers in the columns " + columns.Text() +
                      ": " + Listed(tables) + "; choose one with --table");
    }
    Table& table = tables[number == 0 ? 0 : static_cast<std::size_t>(number) - 1];
    if (number == 0 && table.unreadable > 0) {
        const std::size_t line = table.firstUnreadable;
        throw Failure("after the last point in line " + std::to_string(table.curve.lastLine) + ", " +
                      Counted(static_cast<long long>(table.unreadable), "line") + " cannot be read: " +
                      LineText(line, rows[line - 1]) + "; mend them, or take the table without them with --table 1");
    }
    table.curve.table = number;
    return std::move(table.curve);
}

}  // namespace

Curve ReadCurve(std::string_view text, const std::string& volumeColumn, const std::string& signalColumn, int table) {
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos)
        throw Failure("the file is empty; expected a table of volumes and signals, measure or export it again");
    const Rows split = SplitAsWritten(text);
    const auto volume = ColumnNumber(volumeColumn), signal = ColumnNumber(signalColumn);
    Columns columns{volumeColumn, signalColumn, volume.value_or(0), signal.value_or(0), !volume || !signal};
    for (std::size_t i = 0; columns.haveNames && columns.namesLine == 0; ++i) {
        if (i == split.rows.size()) RefuseNames(text, split, columns);
        FindNames(split.rows[i], i + 1, columns);
    }
    if (columns.volume == columns.signal)
        throw Failure("volume and signal are the same column, " + columns.Text() +
                      "; name two columns in [curve] of the settings");

    Tables tables(columns);
    for (std::size_t i = columns.namesLine; i < split.rows.size(); ++i) tables.Take(split.rows[i], i + 1);
    if (!columns.haveNames) DropRowsBeforeTable(tables.Found());
    if (tables.Found().empty()) RefuseNumbers(text, split, columns);
    return Chosen(tables.Found(), columns, table, split.rows);
}

}  // namespace titration
