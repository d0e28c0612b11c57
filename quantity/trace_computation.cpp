#include "qellib10/quantity/trace_computation.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qel {
namespace {

using Kind = FormulaError::Kind;

// One that is neither given nor derived from the inputs.
bool IsOwn(const UncertaintyComponent& component) { return component.source.empty(); }

// A source that only one component has gets a name: its input may be in more than one formula.
std::string OwnSource(const std::string& input, std::size_t component) {
    return input + '/' + std::to_string(component + 1);
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
    TryOut();
    Round();
    Decide();
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
        m_hasUnits |= !input.unit.empty();
    }
    m_units.resize(m_set.Scope().Count());
    return true;
}

// Where no input has a unit, that of a result is only shown.
bool TraceComputation::Bind(const CalculationFormula& source, const Formula& formula, TracePart& part) {
    if (!m_hasUnits) {
        m_bound = QuantityFormula::WithoutUnits(formula);
        return true;
    }
    std::optional<Unit> wanted;
    if (!source.unit.empty()) {
        wanted = UnitOf(source.name, source.unit);
        if (!wanted) return false;
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
    if (HasUncertainty(formula)) Propagate(formula, part);
    PutIn(part);
    return true;
}

bool TraceComputation::HasUncertainty(const Formula& formula) const {
    return std::ranges::any_of(formula.Variables(),
                               [&](std::size_t position) { return !m_inputs[position].components.empty(); });
}

std::string TraceComputation::ReasonAgainstBudget(const Formula& formula) const {
    for (const std::size_t position : formula.Variables())
        if (!m_readings[position].IsValue()) return m_set.Scope().Name(position) + " is no number";
    return formula.IsCondition() ? "the formula gives yes or no" : "";
}

void TraceComputation::Propagate(const Formula& formula, TracePart& part) {
    part.withoutBudget = ReasonAgainstBudget(formula);
    if (!part.withoutBudget.empty()) return;
    FormulaError error;
    part.budget = m_bound->Propagate(m_inputs, m_trace.m_calculation.uncertainty, error);
    if (!part.budget) part.withoutBudget = error.Text(part.formula);
}

UncertainInput TraceComputation::UncertainOf(const CalculationInput& input) const {
    UncertainInput uncertain{input.name, input.reading.value.ToDouble(), input.components};
    if (m_trace.m_calculation.helpers.empty()) return uncertain;
    for (std::size_t i = 0; i < uncertain.components.size(); ++i) {
        UncertaintyComponent& component = uncertain.components[i];
        if (IsOwn(component)) component.source = OwnSource(input.name, i);
    }
    return uncertain;
}

const UncertaintyComponent* TraceComputation::ComponentOf(const UncertaintyRow& row) const {
    if (row.input >= m_inputs.size()) return nullptr;  // of a constant
    const auto& components = m_inputs[row.input].components;
    const auto found = std::ranges::find(components, row.source, &UncertaintyComponent::source);
    return found != components.end() ? &*found : nullptr;
}

// What a formula has from one source is one component of its result.
void TraceComputation::PutIn(const TracePart& part) {
    const std::optional<std::size_t> position = m_set.Scope().Find(part.name);
    if (!position) return;  // that of the result, in the older grammar
    m_readings[*position] = Reading::OfResult(*part.result);
    m_units[*position] = m_bound->ResultUnit();
    UncertainInput& input = m_inputs[*position];
    input.value = part.result->value.ToDouble();
    if (!part.budget) return;
    for (const UncertaintyRow& row : part.budget->rows) {
        const UncertaintyComponent* const component = ComponentOf(row);
        UncertaintyComponent contribution = component != nullptr ? *component : UncertaintyComponent{};
        contribution.source = row.source;
        contribution.evaluation = UncertaintyComponent::Evaluation::kStandard;
        contribution.uncertainty = row.contribution;
        contribution.stated = std::abs(row.contribution);
        contribution.factor = 1.0;
        const auto same = std::ranges::find(input.components, row.source, &UncertaintyComponent::source);
        if (same == input.components.end()) {
            input.components.push_back(std::move(contribution));
        } else {
            same->uncertainty += contribution.uncertainty;
            same->stated = std::abs(same->uncertainty);
        }
    }
}

void TraceComputation::Round() {
    const TracePart& part = m_trace.m_parts.back();
    const std::optional<RoundingRule>& rule = m_trace.m_calculation.rule;
    std::optional<Decimal> expanded;
    if (part.budget) expanded = Decimal::OfDouble(part.budget->expandedUncertainty);
    if (rule) m_trace.m_rounded = part.result->Rounded(*rule, expanded);
    if (expanded) m_trace.m_roundedUncertainty = RoundedUncertainty(*expanded);
}

// To two digits, and no finer than the result, unless nothing would be left.
std::optional<Decimal> TraceComputation::RoundedUncertainty(const Decimal& expanded) const {
    constexpr DecimalRounding kHalfAway = DecimalRounding::kHalfAwayFromZero;
    const std::optional<RoundingRule>& rule = m_trace.m_calculation.rule;
    const int digits = rule ? rule->UncertaintyDigits().value_or(2) : 2;
    const Decimal rounded = RoundingRule::ToDigits(kHalfAway, digits).Round(expanded).rounded;
    if (!rounded.IsFinite()) return {};
    if (!m_trace.m_rounded || m_trace.m_rounded->rounded.Exponent() <= rounded.Exponent()) return rounded;
    const int places = -m_trace.m_rounded->rounded.Exponent();
    const Decimal coarser = RoundingRule::ToPlaces(kHalfAway, places).Round(expanded).rounded;
    return coarser.IsFinite() && !coarser.IsZero() ? coarser : rounded;
}

void TraceComputation::Decide() {
    const Calculation& calculation = m_trace.m_calculation;
    if (!calculation.limits) return;
    const TracePart& part = m_trace.m_parts.back();
    std::string reason;
    m_trace.m_decision = DecideResult(*part.result, m_trace.m_rounded, part.budget, *calculation.limits, reason);
    if (!m_trace.m_decision) m_trace.m_remarks.push_back("no decision: " + reason);
}

void TraceComputation::TryOut() {
    const Calculation& calculation = m_trace.m_calculation;
    const TracePart& part = m_trace.m_parts.back();
    if (calculation.trials == 0) return;
    const auto refuse = [&](const std::string& why) { m_trace.m_remarks.push_back("no trials: " + why); };
    if (!part.budget) return refuse("the result has no uncertainty to first order");
    // The result of a helper has lost the distributions that it came from.
    if (!calculation.helpers.empty()) return refuse("other formulas are used; write them into this one");
    if (!part.budget->coverageProbability) return refuse("there is no coverage probability");
    MonteCarloOptions options;
    options.trials = calculation.trials;
    options.seed = calculation.seed;
    options.threads = m_threads;
    options.coverageProbability = *part.budget->coverageProbability;
    options.correlations = calculation.uncertainty.correlations;
    FormulaError error;
    m_trace.m_trials = m_bound->Try(m_inputs, options, error);
    if (!m_trace.m_trials) return refuse(error.Text(part.formula));
    m_trace.m_firstOrder = ValidateFirstOrder(*part.budget, *m_trace.m_trials);
}

}  // namespace qel
