#include "csv_columns.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "progress.h"
#include "tool.h"

namespace tool {
namespace {

using Row = std::vector<std::string_view>;
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kRowsBetweenProgress = 8192, kBytesOfMegabyte = 1'000'000;

bool IsNone(double number) { return std::isnan(number); }

// Only separators, as spreadsheets write a row without values. An empty line has not even those.
bool IsGap(const Row& row) {
    return row.size() > 1 && std::ranges::all_of(row, [](std::string_view field) { return field.empty(); });
}

// @throws CLI::ValidationError for 0
std::optional<std::size_t> NumberOf(const std::string& column) {
    const std::optional<std::size_t> number = qel::ColumnNumber(column);
    if (number == qel::ColumnNumber("0")) throw CLI::ValidationError("columns count from 1");
    return number;
}

// Takes the rows one after the other.
class ColumnReader {
public:
    explicit ColumnReader(const CsvTaking& taking)
        : m_taking(taking),
          m_numbers(taking.columns.size(), kNone),
          m_hasNumbers(taking.columns.size(), false),
          m_texts(taking.columns.size()) {
        m_onlyNumbers =
            std::ranges::all_of(taking.columns, [](const auto& column) { return NumberOf(column).has_value(); });
        if (m_onlyNumbers) SetPlaces({});
    }

    void Take(const Row& row, std::size_t line) {
        m_width = std::max(m_width, row.size());
        if (m_isPast) {
            LookBelow(row, line);
        } else if (m_places.empty()) {
            if (HasAll(row)) SetPlaces(row);
        } else if (IsGap(row) && m_found.rows > 0) {
            m_isGap = true;
        } else {
            TakeNumbers(row, line);
        }
    }

    CsvFindings Found() {
        const std::vector<std::string>& columns = m_taking.columns;
        // What separates columns is not known where no row has two.
        for (const std::string& column : columns) {
            if (m_width > 1 && NumberOf(column).value_or(0) >= m_width)
                throw CLI::ValidationError("column " + column + ": the table has " + std::to_string(m_width) +
                                           " columns");
        }
        if (m_places.empty()) throw Failure("no line has all of these columns");
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (!m_hasNumbers[i]) throw Failure("column \"" + Shown(columns[i]) + "\" has no numbers" + m_texts[i]);
        }
        for (const std::size_t place : m_places) m_found.names.push_back(place < m_names.size() ? m_names[place] : "");
        return std::move(m_found);
    }

private:
    bool HasAll(const Row& row) const {
        return std::ranges::all_of(m_taking.columns, [&](const auto& name) {
            return qel::FindColumn(row, name).value_or(row.size()) < row.size();
        });
    }

    void SetPlaces(const Row& names) {
        for (const std::string& column : m_taking.columns) m_places.push_back(qel::FindColumn(names, column).value());
        m_names.assign(names.begin(), names.end());
    }

    // @return how many fields have a text that is no number
    std::size_t ReadNumbers(const Row& row) {
        std::size_t unreadable = 0;
        for (std::size_t i = 0; i < m_places.size(); ++i) {
            m_numbers[i] = kNone;
            if (m_places[i] >= row.size() || row[m_places[i]].empty()) continue;
            const std::string_view field = row[m_places[i]];
            const std::optional<double> number = m_taking.read ? m_taking.read(i, field) : qel::ReadNumber(field);
            m_numbers[i] = number.value_or(kNone);
            unreadable += number ? 0 : 1;
        }
        return unreadable;
    }

    void TakeNumbers(const Row& row, std::size_t line) {
        const std::size_t unreadable = ReadNumbers(row);
        const bool isBelow = m_isGap && !HasPoint();  // a sum or a remark
        if (std::ranges::all_of(m_numbers, IsNone) || isBelow) {
            m_isPast = m_found.rows > 0;
            if (m_onlyNumbers && !m_isPast) m_names.assign(row.begin(), row.end());
            return;
        }
        if (std::exchange(m_isGap, false)) {
            const std::vector<double> gap(m_numbers.size(), kNone);
            m_taking.take(gap);
        }
        for (std::size_t i = 0; i < m_numbers.size(); ++i) {
            m_hasNumbers[i] = m_hasNumbers[i] || !IsNone(m_numbers[i]);
            const bool isText = IsNone(m_numbers[i]) && m_places[i] < row.size() && !row[m_places[i]].empty();
            if (isText && m_texts[i].empty())
                m_texts[i] = "; line " + std::to_string(line) + " has \"" + Shown(row[m_places[i]]) + '"';
        }
        m_found.unreadable += unreadable;
        ++m_found.rows;
        m_taking.take(m_numbers);
    }

    void LookBelow(const Row& row, std::size_t line) {
        ReadNumbers(row);
        if (HasPoint() && m_found.below++ == 0) m_found.firstBelow = line;
    }

    // A number in the first column and in another one.
    bool HasPoint() const {
        return !IsNone(m_numbers.front()) && !std::all_of(m_numbers.begin() + 1, m_numbers.end(), IsNone);
    }

    const CsvTaking& m_taking;
    CsvFindings m_found;
    std::vector<std::size_t> m_places;  // of the columns in a row; empty until the names are found
    std::vector<std::string> m_names;   // the row before the numbers
    std::vector<double> m_numbers;      // of the row
    std::vector<bool> m_hasNumbers;     // of each column
    std::vector<std::string> m_texts;   // of each column: the first one that is no number, with its line
    std::size_t m_width = 0;            // columns of the widest row
    bool m_onlyNumbers = false, m_isPast = false;
    bool m_isGap = false;  // rows without values, which belong to the table if others follow
};

}  // namespace

CsvFindings ReadCsvRows(CFile& file, const CsvTaking& taking) {
    qel::CsvFormat format;
    format.encoding = qel::CsvEncoding::kUnchecked;  // a note in another encoding does not hide the numbers
    qel::CsvReader table(file, format);
    ColumnReader reader(taking);
    const ProgressBar progress(static_cast<std::size_t>(file.GetLength()) / kBytesOfMegabyte, "MB");
    Row row;
    for (std::size_t rows = 1; table.Next(); ++rows) {
        const auto fields = table.Fields();
        row.resize(fields.size());
        std::ranges::transform(fields, row.begin(), [](std::string_view field) { return qel::Trimmed(field); });
        reader.Take(row, table.Line());
        if (progress.IsShown() && rows % kRowsBetweenProgress == 0)
            progress.Show(static_cast<std::size_t>(file.GetPosition()) / kBytesOfMegabyte);
    }
    if (table.Failure()) throw Failure(table.Failure()->Text());
    return reader.Found();
}

CsvColumns ReadCsvColumns(CFile& file, const std::vector<std::string>& columns) {
    CsvColumns found;
    found.values.resize(columns.size());
    const auto take = [&](std::span<const double> numbers) {
        for (std::size_t i = 0; i < numbers.size(); ++i) found.values[i].push_back(numbers[i]);
    };
    CsvFindings findings = ReadCsvRows(file, {columns, take});
    found.names = std::move(findings.names);
    found.rows = findings.rows;
    return found;
}

}  // namespace tool
