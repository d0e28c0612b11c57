#pragma once

#include <optional>
#include <string>

#include "qellib10/platform/export.h"
#include "qellib10/quantity/exact_result.h"
#include "qellib10/quantity/limit_decision.h"
#include "qellib10/quantity/uncertainty_budget.h"

namespace qel {

/// The limits of a result, in its unit, and how it is decided.
struct ResultLimits {
    std::optional<Decimal> lower, upper;  ///< the limits themselves conform
    DecisionRule rule = DecisionRule::SimpleAcceptance();
    /// The rounded value is compared, as pharmacopoeias demand (E29's rounding method); else all digits are (its
    /// absolute method). Without a rule of rounding all digits are compared in both cases.
    bool comparesRounded = true;

    friend bool operator==(const ResultLimits&, const ResultLimits&) = default;
};

/// What became of a result at its limits.
struct ResultDecision {
    bool isPassed = false;
    /// The uncertainty reaches over a limit, so that the rule alone decides; or the result is itself a limit, and both
    /// is possible, in which case it has not passed.
    bool isUndecided = false;
    bool isRounded = false;  ///< the rounded value was compared
    /// Of a limit the last value that it leaves possible, rounded as any value: of "< 0.161" 0.16, though the limit
    /// itself is reported as "< 0.17", so that it stays true.
    Decimal compared;
    /// Guard band and probability, of the value with all its digits (JCGM 106); nothing without uncertainties.
    std::optional<LimitDecision> byUncertainty;
};

/// Compares exact decimals, so that a value next to a limit is on the right side of it.
/// @param result a number or a limit
/// @param rule nothing where values are not rounded; the value is compared unrounded where the rule gives no number
/// @param budget nothing where no uncertainty is known: then only simple acceptance decides
/// @return nothing where it cannot be decided or the limits are not valid; @p reason then says why
QELLIB10_API std::optional<ResultDecision> DecideResult(const ExactResult& result,
                                                        const std::optional<RoundingRule>& rule,
                                                        const std::optional<UncertaintyBudget>& budget,
                                                        const ResultLimits& limits, std::string& reason);

}  // namespace qel
