#include "qellib10/file/csv_separator.h"

#include <algorithm>
#include <cstddef>

#include "qellib10/base/measured_value.h"

namespace qel {
namespace {

constexpr char kSeparators[] = {';', '\t', ',', '|', ' '};
constexpr std::size_t kMaxRows = 4000, kEnoughRows = 1000;  // rows that are looked at, and those with values
constexpr std::size_t kLongestValue = 64;

struct Count {
    std::size_t rows = 0;        // with two values
    std::size_t doubts = 0;      // of those, with a field that another separator is in, see IsDoubtful
    std::size_t separators = 0;  // fields that are not the first of their row
};

// Whether it is worth reading: most fields of a wrong separator are not.
bool MayBeValue(std::string_view field) {
    if (field.empty() || field.size() > kLongestValue) return false;
    const char first = field.front();
    return static_cast<unsigned char>(first) >= 0x80 ||
           std::string_view("0123456789+-.,").find(first) != std::string::npos;
}

// Digits that are not a value, as "5 2" of "1,5 2,5" and "1 | 7" of "0,1 | 7,2", and those that begin with a zero which
// nobody writes, as "0 215" of "1,0 215" and "000,7" of "1 000,7".
bool IsDoubtful(std::string_view field, bool isValue) {
    if (field.empty()) return false;
    if (!isValue) return field.find_first_not_of("0123456789.,+- ;|\t") == std::string_view::npos;
    return field.size() > 1 && field[0] == '0' && std::string_view("0123456789 ").find(field[1]) != std::string::npos;
}

void Add(const std::vector<std::string_view>& row, Count& count) {
    if (row.size() < 2) return;
    std::size_t values = 0;
    bool isDoubtful = false;
    for (const std::string_view field : row) {
        const bool isValue = MayBeValue(field) && ReadMeasuredValue(field).has_value();
        values += isValue ? 1 : 0;
        isDoubtful |= IsDoubtful(field, isValue);
    }
    count.rows += values >= 2 ? 1 : 0;
    count.doubts += values >= 2 && isDoubtful ? 1 : 0;
    count.separators += row.size() - 1;
}

Count CountRows(std::string_view sample, bool isAll, const CsvSyntax& syntax) {
    CsvRowScanner scanner(syntax);
    Count count;
    for (std::size_t row = 0; row < kMaxRows && count.rows < kEnoughRows && !sample.empty(); ++row) {
        const auto size = scanner.Scan(sample, isAll);
        if (!size) break;
        Add(scanner.Fields(), count);
        sample.remove_prefix(*size);
    }
    return count;
}

}  // namespace

char FindSeparator(std::string_view sample, bool isAll, CsvSyntax syntax) {
    char best = kSeparators[0], firstThere = 0;
    Count most;
    for (const char separator : kSeparators) {
        syntax.separator = separator;
        const Count found = CountRows(sample, isAll, syntax);
        if (firstThere == 0 && found.separators > 0) firstThere = separator;
        if (found.rows < most.rows || (found.rows == most.rows && found.doubts >= most.doubts)) continue;
        most = found;
        best = separator;
    }
    return most.rows == 0 && firstThere != 0 ? firstThere : best;
}

}  // namespace qel
