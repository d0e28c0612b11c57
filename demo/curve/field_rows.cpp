#include "demo/curve/field_rows.h"

#include <algorithm>
#include <iterator>

#include <qellib10/qellib10.h>

#include "demo/support/failure.h"
#include "demo/support/text_file.h"

namespace titration {
namespace {

struct Separator {
    char character;
    const char* name;
};
constexpr Separator kSeparators[] = {
    {';', "semicolons"}, {'\t', "tabs"}, {',', "commas"}, {'|', "bars"}, {' ', "blanks"}};
constexpr std::size_t kMaximumShown = 6, kLongestShown = 40;  // fields, and bytes of one

}  // namespace

Rows SplitAsWritten(std::string_view text) {
    qel::CsvFormat format;
    format.isLineARow = true;
    format.encoding = qel::CsvEncoding::kUnchecked;  // a note in another encoding is not a reason to refuse a curve
    qel::CsvReader table(text, format);
    Rows result;
    while (table.Next()) {
        result.rows.resize(table.Line());  // a row for each line, also for one that names the separator
        for (const std::string_view field : table.Fields()) result.rows.back().emplace_back(qel::Trimmed(field));
    }
    if (table.Failure()) throw Failure(table.Failure()->Text());
    result.separator = table.Separator();
    return result;
}

std::string SeparatedBy(char separator) {
    const auto found = std::ranges::find(kSeparators, separator, &Separator::character);
    return std::string("separated by ") + (found != std::end(kSeparators) ? found->name : "?");
}

bool IsBlankOrComment(const Row& row) {
    const auto first = std::ranges::find_if(row, [](const std::string& field) { return !field.empty(); });
    if (first == row.end()) return true;
    if (first != row.begin()) return false;  // ";" as the separator
    return std::string_view("#!%;").find(first->front()) != std::string_view::npos || first->starts_with("//");
}

std::string Shown(const Row& row) {
    std::string text;
    for (std::size_t i = 0; i < std::min(row.size(), kMaximumShown); ++i) {
        const bool isLong = row[i].size() > kLongestShown;
        text += (i > 0 ? " \"" : "\"") + (isLong ? row[i].substr(0, kLongestShown) + "..." : row[i]) + "\"";
    }
    return row.size() > kMaximumShown ? text + " ..." : text;
}

}  // namespace titration
