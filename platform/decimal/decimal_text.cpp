#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include "qellib10/platform/decimal/dec_digits.h"

namespace qel {
namespace {

// decNumber counts digits in 32 bits; a longer text is no number that anybody wrote.
constexpr std::size_t kLongestText = 1'000'000;

bool IsDigit(char c) noexcept { return c >= '0' && c <= '9'; }

// The usual numbers: up to 34 digits with an exponent in range. decNumber reads all others.
std::optional<Decimal> UsualNumber(std::string_view text) noexcept {
    const bool isNegative = text.starts_with('-');
    std::size_t at = isNegative || text.starts_with('+') ? 1 : 0;
    Wide coefficient = 0;
    int places = 0;
    bool hasPoint = false, hasDigit = false;
    for (; at < text.size() && (IsDigit(text[at]) || (text[at] == '.' && !hasPoint)); ++at) {
        if (text[at] == '.') {
            hasPoint = true;
            continue;
        }
        coefficient = coefficient * 10 + static_cast<unsigned>(text[at] - '0');
        if (coefficient >= WidePowerOfTen(Decimal::kDigits)) return {};
        hasDigit = true;
        places += hasPoint ? 1 : 0;
    }
    int exponent = 0;
    if (hasDigit && at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        ++at;
        if (at + 1 < text.size() && text[at] == '+' && IsDigit(text[at + 1])) ++at;
        const auto [end, error] = std::from_chars(text.data() + at, text.data() + text.size(), exponent);
        if (error != std::errc()) return {};
        at = static_cast<std::size_t>(end - text.data());
    }
    constexpr int kMost = 10'000;  // so that the difference cannot overflow
    if (!hasDigit || at != text.size() || places > kMost || exponent < -kMost || exponent > kMost) return {};
    exponent -= places;
    if (exponent < kLeastExponent || exponent > kGreatestExponent) return {};
    return DecimalAccess::Finite(isNegative, coefficient, exponent);
}

std::string_view Written(const Decimal& value, std::array<char, Decimal::kDigits + 14>& text) noexcept {
    return decNumberToString(NumberOf(value).Get(), text.data());
}

// The digits of a finite number, without sign, point and exponent.
std::string CoefficientText(const Decimal& value) {
    std::array<char, Decimal::kDigits + 14> text;
    return std::string(Written(DecimalAccess::Finite(false, DecimalAccess::CoefficientOf(value), 0), text));
}

// Both integers are doubles, so that the quotient or product is rounded once.
std::optional<double> SmallNumber(const Decimal& value) noexcept {
    constexpr std::array kPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    const Wide coefficient = DecimalAccess::CoefficientOf(value);
    const auto power = static_cast<std::size_t>(std::abs(value.Exponent()));
    if (!value.IsFinite() || coefficient >> 53 != 0 || power >= kPowers.size()) return {};
    const auto digits = static_cast<double>(LowOf(coefficient));
    const double magnitude = value.Exponent() < 0 ? digits / kPowers[power] : digits * kPowers[power];
    return value.IsNegative() ? -magnitude : magnitude;
}

}  // namespace

Decimal Decimal::OfText(std::string_view text, DecimalFlags& flags) {
    if (const std::optional<Decimal> usual = UsualNumber(text)) return *usual;
    if (text.empty() || text.size() > kLongestText || text.find('\0') != std::string_view::npos) {
        flags.isInvalid = true;
        return NotANumber();
    }
    decContext context = kDecimalContext;
    DecNumber number;
    decNumberFromString(number.Get(), std::string(text).c_str(), &context);
    AddFlags(flags, context.status);
    return DecimalOf(number.Get());
}

Decimal Decimal::OfDouble(double value) noexcept {
    std::array<char, 32> text = {};  // the longest is -2.2250738585072014e-308
    const char* const end = std::to_chars(text.data(), text.data() + text.size() - 1, value).ptr;
    if (const auto usual = UsualNumber({text.data(), static_cast<std::size_t>(end - text.data())})) return *usual;
    decContext context = kDecimalContext;
    DecNumber number;
    decNumberFromString(number.Get(), text.data(), &context);
    return DecimalOf(number.Get());
}

std::string Decimal::Text() const {
    std::array<char, kDigits + 14> text;
    return std::string(Written(*this, text));
}

std::string Decimal::PlainText() const {
    if (!IsFinite()) return Text();
    std::string digits = CoefficientText(*this);
    const int exponent = Exponent();
    if (exponent > 0 && !IsZero()) digits.append(static_cast<std::size_t>(exponent), '0');
    if (exponent < 0) {
        const auto places = static_cast<std::size_t>(-exponent);
        if (digits.size() <= places) digits.insert(0, places + 1 - digits.size(), '0');
        digits.insert(digits.size() - places, 1, '.');
    }
    return IsNegative() ? '-' + digits : digits;
}

double Decimal::ToDouble() const noexcept {
    if (const std::optional<double> small = SmallNumber(*this)) return *small;
    std::array<char, kDigits + 14> text;
    const std::string_view all = Written(*this, text);
    double value = 0.0;
    const auto [end, error] = std::from_chars(all.data(), all.data() + all.size(), value);
    if (error != std::errc::result_out_of_range) return value;
    const double nearest = Magnitude() > 0 ? HUGE_VAL : 0.0;
    return IsNegative() ? -nearest : nearest;
}

}  // namespace qel
