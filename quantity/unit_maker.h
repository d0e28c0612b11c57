#pragma once

#include <string>

#include "qellib10/quantity/unit.h"

namespace qel {

/// Makes units that are not products of others.
class UnitMaker {
public:
    static Unit Named(std::string symbol, const UnitValue& value, const Decimal& offset = Decimal()) {
        Unit unit;
        unit.m_value = value;
        unit.m_offset = offset;
        unit.m_terms.push_back({std::move(symbol), value, 1});
        return unit;
    }

    /// Without an offset: of °C it is K.
    static Unit OfValue(const UnitValue& value) {
        Unit unit;
        unit.m_value = value;
        unit.NameByValue();
        return unit;
    }

    /// One that a formula computed.
    static Unit Difference(Unit unit) {
        unit.m_isDifference = true;
        unit.m_isTemperature = false;
        return unit;
    }

    /// One that a formula converted from a unit with an offset.
    static Unit Temperature(Unit unit) {
        unit.m_isTemperature = !unit.HasOffset();
        return unit;
    }

    /// One that was read.
    static Unit Stated(Unit unit) {
        UnitValue& value = unit.m_value;
        value.isStated = value.ratios != kRatioOfNothing || value.carried != kRatioOfNothing;
        value.isTakenStated = value.taken != kRatioOfNothing;
        return unit;
    }

    /// What a formula makes of a unit next to another: a computed ratio is a plain number where the other has none, and
    /// what may be a mass fraction is one next to one. Else it stays.
    static Unit NextTo(const Unit& other, Unit unit) {
        UnitValue& value = unit.m_value;
        if (value.HasComputedRatio() && value.powers == other.m_value.powers &&
            other.m_value.carried == kRatioOfNothing)
            unit.DropComputedRatio(other);
        if (other.m_value.IsRatio() && (value.perhaps & other.m_value.ratios) != 0) {
            value.ratios = value.perhaps & other.m_value.ratios;
            value.perhaps = kRatioOfNothing;
            unit.NameByValue();
        }
        return unit;
    }

    /// The unit of the first one, and what both may be: a sum of a mass fraction and of one of masses or amounts is a
    /// mass fraction.
    /// @param first, second of the same kind
    static Unit Common(Unit first, const Unit& second) {
        const UnitValue& other = second.m_value;
        UnitValue& value = first.m_value;
        first.m_isDifference |= second.m_isDifference;
        first.m_isTemperature |= second.m_isTemperature;
        const bool isNarrower =
            (value.ratios & other.ratios) != value.ratios || (value.carried & other.carried) != value.carried;
        value.ratios &= other.ratios;
        value.carried &= other.carried;
        value.taken |= other.taken;
        value.isStated |= other.isStated;
        value.isTakenStated |= other.isTakenStated;
        value.perhaps &= other.perhaps;
        if (isNarrower && !first.IsMeantByItsTerms()) first.NameByValue();
        return first;
    }

    /// @param number positive, and not 1
    static Unit Number(const Decimal& number) {
        UnitValue value;
        value.numerator = number;
        return Named(NumberText(number), value);
    }

    /// "1000" rather than "1E+3".
    static std::string NumberText(const Decimal& number) {
        constexpr int kMostZeros = 12;
        const bool isUsual = number.Magnitude() < kMostZeros && number.Exponent() > -kMostZeros;
        return isUsual ? number.PlainText() : number.Text();
    }
};

}  // namespace qel
