#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/formula_scope.h"

namespace qel {

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

private:
    struct Parsed;
    explicit Formula(std::shared_ptr<const Parsed> parsed) : m_parsed(std::move(parsed)) {}

    std::shared_ptr<const Parsed> m_parsed;
};

}  // namespace qel
