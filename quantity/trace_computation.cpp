#include "qellib10/quantity/trace_computation.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "qellib10/quantity/formula_access.h"
#include "qellib10/quantity/trace_conclusion.h"
#include "qellib10/quantity/traced_calculation.h"
#include "qellib10/quantity/uncertain_constants.h"
#include "qellib10/quantity/uncertainty_propagation.h"
#include "qellib10/quantity/unit_remarks.h"

namespace qel {
namespace {

using Kind = FormulaError::Kind;

// Names of sources between formulas: those that are given, and one for each component that has none, since its input
// may be in more than one formula. Whatever is given, the two kinds differ.
constexpr char kGiven = 'g', kOwn = 'o';
std::string SourceName(const std::string& input, std::size_t index, const UncertaintyComponent& component) {
    if (!component.source.empty()) return kGiven + component.source;
    return kOwn + input + '/' + std::to_string(index + 1);
}

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
    for (const CalculationInput& input : calculation.inputs) {
        m_readings.push_back(input.reading);
        m_inputs.push_back(UncertainOf(input));
    }
    m_readings.resize(m_set.Scope().Count());
    m_inputs.resize(m_set.Scope().Count());
    m_isUnknown.resize(m_set.Scope().Count());
    m_isAtKink.resize(m_set.Scope().Count());
    for (std::size_t i = 0; i < m_set.Count(); ++i) m_inputs[calculation.inputs.size() + i].name = SourceOf(i).name;
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
    TraceConclusion(m_trace).Draw(*m_bound, m_inputs, m_threads);
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
bool TraceComputation::Bind(const CalculationFormula& source, const Formula& formula, TracePart& part) {
    if (!m_hasUnits) {
        m_bound = QuantityFormula::WithoutUnits(formula);
        return true;
    }
    std::optional<Unit> wanted;
    if (!source.unit.empty()) {
        wanted = UnitOf(source.name, source.unit);
        if (!wanted) return false;
        if (wanted->IsNumber()) part.unit.clear();
        Remark(RemarkOnFactor(source.name, ProgramOf(formula), *wanted));
    }
    FormulaError error;
    m_bound = QuantityFormula::Bind(formula, m_units, wanted, error);
    if (!m_bound) {
        Fail(source, error);
        return false;
    }
    if (source.unit.empty() && !m_bound->ResultUnit().IsNumber()) part.unit = m_bound->ResultUnit().Text();
    return true;
}

bool TraceComputation::Compute(const CalculationFormula& source, const Formula& formula) {
    TracePart& part = m_trace.m_parts.emplace_back();
    part.name = source.name;
    part.formula = source.formula;
    part.unit = source.unit;
    if (!Bind(source, formula, part)) return false;
    FormulaError error;
    const ExactOptions options{m_trace.m_calculation.substitution};
    part.result = m_bound->EvaluateExactly(m_readings, options, error, &part.steps);
    if (!part.result) {
        Fail(source, error);
        return false;
    }
    const Reading::Kind kind = Reading::OfResult(*part.result).kind;
    Remark(RemarkOnTemperature(part.name, kind, part.result->value, m_bound->ResultUnit()));
    if (HasUncertainty(formula)) Propagate(formula, part);
    // A number that a limit went into has no uncertainty that anybody knows.
    PutIn(part, std::ranges::any_of(formula.Variables(), [&](std::size_t position) {
              return m_isUnknown[position] || !m_readings[position].IsValue();
          }));
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
    if (part.budget) ShowSources(*part.budget);
    return true;
}

// Names between formulas are no names for people.
void TraceComputation::ShowSources(UncertaintyBudget& budget) const {
    if (m_trace.m_calculation.helpers.empty()) return;
    for (UncertaintyRow& row : budget.rows)
        if (row.source.starts_with(kGiven) || row.source.starts_with(kOwn)) row.source.erase(0, 1);
}

bool TraceComputation::HasUncertainty(const Formula& formula) const {
    return HasUncertainConstants(ProgramOf(formula)) ||
           std::ranges::any_of(formula.Variables(), [&](std::size_t position) {
               return m_isUnknown[position] || !m_inputs[position].components.empty();
           });
}

std::string TraceComputation::ReasonAgainstBudget(const Formula& formula) const {
    for (const std::size_t position : formula.Variables())
        if (!m_readings[position].IsValue()) return m_set.Scope().Name(position) + " is no number";
    for (const std::size_t position : formula.Variables())
        if (m_isUnknown[position]) return "that of " + m_set.Scope().Name(position) + " is not known";
    // Of a result that others use only its sources are kept, and coefficients are between inputs.
    const Calculation& calculation = m_trace.m_calculation;
    if (!calculation.uncertainty.correlations.empty() && !calculation.helpers.empty())
        return "correlation coefficients need all in one formula";
    return formula.IsCondition() ? "the formula gives yes or no" : "";
}

void TraceComputation::Propagate(const Formula& formula, TracePart& part) {
    part.withoutBudget = ReasonAgainstBudget(formula);
    if (!part.withoutBudget.empty()) return;
    FormulaError error;
    part.budget = m_bound->Propagate(m_inputs, m_trace.m_calculation.uncertainty, error);
    if (!part.budget) {
        part.withoutBudget = error.Text(part.formula);
        return;
    }
    for (const std::size_t position : formula.Variables()) {
        part.budget->isAtKink |= m_isAtKink[position];
        if (part.budget->uncertainty < kLeastCertain && IsLostInDouble(m_readings[position].value))
            part.withoutBudget = m_set.Scope().Name(position) + " is below 1E-308";
    }
    if (!part.withoutBudget.empty()) part.budget.reset();
}

UncertainInput TraceComputation::UncertainOf(const CalculationInput& input) {
    UncertainInput uncertain{input.name, input.reading.value.ToDouble(), input.components};
    if (m_trace.m_calculation.helpers.empty()) return uncertain;
    for (std::size_t i = 0; i < uncertain.components.size(); ++i) {
        UncertaintyComponent& component = uncertain.components[i];
        component.source = SourceName(input.name, i, component);
        m_distributions.emplace(component.source, component.distribution);
    }
    return uncertain;
}

// What a formula has from one source is one component of its result.
void TraceComputation::PutIn(const TracePart& part, bool usesUnknown) {
    const std::optional<std::size_t> position = m_set.Scope().Find(part.name);
    if (!position) return;  // that of the result, in the older grammar
    m_readings[*position] = Reading::OfResult(*part.result);
    m_units[*position] = m_bound->ResultUnit();
    UncertainInput& input = m_inputs[*position];
    input.value = part.result->value.ToDouble();
    m_isUnknown[*position] = !part.withoutBudget.empty() || usesUnknown;
    if (!part.budget) return;
    m_isAtKink[*position] = part.budget->isAtKink;
    std::unordered_map<std::string_view, std::size_t> places;  // of the sources, in what is put in
    for (const UncertaintyRow& row : part.budget->rows) {
        UncertaintyComponent contribution;
        contribution.degreesOfFreedom = row.degreesOfFreedom;
        const auto known = m_distributions.find(row.source);
        if (known != m_distributions.end()) contribution.distribution = known->second;
        contribution.source = row.source;
        contribution.evaluation = UncertaintyComponent::Evaluation::kStandard;
        contribution.uncertainty = row.contribution;
        contribution.stated = std::abs(row.contribution);
        contribution.factor = 1.0;
        const auto [place, isNew] = places.emplace(row.source, input.components.size());
        if (isNew) {
            input.components.push_back(std::move(contribution));
        } else {
            UncertaintyComponent& same = input.components[place->second];
            same.uncertainty += contribution.uncertainty;
            same.stated = std::abs(same.uncertainty);
        }
    }
}

}  // namespace qel
