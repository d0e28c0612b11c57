#include "qellib10/quantity/formula_exact.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <type_traits>

#include "qellib10/quantity/exact_operations.h"
#include "qellib10/quantity/formula_machine.h"
#include "qellib10/quantity/operation_name.h"

namespace qel {
namespace {

ExactResult ResultOf(const Decimal& value, bool isTruth) {
    if (!isTruth) return {ExactResult::Kind::kValue, value, false, {}, false, {}};
    return {value.IsZero() ? ExactResult::Kind::kNo : ExactResult::Kind::kYes, {}, false, {}, false, {}};
}

// A value is the address of a number: of a reading, of the program, or of a result, each of which has its place until
// the end. Nothing is copied.
class NumberArithmetic {
public:
    using Value = const Decimal*;

    NumberArithmetic(const FormulaProgram& program, std::span<const Reading> readings, StepLog log)
        : m_program(program), m_readings(readings), m_log(log) {
        if (program.steps.size() <= kUsual) return;
        m_more.resize(program.steps.size());
        m_next = m_more.data();
    }
    NumberArithmetic(const NumberArithmetic&) = delete;
    NumberArithmetic& operator=(const NumberArithmetic&) = delete;

    const Decimal* Start(const FormulaStep& step) {
        if (step.operation != FormulaOperation::kVariable) return &WrittenOperand(m_program, step, Flags());
        const Reading& reading = m_readings[m_program.variables[step.index]];
        if (reading.beforeRounding) m_log.AddBeforeRounding(step, reading);
        if (reading.isFromBinary) m_isFromBinary = true;
        if (reading.isInexact) Flags().isInexact = true;
        return &reading.value;
    }
    const Decimal* One(const FormulaStep& step, const Decimal* value) {
        return Kept([&] { return ExactOne(m_program, step, *value, Flags()); });
    }
    const Decimal* Two(const FormulaStep& step, const Decimal* left, const Decimal* right) {
        return Kept([&] { return ExactTwo(step, *left, *right, Flags()); });
    }
    const Decimal* Many(const FormulaStep& step, std::span<const Decimal* const> values) {
        std::vector<Decimal> numbers;
        for (const Decimal* value : values) numbers.push_back(*value);
        return Kept([&] { return ExactMany(step, numbers, Flags()); });
    }

    static Truth TruthOf(const Decimal* value) { return value->IsZero() ? Truth::kNo : Truth::kYes; }
    static const Decimal* Undecided(const Decimal* condition) { return condition; }  // never: each one is decided

    void Check(const FormulaStep& step, const Decimal* value) {
        if (!m_log.IsKept()) return;
        m_log.Add(step, ResultOf(*value, GivesTruth(step.operation)), m_happened);
        m_flags.Join(m_happened);
        m_happened = {};
    }

    ExactResult Whole(const Decimal* value) const {
        ExactResult result = ResultOf(*value, m_program.isTruth);
        result.flags = m_flags;
        result.isFromBinary = m_isFromBinary;
        return result;
    }

private:
    static constexpr std::size_t kUsual = 40;  // steps; each is carried out once at most

    // Without a log only what happened in all steps counts.
    DecimalFlags& Flags() { return m_log.IsKept() ? m_happened : m_flags; }
    template <class Make> const Decimal* Kept(Make make) { return new (m_next++) Decimal(make()); }

    const FormulaProgram& m_program;
    std::span<const Reading> m_readings;
    StepLog m_log;
    DecimalFlags m_happened, m_flags;  // in this step, in all steps
    bool m_isFromBinary = false;
    alignas(Decimal) std::array<std::byte, kUsual * sizeof(Decimal)> m_memory;
    std::vector<Decimal> m_more;
    Decimal* m_next = reinterpret_cast<Decimal*>(m_memory.data());
};
static_assert(std::is_trivially_destructible_v<Decimal>);

}  // namespace

void StepLog::AddBeforeRounding(const FormulaStep& step, const Reading& reading) {
    if (!IsKept() || !reading.beforeRounding) return;
    m_steps->push_back(
        {step.position, step.length, "variable before its list's rounding", reading.beforeRounding->Text(), {}});
}

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

std::optional<ExactResult> EvaluateProgram(const FormulaProgram& program, std::span<const Reading> readings,
                                           const ExactOptions& options, FormulaError& error,
                                           std::vector<ExactStep>* steps) {
    const bool isMissing =
        std::ranges::any_of(program.variables, [&](std::size_t position) { return position >= readings.size(); });
    if (isMissing) {
        error = {FormulaError::Kind::kReading, 0, 0, "values that are not there", {}, {}};
        return {};
    }
    try {
        if (AreNumbers(program, readings)) return EvaluateNumbers(program, readings, StepLog(steps));
        return EvaluateIntervals(program, readings, options, StepLog(steps));
    } catch (const FormulaError& failure) {
        error = failure;
        return {};
    }
}

}  // namespace qel
