#include "demo/curve/table_refusals.h"

#include <algorithm>
#include <string>

#include "demo/support/failure.h"
#include "demo/support/number.h"
#include "demo/support/text_file.h"

namespace titration {
namespace {

constexpr std::size_t kMaximumTablesListed = 8;
constexpr const char* kTried = " (semicolons, tabs, commas, bars and blanks were tried)";

std::string Count(std::size_t number, const char* what) { return Counted(static_cast<long long>(number), what); }

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

std::string Expected(const Columns& columns) {
    return "; expected a number in field " + std::to_string(columns.volume + 1) + " and one in field " +
           std::to_string(columns.signal + 1);
}

std::string EncodingHint(std::string_view text) {
    return qel::IsUtf8(text) ? ""
                             : std::string(
                                   "; the file is not in UTF-8 as the settings are, save it as UTF-8, for example "
                                   "with ") +
                                   kToUtf8;
}

std::string Listed(const std::vector<Table>& tables) {
    std::string text;
    for (std::size_t i = 0; i < std::min(tables.size(), kMaximumTablesListed); ++i) {
        const Curve& curve = tables[i].curve;
        text += (i > 0 ? ", " : "") + std::to_string(i + 1) + " in lines " + std::to_string(curve.firstLine) + " to " +
                std::to_string(curve.lastLine) + " with " + Count(curve.volume.size(), "point");
    }
    return tables.size() > kMaximumTablesListed ? text + " ..." : text;
}

}  // namespace

void RefuseEmptyFile() {
    throw Failure("the file is empty; expected a table of volumes and signals, measure or export it again");
}

void RefuseNames(std::string_view text, const Rows& split, const Columns& columns) {
    throw Failure("no line has the columns " + columns.Text() + ": " + SeparatedBy(split.separator) + kTried + ", " +
                  NearestLine(split.rows, columns) + EncodingHint(text) +
                  "; name two fields of one line in [curve] of the settings, or give their numbers");
}

void RefuseColumnNumber(const std::string& column) {
    throw Failure("there is no column " + column + "; give its name, or its number counted from 1");
}

void RefuseSameColumn(const Columns& columns) {
    throw Failure("volume and signal are the same column, " + columns.Text() +
                  "; name two columns in [curve] of the settings");
}

void RefuseNumbers(std::string_view text, const Rows& split, const Columns& columns) {
    std::string message = "no numbers in the columns " + columns.Text();
    if (columns.namesLine > 0) message += ", which line " + std::to_string(columns.namesLine) + " names";
    message += ": " + SeparatedBy(split.separator) + kTried;
    const auto from = split.rows.begin() + static_cast<std::ptrdiff_t>(columns.namesLine);
    const auto row = std::find_if(from, split.rows.end(), [](const Row& line) { return !IsBlankOrComment(line); });
    const std::size_t line = static_cast<std::size_t>(row - split.rows.begin()) + 1;
    message += row == split.rows.end() ? ", all lines after it are blank or comments" : ", " + LineText(line, *row);
    throw Failure(message + Expected(columns) + EncodingHint(text) + "; set other columns in [curve] of the settings");
}

void RefuseUnnamedField(const Row& row, std::size_t line, const Columns& columns) {
    throw Failure(LineText(line, row) + ", and line " + std::to_string(columns.namesLine) + " names " +
                  Count(columns.namesFields, "field") +
                  "; separate the fields by semicolons where numbers have decimal commas, or name every column");
}

void RefuseTableNumber(int number, const std::vector<Table>& tables, const Columns& columns) {
    throw Failure("there is no table " + std::to_string(number) + " with the columns " + columns.Text() + ": " +
                  Listed(tables) + "; choose one of these with --table");
}

void RefuseSeveralTables(const std::vector<Table>& tables, const Columns& columns) {
    throw Failure("there are " + std::to_string(tables.size()) + " tables with numbers in the columns " +
                  columns.Text() + ": " + Listed(tables) + "; choose one with --table");
}

void RefuseSameNames(const std::string& name, std::size_t line) {
    throw Failure("line " + std::to_string(line) + " has more than one column \"" + name +
                  "\"; give the number of the column in [curve] of the settings");
}

void RefuseUnits(const Row& row, std::size_t line, const Table& table) {
    const auto shown = [](const std::string& unit) { return unit.empty() ? "no unit" : "\"" + unit + "\""; };
    throw Failure(LineText(line, row) + ", and the table began with " + shown(table.volumeUnit) + " and " +
                  shown(table.signalUnit) + " in line " + std::to_string(table.curve.firstLine) +
                  "; give all values of a column in one unit");
}

void RefuseUnreadable(std::string_view text, const Table& table, const std::vector<Row>& rows, const Columns& columns) {
    const std::size_t line = table.firstUnreadable;
    throw Failure(Count(table.unreadable, "line") + " of the table cannot be read: " + LineText(line, rows[line - 1]) +
                  EncodingHint(text) + Expected(columns) +
                  "; mend what is wrong there, or take the table without it with --table 1");
}

void RefuseDoubtfulPoint(const Row& row, std::size_t line, const std::string& why, bool isOnlyTable) {
    throw Failure(LineText(line, row) + ", which may not be a reading of the curve: " + why + "; remove the line" +
                  (isOnlyTable ? ", or take it as a reading with --table 1" : ""));
}

void RefuseThousands(const Row& row, std::size_t line, const std::string& field) {
    throw Failure(LineText(line, row) + ", and \"" + field +
                  "\" may be a number with three decimals or one of thousands; write the numbers without a sign "
                  "between thousands, and one decimal sign in all columns");
}

void RefuseBlankInNumber(const Row& row, std::size_t line, const std::string& field) {
    throw Failure(LineText(line, row) + " when separated by commas, and \"" + field +
                  "\" may be one number or two; separate the fields by semicolons, without blanks in a number");
}

}  // namespace titration
