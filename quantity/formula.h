#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/quantity/exact_result.h"
#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/formula_scope.h"
#include "qellib10/quantity/reading.h"

namespace qel {

struct FormulaProgram;

/// A result formula such as "(EP - BLANK) * C / SAMPLE", which users write: parsed once, evaluated often. It prevents
/// the result that is silently 0 because a name was misspelt, since each fault has its place and what was expected
/// there.
///
/// A formula is a value; copies share the parsed text, which never changes, so any thread may evaluate it.
class QELLIB10_API Formula {
public:
    static constexpr std::size_t kLongest = 65'536;  ///< bytes

    /// @param text UTF-8
    /// @return nothing where the text is not valid; @p error has what and where
    static std::optional<Formula> Parse(std::string_view text, const FormulaScope& scope, FormulaError& error);

    /// As CQWCalc reads it, for formulas already in the field: an empty number is 0, a name replaces the digits before
    /// it, and there are no functions. CQWCalc's check of constant divisors is not part of it: a division by 0 is found
    /// when the formula is evaluated.
    /// @param text UTF-8, 1,020 bytes at most
    static std::optional<Formula> Kept(std::string_view text, const FormulaScope& scope, FormulaError& error);

    const std::string& Text() const noexcept;
    /// The positions in the scope of the variables that it names, each once, in the order of their first use.
    const std::vector<std::size_t>& Variables() const noexcept;
    /// Whether it gives yes or no.
    bool IsCondition() const noexcept;

    /// Evaluates in double. Of a condition yes is 1 and no is 0.
    /// @param values of the scope's names, by position
    /// @return nothing where a division is by zero, something is not defined or not finite, or @p values is too short;
    /// @p error has the place
    std::optional<double> Evaluate(std::span<const double> values, FormulaError& error) const;

    /// Evaluates in exact decimals of 34 digits. Readings that are limits, missing or invalid are all the numbers that
    /// they may be, and so is the result.
    /// @param readings of the scope's names, by position
    /// @param steps gets each step that was carried out, in that order; also those before an error
    /// @return nothing where a division is by zero for certain, something is not defined for any of those numbers or is
    /// too large, min, max or mean need a number, or @p readings is too short; @p error has the place
    std::optional<ExactResult> EvaluateExactly(std::span<const Reading> readings, const ExactOptions& options,
                                               FormulaError& error, std::vector<ExactStep>* steps = nullptr) const;

private:
    struct Parsed;
    friend const FormulaProgram& ProgramOf(const Formula& formula);
    template <class Parser> static std::optional<Formula> ParsedBy(Parser parser, std::string_view text,
                                                                   std::size_t longest, FormulaError& error);
    bool HasAll(std::size_t values, FormulaError& error) const;
    explicit Formula(std::shared_ptr<const Parsed> parsed) : m_parsed(std::move(parsed)) {}

    std::shared_ptr<const Parsed> m_parsed;
};

}  // namespace qel
