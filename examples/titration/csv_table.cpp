#include "csv_table.h"

#include <algorithm>
#include <optional>

#include <qellib10/qellib10.h>

#include "failure.h"
#include "number.h"
#include "text_file.h"

namespace titration {
namespace {

using Row = std::vector<std::string>;

Row SplitRow(std::string_view line, char separator) {
    Row fields(1);
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const bool isQuote = line[i] == '"';
        if (isQuote && quoted && i + 1 < line.size() && line[i + 1] == '"') {
            fields.back() += line[++i];  // a doubled mark inside marks is one
        } else if (isQuote) {
            quoted = !quoted;
        } else if (line[i] == separator && !quoted) {
            fields.emplace_back();
        } else {
            fields.back() += line[i];
        }
    }
    for (std::string& field : fields) field = Trimmed(field);
    return fields;
}

std::vector<Row> SplitRows(const std::vector<std::string_view>& lines, char separator) {
    std::vector<Row> rows;
    rows.reserve(lines.size());
    for (const std::string_view line : lines) rows.push_back(SplitRow(line, separator));
    return rows;
}

std::ptrdiff_t RowsWithTwoNumbers(const std::vector<Row>& rows) {
    return std::ranges::count_if(rows, [](const Row& row) {
        return std::ranges::count_if(row,
                                     [](const std::string& field) { return qel::ReadNumber(field).has_value(); }) >= 2;
    });
}

// The first of the best: in "1,5;2,5" the comma would find two numbers as well.
std::vector<Row> SplitAsWritten(std::string_view text) {
    const std::vector<std::string_view> lines = Lines(text);
    std::vector<Row> best;
    std::ptrdiff_t most = -1;
    for (const char separator : {';', '\t', ','}) {
        std::vector<Row> rows = SplitRows(lines, separator);
        const std::ptrdiff_t found = RowsWithTwoNumbers(rows);
        if (found <= most) continue;
        most = found;
        best = std::move(rows);
    }
    return best;
}

struct Columns {
    std::size_t volume, signal;
    std::size_t firstRow;  // where the table can begin: below the names, 0 without names
};

std::optional<std::size_t> ColumnNumber(const std::string& column) {
    const auto number = ParseWholeNumber(column);
    return number && *number > 0 ? std::optional<std::size_t>(*number - 1) : std::nullopt;
}

std::optional<std::size_t> FindIn(const Row& row, const std::string& column) {
    if (const auto number = ColumnNumber(column)) return number;
    const auto field =
        std::ranges::find_if(row, [&](const auto& text) { return CString(text).CompareNoCase(column.c_str()) == 0; });
    return field != row.end() ? std::optional<std::size_t>(field - row.begin()) : std::nullopt;
}

// The names stand in one line; a single one may also stand further up, as in "pH;7.01".
Columns FindColumns(const std::vector<Row>& rows, const std::string& volume, const std::string& signal) {
    const auto volumeNumber = ColumnNumber(volume);
    const auto signalNumber = ColumnNumber(signal);
    if (volumeNumber && signalNumber) return {*volumeNumber, *signalNumber, 0};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto volumeIndex = FindIn(rows[i], volume);
        const auto signalIndex = FindIn(rows[i], signal);
        if (volumeIndex && signalIndex) return {*volumeIndex, *signalIndex, i + 1};
    }
    throw Failure("no line has the columns \"" + volume + "\" and \"" + signal + "\"");
}

std::optional<double> NumberIn(const Row& row, std::size_t column) {
    return column < row.size() ? qel::ReadNumber(row[column]) : std::nullopt;
}

// The table that begins at or below row @p at, which moves behind it; no points when there is none.
Curve NextTable(const std::vector<Row>& rows, std::size_t& at, std::size_t volumeColumn, std::size_t signalColumn) {
    Curve curve;
    std::size_t missing = 0;
    for (; at < rows.size(); ++at) {
        const auto volume = NumberIn(rows[at], volumeColumn);
        const auto signal = NumberIn(rows[at], signalColumn);
        if (volume && signal) {
            curve.volume.push_back(*volume);
            curve.signal.push_back(*signal);
            if (curve.firstLine == 0) curve.firstLine = at + 1;
            curve.lastLine = at + 1;
            curve.linesWithoutPoint = missing;
        } else if (volume || signal) {
            if (curve.firstLine != 0) ++missing;
        } else if (curve.firstLine != 0) {
            break;
        }
    }
    return curve;
}

}  // namespace

Curve ReadCurve(std::string_view text, const std::string& volumeColumn, const std::string& signalColumn) {
    const std::vector<Row> rows = SplitAsWritten(text);
    const Columns columns = FindColumns(rows, volumeColumn, signalColumn);
    if (columns.volume == columns.signal) throw Failure("volume and signal are the same column");

    Curve longest;
    for (std::size_t at = columns.firstRow; at < rows.size();) {
        Curve curve = NextTable(rows, at, columns.volume, columns.signal);
        if (curve.volume.size() > longest.volume.size()) longest = std::move(curve);
        if (columns.firstRow > 0) break;
    }
    if (longest.volume.empty()) {
        throw Failure("no numbers in the columns \"" + volumeColumn + "\" and \"" + signalColumn + "\"");
    }
    return longest;
}

}  // namespace titration
