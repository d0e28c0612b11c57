#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "qellib10/platform/decimal/decimal.h"
#include "qellib10/platform/export.h"

namespace qel {

/// What units are products of: the base units of the SI, the angle, and kinds that convert to nothing else, because the
/// factor depends on the substance or is not defined.
enum class BaseUnit : std::uint8_t {
    kMetre,
    kKilogram,
    kSecond,
    kAmpere,
    kKelvin,
    kMole,
    kCandela,
    kRadian,
    kEquivalent,         ///< eq, as in meq/L
    kKilogramOfKoh,      ///< of potassium hydroxide, as in mgKOH/g
    kPh,                 ///< pH
    kPercent,            ///< % without a basis
    kPartsPerMillion,    ///< ppm without a basis
    kPartsPerBillion,    ///< ppb without a basis
    kTimes,              ///< a count
    kInternationalUnit,  ///< of biological activity, defined for each substance
    kOsmole,
    kEndotoxinUnit,  ///< EU, as in EU/mL
};
inline constexpr std::size_t kBaseUnits = 18;

/// What a ratio of two units of the same dimensions is a ratio of. A mass fraction is not a volume fraction.
enum RatioOf : std::uint8_t {
    kRatioOfNothing = 0,  ///< a plain number
    kRatioOfMasses = 1,   ///< (m/m)
    kRatioOfVolumes = 2,  ///< (v/v)
    kRatioOfAmounts = 4,  ///< (n/n)
    kRatioOfAny = 7,      ///< which of them does not follow from the units
    kRatioOfMixed = 8,    ///< a product of different ones, such as (m/m) times (v/v): converts to itself and to numbers
};

/// The value of a unit: numerator / denominator times the product of powers of the base units. Two numbers, since 1/60
/// has no end as a decimal number.
struct QELLIB10_API UnitValue {
    static constexpr int kMostPower = 100;  ///< of a base unit, also below 0

    std::array<std::int8_t, kBaseUnits> powers = {};
    Decimal numerator = Decimal(1);
    Decimal denominator = Decimal(1);
    bool isExact = true;                    ///< false where a digit is missing, as of pi, or it is measured
    std::uint8_t ratios = kRatioOfNothing;  ///< of RatioOf; where no base unit is left
    /// The ratio that is a factor of a unit of another kind, such as m/m of %(m/m)*mL and %(m/m)/min, which are no mL
    /// and no 1/min. In %(m/m)*g and %(m/m)*g/min it is none: a mass fraction of a mass is a mass.
    std::uint8_t carried = kRatioOfNothing;
    /// The ratios that were factors and are none any more, such as m/m of %(m/m)*g. Makes no other unit of it, but a
    /// ratio of which it becomes a factor again is one of these, too.
    std::uint8_t taken = kRatioOfNothing;
    /// Whether the ratio of ratios or carried was stated, by a unit such as %(m/m) or g/g that was read. One that was
    /// computed, of g by g, is a number as well: a volume times g by g is a volume.
    bool isStated = false;
    bool isTakenStated = false;  ///< the same of taken
    /// What a plain number may be a ratio of, too: m/m of a ratio of masses by one that was computed, which may be a
    /// number that a mass fraction is divided by.
    std::uint8_t perhaps = kRatioOfNothing;

    /// Whether no base unit is left.
    bool IsRatio() const noexcept;
    /// Whether it has a factor that is a computed ratio and so may be a plain number: mL*(g/g) of mL * g / g.
    bool HasComputedRatio() const noexcept { return carried != kRatioOfNothing && !isStated; }
    /// Whether the dimensions are the same, and what they are a ratio of or have one of as a factor.
    bool IsSameKind(const UnitValue& other) const noexcept;

    /// By value, so that 1000 mg equals 1 g.
    friend QELLIB10_API bool operator==(const UnitValue& a, const UnitValue& b) noexcept;
};

/// @return nothing where a power is past kMostPower or the factor past 1e300 or below 1e-300
///
/// A ratio of two units of mass, volume or amount is one of that; where they have several of these, as g/mol has, it
/// may be each. What cancels when units are multiplied, such as 1/mL and mL, may be any, or is the ratio that one of
/// them has as a factor or has taken. A product of ratios is what one of them may be, since a mass fraction times a
/// ratio of molar masses is a mass fraction or an amount fraction; where they have nothing in common, it is
/// kRatioOfMixed. A quotient of like ratios is a plain number. What has a stated ratio as a factor is stated.
std::optional<UnitValue> MultiplyValues(const UnitValue& a, const UnitValue& b);
std::optional<UnitValue> DivideValues(const UnitValue& a, const UnitValue& b);
std::optional<UnitValue> PowerOfValue(const UnitValue& a, int power);
/// @return nothing also where a power is odd
std::optional<UnitValue> SquareRootOfValue(const UnitValue& a);

}  // namespace qel
