#include "csv_columns.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "tool.h"

namespace tool {
namespace {

using Row = std::vector<std::string>;
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

bool IsNone(double number) { return std::isnan(number); }

// @throws CLI::ValidationError for 0
std::optional<std::size_t> NumberOf(const std::string& column) {
    const std::optional<std::size_t> number = qel::ColumnNumber(column);
    if (number == qel::ColumnNumber("0")) throw CLI::ValidationError("columns count from 1");
    return number;
}

double NumberIn(const Row& row, std::size_t column) {
    return column < row.size() ? qel::ReadNumber(std::string_view(row[column])).value_or(kNone) : kNone;
}

// Takes the rows one after the other.
class ColumnReader {
public:
    explicit ColumnReader(const std::vector<std::string>& columns) : m_columns(columns) {
        m_found.values.resize(columns.size());
        m_onlyNumbers = std::ranges::all_of(columns, [](const auto& column) { return NumberOf(column).has_value(); });
        if (m_onlyNumbers) SetPlaces({});
    }

    void Take(const Row& row) {
        m_width = std::max(m_width, row.size());
        if (m_isPast) return;
        if (m_places.empty()) {
            if (HasAll(row)) SetPlaces(row);
        } else {
            TakeNumbers(row);
        }
    }

    CsvColumns Found() {
        // What separates columns is not known where no row has two.
        for (const std::string& column : m_columns) {
            if (m_width > 1 && NumberOf(column).value_or(0) >= m_width)
                throw CLI::ValidationError("column " + column + ": the table has " + std::to_string(m_width) +
                                           " columns");
        }
        if (m_places.empty()) throw Failure("no line has all of these columns");
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            if (std::ranges::all_of(m_found.values[i], IsNone))
                throw Failure("column \"" + Shown(m_columns[i]) + "\" has no numbers");
        }
        for (const std::size_t place : m_places) m_found.names.push_back(place < m_names.size() ? m_names[place] : "");
        return std::move(m_found);
    }

private:
    bool HasAll(const Row& row) const {
        return std::ranges::all_of(
            m_columns, [&](const auto& name) { return qel::FindColumn(row, name).value_or(row.size()) < row.size(); });
    }

    void SetPlaces(const Row& names) {
        for (const std::string& column : m_columns) m_places.push_back(qel::FindColumn(names, column).value());
        m_names = names;
    }

    void TakeNumbers(const Row& row) {
        std::vector<double> numbers;
        for (const std::size_t place : m_places) numbers.push_back(NumberIn(row, place));
        if (std::ranges::all_of(numbers, IsNone)) {
            m_isPast = !m_found.values[0].empty();
            if (m_onlyNumbers && !m_isPast) m_names = row;
            return;
        }
        for (std::size_t i = 0; i < numbers.size(); ++i) m_found.values[i].push_back(numbers[i]);
    }

    const std::vector<std::string>& m_columns;
    CsvColumns m_found;
    std::vector<std::size_t> m_places;  // of the columns in a row; empty until the names are found
    Row m_names;                        // the row before the numbers
    std::size_t m_width = 0;            // columns of the widest row
    bool m_onlyNumbers = false, m_isPast = false;
};

}  // namespace

CsvColumns ReadCsvColumns(CFile& file, const std::vector<std::string>& columns) {
    qel::CsvFormat format;
    format.encoding = qel::CsvEncoding::kUnchecked;  // a note in another encoding does not hide the numbers
    qel::CsvReader table(file, format);
    ColumnReader reader(columns);
    while (table.Next()) {
        Row row;
        for (const std::string_view field : table.Fields()) row.emplace_back(qel::Trimmed(field));
        reader.Take(row);
    }
    if (table.Failure()) throw Failure(table.Failure()->Text());
    return reader.Found();
}

}  // namespace tool
