#include "qellib10/quantity/limit_decision.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "qellib10/base/read_number.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/statistics/student.h"
#include "qellib10/quantity/name_table.h"

namespace qel {
namespace {

using Kind = DecisionRule::Kind;

constexpr std::array kKinds = {
    Named{Kind::kSimpleAcceptance, "simple acceptance (shared risk)"},
    Named{Kind::kGuardedAcceptance, "guarded acceptance"},
    Named{Kind::kGuardedRejection, "guarded rejection"},
};
constexpr std::string_view kBeforeFactor = ", w = ", kAfterFactor = " U";

bool IsFactor(double factor) { return std::isfinite(factor) && factor >= 0.0; }

const char* Objection(const UncertaintyBudget& result, const ToleranceLimits& limits, const DecisionRule& rule) {
    const auto& [lower, upper] = limits;
    if (!lower && !upper) return "no limit";
    if ((lower && !std::isfinite(*lower)) || (upper && !std::isfinite(*upper))) return "a limit that is not finite";
    if (lower && upper && *lower > *upper) return "a lower limit above the upper one";
    if (!IsFactor(rule.GuardBandFactor())) return "a guard band factor that is negative or not finite";
    if (!std::isfinite(result.value)) return "a value that is not finite";
    if (!IsFactor(result.uncertainty) || !IsFactor(result.expandedUncertainty))
        return "an uncertainty that is negative or not finite";
    if (!std::isfinite(rule.GuardBandFactor() * result.expandedUncertainty)) return "a guard band that is not finite";
    if (result.degreesOfFreedom && !(*result.degreesOfFreedom > 0.0)) return "degrees of freedom that are not above 0";
    return nullptr;
}

bool IsWithin(double value, const ToleranceLimits& limits) {
    return (!limits.lower || value >= *limits.lower) && (!limits.upper || value <= *limits.upper);
}

ToleranceLimits MovedInwards(const ToleranceLimits& limits, double distance) {
    ToleranceLimits moved = limits;
    if (moved.lower) *moved.lower += distance;
    if (moved.upper) *moved.upper -= distance;
    return moved;
}

double ProbabilityOfConformity(const UncertaintyBudget& result, const ToleranceLimits& limits) {
    if (result.uncertainty == 0.0) return IsWithin(result.value, limits) ? 1.0 : 0.0;
    const double degrees = result.degreesOfFreedom.value_or(UncertaintyComponent::kInfinite);
    const double low = limits.lower ? (*limits.lower - result.value) / result.uncertainty : -HUGE_VAL;
    const double high = limits.upper ? (*limits.upper - result.value) / result.uncertainty : HUGE_VAL;
    // In the tail on this side of 1, where no digits are lost.
    if (low > 0.0) return StudentDistribution(-low, degrees) - StudentDistribution(-high, degrees);
    return StudentDistribution(high, degrees) - StudentDistribution(low, degrees);
}

}  // namespace

DecisionRule DecisionRule::SimpleAcceptance() { return {Kind::kSimpleAcceptance, 0.0}; }
DecisionRule DecisionRule::GuardedAcceptance(double r) { return {Kind::kGuardedAcceptance, r}; }
DecisionRule DecisionRule::GuardedRejection(double r) { return {Kind::kGuardedRejection, r}; }

std::string DecisionRule::Name() const {
    std::string name(NameIn(kKinds, m_kind));
    if (m_kind == Kind::kSimpleAcceptance) return name;
    return name.append(kBeforeFactor).append(NumberText(m_factor).View()).append(kAfterFactor);
}

std::optional<DecisionRule> DecisionRule::OfName(std::string_view name) {
    const std::optional<Kind> kind = TakeNameFrom(kKinds, name);
    if (kind == Kind::kSimpleAcceptance) return name.empty() ? std::optional(SimpleAcceptance()) : std::nullopt;
    if (!kind || !name.starts_with(kBeforeFactor) || !name.ends_with(kAfterFactor)) return {};
    name.remove_prefix(kBeforeFactor.size());
    name.remove_suffix(std::min(kAfterFactor.size(), name.size()));
    const std::optional<double> factor = ReadNumber(name);
    return factor && IsFactor(*factor) ? std::optional(DecisionRule(*kind, *factor)) : std::nullopt;
}

std::optional<LimitDecision> DecideLimits(const UncertaintyBudget& result, const ToleranceLimits& limits,
                                          const DecisionRule& rule) {
    Operation operation("qel::DecideLimits");
    if (const char* const objection = Objection(result, limits, rule)) {
        operation.Failed(FailureKind::kArgument, "", objection);
        return {};
    }
    LimitDecision decision;
    decision.guardBand = rule.GuardBandFactor() * result.expandedUncertainty;
    const bool isRejection = rule.RuleKind() == Kind::kGuardedRejection;
    decision.acceptance = MovedInwards(limits, isRejection ? -decision.guardBand : decision.guardBand);
    decision.isPassed = IsWithin(result.value, decision.acceptance);
    const bool isSimple = rule.RuleKind() == Kind::kSimpleAcceptance;
    const double reach = isSimple ? result.expandedUncertainty : decision.guardBand;
    decision.isUndecided =
        IsWithin(result.value, MovedInwards(limits, -reach)) && !IsWithin(result.value, MovedInwards(limits, reach));
    decision.conformity = ProbabilityOfConformity(result, limits);
    operation.Ended(1);
    return decision;
}

}  // namespace qel
