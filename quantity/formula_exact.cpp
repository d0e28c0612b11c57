#include "qellib10/quantity/formula_exact.h"

#include <algorithm>

#include "qellib10/quantity/exact_operations.h"
#include "qellib10/quantity/formula_machine.h"
#include "qellib10/quantity/operation_name.h"

namespace qel {
namespace {

ExactResult ResultOf(const Decimal& value, bool isTruth) {
    if (!isTruth) return {ExactResult::Kind::kValue, value, false, {}, false, {}};
    return {value.IsZero() ? ExactResult::Kind::kNo : ExactResult::Kind::kYes, {}, false, {}, false, {}};
}

class NumberArithmetic {
public:
    using Value = Decimal;

    NumberArithmetic(const FormulaProgram& program, std::span<const Reading> readings, StepLog log)
        : m_program(program), m_readings(readings), m_log(log) {}

    Decimal Start(const FormulaStep& step) {
        if (step.operation != FormulaOperation::kVariable) return WrittenOperand(m_program, step, m_happened);
        const Reading& reading = m_readings[m_program.variables[step.index]];
        m_isFromBinary |= reading.isFromBinary;
        m_happened.isInexact |= reading.isInexact;
        return reading.value;
    }
    Decimal One(const FormulaStep& step, const Decimal& value) { return ExactOne(m_program, step, value, m_happened); }
    Decimal Two(const FormulaStep& step, const Decimal& left, const Decimal& right) {
        return ExactTwo(step, left, right, m_happened);
    }
    Decimal Many(const FormulaStep& step, std::span<const Decimal> values) {
        return ExactMany(step, values, m_happened);
    }

    static Truth TruthOf(const Decimal& value) { return value.IsZero() ? Truth::kNo : Truth::kYes; }
    static Decimal Undecided(const Decimal& condition) { return condition; }  // never: each condition is decided

    void Check(const FormulaStep& step, const Decimal& value) {
        if (m_log.IsKept()) m_log.Add(step, ResultOf(value, GivesTruth(step.operation)), m_happened);
        m_flags.Join(m_happened);
        m_happened = {};
    }

    ExactResult Whole(const Decimal& value) const {
        ExactResult result = ResultOf(value, m_program.isTruth);
        result.flags = m_flags;
        result.isFromBinary = m_isFromBinary;
        return result;
    }

private:
    const FormulaProgram& m_program;
    std::span<const Reading> m_readings;
    StepLog m_log;
    DecimalFlags m_happened, m_flags;  // in this step, in all steps
    bool m_isFromBinary = false;
};

}  // namespace

void StepLog::Add(const FormulaStep& step, const ExactResult& result, const DecimalFlags& happened) {
    m_steps->push_back({step.position, step.length, std::string(NameOf(step.operation)), result.Text(), happened});
}

bool AreNumbers(const FormulaProgram& program, std::span<const Reading> readings) {
    return std::ranges::all_of(program.variables, [&](std::size_t position) { return readings[position].IsValue(); });
}

ExactResult EvaluateNumbers(const FormulaProgram& program, std::span<const Reading> readings, StepLog log) {
    NumberArithmetic arithmetic(program, readings, log);
    return arithmetic.Whole(FormulaMachine(program, arithmetic).Run());
}

}  // namespace qel
