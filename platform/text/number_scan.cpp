#include "qellib10/platform/text/number_scan.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

namespace qel {
namespace {

using std::size_t;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsSign(char c) { return c == '+' || c == '-'; }

// Skips the longest run of such characters and returns its length.
template <typename Test> size_t Skip(std::string_view text, size_t& at, Test test) {
    const size_t first = at;
    while (at < text.size() && test(text[at])) ++at;
    return at - first;
}

// Skips blanks and one sign.
bool SkipToDigits(std::string_view text, size_t& at) {
    Skip(text, at, IsBlank);
    if (at == text.size() || !IsSign(text[at])) return false;
    return text[at++] == '-';
}

// Skips an exponent if there is a complete one at @p at.
std::int64_t SkipExponent(std::string_view text, size_t& at) {
    if (at == text.size() || std::string_view("eEdD").find(text[at]) == std::string_view::npos) return 0;
    size_t end = at + 1;
    if (end < text.size() && IsSign(text[end])) ++end;
    if (Skip(text, end, IsDigit) == 0) return 0;
    const std::int64_t exponent = ScanInteger(text.substr(at + 1, end - at - 1));
    at = end;
    return exponent;
}

// The result for a number outside the range of double; @p mantissa has its digits (no sign).
double OutOfRange(std::string_view mantissa, std::int64_t exponent) {
    const size_t first = mantissa.find_first_not_of("0.");
    if (first == std::string_view::npos) return 0;
    const size_t point = std::min(mantissa.find('.'), mantissa.size());
    const auto magnitude = static_cast<double>(point) - static_cast<double>(first) + static_cast<double>(exponent);
    return magnitude > 0 ? HUGE_VAL : 0;
}

}  // namespace

std::int64_t ScanInteger(std::string_view text) noexcept {
    size_t at = 0;
    const bool negative = SkipToDigits(text, at);
    // Accumulated as a negative number, because that range has one more value.
    constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
    std::int64_t value = 0;
    for (; at < text.size() && IsDigit(text[at]); ++at) {
        const int digit = text[at] - '0';
        value = value < (kLowest + digit) / 10 ? kLowest : value * 10 - digit;
    }
    if (negative) return value;
    return value == kLowest ? std::numeric_limits<std::int64_t>::max() : -value;
}

int ClampToInt(std::int64_t value) noexcept {
    using Int = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<std::int64_t>(value, Int::min(), Int::max()));
}

ScannedNumber ScanNumber(std::string_view text) {
    size_t at = 0;
    const bool negative = SkipToDigits(text, at);
    const size_t first = at;
    size_t digits = Skip(text, at, IsDigit);
    if (at < text.size() && text[at] == '.') {
        ++at;
        digits += Skip(text, at, IsDigit);
    }
    if (digits == 0) return {};
    const std::string_view mantissa = text.substr(first, at - first);
    const std::int64_t exponent = SkipExponent(text, at);

    std::string accepted(text.substr(first, at - first));
    const size_t mark = mantissa.size();
    if (mark < accepted.size()) accepted[mark] = 'e';
    double value = 0;
    const auto result = std::from_chars(accepted.data(), accepted.data() + accepted.size(), value);
    if (result.ec == std::errc::result_out_of_range) value = OutOfRange(mantissa, exponent);
    return {negative ? -value : value, at};
}

}  // namespace qel
