#include "qellib10/quantity/unit.h"

namespace qel {
namespace {

// A molar mass changes neither a number nor a ratio of volumes or amounts.
bool HasMolarMass(const UnitValue& value) { return !value.IsRatio() || (value.ratios & kRatioOfMasses) != 0; }

// A ratio is a number, also where it was computed and is a factor of another unit.
bool Becomes(const UnitValue& source, const UnitValue& target) {
    if (source.powers != target.powers) return false;
    if (!source.IsRatio()) return source.HasComputedRatio() && target.carried == kRatioOfNothing;
    return target.ratios == kRatioOfNothing || (source.perhaps & target.ratios) != 0;
}

// 5 K between two temperatures are not -268.15 °C.
bool IsDifferenceWithZero(const Unit& a, const Unit& b) {
    return (a.IsDifference() && b.HasOffset()) || (a.HasOffset() && b.IsDifference());
}

}  // namespace

bool UnitConversion::IsNothing() const noexcept {
    return before.IsZero() && after.IsZero() && numerator == denominator;
}

Decimal UnitConversion::Of(const Decimal& value, DecimalFlags& flags) const noexcept {
    Decimal result = value;
    if (!before.IsZero()) result = Add(result, before, flags);
    if (numerator != Decimal(1)) result = Multiply(result, numerator, flags);
    if (denominator != Decimal(1)) result = Divide(result, denominator, flags);
    if (!after.IsZero()) result = Add(result, after, flags);
    if (!isExact) flags.isInexact = true;
    return result;
}

bool IsSameKind(const Unit& a, const Unit& b) noexcept {
    return a.Value().IsSameKind(b.Value()) && !IsDifferenceWithZero(a, b);
}

std::optional<UnitConversion> ConversionOf(const Unit& from, const Unit& to) {
    const UnitValue& source = from.Value();
    const UnitValue& target = to.Value();
    if ((!source.IsSameKind(target) && !Becomes(source, target)) || IsDifferenceWithZero(from, to)) return {};
    const std::optional<UnitValue> factor = DivideValues(source, target);
    if (!factor) return {};
    UnitConversion conversion;
    conversion.numerator = factor->numerator;
    conversion.denominator = factor->denominator;
    conversion.isExact = factor->isExact;
    if (from.Offset() == to.Offset() && conversion.IsNothing()) return conversion;
    // Both offsets in one number, before or after the factor, where that has an end: 1 degree Celsius is 1.8 + 32
    // degrees Fahrenheit, and 50 of these are (50 - 32) / 1.8 degrees Celsius.
    DecimalFlags after;
    const Decimal scaled = Divide(Multiply(from.Offset(), factor->numerator, after), factor->denominator, after);
    conversion.after = Subtract(scaled, to.Offset(), after);
    if (!after.isInexact) return conversion;
    DecimalFlags before;
    const Decimal unscaled = Divide(Multiply(to.Offset(), factor->denominator, before), factor->numerator, before);
    conversion.before = Subtract(from.Offset(), unscaled, before);
    conversion.after = Decimal();
    if (!before.isInexact) return conversion;
    conversion.before = from.Offset();
    conversion.after = -to.Offset();
    return conversion;
}

std::optional<Decimal> Convert(const Decimal& value, const Unit& from, const Unit& to, DecimalFlags& flags,
                               const std::optional<Decimal>& molarMass) {
    if (const auto conversion = ConversionOf(from, to)) return conversion->Of(value, flags);
    if (!molarMass || !molarMass->IsFinite() || *molarMass <= Decimal(0)) return {};
    if (!HasMolarMass(from.Value()) || !HasMolarMass(to.Value())) return {};
    std::string ignored;
    const std::optional<Unit> perMole = Unit::Parse("g/mol", ignored);
    if (!perMole) return {};
    if (const auto mass = Unit::Multiply(from, *perMole))
        if (const auto conversion = ConversionOf(*mass, to))
            return conversion->Of(Multiply(value, *molarMass, flags), flags);
    if (const auto amount = Unit::Divide(from, *perMole))
        if (const auto conversion = ConversionOf(*amount, to))
            return conversion->Of(Divide(value, *molarMass, flags), flags);
    return {};
}

}  // namespace qel
