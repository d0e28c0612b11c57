#include "qellib10/quantity/formula_units.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

#include "qellib10/quantity/formula_constants.h"
#include "qellib10/quantity/unit_binder.h"
#include "qellib10/quantity/unit_maker.h"

namespace qel {
namespace {

using Operation = FormulaOperation;

bool NeedsBasis(const Unit& unit) {
    return std::ranges::any_of(std::array{BaseUnit::kPercent, BaseUnit::kPartsPerMillion, BaseUnit::kPartsPerBillion},
                               [&](BaseUnit base) { return unit.Value().powers[static_cast<std::size_t>(base)] != 0; });
}

// What a number with a unit becomes by it is no point on a scale with a zero of its own, but perhaps a difference.
bool Computes(Operation operation) {
    switch (operation) {
        case Operation::kAdd:
        case Operation::kSubtract:
        case Operation::kMultiply:
        case Operation::kDivide:
        case Operation::kPower:
        case Operation::kNegate:
        case Operation::kAbs:
        case Operation::kSqrt:
        case Operation::kSum:
            return true;
        default:
            return false;
    }
}

}  // namespace

BoundFormula UnitBinder::Bind(const std::optional<Unit>& wanted) {
    for (std::size_t at = 0; at < m_program.steps.size(); ++at) {
        Land(at);
        Take(m_program.steps[at]);
    }
    Land(m_program.steps.size());
    Operand& whole = m_stack.back();
    whole.place = Whole();
    if (wanted) ConvertTo(*wanted, whole);
    return {m_bound.Finish(), m_program.isTruth ? Unit() : whole.unit};
}

void UnitBinder::Refuse(const FormulaStep& place, std::string reason) {
    throw FormulaError{FormulaError::Kind::kUnit, place.position, place.length, std::move(reason), {}, {}};
}

FormulaStep UnitBinder::Whole() const {
    FormulaStep whole = m_program.steps.front();
    whole.position = m_program.position;
    whole.length = m_program.length;
    return whole;
}

void UnitBinder::Take(const FormulaStep& step) {
    if (Jumps(step.operation)) return TakeJump(step);
    Operand result{Unit(), step, 0};
    if (TakesOne(step.operation)) {
        result = OfOne(step, Taken());
    } else if (TakesTwo(step.operation)) {
        Operand right = Taken();
        Operand left = Taken();
        result.unit = OfTwo(step, left, right);
    } else if (TakesMany(step.operation)) {
        result.unit = OfMany(step);
    } else if (step.operation == Operation::kNumber) {
        result.literal = &m_program.numbers[step.index];
    } else if (step.operation == Operation::kConstant) {
        std::string ignored;  // all units of constants are known without udunits2
        result.unit = Unit::Parse(FormulaConstants()[step.index].unit, ignored).value();
    } else {
        const std::size_t position = m_program.variables[step.index];
        if (position >= m_units.size()) Refuse(step, "the variable has no unit");
        result.unit = m_units[position];
    }
    if (Computes(step.operation) && !result.unit.HasOffset())
        result.unit = UnitMaker::Difference(std::move(result.unit));
    m_bound.Add(step);
    result.place = step;
    result.end = m_bound.End();
    m_stack.push_back(std::move(result));
}

void UnitBinder::TakeJump(const FormulaStep& step) {
    Jump jump{step, m_bound.End(), {}};
    m_bound.Add(step);
    if (step.operation == Operation::kIfNot) m_stack.pop_back();
    if (step.operation == Operation::kGoOn) {
        // The second branch follows; every other jump of the first one has landed.
        assert(m_jumps.back().source.operation == Operation::kIfNot);
        m_bound.LandHere(m_jumps.back().step);
        m_jumps.pop_back();
        jump.first = Taken();
    }
    m_jumps.push_back(std::move(jump));
}

void UnitBinder::Land(std::size_t at) {
    while (!m_jumps.empty() && m_jumps.back().source.index == at) {
        Jump jump = std::move(m_jumps.back());
        m_jumps.pop_back();
        if (jump.source.operation == Operation::kGoOn) {
            Operand second = Taken();
            m_stack.push_back(Agreed(std::move(jump.first), second, jump.source, "cannot be branches of if"));
        }
        m_bound.LandHere(jump.step);
        m_stack.back().end = m_bound.End();
    }
}

UnitBinder::Operand UnitBinder::Taken() {
    Operand operand = std::move(m_stack.back());
    m_stack.pop_back();
    return operand;
}

void UnitBinder::Convert(Operand& operand, const UnitConversion& conversion) {
    const bool isLast = operand.end == m_bound.End();
    m_bound.Convert(operand.end, conversion, operand.place);
    if (isLast) operand.end = m_bound.End();
    if (!conversion.IsNothing()) operand.literal = nullptr;
}

void UnitBinder::ConvertTo(const Unit& wanted, Operand& whole) {
    if (m_program.isTruth) {
        if (!wanted.IsNumber()) Refuse(whole.place, "a condition has no unit");
        return;
    }
    if (whole.IsZero() && !wanted.HasOffset()) {
        whole.unit = wanted;
        return;
    }
    const std::optional<UnitConversion> conversion = ConversionOf(whole.unit, wanted);
    if (!conversion) {
        const std::string hint =
            NeedsBasis(wanted) ? ", which needs a basis, as in %(m/m)" : WhyNoZero(whole.unit, wanted);
        Refuse(whole.place, NameOfUnit(whole.unit) + " is not converted to " + NameOfUnit(wanted) + hint);
    }
    Convert(whole, *conversion);
    const bool isTemperature = whole.unit.HasOffset() || whole.unit.IsTemperature();
    const bool isDifference = whole.unit.IsDifference();
    whole.unit = wanted;
    if (isDifference) whole.unit = UnitMaker::Difference(std::move(whole.unit));
    if (isTemperature) whole.unit = UnitMaker::Temperature(std::move(whole.unit));
}

std::optional<BoundFormula> BindUnits(const FormulaProgram& program, std::span<const Unit> units,
                                      const std::optional<Unit>& wanted, FormulaError& error) {
    try {
        return UnitBinder(program, units).Bind(wanted);
    } catch (const FormulaError& failure) {
        error = failure;
        return {};
    }
}

}  // namespace qel
