#include "qellib10/quantity/unit_value.h"

#include <algorithm>
#include <cstdlib>

namespace qel {
namespace {

constexpr int kLargestMagnitude = 300;  // of 1e300, and of 1e-300 below 0

constexpr std::size_t At(BaseUnit base) { return static_cast<std::size_t>(base); }
int PowerOf(const UnitValue& value, std::size_t base) { return value.powers[base]; }

// A range that also has the inverse of each number.
bool IsUsable(const Decimal& number) {
    DecimalFlags flags;
    return number >= Decimal::Scaled(1, -kLargestMagnitude, flags) &&
           number <= Decimal::Scaled(1, kLargestMagnitude, flags);
}

// With the smallest numbers that are easy to find: one of them is 1 where the other is a decimal number with an end.
std::optional<UnitValue> Reduced(UnitValue value) {
    if (!IsUsable(value.numerator) || !IsUsable(value.denominator)) return {};
    DecimalFlags flags;
    const Decimal quotient = Divide(value.numerator, value.denominator, flags);
    DecimalFlags inverseFlags;
    const Decimal inverse = Divide(value.denominator, value.numerator, inverseFlags);
    if (!IsUsable(quotient)) return {};
    if (!flags.isInexact) {
        value.numerator = quotient.Reduced();
        value.denominator = Decimal(1);
    } else if (!inverseFlags.isInexact) {
        value.numerator = Decimal(1);
        value.denominator = inverse.Reduced();
    } else {
        value.numerator = value.numerator.Reduced();
        value.denominator = value.denominator.Reduced();
    }
    return value;
}

std::optional<UnitValue> Combined(const UnitValue& a, const UnitValue& b, int sign) {
    UnitValue result;
    for (std::size_t i = 0; i < kBaseUnits; ++i) {
        const int power = a.powers[i] + sign * b.powers[i];
        if (std::abs(power) > UnitValue::kMostPower) return {};
        result.powers[i] = static_cast<std::int8_t>(power);
    }
    DecimalFlags flags;
    result.numerator = Multiply(a.numerator, sign > 0 ? b.numerator : b.denominator, flags);
    result.denominator = Multiply(a.denominator, sign > 0 ? b.denominator : b.numerator, flags);
    result.isExact = a.isExact && b.isExact && !flags.isInexact;
    return Reduced(result);
}

// What a division of units with these dimensions may be a ratio of: of mg/L it is masses or volumes, of mV nothing.
std::uint8_t RatiosOf(const UnitValue& value) {
    std::uint8_t ratios = kRatioOfNothing;
    for (std::size_t i = 0; i < kBaseUnits; ++i) {
        const int power = PowerOf(value, i);
        if (power == 0) continue;
        if (i == At(BaseUnit::kKilogram))
            ratios |= kRatioOfMasses;
        else if (i == At(BaseUnit::kMole))
            ratios |= kRatioOfAmounts;
        else if (i == At(BaseUnit::kMetre) && power % 3 == 0)
            ratios |= kRatioOfVolumes;
        else
            return kRatioOfNothing;
    }
    return ratios;
}

// Of a product, where 0 is a plain number. 5 %(m/m) of 2 %(v/v) is no mass fraction, and by a ratio of molar masses a
// mass fraction may become an amount fraction.
std::uint8_t ProductOfRatios(std::uint8_t a, std::uint8_t b) {
    const bool isMixed = a != kRatioOfNothing && b != kRatioOfNothing && (a & b) == 0;
    return isMixed ? std::uint8_t{kRatioOfMixed} : a | b;
}

std::uint8_t QuotientOfRatios(std::uint8_t a, std::uint8_t b) {
    const bool isAny = a == kRatioOfAny || b == kRatioOfAny;
    if (a == b || (isAny && (a & b) != 0)) return kRatioOfNothing;  // a mass fraction by a mass fraction is a number
    return ProductOfRatios(a, b);
}

std::uint8_t CarriedBy(const UnitValue& value) { return value.IsRatio() ? value.ratios : value.carried; }

// mg/(g*min) is (mg/g)/min, while mg/(mg/L) is L.
std::uint8_t RatioPerUnit(const UnitValue& a, const UnitValue& b) {
    for (std::size_t i = 0; i < kBaseUnits; ++i)
        if (a.powers[i] != 0 ? a.powers[i] != b.powers[i] : b.powers[i] < 0) return kRatioOfNothing;
    return RatiosOf(a);
}

// What a unit is an amount or a rate of, also with other factors: g/min is one of mass, J/g one per mass, J and mV
// none, whose kg is that of the energy. A share of a pressure is a pressure, by volumes and by amounts.
std::uint8_t PartsOf(const UnitValue& value) {
    const int kilogram = PowerOf(value, At(BaseUnit::kKilogram)), metre = PowerOf(value, At(BaseUnit::kMetre));
    const int energy = kilogram == 0 && metre == 0 ? 0 : -value.powers[At(BaseUnit::kSecond)] / 2;
    const int length = metre - 2 * energy;
    std::uint8_t parts = kRatioOfNothing;
    if (kilogram != energy) parts |= kRatioOfMasses;
    if (length != 0 && length % 3 == 0) parts |= kRatioOfVolumes;
    const bool isPressure = kilogram == 1 && metre == -1 && energy == 1;
    if (value.powers[At(BaseUnit::kMole)] != 0 || isPressure) parts |= kRatioOfAmounts;
    return parts;
}

// A mass fraction of a mass is a mass, and of a volume still a mass fraction.
void Carry(UnitValue& result, std::uint8_t ratio, bool isStated) {
    isStated = isStated && ratio != kRatioOfNothing;
    if ((ratio & PartsOf(result)) == 0) {
        result.carried = ratio;
        result.isStated = isStated;
    } else {
        result.taken |= ratio;
        result.isTakenStated |= isStated;
    }
}

void Take(UnitValue& result, const UnitValue& a, const UnitValue& b) {
    result.taken = a.taken | b.taken;
    result.isTakenStated = a.isTakenStated || b.isTakenStated;
}

// A mass fraction of a mass, by a mass, is stated as the mass fraction was.
bool IsTakenStated(std::uint8_t ratio, const UnitValue& value) {
    return value.isTakenStated && (value.taken & ratio) != 0;
}

// @param own what of a and b became a ratio now, apart from the ratios that they have
void SetRatio(UnitValue& result, std::uint8_t own, std::uint8_t carried, const UnitValue& a, const UnitValue& b) {
    result.ratios = ProductOfRatios(own, carried);
    result.isStated =
        (carried != kRatioOfNothing && (a.isStated || b.isStated)) || IsTakenStated(own, a) || IsTakenStated(own, b);
}

}  // namespace

bool UnitValue::IsRatio() const noexcept {
    return std::ranges::all_of(powers, [](int power) { return power == 0; });
}

bool UnitValue::IsSameKind(const UnitValue& other) const noexcept {
    return powers == other.powers && (ratios == other.ratios || (ratios & other.ratios) != 0) &&
           (carried == other.carried || (carried & other.carried) != 0);
}

bool operator==(const UnitValue& a, const UnitValue& b) noexcept {
    DecimalFlags flags;
    return a.powers == b.powers && a.ratios == b.ratios &&
           Multiply(a.numerator, b.denominator, flags) == Multiply(b.numerator, a.denominator, flags);
}

std::optional<UnitValue> MultiplyValues(const UnitValue& a, const UnitValue& b) {
    std::optional<UnitValue> result = Combined(a, b, 1);
    if (!result) return {};
    const std::uint8_t carried = ProductOfRatios(CarriedBy(a), CarriedBy(b));
    const std::uint8_t taken = a.taken | b.taken;
    if (!result->IsRatio()) {
        Take(*result, a, b);
        Carry(*result, carried, a.isStated || b.isStated);
    } else if (taken != kRatioOfNothing) {
        SetRatio(*result, taken | RatiosOf(a), carried, a, b);
    } else {
        const bool isNew = !a.IsRatio() && carried == kRatioOfNothing;
        SetRatio(*result, isNew ? kRatioOfAny : kRatioOfNothing, carried, a, b);
    }
    return result;
}

std::optional<UnitValue> DivideValues(const UnitValue& a, const UnitValue& b) {
    std::optional<UnitValue> result = Combined(a, b, -1);
    if (!result) return {};
    const std::uint8_t carried = QuotientOfRatios(CarriedBy(a), CarriedBy(b));
    if (!result->IsRatio()) {
        Take(*result, a, b);
        Carry(*result, ProductOfRatios(RatioPerUnit(a, b), carried),
              carried != kRatioOfNothing && (a.isStated || b.isStated));
    } else {
        const std::uint8_t divided = RatiosOf(a);
        SetRatio(*result, divided != kRatioOfNothing ? divided : QuotientOfRatios(a.taken, b.taken), carried, a, b);
        const bool isQuotient = result->ratios == kRatioOfNothing && a.IsRatio() && !b.isStated;
        if (isQuotient) result->perhaps = a.ratios & b.ratios & kRatioOfAny;
    }
    return result;
}

std::optional<UnitValue> PowerOfValue(const UnitValue& a, int power) {
    if (std::abs(power) > UnitValue::kMostPower) return {};
    std::optional<UnitValue> result = UnitValue();
    for (int i = 0; i < std::abs(power) && result; ++i) result = Combined(*result, a, power > 0 ? 1 : -1);
    if (result && power != 0) {
        result->ratios = a.ratios;
        result->isStated = a.isStated;
        Take(*result, a, a);
        if (a.carried != kRatioOfNothing) Carry(*result, a.carried, a.isStated);
    }
    return result;
}

std::optional<UnitValue> SquareRootOfValue(const UnitValue& a) {
    UnitValue result = a;
    for (std::int8_t& power : result.powers) {
        if (power % 2 != 0) return {};
        power = static_cast<std::int8_t>(power / 2);
    }
    DecimalFlags flags;
    result.numerator = SquareRoot(a.numerator, flags);
    result.denominator = SquareRoot(a.denominator, flags);
    result.isExact = a.isExact && !flags.isInexact;
    return Reduced(result);
}

}  // namespace qel
