#include "csv_columns.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "tool.h"

namespace tool {
namespace {

using Row = std::vector<std::string>;
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

std::string Trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// A line end within marks belongs to the field.
std::vector<Row> Rows(const std::string& text, char separator) {
    std::vector<Row> rows;
    std::string field;
    Row row;
    bool isQuoted = false;
    const auto endField = [&] { row.push_back(Trimmed(std::exchange(field, {}))); };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"' && isQuoted && i + 1 < text.size() && text[i + 1] == '"') {
            field += text[++i];
        } else if (c == '"') {
            isQuoted = !isQuoted;
        } else if (c == separator && !isQuoted) {
            endField();
        } else if (c == '\n' && !isQuoted) {
            endField();
            rows.push_back(std::exchange(row, {}));
        } else {
            field += c;
        }
    }
    endField();
    rows.push_back(row);
    return rows;
}

// From 0; of a name nothing.
std::optional<std::size_t> NumberOf(const std::string& column) {
    std::size_t number = 0;
    const char* const end = column.data() + column.size();
    const auto [stop, error] = std::from_chars(column.data(), end, number);
    if (stop != end || error == std::errc::invalid_argument) return std::nullopt;
    if (error == std::errc::result_out_of_range) return std::numeric_limits<std::size_t>::max();
    if (number == 0) throw CLI::ValidationError("columns count from 1");
    return number - 1;
}

// Columns of the widest line; 0 where no line has two, as what separates them is not known then.
std::size_t WidthOf(const std::vector<Row>& rows) {
    std::size_t width = 0;
    for (const Row& row : rows) width = std::max(width, row.size());
    return width > 1 ? width : 0;
}

double NumberIn(const Row& row, std::size_t column, bool mayHaveComma) {
    if (column >= row.size()) return kNone;
    std::string text = row[column];
    if (mayHaveComma) std::ranges::replace(text, ',', '.');
    return ParseNumber(std::string_view(text).substr(text.starts_with('+') ? 1 : 0)).value_or(kNone);
}

// As it is most often read as a line with two numbers; the first of several, since in "1,5;2,5" the comma would find
// two as well.
std::pair<std::vector<Row>, char> SplitAsWritten(const std::string& text) {
    std::pair<std::vector<Row>, char> best;
    std::ptrdiff_t most = -1;
    for (const char separator : {';', '\t', ','}) {
        std::vector<Row> rows = Rows(text, separator);
        const auto hasTwo = [&](const Row& row) {
            std::size_t numbers = 0;
            for (std::size_t i = 0; i < row.size() && numbers < 2; ++i)
                numbers += std::isnan(NumberIn(row, i, separator != ',')) ? 0 : 1;
            return numbers == 2;
        };
        const std::ptrdiff_t found = std::ranges::count_if(rows, hasTwo);
        if (found <= most) continue;
        most = found;
        best = {std::move(rows), separator};
    }
    return best;
}

// @return the row's size when it has none of this name
std::size_t FindIn(const Row& row, const std::string& column) {
    const std::optional<std::size_t> number = NumberOf(column);
    return number ? *number : static_cast<std::size_t>(std::ranges::find(row, column) - row.begin());
}

}  // namespace

CsvColumns ReadCsvColumns(const std::string& utf8, const std::vector<std::string>& columns) {
    const auto [rows, separator] = SplitAsWritten(utf8);
    const bool onlyNumbers =
        std::ranges::all_of(columns, [](const auto& column) { return NumberOf(column).has_value(); });
    const std::size_t width = WidthOf(rows);
    for (const std::string& column : columns) {
        if (width != 0 && NumberOf(column).value_or(0) >= width)
            throw CLI::ValidationError("column " + column + ": the table has " + std::to_string(width) + " columns");
    }
    const auto hasAll = [&](const Row& row) {
        return std::ranges::all_of(columns, [&](const auto& name) { return FindIn(row, name) < row.size(); });
    };
    const auto header = onlyNumbers ? rows.begin() : std::ranges::find_if(rows, hasAll);
    if (header == rows.end()) throw Failure("no line has all of these columns");

    CsvColumns found;
    std::vector<std::size_t> places;
    for (const std::string& column : columns) places.push_back(FindIn(*header, column));
    found.values.resize(columns.size());
    const Row* above = onlyNumbers ? nullptr : &*header;
    for (auto row = onlyNumbers ? header : header + 1; row != rows.end(); ++row) {
        std::vector<double> numbers;
        for (const std::size_t place : places) numbers.push_back(NumberIn(*row, place, separator != ','));
        const bool isEmpty = std::ranges::all_of(numbers, [](double number) { return std::isnan(number); });
        if (isEmpty && !found.values[0].empty()) break;
        if (isEmpty) {
            if (onlyNumbers) above = &*row;
            continue;
        }
        for (std::size_t i = 0; i < numbers.size(); ++i) found.values[i].push_back(numbers[i]);
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (std::ranges::all_of(found.values[i], [](double number) { return std::isnan(number); }))
            throw Failure("column \"" + Shown(columns[i]) + "\" has no numbers");
    }
    for (const std::size_t place : places)
        found.names.push_back(above != nullptr && place < above->size() ? (*above)[place] : "");
    return found;
}

}  // namespace tool
