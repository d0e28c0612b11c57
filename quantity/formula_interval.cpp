#include <algorithm>
#include <string>

#include "qellib10/platform/decimal/decimal_functions.h"
#include "qellib10/quantity/exact_operations.h"
#include "qellib10/quantity/formula_exact.h"
#include "qellib10/quantity/formula_machine.h"
#include "qellib10/quantity/interval.h"

namespace qel {
namespace {

using Kind = FormulaError::Kind;
using Operation = FormulaOperation;

// What min, max and mean take of a reading that is a limit.
struct Substitute {
    Decimal value;
    DecimalFlags flags;
    std::uint32_t position;  // of the reading in the text
};

// A number, or a truth that is a number where it is decided.
struct Known {
    Interval range;
    bool isUndecided = false;
    std::optional<Substitute> substitute = {};

    bool IsNumber() const { return !isUndecided && range.IsPoint(); }
    const Decimal& Number() const { return range.lower.value; }
};

Known Everything(const std::optional<std::size_t>& cause) { return {Interval::Everything(cause), true}; }

Known TruthAs(Truth truth, const std::optional<std::size_t>& cause) {
    if (truth == Truth::kUndecided) return Everything(cause);
    return {Interval::Point(Decimal(truth == Truth::kYes ? 1 : 0)), false};
}

Truth Opposite(Truth truth) {
    return truth == Truth::kUndecided ? truth : truth == Truth::kYes ? Truth::kNo : Truth::kYes;
}

ExactResult ResultOf(const Known& known, bool isTruth) {
    const Interval& range = known.range;
    ExactResult result;
    result.cause = range.cause;
    if (isTruth) {
        result.kind = known.isUndecided            ? ExactResult::Kind::kUndecided
                      : range.lower.value.IsZero() ? ExactResult::Kind::kNo
                                                   : ExactResult::Kind::kYes;
    } else if (range.IsPoint()) {
        result.kind = ExactResult::Kind::kValue;
        result.value = range.lower.value;
    } else if (range.IsBoundedAbove() != range.IsBoundedBelow()) {
        const bool isBelow = range.IsBoundedAbove();
        const Interval::Bound& bound = isBelow ? range.upper : range.lower;
        result.kind = isBelow ? ExactResult::Kind::kBelow : ExactResult::Kind::kAbove;
        result.value = bound.value;
        result.isIncluded = !bound.isOpen;
    }
    if (result.kind == ExactResult::Kind::kValue) result.cause = {};
    return result;
}

class IntervalArithmetic {
public:
    using Value = Known;

    IntervalArithmetic(const FormulaProgram& program, std::span<const Reading> readings, const ExactOptions& options,
                       StepLog log)
        : m_program(program), m_readings(readings), m_options(options), m_log(log) {}

    Known Start(const FormulaStep& step) {
        if (step.operation != Operation::kVariable)
            return {Interval::Point(WrittenOperand(m_program, step, m_happened)), false};
        const std::size_t position = m_program.variables[step.index];
        m_log.AddBeforeRounding(step, m_readings[position]);
        m_isFromBinary |= m_readings[position].isFromBinary;
        m_happened.isInexact |= m_readings[position].isInexact;
        return {Interval::Of(m_readings[position], position), false, SubstituteOf(m_readings[position], step)};
    }

    Known One(const FormulaStep& step, const Known& value) {
        if (value.IsNumber()) return Exactly(ExactOne(m_program, step, value.Number(), m_happened));
        if (value.isUndecided) return value;
        return {OfRange(step, value.range), false};
    }

    Known Two(const FormulaStep& step, const Known& left, const Known& right) {
        if (step.operation == Operation::kAnd || step.operation == Operation::kOr) return Joined(step, left, right);
        if (left.IsNumber() && right.IsNumber()) return {OfNumbers(step, left.range, right.range), false};
        Known result = OfRanges(step, left.range, right.range);
        // Only the conversion of a reading's unit has the reading's place.
        if (left.substitute && right.IsNumber() && step.position == left.substitute->position) {
            result.substitute = left.substitute;
            result.substitute->value = ExactTwo(step, left.substitute->value, right.Number(), result.substitute->flags);
        }
        return result;
    }

    Known Many(const FormulaStep& step, std::span<const Known> values) {
        const bool areNumbers = std::ranges::all_of(values, &Known::IsNumber);
        if (step.operation == Operation::kSum && !areNumbers) {
            Interval sum = values.front().range;
            for (const Known& value : values.subspan(1)) sum = Sum(sum, value.range, m_happened);
            return {sum, false};
        }
        std::vector<Decimal> numbers;
        for (const Known& value : values)
            numbers.push_back(value.IsNumber() ? value.Number() : Substituted(step, value));
        return Exactly(ExactMany(step, numbers, m_happened));
    }

    static Truth TruthOf(const Known& value) {
        if (value.isUndecided) return Truth::kUndecided;
        return value.Number().IsZero() ? Truth::kNo : Truth::kYes;
    }
    static Known Undecided(const Known& condition) { return Everything(condition.range.cause); }

    void Check(const FormulaStep& step, const Known& value) {
        if (m_log.IsKept()) m_log.Add(step, ResultOf(value, GivesTruth(step.operation)), m_happened);
        m_flags.Join(m_happened);
        m_happened = {};
    }

    ExactResult Whole(const Known& value) const {
        ExactResult result = ResultOf(value, m_program.isTruth);
        result.flags = m_flags;
        result.isFromBinary = m_isFromBinary;
        return result;
    }

private:
    static Known Exactly(const Decimal& value) { return {Interval::Point(value), false}; }

