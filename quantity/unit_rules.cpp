#include "qellib10/quantity/operation_name.h"
#include "qellib10/quantity/unit_binder.h"
#include "qellib10/quantity/unit_maker.h"
#include "qellib10/quantity/unit_symbols.h"

namespace qel {
namespace {

using Operation = FormulaOperation;

constexpr const char* kNoTemperature = "a temperature such as °C is only compared, or has K added or subtracted; use K";
constexpr const char* kOutOfRange = "the unit of the result is out of range";

bool IsPlainOne(const UnitValue& value) { return value.IsRatio() && value.numerator == value.denominator; }

// A number, and a ratio that is one without a factor, 1 and g/g, or that was computed and so is one with a factor.
bool IsNumberWithRatio(const UnitValue& a, const UnitValue& b) {
    const bool isOneNumber = (a.ratios == kRatioOfNothing) != (b.ratios == kRatioOfNothing);
    if (!a.IsRatio() || !b.IsRatio() || !isOneNumber) return false;
    return (IsPlainOne(a) && IsPlainOne(b)) || (!a.isStated && !b.isStated);
}

UnitValue WithRatios(UnitValue value, std::uint8_t ratios) {
    value.ratios = ratios;
    value.isStated = false;
    value.perhaps = kRatioOfNothing;
    return value;
}

}  // namespace

std::string NameOfUnit(const Unit& unit) { return unit.IsNumber() ? "a number without unit" : unit.Text(); }

std::string WhyNoZero(const Unit& a, const Unit& b) {
    if (a.HasOffset()) return b.HasOffset() ? std::string() : WhyNoZero(b, a);
    if (!a.IsDifference() || !b.HasOffset() || !a.Value().IsSameKind(b.Value())) return {};
    return ": " + a.Text() + " that was computed may be a difference";
}

// The number has no factor where the first operand is one, so that 1 - mg/g is a ratio in g/g.
void UnitBinder::AgreeAsNumbers(Operand& first, Operand& second, const FormulaStep& step) {
    const UnitValue value = first.unit.Value();
    const auto conversion = ConversionOf(second.unit, UnitMaker::OfValue(WithRatios(value, kRatioOfNothing)));
    if (!conversion) Refuse(step, kOutOfRange);
    Convert(second, *conversion);
    if (value.ratios != kRatioOfNothing) return;
    const std::uint8_t ratios = second.unit.Value().ratios;
    first.unit = conversion->IsNothing() ? second.unit : UnitMaker::OfValue(WithRatios(value, ratios));
}

UnitBinder::Operand UnitBinder::Agreed(Operand first, Operand& second, const FormulaStep& step,
                                       const std::string& verb) {
    const WrittenNumber* const literal = first.IsZero() && second.IsZero() ? first.literal : nullptr;
    if (second.IsZero() && !first.unit.HasOffset()) {
        // 0 of the first one's unit
    } else if (first.IsZero() && !second.unit.HasOffset()) {
        first.unit = second.unit;
    } else if (IsNumberWithRatio(first.unit.Value(), second.unit.Value())) {
        AgreeAsNumbers(first, second, step);
    } else {
        first.unit = UnitMaker::NextTo(second.unit, std::move(first.unit));
        second.unit = UnitMaker::NextTo(first.unit, std::move(second.unit));
        const std::optional<UnitConversion> conversion =
            IsSameKind(first.unit, second.unit) ? ConversionOf(second.unit, first.unit) : std::nullopt;
        if (!conversion)
            Refuse(step, NameOfUnit(first.unit) + " and " + NameOfUnit(second.unit) + " " + verb +
                             WhyNoZero(first.unit, second.unit));
        Convert(second, *conversion);
        first.unit = UnitMaker::Common(std::move(first.unit), second.unit);
    }
    return {std::move(first.unit), step, m_bound.End(), literal};
}

void UnitBinder::BecomeNumber(const FormulaStep& step, Operand& operand) {
    const std::optional<UnitConversion> conversion = ConversionOf(operand.unit, Unit());
    if (!conversion) {
        const std::string name(NameOf(step.operation));
        Refuse(step, name + " needs a number or a ratio of like units, not " + NameOfUnit(operand.unit));
    }
    Convert(operand, *conversion);
    operand.unit = Unit();
}

UnitBinder::Operand UnitBinder::OfOne(const FormulaStep& step, Operand operand) {
    const bool hasOffset = operand.unit.HasOffset();
    switch (step.operation) {
        case Operation::kRound:
            operand.literal = nullptr;
            return operand;
        case Operation::kNot:
            return operand;
        case Operation::kNegate:
            if (hasOffset) Refuse(step, kNoTemperature);
            operand.isNegative = !operand.isNegative;
            return operand;
        case Operation::kAbs:
            if (hasOffset) Refuse(step, kNoTemperature);
            break;
        case Operation::kSqrt: {
            if (hasOffset) Refuse(step, kNoTemperature);
            const std::optional<Unit> root = Unit::SquareRoot(operand.unit);
            if (!root) Refuse(step, NameOfUnit(operand.unit) + " has no square root");
            operand.unit = *root;
            break;
        }
        default:
            BecomeNumber(step, operand);
    }
    operand.literal = nullptr;
    return operand;
}

Unit UnitBinder::OfTwo(const FormulaStep& step, Operand& left, Operand& right) {
    switch (step.operation) {
        case Operation::kAdd:
        case Operation::kSubtract:
            return Sum(step, left, right);
        case Operation::kMultiply:
        case Operation::kDivide: {
            if (left.unit.HasOffset() || right.unit.HasOffset()) Refuse(step, kNoTemperature);
            const bool isProduct = step.operation == Operation::kMultiply;
            const std::optional<Unit> unit =
                isProduct ? Unit::Multiply(left.unit, right.unit) : Unit::Divide(left.unit, right.unit);
            if (!unit) Refuse(step, kOutOfRange);
            return *unit;
        }
        case Operation::kPower:
            return Power(step, left, right);
        case Operation::kAnd:
        case Operation::kOr:
            return {};
        default:
            Agreed(left, right, step, "cannot be compared");
            return {};
    }
}

Unit UnitBinder::Sum(const FormulaStep& step, Operand& left, Operand& right) {
    const bool isSum = step.operation == Operation::kAdd;
    const std::string verb = isSum ? "cannot be added" : "cannot be subtracted";
    const bool isTemperature = right.unit.HasOffset();
    if (left.unit.HasOffset() == isTemperature) {
        if (isSum && isTemperature) Refuse(step, kNoTemperature);
        const Unit unit = Agreed(left, right, step, verb).unit;
        return isTemperature ? UnitMaker::OfValue(unit.Value()) : unit;
    }
    // A temperature and a difference of temperatures.
    if ((isTemperature && !isSum) || left.unit.IsTemperature() || right.unit.IsTemperature())
        Refuse(step, kNoTemperature);
    const Unit& temperature = isTemperature ? right.unit : left.unit;
    Operand& difference = isTemperature ? left : right;
    const Unit wanted = UnitMaker::OfValue(temperature.Value());
    difference.unit = UnitMaker::NextTo(wanted, std::move(difference.unit));
    const auto conversion = IsSameKind(difference.unit, wanted) ? ConversionOf(difference.unit, wanted) : std::nullopt;
    if (!conversion) Refuse(step, NameOfUnit(left.unit) + " and " + NameOfUnit(right.unit) + " " + verb);
    Convert(difference, *conversion);
    return temperature;
}

Unit UnitBinder::Power(const FormulaStep& step, Operand& base, Operand& exponent) {
    if (base.unit.HasOffset()) Refuse(step, kNoTemperature);
    if (exponent.literal != nullptr && !base.unit.IsNumber()) {
        DecimalFlags flags;
        const Decimal halves = Multiply(exponent.literal->value, Decimal(exponent.isNegative ? -2 : 2), flags);
        if (halves.IsInteger() && halves.Absolute() <= Decimal(2 * UnitValue::kMostPower)) {
            const int count = static_cast<int>(halves.ToDouble());
            std::optional<Unit> unit = Unit::Power(base.unit, count % 2 == 0 ? count / 2 : count);
            if (unit && count % 2 != 0) unit = Unit::SquareRoot(*unit);
            if (unit) return *unit;
        }
    }
    if (!base.unit.Value().IsRatio())
        Refuse(step, NameOfUnit(base.unit) + " needs a whole number as its exponent, which gives a unit");
    BecomeNumber(step, base);
    BecomeNumber(step, exponent);
    return {};
}

Unit UnitBinder::OfMany(const FormulaStep& step) {
    const auto first = m_stack.end() - static_cast<std::ptrdiff_t>(step.index);
    const std::string verb = "cannot be in one " + std::string(NameOf(step.operation));
    Operand result = *first;
    for (auto operand = first + 1; operand != m_stack.end(); ++operand) {
        result = Agreed(std::move(result), *operand, step, verb);
        if (step.operation == Operation::kSum && result.unit.HasOffset()) Refuse(step, kNoTemperature);
    }
    m_stack.erase(first, m_stack.end());
    return result.unit;
}

}  // namespace qel
