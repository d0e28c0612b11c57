#include "qellib10/file/find_column.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "qellib10/base/measured_value.h"
#include "qellib10/platform/text/trimmed.h"

namespace qel {
namespace {

constexpr std::string_view kDigits = "0123456789";

bool IsAscii(std::string_view text) {
    return std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

bool IsSameBesidesCase(std::string_view a, std::string_view b) { return std::ranges::equal(a, b, {}, Lower, Lower); }

template <class Field> std::optional<std::size_t> Find(std::span<const Field> row, std::string_view column) {
    if (const auto number = ColumnNumber(column)) return number;
    const std::string_view name = Trimmed(column);
    const std::string replaced = WithPlainCharacters(name);
    const std::string_view plain = Trimmed(replaced);
    std::optional<std::size_t> similar;
    for (std::size_t i = 0; i < row.size(); ++i) {
        const std::string_view field = Trimmed(row[i]);
        if (field == name) return i;
        if (similar) continue;
        // Most rows are readings: their fields are not copied.
        if (IsAscii(field) ? IsSameBesidesCase(field, plain)
                           : IsSameBesidesCase(Trimmed(WithPlainCharacters(field)), plain))
            similar = i;
    }
    return similar;
}

}  // namespace

std::optional<std::size_t> ColumnNumber(std::string_view column) {
    const std::string_view digits = Trimmed(column);
    if (digits.empty() || digits.find_first_not_of(kDigits) != std::string_view::npos) return std::nullopt;
    std::size_t number = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (result.ec == std::errc::result_out_of_range) number = std::numeric_limits<std::size_t>::max();
    return number - 1;  // of 0 the largest number
}

std::optional<std::size_t> FindColumn(std::span<const std::string_view> row, std::string_view column) {
    return Find(row, column);
}
std::optional<std::size_t> FindColumn(std::span<const std::string> row, std::string_view column) {
    return Find(row, column);
}

}  // namespace qel
