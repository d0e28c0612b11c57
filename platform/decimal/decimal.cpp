#include "qellib10/platform/decimal/decimal.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "qellib10/platform/decimal/dec_digits.h"

namespace qel {
namespace {

static_assert(sizeof(Decimal) == 36 && sizeof(DecDigits<Decimal::kDigits>) <= sizeof(Decimal));

// decNumber counts digits in 32 bits; a longer text is no number that anybody wrote.
constexpr std::size_t kLongestText = 1'000'000;

decNumber* Of(Decimal& value) noexcept { return DecimalAccess::Of(value); }
const decNumber* Of(const Decimal& value) noexcept { return DecimalAccess::Of(value); }

using Operation = decNumber* (*)(decNumber*, const decNumber*, const decNumber*, decContext*);

template <Operation kOperation> Decimal Computed(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept {
    decContext context = kDecimalContext;
    Decimal result;
    kOperation(Of(result), Of(a), Of(b), &context);
    if (context.status != 0) AddFlags(flags, context.status);
    return result;
}

rounding ModeOf(DecimalRounding rounding) noexcept {
    switch (rounding) {
        case DecimalRounding::kHalfAwayFromZero:
            return DEC_ROUND_HALF_UP;
        case DecimalRounding::kTowardZero:
            return DEC_ROUND_DOWN;
        case DecimalRounding::kAwayFromZero:
            return DEC_ROUND_UP;
        default:
            return DEC_ROUND_HALF_EVEN;
    }
}

// The digits of a finite number, without sign, point and exponent.
std::string DigitsOf(const Decimal& value) {
    std::array<std::uint8_t, Decimal::kDigits> digits;
    decNumberGetBCD(Of(value), digits.data());
    std::string text;
    for (int i = 0; i < value.Digits(); ++i) text += static_cast<char>('0' + digits[static_cast<std::size_t>(i)]);
    return text;
}

}  // namespace

Decimal::Decimal() noexcept : m_number{} { decNumberZero(Of(*this)); }

Decimal::Decimal(std::int64_t value) noexcept : Decimal() {
    std::array<char, 24> text = {};
    std::to_chars(text.data(), text.data() + text.size(), value);
    decContext context = kDecimalContext;
    decNumberFromString(Of(*this), text.data(), &context);
}

Decimal Decimal::OfText(std::string_view text, DecimalFlags& flags) {
    Decimal value;
    if (text.empty() || text.size() > kLongestText || text.find('\0') != std::string_view::npos) {
        flags.isInvalid = true;
        return NotANumber();
    }
    decContext context = kDecimalContext;
    decNumberFromString(Of(value), std::string(text).c_str(), &context);
    AddFlags(flags, context.status);
    return value;
}

Decimal Decimal::OfDouble(double value) noexcept {
    std::array<char, 32> text = {};  // the longest is -2.2250738585072014e-308
    std::to_chars(text.data(), text.data() + text.size() - 1, value);
    Decimal number;
    decContext context = kDecimalContext;
    decNumberFromString(Of(number), text.data(), &context);
    return number;
}

Decimal Decimal::NotANumber() noexcept {
    Decimal value;
    Of(value)->bits = DECNAN;
    return value;
}

Decimal Decimal::Scaled(std::int64_t coefficient, int exponent, DecimalFlags& flags) noexcept {
    Decimal value(coefficient);
    // Far past decimal128's exponents, so that the sum cannot overflow.
    Of(value)->exponent = std::clamp(exponent, -20'000, 20'000);
    decContext context = kDecimalContext;
    Decimal result;
    decNumberPlus(Of(result), Of(value), &context);
    AddFlags(flags, context.status);
    return result;
}

std::string Decimal::Text() const {
    std::array<char, kDigits + 14> text;
    return decNumberToString(Of(*this), text.data());
}

std::string Decimal::PlainText() const {
    if (!IsFinite()) return Text();
    std::string digits = DigitsOf(*this);
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
    std::array<char, kDigits + 14> text;
    const char* const start = decNumberToString(Of(*this), text.data());
    const std::string_view all(start);
    double value = 0.0;
    const auto [end, error] = std::from_chars(all.data(), all.data() + all.size(), value);
    if (error != std::errc::result_out_of_range) return value;
    const double nearest = Magnitude() > 0 ? HUGE_VAL : 0.0;
    return IsNegative() ? -nearest : nearest;
}

bool Decimal::IsNan() const noexcept { return decNumberIsNaN(Of(*this)); }
bool Decimal::IsInfinite() const noexcept { return decNumberIsInfinite(Of(*this)); }
bool Decimal::IsZero() const noexcept { return decNumberIsZero(Of(*this)); }
bool Decimal::IsNegative() const noexcept { return decNumberIsNegative(Of(*this)); }
int Decimal::Digits() const noexcept { return Of(*this)->digits; }
int Decimal::Exponent() const noexcept { return Of(*this)->exponent; }

bool Decimal::IsInteger() const noexcept {
    return IsFinite() && (IsZero() || Exponent() >= 0 || Reduced().Exponent() >= 0);
}

Decimal Decimal::operator-() const noexcept {
    Decimal value;
    decNumberCopyNegate(Of(value), Of(*this));
    return value;
}

Decimal Decimal::Absolute() const noexcept {
    Decimal value;
    decNumberCopyAbs(Of(value), Of(*this));
    return value;
}

Decimal Decimal::Reduced() const noexcept {
    decContext context = kDecimalContext;
    Decimal value;
    decNumberReduce(Of(value), Of(*this), &context);
    return value;
}

Decimal Add(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept {
    return Computed<decNumberAdd>(a, b, flags);
}
Decimal Subtract(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept {
    return Computed<decNumberSubtract>(a, b, flags);
}
Decimal Multiply(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept {
    return Computed<decNumberMultiply>(a, b, flags);
}
Decimal Divide(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept {
    return Computed<decNumberDivide>(a, b, flags);
}
Decimal Remainder(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept {
    return Computed<decNumberRemainder>(a, b, flags);
}

Decimal SquareRoot(const Decimal& a, DecimalFlags& flags) noexcept {
    decContext context = kDecimalContext;
    Decimal result;
    decNumberSquareRoot(Of(result), Of(a), &context);
    AddFlags(flags, context.status);
    return result;
}

Decimal RoundTo(const Decimal& a, int exponent, DecimalRounding rounding, DecimalFlags& flags) noexcept {
    decContext context = kDecimalContext;
    context.round = ModeOf(rounding);
    const Decimal pattern = Decimal(1);
    Decimal last = pattern;
    Of(last)->exponent = std::clamp(exponent, -20'000, 20'000);
    Decimal result;
    decNumberQuantize(Of(result), Of(a), Of(last), &context);
    AddFlags(flags, context.status);
    return result;
}

std::partial_ordering operator<=>(const Decimal& a, const Decimal& b) noexcept {
    decContext context = kDecimalContext;
    Decimal order;
    decNumberCompare(Of(order), Of(a), Of(b), &context);
    if (order.IsNan()) return std::partial_ordering::unordered;
    if (order.IsZero()) return std::partial_ordering::equivalent;
    return order.IsNegative() ? std::partial_ordering::less : std::partial_ordering::greater;
}

bool operator==(const Decimal& a, const Decimal& b) noexcept { return (a <=> b) == 0; }

}  // namespace qel
