#include "qellib10/quantity/unit_remarks.h"

#include <algorithm>

#include "qellib10/quantity/unit_symbols.h"

namespace qel {

// A difference of -300 K is a number like any other; only a unit with an offset is surely a temperature.
std::string RemarkOnTemperature(const std::string& name, Reading::Kind kind, const Decimal& value, const Unit& unit) {
    const bool isTemperature = unit.HasOffset() && unit.Value().IsSameKind(ValueOf(BaseUnit::kKelvin));
    if (!isTemperature || (kind != Reading::Kind::kValue && kind != Reading::Kind::kBelow)) return {};
    DecimalFlags ignored;
    return Add(value, unit.Offset(), ignored) < Decimal(0) ? name + " is below absolute zero" : "";
}

// Textbooks multiply a ratio by 100 and write % after it. Here the unit has that factor.
std::string RemarkOnFactor(const std::string& name, const FormulaProgram& program, const Unit& unit) {
    const UnitValue& value = unit.Value();
    if (!value.IsRatio() || value.ratios == kRatioOfNothing) return {};
    DecimalFlags ignored;
    const Decimal factor = Divide(value.denominator, value.numerator, ignored);
    if (factor == Decimal(1) ||
        std::ranges::find(program.numbers, factor, &WrittenNumber::value) == program.numbers.end())
        return {};
    return "the formula of " + name + " has the number " + factor.PlainText() + ", and " + unit.Text() +
           " has this factor too";
}

}  // namespace qel
