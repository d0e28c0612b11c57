#include "qellib10/quantity/trace_uncertainty.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "qellib10/quantity/formula_access.h"
#include "qellib10/quantity/joined_program.h"
#include "qellib10/quantity/uncertain_constants.h"
#include "qellib10/quantity/uncertainty_propagation.h"

namespace qel {
namespace {

// Names of sources between formulas: those that are given, and one for each component that has none, since its input
// may be in more than one formula. Whatever is given, the two kinds differ.
constexpr char kGiven = 'g', kOwn = 'o';
std::string SourceName(const std::string& input, std::size_t index, const UncertaintyComponent& component) {
    if (!component.source.empty()) return kGiven + component.source;
    return kOwn + input + '/' + std::to_string(index + 1);
}

// Of all formulas that one with coefficients between its inputs is joined with: each of its own bends is followed back
// through all of them.
constexpr std::size_t kMostJoinedSteps = 20'000;

}  // namespace

TraceUncertainty::TraceUncertainty(const Calculation& calculation, const FormulaSet& set)
    : m_calculation(calculation),
      m_set(set),
      m_isUnknown(set.Scope().Count()),
      m_steps(set.Scope().Count()),
      m_isAtKink(set.Scope().Count()),
      m_bound(set.Scope().Count()) {
    for (const CalculationInput& input : calculation.inputs) m_inputs.push_back(UncertainOf(input));
    for (std::size_t i = m_inputs.size(); i < set.Scope().Count(); ++i)
        m_inputs.push_back({set.Scope().Name(i), 0.0, {}});
}

UncertainInput TraceUncertainty::UncertainOf(const CalculationInput& input) {
    UncertainInput uncertain{input.name, input.reading.value.ToDouble(), input.components};
    if (m_calculation.helpers.empty()) return uncertain;
    for (std::size_t i = 0; i < uncertain.components.size(); ++i) {
        UncertaintyComponent& component = uncertain.components[i];
        component.source = SourceName(input.name, i, component);
        m_distributions.emplace(component.source, component.distribution);
    }
    return uncertain;
}

// Names between formulas are no names for people.
void TraceUncertainty::ShowSources(UncertaintyBudget& budget) const {
    if (m_calculation.helpers.empty()) return;
    for (UncertaintyRow& row : budget.rows)
        if (row.source.starts_with(kGiven) || row.source.starts_with(kOwn)) row.source.erase(0, 1);
}

bool TraceUncertainty::HasUncertainty(const Formula& formula) const {
    return HasUncertainConstants(ProgramOf(formula)) ||
           std::ranges::any_of(formula.Variables(), [&](std::size_t position) {
               return m_isUnknown[position] || !m_inputs[position].components.empty();
           });
}

std::string TraceUncertainty::ReasonAgainst(const Formula& formula, std::span<const Reading> readings) const {
    for (const std::size_t position : formula.Variables())
        if (!readings[position].IsValue()) return m_set.Scope().Name(position) + " is no number";
    for (const std::size_t position : formula.Variables())
        if (m_isUnknown[position]) return "that of " + m_set.Scope().Name(position) + " is not known";
    return formula.IsCondition() ? "the formula gives yes or no" : "";
}

FormulaProgram TraceUncertainty::Joined(const QuantityFormula& bound) const {
    std::vector<const FormulaProgram*> others;
    for (const std::optional<QuantityFormula>& each : m_bound) others.push_back(each ? &ProgramOf(*each) : nullptr);
    return JoinedProgram(ProgramOf(bound), others);
}

std::span<const UncertainInput> TraceUncertainty::InputsOfAll() const {
    return std::span(m_inputs).first(m_calculation.inputs.size());
}

// A coefficient is between inputs, and of the result of another formula only its sources are kept.
std::optional<UncertaintyBudget> TraceUncertainty::BudgetOf(const QuantityFormula& bound, std::string& reason,
                                                            const std::string& text, std::vector<double>& steps) const {
    const UncertaintyOptions& options = m_calculation.uncertainty;
    FormulaError error;
    std::optional<UncertaintyBudget> budget;
    if (options.correlations.empty() || m_calculation.helpers.empty()) {
        budget = PropagateUncertainty(ProgramOf(bound), m_inputs, options, error, steps);
    } else {
        FormulaProgram joined = Joined(bound);
        if (joined.steps.size() > kMostJoinedSteps) {
            reason = "there are correlation coefficients, and the formulas have more than 20,000 steps";
            return {};
        }
        joined.firstOwn = joined.steps.size() - ProgramOf(bound).steps.size();
        budget = PropagateUncertainty(joined, InputsOfAll(), options, error, steps);
    }
    if (!budget) reason = error.Text(text);
    return budget;
}

TraceUncertainty::Steps TraceUncertainty::StepsOf(const UncertaintyBudget& budget, std::span<const double> own) {
    Steps steps;
    for (const double part : own) steps[m_roundings++] = part;
    const UncertaintyRow* before = nullptr;
    for (const UncertaintyRow& row : budget.rows) {
        const bool isSame = before != nullptr && before->input == row.input;
        before = &row;
        if (isSame || row.input >= m_steps.size()) continue;  // a constant has no steps
        for (const auto& [rounding, part] : m_steps[row.input]) steps[rounding] += row.sensitivity * part;
    }
    return steps;
}

void TraceUncertainty::Propagate(const Formula& formula, const QuantityFormula& bound,
                                 std::span<const Reading> readings, std::optional<std::size_t> position,
                                 TracePart& part) {
    std::vector<double> ownSteps;
    if (HasUncertainty(formula)) {
        part.withoutBudget = ReasonAgainst(formula, readings);
        if (part.withoutBudget.empty()) part.budget = BudgetOf(bound, part.withoutBudget, part.formula, ownSteps);
    }
    if (part.budget) {
        for (const std::size_t each : formula.Variables()) {
            part.budget->isAtKink |= m_isAtKink[each];
            if (part.budget->uncertainty < kLeastCertain && IsLostInDouble(readings[each].value))
                part.withoutBudget = m_set.Scope().Name(each) + " is below 1E-308";
        }
        const Steps steps = StepsOf(*part.budget, ownSteps);
        double all = 0.0;
        for (const auto& [rounding, added] : steps) all = std::hypot(all, added);
        part.budget->isAtKink |= all > kConsiderable * part.budget->uncertainty;
        if (position) m_steps[*position] = steps;
        if (!part.withoutBudget.empty()) part.budget.reset();
    }
    if (position) {
        // A number that a limit went into has no uncertainty that anybody knows.
        m_isUnknown[*position] =
            !part.withoutBudget.empty() || std::ranges::any_of(formula.Variables(), [&](std::size_t each) {
                return m_isUnknown[each] || !readings[each].IsValue();
            });
        m_bound[*position] = bound;
        PutIn(part, *position);
    }
    if (part.budget) ShowSources(*part.budget);
}

// What a formula has from one source is one component of its result.
void TraceUncertainty::PutIn(const TracePart& part, std::size_t position) {
    UncertainInput& input = m_inputs[position];
    input.value = part.result->value.ToDouble();
    if (!part.budget) return;
    m_isAtKink[position] = part.budget->isAtKink;
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

std::optional<MonteCarloResult> TraceUncertainty::Try(const QuantityFormula& result, const MonteCarloOptions& options,
                                                      FormulaError& error) const {
    if (m_calculation.helpers.empty()) return result.Try(m_inputs, options, error);
    return PropagateDistributions(Joined(result), InputsOfAll(), options, error);
}

}  // namespace qel
