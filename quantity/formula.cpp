#include "qellib10/quantity/formula.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "qellib10/quantity/formula_access.h"
#include "qellib10/quantity/formula_double.h"
#include "qellib10/quantity/formula_exact.h"
#include "qellib10/quantity/formula_hints.h"
#include "qellib10/quantity/formula_kept.h"
#include "qellib10/quantity/formula_parser.h"

namespace qel {

struct Formula::Parsed {
    std::string text;
    FormulaProgram program;
    FastFormula fast;
    std::size_t values = 0;  // how many the program reads
};

template <class Parser> std::optional<Formula> Formula::ParsedBy(Parser parser, std::string_view text,
                                                                 std::size_t longest, FormulaError& error) {
    if (text.size() > longest) {
        error = {FormulaError::Kind::kTooLong, longest, text.size() - longest, {}, {}, {}};
        return {};
    }
    if (const std::size_t end = EndOfUtf8(text); end < text.size()) {
        error = {FormulaError::Kind::kText, end, 1, {}, {}, {}};
        return {};
    }
    try {
        FormulaProgram program = parser();
        FastFormula fast(program);
        const auto last = std::ranges::max_element(program.variables);
        const std::size_t values = last != program.variables.end() ? *last + 1 : 0;
        return Formula(
            std::make_shared<const Parsed>(Parsed{std::string(text), std::move(program), std::move(fast), values}));
    } catch (const FormulaError& failure) {
        error = failure;
        return {};
    }
}

std::optional<Formula> Formula::Parse(std::string_view text, const FormulaScope& scope, FormulaError& error) {
    return ParsedBy([&] { return FormulaParser(text, scope).Parse(); }, text, kLongest, error);
}

std::optional<Formula> Formula::Kept(std::string_view text, const FormulaScope& scope, FormulaError& error) {
    return ParsedBy([&] { return ParseKept(text, scope); }, text, kLongestKeptFormula, error);
}

const FormulaProgram& ProgramOf(const Formula& formula) { return formula.m_parsed->program; }

const std::string& Formula::Text() const noexcept { return m_parsed->text; }
const std::vector<std::size_t>& Formula::Variables() const noexcept { return m_parsed->program.variables; }
bool Formula::IsCondition() const noexcept { return m_parsed->program.isTruth; }

bool Formula::HasAll(std::size_t values, FormulaError& error) const {
    if (values >= m_parsed->values) return true;
    error = {FormulaError::Kind::kReading, 0, m_parsed->text.size(), "values that are not there", {}, {}};
    return false;
}

std::optional<double> Formula::Evaluate(std::span<const double> values, FormulaError& error) const {
    if (!HasAll(values.size(), error)) return {};
    const double fast = m_parsed->fast.Evaluate(values.data());
    if (!std::isnan(fast)) [[likely]]
        return fast;
    return EvaluatePlainly(m_parsed->program, values, error);
}

std::optional<ExactResult> Formula::EvaluateExactly(std::span<const Reading> readings, const ExactOptions& options,
                                                    FormulaError& error, std::vector<ExactStep>* steps) const {
    return EvaluateProgram(m_parsed->program, readings, options, error, steps);
}

}  // namespace qel
