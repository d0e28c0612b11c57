#include "demo/curve/field_rows.h"

#include <algorithm>
#include <iterator>

#include "demo/curve/reading.h"
#include "demo/support/text_file.h"

namespace titration {
namespace {

struct Separator {
    char character;
    const char* name;
};
constexpr Separator kSeparators[] = {
    {';', "semicolons"}, {'\t', "tabs"}, {',', "commas"}, {'|', "bars"}, {' ', "blanks"}};
constexpr std::size_t kLinesToTry = 4000;  // of a longer text every second line, every third ...
constexpr std::size_t kMostShown = 6;

Row SplitRow(std::string_view line, char separator) {
    if (separator == ' ' || separator == '|') line = Trimmed(line);
    if (separator == '|' && line.starts_with('|')) line.remove_prefix(1);
    if (separator == '|' && line.ends_with('|')) line.remove_suffix(1);
    Row fields(1);
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const bool isQuote = line[i] == '"';
        if (isQuote && quoted && i + 1 < line.size() && line[i + 1] == '"') {
            fields.back() += line[++i];  // a doubled mark inside marks is one
        } else if (isQuote) {
            quoted = !quoted;
        } else if (line[i] == separator && !quoted) {
            if (separator != ' ' || !fields.back().empty()) fields.emplace_back();
        } else {
            fields.back() += line[i];
        }
    }
    for (std::string& field : fields) field = Trimmed(field);
    return fields;
}

// A field that is read as a number, or looks like several of them.
struct Numbers {
    std::ptrdiff_t rows = 0;    // with two numbers
    std::ptrdiff_t doubts = 0;  // of those, with a field of digits that is no number: "5 2" of "1,5 2,5"
};

Numbers Count(const std::vector<std::string_view>& lines, char separator) {
    Numbers count;
    for (std::size_t i = 0; i < lines.size(); i += 1 + lines.size() / kLinesToTry) {
        std::ptrdiff_t numbers = 0;
        bool isDoubtful = false;
        for (const std::string& field : SplitRow(lines[i], separator)) {
            const bool isNumber = ReadReading(field).has_value();
            numbers += isNumber ? 1 : 0;
            isDoubtful |=
                !isNumber && !field.empty() && field.find_first_not_of("0123456789.,+- ") == std::string::npos;
        }
        count.rows += numbers >= 2 ? 1 : 0;
        count.doubts += numbers >= 2 && isDoubtful ? 1 : 0;
    }
    return count;
}

// In "1,5;2,5" the comma would find two numbers as well, so of equals the first; unless it cuts numbers into pieces.
char SeparatorOf(const std::vector<std::string_view>& lines) {
    char best = kSeparators[0].character;
    Numbers most{-1, 0};
    for (const Separator& separator : kSeparators) {
        const Numbers found = Count(lines, separator.character);
        const bool isBetter = found.rows > most.rows || (found.rows == most.rows && found.doubts < most.doubts);
        if (!isBetter) continue;
        most = found;
        best = separator.character;
    }
    if (most.rows > 0) return best;
    const auto first = std::ranges::find_if(kSeparators, [&](const Separator& separator) {
        return std::ranges::any_of(lines, [&](std::string_view line) {
            return Trimmed(line).find(separator.character) != std::string_view::npos;
        });
    });
    return first != std::end(kSeparators) ? first->character : best;
}

}  // namespace

Rows SplitAsWritten(std::string_view text) {
    const std::vector<std::string_view> lines = Lines(text);
    Rows result{{}, SeparatorOf(lines)};
    result.rows.reserve(lines.size());
    for (const std::string_view line : lines) result.rows.push_back(SplitRow(line, result.separator));
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
    for (std::size_t i = 0; i < std::min(row.size(), kMostShown); ++i) text += (i > 0 ? " \"" : "\"") + row[i] + "\"";
    return row.size() > kMostShown ? text + " ..." : text;
}

}  // namespace titration
