#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/decimal/decimal.h"
#include "qellib10/platform/export.h"
#include "qellib10/quantity/unit_value.h"

namespace qel {

/// A unit of measurement, so that no result is off by a factor of 1000 because two readings had different units, and a
/// mass is not added to a volume.
///
/// @code
///     std::string error;
///     const auto from = qel::Unit::Parse("mg/mL", error), to = qel::Unit::Parse("g/L", error);
///     qel::DecimalFlags flags;
///     if (from && to) qel::Convert(qel::Decimal(5), *from, *to, flags);  // 5
/// @endcode
///
/// A unit is a value, and the default one is 1, the unit of numbers. Factors are exact decimals where they can be; see
/// IsExact.
class QELLIB10_API Unit {
public:
    static constexpr std::size_t kLongest = 256;  ///< bytes of a text

    Unit() = default;
    /// Reads a text, in this order: the texts of the string table from id 2048 on, in English and Japanese, and other
    /// units of laboratories; "ucum:" with one of UcumCodes(); products, quotients and powers of these and of any name
    /// that udunits2 knows, as in "J/(mol K)". Division and multiplication go from left to right, as there. Blanks
    /// around it do not count; an empty text is 1.
    ///
    /// %, ppm and ppb with a basis are "%(m/m)", "ppm(v/v)", "ppb(n/n)", "%(m/v)" (of grams in 100 mL), w for m;
    /// without one they convert to themselves only.
    /// @param text UTF-8
    /// @param error one sentence without a full stop, in English
    static std::optional<Unit> Parse(std::string_view text, std::string& error);

    /// A text that Parse reads as the same unit: "mg/mL", "J/(mol*K)", "1". Units are named as they were read.
    std::string Text() const;

    /// Factor and dimensions.
    const UnitValue& Value() const noexcept { return m_value; }
    /// Added to a value in this unit before the factor: 273.15 of degrees Celsius, else 0.
    const Decimal& Offset() const noexcept { return m_offset; }
    /// Whether it is a temperature such as degrees Celsius, whose zero is not the absolute one: no product has it.
    bool HasOffset() const noexcept { return !m_offset.IsZero(); }
    /// Whether a formula computed it, so that its values may be differences: K of °C - °C, of products and of sums. It
    /// converts to no unit with an offset. Units that are read are none.
    bool IsDifference() const noexcept { return m_isDifference; }
    /// Whether a formula converted it from a unit with an offset, so that its values are no differences: K of a result
    /// in °C. It is added to no temperature. Units that are read are none.
    bool IsTemperature() const noexcept { return m_isTemperature; }
    /// Whether it is 1 and a ratio of nothing: the unit of a number that a formula has.
    bool IsNumber() const noexcept { return *this == Unit(); }

    /// @return nothing where one has an offset, or the result is out of range: powers above 100, more than 32 different
    /// units
    static std::optional<Unit> Multiply(const Unit& a, const Unit& b);
    static std::optional<Unit> Divide(const Unit& a, const Unit& b);
    static std::optional<Unit> Power(const Unit& a, int power);
    /// @return nothing also where a power is odd
    static std::optional<Unit> SquareRoot(const Unit& a);

    /// Whether values mean the same in both, however the units are named, and whether or not they are differences.
    friend bool operator==(const Unit& a, const Unit& b) noexcept {
        return a.m_value == b.m_value && a.m_offset == b.m_offset;
    }

private:
    friend class UnitMaker;
    struct Term {
        std::string symbol;
        UnitValue value;  // of the symbol
        int power;
    };
    static std::optional<Unit> Combined(const Unit& a, const Unit& b, int sign);
    static std::string Product(const std::vector<Term>& terms, int sign, std::size_t& count);
    std::optional<UnitValue> ValueOfTerms() const;
    bool IsMeantByItsTerms() const;
    void NameByValue();
    void DropComputedRatio(const Unit& like);

    UnitValue m_value;
    Decimal m_offset;
    bool m_isDifference = false, m_isTemperature = false;
    std::vector<Term> m_terms;
};

/// The arithmetic of a conversion: (value + before) * numerator / denominator + after.
struct QELLIB10_API UnitConversion {
    Decimal before, numerator = Decimal(1), denominator = Decimal(1), after;
    bool isExact = true;  ///< the numbers are

    /// Whether the value stays as it is.
    bool IsNothing() const noexcept;
    /// Rounded once where it can be; inexact also where the numbers are.
    Decimal Of(const Decimal& value, DecimalFlags& flags) const noexcept;
};

/// Whether values of both can be added or compared: the same dimensions, of ratios the same basis, and not a difference
/// of temperatures with a temperature such as °C.
QELLIB10_API bool IsSameKind(const Unit& a, const Unit& b) noexcept;

/// @return nothing where the kinds differ, and of a difference of temperatures to a temperature such as °C. A ratio
/// becomes a plain number, since it is one; a plain number becomes no ratio of masses, volumes or amounts. A unit that
/// a formula computed loses a ratio that is a factor of it and was computed, too: mL * g / g becomes mL. One that was
/// stated is never lost.
QELLIB10_API std::optional<UnitConversion> ConversionOf(const Unit& from, const Unit& to);

/// @param molarMass in g/mol, above 0: by it alone amounts become masses and masses amounts, also within a
/// concentration
/// @return nothing where no factor converts the units
QELLIB10_API std::optional<Decimal> Convert(const Decimal& value, const Unit& from, const Unit& to, DecimalFlags& flags,
                                            const std::optional<Decimal>& molarMass = {});

}  // namespace qel
