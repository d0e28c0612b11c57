#include "qellib10/quantity/result_decision.h"

#include <utility>

namespace qel {
namespace {

using Kind = ExactResult::Kind;

bool IsValid(const ResultLimits& limits) {
    if (!limits.lower && !limits.upper) return false;
    for (const std::optional<Decimal>& limit : {limits.lower, limits.upper})
        if (limit && !limit->IsFinite()) return false;
    return !limits.lower || !limits.upper || *limits.lower <= *limits.upper;
}

bool IsWithin(const Decimal& value, const ResultLimits& limits) {
    return (!limits.lower || value >= *limits.lower) && (!limits.upper || value <= *limits.upper);
}

// What the rule makes of the last value that a limit leaves possible: of "< 2.5" the number next to it. Where the rule
// keeps that many digits there are others between both, and the limit itself is rounded.
Decimal RoundedLast(const ExactResult& result, const RoundingRule& rule) {
    DecimalFlags flags;
    const Decimal& limit = result.value;
    const int lastPlace = limit.Magnitude() - Decimal::kDigits + 1;
    const Decimal step = Decimal::Scaled(result.kind == Kind::kBelow ? -1 : 1, lastPlace, flags);
    const Decimal last = rule.Round(Add(limit, step, flags)).rounded;
    return result.isIncluded || last.Exponent() <= lastPlace ? rule.Round(limit).rounded : last;
}

// Of "< x" all numbers below x, which conform where x does and nothing is to be above a limit.
void DecideLimit(const ExactResult& result, const ResultLimits& limits, ResultDecision& decision) {
    const bool isBelow = result.kind == Kind::kBelow;
    const std::optional<Decimal>&near = isBelow ? limits.upper : limits.lower,
          &far = isBelow ? limits.lower : limits.upper;
    // A possible number was rounded to it.
    const bool isIncluded = result.isIncluded || decision.isRounded;
    const auto isBeyond = [&](const Decimal& limit) {
        const auto order = decision.compared <=> limit;
        return (isBelow ? order < 0 : order > 0) || (order == 0 && !isIncluded);
    };
    const auto reaches = [&](const Decimal& limit) {
        const auto order = decision.compared <=> limit;
        return isBelow ? order <= 0 : order >= 0;
    };
    decision.isPassed = !far && near && reaches(*near);
    const bool isFailed = far && isBeyond(*far);
    decision.isUndecided = !decision.isPassed && !isFailed;
}

// Inwards of the limits by the guard band, or outwards where that is below 0.
ResultLimits Moved(ResultLimits limits, const Decimal& guardBand) {
    DecimalFlags ignored;
    if (limits.lower) limits.lower = Add(*limits.lower, guardBand, ignored);
    if (limits.upper) limits.upper = Subtract(*limits.upper, guardBand, ignored);
    return limits;
}

ToleranceLimits InDouble(const ResultLimits& limits) {
    const auto nearest = [](const std::optional<Decimal>& limit) {
        return limit ? std::optional(limit->ToDouble()) : std::nullopt;
    };
    return {nearest(limits.lower), nearest(limits.upper)};
}

}  // namespace

std::optional<ResultDecision> DecideResult(const ExactResult& result, const std::optional<RoundingRule>& rule,
                                           const std::optional<UncertaintyBudget>& budget, const ResultLimits& limits,
                                           std::string& reason) {
    const auto refuse = [&](const char* why) {
        reason = why;
        return std::optional<ResultDecision>();
    };
    if (!IsValid(limits)) return refuse("the limits are missing, not finite or the wrong way round");
    if (!result.IsNumberOrLimit()) return refuse("the result is no number and no limit");
    const bool isSimple = limits.rule.RuleKind() == DecisionRule::Kind::kSimpleAcceptance;
    if (!isSimple && !budget) return refuse("a guard band needs the uncertainty of the result");
    ResultDecision decision;
    decision.compared = result.value;
    const std::optional<Decimal> expanded =
        budget ? std::optional(Decimal::OfDouble(budget->expandedUncertainty)) : std::nullopt;
    if (limits.comparesRounded && rule) {
        const Decimal rounded =
            result.IsLimit() ? RoundedLast(result, *rule) : rule->Round(result.value, expanded).rounded;
        decision.isRounded = rounded.IsFinite();
        if (decision.isRounded) decision.compared = rounded;
    }
    if (result.IsLimit()) {
        DecideLimit(result, limits, decision);
        return decision;
    }
    if (budget) {
        UncertaintyBudget compared = *budget;
        compared.value = result.value.ToDouble();  // the best estimate: rounding moves no probability
        decision.byUncertainty = DecideLimits(compared, InDouble(limits), limits.rule);
        if (!decision.byUncertainty) return refuse("the limits or the guard band are not valid");
    }
    DecimalFlags ignored;
    Decimal guardBand =
        Multiply(expanded.value_or(Decimal()), Decimal::OfDouble(limits.rule.GuardBandFactor()), ignored);
    if (limits.rule.RuleKind() == DecisionRule::Kind::kGuardedRejection) guardBand = -guardBand;
    decision.isPassed = IsWithin(decision.compared, Moved(limits, guardBand));
    const Decimal reach = isSimple ? expanded.value_or(Decimal()) : guardBand.Absolute();
    decision.isUndecided =
        IsWithin(decision.compared, Moved(limits, -reach)) && !IsWithin(decision.compared, Moved(limits, reach));
    return decision;
}

}  // namespace qel