    // A number that lost digits keeps them for the limits it meets later: 2 / 3 * L is L * 2 / 3.
    Interval OfNumbers(const FormulaStep& step, const Interval& a, const Interval& b) {
        const Decimal value = ExactTwo(step, a.lower.value, b.lower.value, m_happened);
        switch (step.operation) {
            case Operation::kAdd:
                return Interval::Point(value, ExactSum(a.lower, b.lower));
            case Operation::kSubtract:
                return Interval::Point(value, ExactSum(a.lower, Negated(b).lower));
            case Operation::kMultiply:
                return Interval::Point(value, ExactProduct(a.lower, b.lower));
            case Operation::kDivide:
                return Interval::Point(value, m_happened.isInexact ? ExactQuotient(a.lower, b.lower) : std::nullopt);
            default:
                return Interval::Point(value);
        }
    }

    [[noreturn]] void Refuse(const FormulaStep& step, Kind kind, std::string expected) const {
        throw FormulaError{kind, step.position, step.length, std::move(expected), {}, {}};
    }

    // Of a function that is defined from 0 on, or from there without 0 itself.
    Interval Defined(const FormulaStep& step, const Interval& range, bool isAtZero, GrowingFunction function) {
        const Decimal zero;
        const bool isNever =
            range.upper.value < zero || (range.upper.value.IsZero() && (range.upper.isOpen || !isAtZero));
        if (isNever) Refuse(step, Kind::kUndefined, {});
        const bool isAlways = isAtZero ? range.lower.value >= zero : range.Sign() > 0;
        return isAlways ? Grown(range, function, m_happened) : Interval::Everything(range.cause);
    }

    Interval OfRange(const FormulaStep& step, const Interval& range) {
        switch (step.operation) {
            case Operation::kNegate:
                return Negated(range);
            case Operation::kAbs:
                return Absolute(range);
            case Operation::kSqrt:
                return Defined(step, range, true, SquareRoot);
            case Operation::kExp:
                return Grown(range, Exponential, m_happened);
            case Operation::kLn:
                return Defined(step, range, false, NaturalLogarithm);
            case Operation::kLog10:
                return Defined(step, range, false, DecimalLogarithm);
            case Operation::kLog2:
                return Defined(step, range, false, BinaryLogarithm);
            default:
                return RoundedBy(m_program.rules[step.index], range);
        }
    }

    Known OfRanges(const FormulaStep& step, const Interval& a, const Interval& b) {
        const std::optional<std::size_t> cause = a.cause ? a.cause : b.cause;
        switch (step.operation) {
            case Operation::kAdd:
                return {Sum(a, b, m_happened), false};
            case Operation::kSubtract:
                return {Sum(a, Negated(b), m_happened), false};
            case Operation::kMultiply:
                return {Product(a, b, m_happened), false};
            case Operation::kDivide:
                if (b.IsPoint() && b.HasZero()) Refuse(step, Kind::kDividedByZero, {});
                return {Quotient(a, b, m_happened), false};
            case Operation::kPower:
                return {PowerOf(a, b, m_happened), false};
            case Operation::kLess:
                return TruthAs(IsLess(a, b), cause);
            case Operation::kLessOrEqual:
                return TruthAs(Opposite(IsLess(b, a)), cause);
            case Operation::kGreater:
                return TruthAs(IsLess(b, a), cause);
            case Operation::kGreaterOrEqual:
                return TruthAs(Opposite(IsLess(a, b)), cause);
            case Operation::kEqual:
                return TruthAs(IsEqual(a, b), cause);
            default:
                return TruthAs(Opposite(IsEqual(a, b)), cause);
        }
    }

    // The side that decides, does; the left one did not.
    static Known Joined(const FormulaStep& step, const Known& left, const Known& right) {
        const Truth deciding = step.operation == Operation::kAnd ? Truth::kNo : Truth::kYes;
        if (TruthOf(right) == deciding) return right;
        return left.isUndecided ? left : right;
    }

    std::optional<Substitute> SubstituteOf(const Reading& reading, const FormulaStep& step) const {
        const bool isBelow = reading.kind == Reading::Kind::kBelow;
        const bool isLimit = isBelow || reading.kind == Reading::Kind::kAbove;
        if (m_options.substitution == LimitSubstitution::kNone || !isLimit || reading.isComputed) return {};
        Substitute substitute{reading.value, {}, step.position};
        if (isBelow && m_options.substitution == LimitSubstitution::kZero) substitute.value = Decimal();
        if (isBelow && m_options.substitution == LimitSubstitution::kHalf)
            substitute.value = Divide(reading.value, Decimal(2), substitute.flags);
        return substitute;
    }

    const Decimal& Substituted(const FormulaStep& step, const Known& value) {
        if (!value.substitute) {
            const bool isLimit = value.range.IsBoundedAbove() || value.range.IsBoundedBelow();
            const bool isComputed = isLimit && m_options.substitution != LimitSubstitution::kNone;
            throw FormulaError{Kind::kReading,
                               step.position,
                               step.length,
                               isComputed ? "a computed limit, which has no substitute" : "a reading that is no number",
                               {},
                               value.range.cause};
        }
        m_happened.Join(value.substitute->flags);
        return value.substitute->value;
    }

    const FormulaProgram& m_program;
    std::span<const Reading> m_readings;
    const ExactOptions& m_options;
    StepLog m_log;
    DecimalFlags m_happened, m_flags;  // in this step, in all steps
    bool m_isFromBinary = false;
};

}  // namespace

ExactResult EvaluateIntervals(const FormulaProgram& program, std::span<const Reading> readings,
                              const ExactOptions& options, StepLog log) {
    IntervalArithmetic arithmetic(program, readings, options, log);
    return arithmetic.Whole(FormulaMachine(program, arithmetic).Run());
}

}  // namespace qel
