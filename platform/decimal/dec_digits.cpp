#include "qellib10/platform/decimal/dec_digits.h"

#include <cstring>

namespace qel {
namespace {

constexpr Wide kUnit = WidePowerOfTen(DECDPUN);  // a unit of decNumber is below it

// The units as bytes: the compiler takes those past the type's array for impossible.
using Units = std::array<decNumberUnit, (Decimal::kDigits + DECDPUN - 1) / DECDPUN>;
constexpr std::size_t kUnitsAt = offsetof(decNumber, lsu);
static_assert(kUnitsAt + sizeof(Units) <= sizeof(DecNumber));

}  // namespace

DecNumber NumberOf(const Decimal& value) noexcept {
    Wide coefficient = DecimalAccess::CoefficientOf(value);
    DecNumber number;
    number.number.digits = DigitsOf(coefficient);
    number.number.exponent = DecimalAccess::ExponentOf(value);
    number.number.bits = DecimalAccess::BitsOf(value);
    Units units = {};
    for (decNumberUnit& unit : units) {
        const WideQuotient divided = Divided(coefficient, kUnit);
        unit = static_cast<decNumberUnit>(divided.rest);
        coefficient = divided.quotient;
    }
    std::memcpy(reinterpret_cast<std::byte*>(&number) + kUnitsAt, units.data(), sizeof units);
    return number;
}

Decimal DecimalOf(const decNumber* number) noexcept {
    const auto count = static_cast<std::size_t>((number->digits + DECDPUN - 1) / DECDPUN);
    Units units = {};
    std::memcpy(units.data(), reinterpret_cast<const std::byte*>(number) + kUnitsAt, count * sizeof units[0]);
    Wide coefficient = 0;
    for (std::size_t i = count; i > 0; --i) coefficient = coefficient * kUnit + units[i - 1];
    return DecimalAccess::Made(number->bits, coefficient, number->exponent);
}

}  // namespace qel
