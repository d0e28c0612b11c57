#include "demo/support/number.h"

#include <charconv>

#include "demo/support/text_file.h"

namespace titration {

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
