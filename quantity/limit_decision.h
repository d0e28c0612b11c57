#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/quantity/uncertainty_budget.h"

namespace qel {

/// What a value must not be below or above, in its unit; one of them at least. The limits themselves conform.
struct ToleranceLimits {
    std::optional<double> lower, upper;  ///< finite, and lower not above upper

    friend bool operator==(const ToleranceLimits&, const ToleranceLimits&) = default;
};

/// How a limit is decided where the uncertainty reaches over it (JCGM 106, clause 8). A report that only says "pass"
/// does not say who bears the risk of being wrong; with the name of the rule it does.
///
///     simple acceptance     the measured value itself is compared; the risk is shared
///     guarded acceptance    passes what is inside by w or more: few wrong passes
///     guarded rejection     fails what is outside by more than w: few wrong failures
///
/// The guard band w is r times the expanded uncertainty.
class QELLIB10_API DecisionRule {
public:
    enum class Kind { kSimpleAcceptance, kGuardedAcceptance, kGuardedRejection };

    static DecisionRule SimpleAcceptance();
    /// @param r 0 or more
    static DecisionRule GuardedAcceptance(double r = 1.0);
    static DecisionRule GuardedRejection(double r = 1.0);

    Kind RuleKind() const noexcept { return m_kind; }
    double GuardBandFactor() const noexcept { return m_factor; }  ///< r; 0 of simple acceptance

    /// "guarded acceptance, w = 0.5 U", for reports and files; OfName reads it.
    std::string Name() const;
    static std::optional<DecisionRule> OfName(std::string_view name);

    friend bool operator==(const DecisionRule&, const DecisionRule&) = default;

private:
    DecisionRule(Kind kind, double factor) : m_kind(kind), m_factor(factor) {}

    Kind m_kind;
    double m_factor;
};

/// What became of a result at its limits, and with which numbers.
struct LimitDecision {
    bool isPassed = false;
    /// A limit is within the guard band around the value (for simple acceptance within U): neither conformity nor
    /// nonconformity is shown, and the rule alone decides.
    bool isUndecided = false;
    double guardBand = 0.0;      ///< w, in the unit of the value
    ToleranceLimits acceptance;  ///< what the value was compared with; where guard bands meet, lower is above upper
    double conformity = 0.0;     ///< probability that the true value is within the tolerance limits (JCGM 106, 7)

    friend bool operator==(const LimitDecision&, const LimitDecision&) = default;
};

/// Decides by value, U, and for the probability of conformity by u and the degrees of freedom (Student's distribution;
/// the normal one where they are infinite or not defined).
/// @return nothing where no limit is given, one is not finite, the limits are the wrong way round, r is negative or not
/// finite, or a number of @p result is not finite; LastFailure says which
QELLIB10_API std::optional<LimitDecision> DecideLimits(const UncertaintyBudget& result, const ToleranceLimits& limits,
                                                       const DecisionRule& rule);

}  // namespace qel
