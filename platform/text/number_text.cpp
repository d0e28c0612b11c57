#include "qellib10/platform/text/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace qel {
namespace {

// Sign, the up to 309 digits of a double before the point, the point, the decimals and one more, and an exponent.
using Buffer = std::array<char, 1 + 309 + 1 + kMaxColumns + 1 + 8>;

std::string_view Print(Buffer& buffer, double value, std::chars_format format, int precision) {
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format, precision);
    return {buffer.data(), result.ptr};
}

bool IsOdd(double whole) { return std::fmod(std::fabs(whole), 2) == 1; }

// Exactly between two texts with @p decimals decimals; below 0, between two multiples of that power of ten. Such a tie
// is an odd multiple of 5^-decimals, and beyond 5^22 no double is one.
bool IsTie(double value, int decimals) {
    if (decimals >= 0) return IsOdd(std::ldexp(value, decimals + 1));
    if (decimals < -22) return false;
    const double unit = std::pow(10.0, -decimals);
    return std::fmod(std::fabs(value), unit) == unit / 2;
}

// Exponent of the first digit; from the digits themselves, because a logarithm would be wrong near powers of ten.
int DecimalExponent(double value) {
    Buffer buffer;
    const std::string_view text = Print(buffer, value, std::chars_format::scientific, 16);
    const std::string_view digits = text.substr(text.find('e') + 1);
    int exponent = 0;
    std::from_chars(digits.data() + 1, digits.data() + digits.size(), exponent);
    return digits.front() == '-' ? -exponent : exponent;
}

// Rounds a tie away from zero in its digits, which are complete: the last one is the 5 that is exactly half. (The next
// double away from zero would only work where doubles are close to each other: near 2^46 they are 0.016 apart.)
std::string RoundedUp(std::string_view exact) {
    std::string text(exact.substr(0, exact.size() - 1));
    if (text.back() == '.') text.pop_back();
    const std::size_t at = text.find_last_not_of("9.");
    const std::size_t nines = at + 1;  // from the first character on if there is no other
    std::replace(text.begin() + static_cast<std::ptrdiff_t>(nines), text.end(), '9', '0');
    if (at == std::string::npos || text[at] == '-') {
        text.insert(nines, 1, '1');
    } else {
        ++text[at];
    }
    return text;
}

}  // namespace

std::string FixedText(double value, int decimals) {
    decimals = std::clamp(decimals, 0, kMaxColumns);
    Buffer buffer;
    // The texts we are compared with round ties away from zero, to_chars rounds to even.
    if (IsTie(value, decimals)) return RoundedUp(Print(buffer, value, std::chars_format::fixed, decimals + 1));
    return std::string(Print(buffer, value, std::chars_format::fixed, decimals));
}

std::string ExponentText(double value, int decimals) {
    decimals = std::clamp(decimals, 0, kMaxExponentDecimals);
    Buffer buffer;
    if (!std::isfinite(value)) return std::string(Print(buffer, value, std::chars_format::scientific, decimals));
    // The next double away from zero prints as the tie rounded up, because so few digits do not show the difference.
    if (IsTie(value, decimals - DecimalExponent(value))) value = std::nextafter(value, std::copysign(HUGE_VAL, value));
    std::string text(Print(buffer, value, std::chars_format::scientific, decimals));
    const std::size_t mark = text.find('e');
    text[mark] = 'E';
    const std::size_t digits = text.size() - mark - 2;  // after the mark and the sign
    if (digits < 3) text.insert(mark + 2, 3 - digits, '0');
    return text;
}

std::string GeneralText(double value, int digits) {
    Buffer buffer;
    std::string text(Print(buffer, value, std::chars_format::general, std::clamp(digits, 1, kMaxColumns)));
    if (std::isfinite(value)) std::ranges::replace(text, 'e', 'E');
    return text;
}

int TruncatedToInt(double value) noexcept {
    constexpr double kTwoTo31 = 2147483648.0;
    return value > -kTwoTo31 - 1 && value < kTwoTo31 ? static_cast<int>(value) : std::numeric_limits<int>::min();
}

}  // namespace qel
