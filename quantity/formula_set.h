#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/quantity/formula.h"
#include "qellib10/quantity/monte_carlo.h"

namespace qel {

/// Formulas that use each other's results by name: the titre in the content, the content in the recovery. Each is
/// computed once, after those that it needs, in whatever order they are written; formulas that need each other are
/// found before anything is computed.
///
///     FormulaSet set(scope);
///     set.Add("TITRE", "M / (V * F)");
///     set.Add("CONTENT", "(EP - BLANK) * TITRE / SAMPLE");
///     if (const auto fault = set.Parse()) ...
///
/// The result of a condition is no number, so no other formula can name it.
class QELLIB10_API FormulaSet {
public:
    /// @p formula by its position, in the order of Add
    struct Fault {
        std::size_t formula = 0;
        FormulaError error;

        friend bool operator==(const Fault&, const Fault&) = default;
    };

    explicit FormulaSet(FormulaScope variables);

    /// @return its position among the formulas; nothing where a variable or another formula has the name, or the name
    /// is empty
    std::optional<std::size_t> Add(std::string_view name, std::string_view text);

    /// Parses all of them. @return what is wrong with the first that is; nothing if all are right
    std::optional<Fault> Parse();

    std::size_t Count() const noexcept { return m_texts.size(); }
    /// After a Parse without a fault.
    const Formula& At(std::size_t formula) const { return m_formulas.at(formula); }
    const std::vector<std::size_t>& Order() const noexcept { return m_order; }  ///< in which they are computed
    /// The variables, then the formulas in the order of Add.
    const FormulaScope& Scope() const noexcept { return m_scope; }

    /// After a Parse without a fault.
    /// @param readings of the variables, by position
    /// @return the results, in the order of Add. A result of Formula::EvaluateExactly that is no number is a reading
    /// for the next formula: a limit, or something that is not known
    std::optional<std::vector<ExactResult>> EvaluateExactly(std::span<const Reading> readings,
                                                            const ExactOptions& options, Fault& fault) const;
    /// As PropagateUncertainty of a formula that has all that it needs written into it. Rows are of the variables. An
    /// error in another formula has the place of its name.
    /// @param inputs of the variables, by position
    /// @return nothing also for a formula that is not there, and where Parse found a fault
    std::optional<UncertaintyBudget> Propagate(std::size_t formula, std::span<const UncertainInput> inputs,
                                               const UncertaintyOptions& options, FormulaError& error) const;
    /// As PropagateDistributions of the same: a variable is drawn once in each trial, for all formulas that name it. A
    /// trial for which a formula is not defined that is needed has no result, also where no branch takes that.
    std::optional<MonteCarloResult> Try(std::size_t formula, std::span<const UncertainInput> inputs,
                                        const MonteCarloOptions& options, FormulaError& error) const;

private:
    std::optional<FormulaProgram> Joined(std::size_t formula, FormulaError& error) const;
    std::optional<std::size_t> FormulaAt(std::size_t position) const;
    std::optional<Fault> ParseEach();
    std::optional<Fault> FindOrder();
    Fault CycleAmong(const std::vector<std::size_t>& open) const;
    Fault At(std::size_t formula, std::size_t name, FormulaError::Kind kind, std::string expected) const;

    FormulaScope m_scope;
    std::size_t m_variables;
    std::vector<std::string> m_texts;
    std::vector<Formula> m_formulas;
    std::vector<std::size_t> m_order;
};

}  // namespace qel
