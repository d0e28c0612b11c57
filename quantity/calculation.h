#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/quantity/exact_result.h"
#include "qellib10/quantity/reading.h"
#include "qellib10/quantity/result_decision.h"
#include "qellib10/quantity/rounding_rule.h"
#include "qellib10/quantity/uncertainty.h"
#include "qellib10/quantity/uncertainty_budget.h"

namespace qel {

/// A value that is put into a calculation, with all that is known of it. Texts are UTF-8.
struct QELLIB10_API CalculationInput {
    std::string name;  ///< as formulas name it
    Reading reading;
    std::string unit;    ///< as Unit::Parse reads it; empty for a number without a unit
    std::string origin;  ///< where the value is from, for the reader of a trace: a device, a certificate, a person
    std::vector<UncertaintyComponent> components;  ///< in @p unit

    /// @param text a reading as Reading::OfText has it, then possibly a unit: "16.519 mL", "< 0.02 mg/L", "missing"
    /// @return nothing where it does not start with a reading, and where the number seems to go on after a blank, as in
    /// "5 e3" and "1 500 mg": a unit with a factor follows a sign, "5 × 1000/µL", but for powers of 10 and "1/min". The
    /// unit is read when the calculation is
    static std::optional<CalculationInput> Of(std::string_view name, std::string_view text,
                                              std::vector<UncertaintyComponent> components = {},
                                              std::string_view origin = {});
    /// One sentence without a full stop on digits or an exponent after a blank; empty for every other text.
    static std::string WhyNot(std::string_view text);

    friend bool operator==(const CalculationInput&, const CalculationInput&) = default;
};

/// A formula whose result others use by its name.
struct CalculationFormula {
    std::string name;
    std::string formula;
    std::string unit;  ///< that its result is to have; empty for the one that it has

    friend bool operator==(const CalculationFormula&, const CalculationFormula&) = default;
};

/// All that a result depends on. Whoever has it can compute the result again.
struct Calculation {
    static constexpr std::size_t kMostHelpers = 300;
    static constexpr std::size_t kMostSteps = 200'000;  ///< of all formulas
    static constexpr std::size_t kMostRows = 100'000;   ///< of all budgets
    static constexpr std::size_t kMostInputs = 10'000;

    CalculationFormula result;
    bool isKept = false;  ///< the formula of the result is in the older grammar, see Formula::Kept
    std::vector<CalculationFormula> helpers;
    std::vector<CalculationInput> inputs;
    LimitSubstitution substitution = LimitSubstitution::kNone;
    std::optional<RoundingRule> rule;  ///< of the result; nothing leaves it as it is
    UncertaintyOptions uncertainty;    ///< its correlations are between the inputs, by position
    std::optional<ResultLimits> limits;
    /// Trials that show whether first order is enough; 0 for none, else 10,000 at least. Each computes all formulas
    /// that the result needs. With correlation coefficients their interval is the one that k covers of a normal
    /// distribution.
    std::size_t trials = 0;
    std::uint64_t seed = 1;
};

}  // namespace qel
