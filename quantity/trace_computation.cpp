#include "qellib10/quantity/trace_computation.h"

#include <algorithm>
#include <utility>

#include "qellib10/quantity/formula_access.h"
#include "qellib10/quantity/trace_conclusion.h"
#include "qellib10/quantity/traced_calculation.h"
#include "qellib10/quantity/unit_remarks.h"

namespace qel {
namespace {

using Kind = FormulaError::Kind;

}  // namespace

FormulaScope TraceComputation::Scope() const {
    FormulaScope scope;
    for (const CalculationInput& input : m_trace.m_calculation.inputs) scope.Add(input.name);
    return scope;
}

const CalculationFormula& TraceComputation::SourceOf(std::size_t formula) const {
    const Calculation& calculation = m_trace.m_calculation;
    return formula < calculation.helpers.size() ? calculation.helpers[formula] : calculation.result;
}

void TraceComputation::Fail(const CalculationFormula& formula, const FormulaError& error) {
    m_trace.m_fault = TraceFault{formula.name, error, error.Text(formula.formula)};
    if (error.cause && *error.cause < m_set.Scope().Count())
        m_trace.m_fault->sentence += ": " + m_set.Scope().Name(*error.cause);
}

// Names that differ in case only are one name.
bool TraceComputation::Check() {
    const Calculation& calculation = m_trace.m_calculation;
    const auto refuse = [&](const std::string& name, const char* sentence) {
        m_trace.m_fault = TraceFault{name, {Kind::kTooLong, 0, 0, sentence, {}, {}}, sentence};
        return false;
    };
    if (const std::optional<FormulaError> objection = ObjectionToTracing(calculation)) {
        m_trace.m_fault = TraceFault{"", *objection, objection->expected};
        return false;
    }
    if (calculation.helpers.size() > Calculation::kMostHelpers)
        return refuse("", "there are more than 300 other formulas");
    if (calculation.inputs.size() > Calculation::kMostInputs) return refuse("", "there are more than 10,000 inputs");
    FormulaScope seen;
    for (const CalculationInput& input : m_trace.m_calculation.inputs) {
        const std::size_t before = seen.Count();
        if (!input.name.empty() && seen.Add(input.name) == before) continue;
        const std::string sentence = input.name.empty() ? "an input has no name" : "two inputs have this name";
        m_trace.m_fault = TraceFault{input.name, {Kind::kName, 0, 0, sentence, {}, {}}, sentence};
        return false;
    }
    for (const InputCorrelation& each : calculation.uncertainty.correlations) {
        for (const std::size_t position : {each.first, each.second}) {
            if (position >= calculation.inputs.size() || !calculation.inputs[position].components.empty()) continue;
            const char* const sentence = "a correlation coefficient is given for an input that has no uncertainty";
            m_trace.m_fault =
                TraceFault{calculation.inputs[position].name, {Kind::kUncertainty, 0, 0, sentence, {}, {}}, sentence};
            return false;
        }
    }
    return true;
}

bool TraceComputation::AddFormulas() {
    const Calculation& calculation = m_trace.m_calculation;
    std::vector<const CalculationFormula*> formulas;
    for (const CalculationFormula& helper : calculation.helpers) formulas.push_back(&helper);
    if (!calculation.isKept) formulas.push_back(&calculation.result);
    for (const CalculationFormula* formula : formulas) {
        if (m_set.Add(formula->name, formula->formula)) continue;
        const std::string sentence =
            formula->name.empty() ? "a formula has no name" : "an input or another formula has this name";
        m_trace.m_fault = TraceFault{formula->name, {Kind::kName, 0, 0, sentence, {}, {}}, sentence};
        return false;
    }
    if (const std::optional<FormulaSet::Fault> fault = m_set.Parse()) {
        Fail(SourceOf(fault->formula), fault->error);
        return false;
    }
    return true;
}

void TraceComputation::Run() {
    if (!Check() || !AddFormulas() || !ReadUnits()) return;
    const Calculation& calculation = m_trace.m_calculation;
    for (const CalculationInput& input : calculation.inputs) m_readings.push_back(input.reading);
    m_readings.resize(m_set.Scope().Count());
    m_uncertainty.emplace(calculation, m_set);
    // The result's own formula is computed last, even where a helper names it.
    const std::size_t last = calculation.helpers.size();
    for (const std::size_t formula : m_set.Order())
        if (!Compute(SourceOf(formula), m_set.At(formula))) return;
    if (calculation.isKept) {
        FormulaError error;
        const std::optional<Formula> formula = Formula::Kept(calculation.result.formula, m_set.Scope(), error);
        if (!formula) return Fail(calculation.result, error);
        if (!Compute(calculation.result, *formula)) return;
    } else {
        const auto result = std::ranges::find(m_trace.m_parts, SourceOf(last).name, &TracePart::name);
        std::rotate(result, result + 1, m_trace.m_parts.end());
    }
    TraceConclusion(m_trace).Draw(*m_result, *m_uncertainty, m_threads);
}

std::optional<Unit> TraceComputation::UnitOf(const std::string& name, const std::string& text) {
    std::string sentence;
    std::optional<Unit> unit = Unit::Parse(text, sentence);
    if (!unit) m_trace.m_fault = TraceFault{name, {Kind::kUnit, 0, 0, sentence, {}, {}}, sentence};
    return unit;
}

bool TraceComputation::ReadUnits() {
    for (const CalculationInput& input : m_trace.m_calculation.inputs) {
        const std::optional<Unit> unit = UnitOf(input.name, input.unit);
        if (!unit) return false;
        m_units.push_back(*unit);
        Remark(RemarkOnTemperature(input.name, input.reading.kind, input.reading.value, *unit));
        m_hasUnits |= !input.unit.empty();
    }
    m_units.resize(m_set.Scope().Count());
    for (const CalculationFormula& helper : m_trace.m_calculation.helpers) m_hasUnits |= !helper.unit.empty();
    for (std::size_t i = 0; i < m_set.Count(); ++i)
        m_hasUnits |= std::ranges::any_of(ProgramOf(m_set.At(i)).steps, [](const FormulaStep& step) {
            return step.operation == FormulaOperation::kConstant;
        });
    return true;
}

void TraceComputation::Remark(const std::string& remark) {
    if (!remark.empty()) m_trace.m_remarks.push_back(remark);
}

// Where nothing else has a unit, that of the result is only shown.
std::optional<QuantityFormula> TraceComputation::Bind(const CalculationFormula& source, const Formula& formula,
                                                      TracePart& part) {
    if (!m_hasUnits) return QuantityFormula::WithoutUnits(formula);
    std::optional<Unit> wanted;
    if (!source.unit.empty()) {
        wanted = UnitOf(source.name, source.unit);
        if (!wanted) return {};
        if (wanted->IsNumber()) part.unit.clear();
        Remark(RemarkOnFactor(source.name, ProgramOf(formula), *wanted));
    }
    FormulaError error;
    std::optional<QuantityFormula> bound = QuantityFormula::Bind(formula, m_units, wanted, error);
    if (!bound)
        Fail(source, error);
    else if (source.unit.empty() && !bound->ResultUnit().IsNumber())
        part.unit = bound->ResultUnit().Text();
    return bound;
}

bool TraceComputation::Compute(const CalculationFormula& source, const Formula& formula) {
    TracePart& part = m_trace.m_parts.emplace_back();
    part.name = source.name;
    part.formula = source.formula;
    part.unit = source.unit;
    const std::optional<QuantityFormula> bound = Bind(source, formula, part);
    if (!bound) return false;
    if (&source == &m_trace.m_calculation.result) m_result = bound;
    FormulaError error;
    const ExactOptions options{m_trace.m_calculation.substitution};
    part.result = bound->EvaluateExactly(m_readings, options, error, &part.steps);
    if (!part.result) {
        Fail(source, error);
        return false;
    }
    const Reading::Kind kind = Reading::OfResult(*part.result).kind;
    Remark(RemarkOnTemperature(part.name, kind, part.result->value, bound->ResultUnit()));
    // The result in the older grammar is in no scope, though it may have the name of an input.
    const bool isNamed = &source != &m_trace.m_calculation.result || !m_trace.m_calculation.isKept;
    const std::optional<std::size_t> position = isNamed ? m_set.Scope().Find(part.name) : std::nullopt;
    m_uncertainty->Propagate(formula, *bound, m_readings, position, part);
    if (position) {
        m_readings[*position] = Reading::OfResult(*part.result);
        m_units[*position] = bound->ResultUnit();
    }
    m_steps += part.steps.size();
    m_rows += part.budget ? part.budget->rows.size() : 0;
    if (m_steps > Calculation::kMostSteps || m_rows > Calculation::kMostRows) {
        const char* const sentence = "the formulas have too many steps or sources of uncertainty for a trace";
        m_trace.m_fault = TraceFault{part.name, {Kind::kTooLong, 0, 0, sentence, {}, {}}, sentence};
        part.steps.clear();
        part.budget.reset();
        return false;
    }
    if (!part.withoutBudget.empty()) Remark("no uncertainty of " + part.name + ": " + part.withoutBudget);
    return true;
}

}  // namespace qel
