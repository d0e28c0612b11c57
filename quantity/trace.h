#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/quantity/calculation.h"
#include "qellib10/quantity/exact_result.h"
#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/monte_carlo.h"
#include "qellib10/quantity/uncertainty_budget.h"

namespace qel {

/// One formula of a trace.
struct TracePart {
    std::string name;
    std::string formula;
    std::string unit;  ///< of the result, as a report shows it
    std::vector<ExactStep> steps;
    std::optional<ExactResult> result;  ///< nothing where the trace ends with a fault
    std::optional<UncertaintyBudget> budget;
    std::string withoutBudget;  ///< why there is none although inputs have uncertainties
};

/// Why there is no result.
struct TraceFault {
    std::string name;  ///< of the formula or the input
    FormulaError error;
    std::string sentence;
};

/// A part of a trace for the eye: its rows have one text for each column.
struct TraceTable {
    std::string title;
    std::vector<std::string> columns;  ///< empty where the rows explain themselves
    std::vector<std::vector<std::string>> rows;
};

enum class TraceLanguage { kEnglish, kJapanese };

/// How a result came about, from the values put in to the rounded value, so that an auditor follows each step and
/// computes it again, also years later with another version of this library.
///
/// @code
/// qel::Calculation calculation;
/// calculation.result = {"CONTENT", "(EP - BLANK) * T / SAMPLE", ""};
/// calculation.inputs.push_back({"EP", *qel::Reading::OfText("16.519"), "", "burette 2", {}});
/// ...
/// const qel::Trace trace = qel::Trace::Of(calculation);
/// if (trace.Fault() == nullptr) Show(trace.ResultText());
/// @endcode
class QELLIB10_API Trace {
public:
    /// Computes. What is wrong with the calculation is in Fault().
    /// @param threads for trials; they have ended when it returns, and change no digit
    static Trace Of(const Calculation& calculation, unsigned threads = 1);

    const Calculation& Request() const noexcept { return m_calculation; }
    /// The helpers in the order in which they were computed, the result's formula last.
    const std::vector<TracePart>& Parts() const noexcept { return m_parts; }
    /// Null where there is a result.
    const TraceFault* Fault() const noexcept { return m_fault ? &*m_fault : nullptr; }

    /// The part of the result; null with a fault.
    const TracePart* Result() const noexcept { return m_fault || m_parts.empty() ? nullptr : &m_parts.back(); }
    /// The result before and after rounding. Nothing without a rule, and where the result is neither a number nor a
    /// limit.
    const std::optional<RoundedValue>& Rounded() const noexcept { return m_rounded; }
    /// The expanded uncertainty, rounded half away from zero to two digits, or to those of a rule that goes by it (GUM
    /// 7.2.6); and to no finer place than the result has, unless nothing would be left.
    const std::optional<Decimal>& RoundedUncertainty() const noexcept { return m_roundedUncertainty; }
    const std::optional<ResultDecision>& Decision() const noexcept { return m_decision; }
    /// What the trials gave, and what they say of first order.
    const std::optional<MonteCarloResult>& Trials() const noexcept { return m_trials; }
    const std::optional<FirstOrderCheck>& FirstOrder() const noexcept { return m_firstOrder; }
    /// Why something that was asked for is not there: a decision, trials.
    const std::vector<std::string>& Remarks() const noexcept { return m_remarks; }
    /// The version of the library that computed it.
    const std::string& Engine() const noexcept { return m_engine; }

    /// "0.1021 mol/L", "< 0.02 mg/L", "yes", "not determinable: BLANK"; with the digits of the rule. Empty with a
    /// fault.
    std::string ResultText() const;
    /// "0.1021 mol/L ± 0.0002 mol/L (k = 2)", or "(1.66 ± 0.02)E-27 kg (k = 2)" where there would be many zeros, with
    /// and without a rule; as ResultText where there is no uncertainty.
    std::string ResultWithUncertainty() const;

    /// All of it, as docs/trace-schema.json describes. CheckTrace computes whatever it gives again without a
    /// difference. Empty where that cannot be: Fault() then says what of the calculation cannot be kept (a text that is
    /// not UTF-8, a number that is not finite, an uncertainty that is not what its own statement gives), or the text
    /// would be longer than 64 MiB.
    std::string Json() const;
    std::vector<TraceTable> Tables(TraceLanguage language) const;
    /// The tables as lines of text.
    std::string Text(TraceLanguage language) const;

private:
    friend class TraceComputation;
    friend class TraceConclusion;
    std::string NameOf(std::size_t position) const;

    Calculation m_calculation;
    std::vector<TracePart> m_parts;
    std::optional<TraceFault> m_fault;
    std::optional<RoundedValue> m_rounded;
    std::optional<Decimal> m_roundedUncertainty;
    std::optional<ResultDecision> m_decision;
    std::optional<MonteCarloResult> m_trials;
    std::optional<FirstOrderCheck> m_firstOrder;
    std::vector<std::string> m_remarks;
    std::string m_engine;
};

/// A recorded trace and the same calculation today.
struct TraceCheck {
    Trace computed;
    std::string recordedEngine;
    /// What differs, one sentence each: "result/text: 0.102 was recorded, 0.103 is computed". Empty where every digit
    /// is the same.
    std::vector<std::string> differences;
};

/// Computes the calculation of a recorded trace again and compares all that is in it. The sentences of faults and
/// remarks are compared by kind and place, not word for word. Where a value is from (CalculationInput::origin) nothing
/// computes, so that a change there is no difference; that nobody made one is proved by a trail.
/// @param json as Trace::Json writes it
/// @param threads for trials
/// @return nothing where @p json is no trace, or one of a later version of this library; @p error then says why
QELLIB10_API std::optional<TraceCheck> CheckTrace(std::string_view json, std::string& error, unsigned threads = 1);

}  // namespace qel
