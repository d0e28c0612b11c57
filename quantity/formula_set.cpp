#include "qellib10/quantity/formula_set.h"

#include <algorithm>
#include <utility>

#include "qellib10/quantity/formula_access.h"
#include "qellib10/quantity/joined_program.h"
#include "qellib10/quantity/uncertainty_propagation.h"

namespace qel {

FormulaSet::FormulaSet(FormulaScope variables) : m_scope(std::move(variables)), m_variables(m_scope.Count()) {}

std::optional<std::size_t> FormulaSet::Add(std::string_view name, std::string_view text) {
    if (name.empty() || m_scope.Find(name)) return {};
    m_scope.Add(name);
    m_texts.emplace_back(text);
    return m_texts.size() - 1;
}

std::optional<std::size_t> FormulaSet::FormulaAt(std::size_t position) const {
    return position >= m_variables ? std::optional(position - m_variables) : std::nullopt;
}

std::optional<FormulaSet::Fault> FormulaSet::Parse() {
    m_formulas.clear();
    m_order.clear();
    if (std::optional<Fault> fault = ParseEach()) return fault;
    return FindOrder();
}

std::optional<FormulaSet::Fault> FormulaSet::ParseEach() {
    for (const std::string& text : m_texts) {
        Fault fault{m_formulas.size(), {}};
        std::optional<Formula> formula = Formula::Parse(text, m_scope, fault.error);
        if (!formula) return fault;
        m_formulas.push_back(*std::move(formula));
    }
    for (std::size_t i = 0; i < Count(); ++i) {
        for (const std::size_t position : m_formulas[i].Variables()) {
            const std::optional<std::size_t> other = FormulaAt(position);
            if (other && m_formulas[*other].IsCondition())
                return At(i, position, FormulaError::Kind::kType, "a number, not a condition,");
        }
    }
    return {};
}

// Each formula is ready once all that it needs are.
std::optional<FormulaSet::Fault> FormulaSet::FindOrder() {
    std::vector<std::size_t> open(Count());  // how many it waits for
    std::vector<std::vector<std::size_t>> waiting(Count());
    for (std::size_t i = 0; i < Count(); ++i) {
        for (const std::size_t position : m_formulas[i].Variables()) {
            if (const std::optional<std::size_t> other = FormulaAt(position)) {
                waiting[*other].push_back(i);
                ++open[i];
            }
        }
    }
    for (std::size_t i = 0; i < Count(); ++i)
        if (open[i] == 0) m_order.push_back(i);
    for (std::size_t next = 0; next < m_order.size(); ++next)
        for (const std::size_t waits : waiting[m_order[next]])
            if (--open[waits] == 0) m_order.push_back(waits);
    if (m_order.size() == Count()) return {};
    return CycleAmong(open);
}

// Each open formula needs an open one, so the way along them comes back to where it was.
FormulaSet::Fault FormulaSet::CycleAmong(const std::vector<std::size_t>& open) const {
    const auto neededBy = [&](std::size_t formula) {
        return *std::ranges::find_if(m_formulas[formula].Variables(), [&](std::size_t position) {
            const std::optional<std::size_t> other = FormulaAt(position);
            return other && open[*other] > 0;
        });
    };
    std::vector<bool> isSeen(Count());
    auto formula = static_cast<std::size_t>(std::ranges::find_if(open, [](std::size_t waits) { return waits > 0; }) -
                                            open.begin());
    while (!isSeen[formula]) {
        isSeen[formula] = true;
        formula = *FormulaAt(neededBy(formula));
    }
    constexpr std::size_t kMostNamed = 10;
    std::string cycle = m_scope.Name(m_variables + formula);
    std::size_t at = formula, named = 0;
    do {
        at = *FormulaAt(neededBy(at));
        if (++named < kMostNamed || at == formula) cycle += " needs " + m_scope.Name(m_variables + at);
        if (named == kMostNamed && at != formula) cycle += " needs ...";
    } while (at != formula);
    return At(formula, neededBy(formula), FormulaError::Kind::kCycle, std::move(cycle));
}

FormulaSet::Fault FormulaSet::At(std::size_t formula, std::size_t name, FormulaError::Kind kind,
                                 std::string expected) const {
    const FormulaProgram& program = ProgramOf(m_formulas[formula]);
    const auto step = std::ranges::find_if(program.steps, [&](const FormulaStep& each) {
        return each.operation == FormulaOperation::kVariable && program.variables[each.index] == name;
    });
    return {formula, {kind, step->position, step->length, std::move(expected), {}, {}}};
}

std::optional<std::vector<ExactResult>> FormulaSet::EvaluateExactly(std::span<const Reading> readings,
                                                                    const ExactOptions& options, Fault& fault) const {
    std::vector<Reading> all(readings.begin(),
                             readings.begin() + static_cast<std::ptrdiff_t>(std::min(readings.size(), m_variables)));
    all.resize(m_variables + Count());
    std::vector<ExactResult> results(Count());
    for (const std::size_t formula : m_order) {
        std::optional<ExactResult> result = m_formulas[formula].EvaluateExactly(all, options, fault.error);
        if (!result) {
            fault.formula = formula;
            return {};
        }
        all[m_variables + formula] = Reading::OfResult(*result);
        results[formula] = *std::move(result);
    }
    return results;
}

// Nothing for a formula that is not there, or has a fault.
std::optional<FormulaProgram> FormulaSet::Joined(std::size_t formula, FormulaError& error) const {
    if (formula >= Count() || m_order.size() != Count()) {
        error = {FormulaError::Kind::kReading, 0, 0, "a formula that is not there or has a fault", {}, {}};
        return {};
    }
    std::vector<const FormulaProgram*> others(m_variables);
    for (const Formula& other : m_formulas) others.push_back(&ProgramOf(other));
    return JoinedProgram(ProgramOf(m_formulas[formula]), others);
}

std::optional<UncertaintyBudget> FormulaSet::Propagate(std::size_t formula, std::span<const UncertainInput> inputs,
                                                       const UncertaintyOptions& options, FormulaError& error) const {
    const std::optional<FormulaProgram> joined = Joined(formula, error);
    if (!joined) return {};
    return PropagateUncertainty(*joined, inputs.first(std::min(inputs.size(), m_variables)), options, error);
}

std::optional<MonteCarloResult> FormulaSet::Try(std::size_t formula, std::span<const UncertainInput> inputs,
                                                const MonteCarloOptions& options, FormulaError& error) const {
    const std::optional<FormulaProgram> joined = Joined(formula, error);
    if (!joined) return {};
    return PropagateDistributions(*joined, inputs.first(std::min(inputs.size(), m_variables)), options, error);
}

}  // namespace qel
