#include "number.h"

#include <algorithm>
#include <charconv>

#include "text_file.h"

namespace titration {

std::optional<double> ParseNumber(std::string_view text) {
    text = Trimmed(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    const bool hasDigit = text.find_first_of("0123456789") != std::string_view::npos;
    // Keeps "nan", "inf" and a second sign from the reader below.
    if (!hasDigit || text.find_first_not_of("0123456789.,eE+-") != std::string_view::npos) return std::nullopt;
    std::string plain(text);
    std::ranges::replace(plain, ',', '.');
    double value = 0;
    const char* const end = plain.data() + plain.size();
    const auto [stop, error] = std::from_chars(plain.data(), end, value);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

std::optional<int> ParseWholeNumber(std::string_view text) {
    text = Trimmed(text);
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || value < 0) return std::nullopt;
    return value;
}

std::string Counted(long long count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace titration
