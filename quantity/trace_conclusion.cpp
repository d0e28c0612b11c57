#include "qellib10/quantity/trace_conclusion.h"

#include <algorithm>
#include <string>

#include "qellib10/platform/statistics/student.h"

namespace qel {

void TraceConclusion::Draw(const QuantityFormula& result, const TraceUncertainty& uncertainty, unsigned threads) {
    TryOut(result, uncertainty, threads);
    RemarkKink();
    Round();
    Decide();
}

void TraceConclusion::Round() {
    const std::optional<RoundingRule>& rule = m_trace.m_calculation.rule;
    std::optional<Decimal> expanded;
    if (m_part.budget) expanded = Decimal::OfDouble(m_part.budget->expandedUncertainty);
    if (rule) m_trace.m_rounded = m_part.result->Rounded(*rule, expanded);
    if (rule && m_part.result->IsNumberOrLimit() && !m_trace.m_rounded)
        m_trace.m_remarks.push_back(
            "not rounded: the rule needs more than 34 digits, or an uncertainty that is not there");
    const auto hasRounded = [](const TracePart& each) {
        return std::ranges::any_of(each.steps, [](const ExactStep& step) { return step.operation == "round"; });
    };
    if (m_trace.m_rounded && m_trace.m_rounded->IsChanged() && std::ranges::any_of(m_trace.m_parts, hasRounded))
        m_trace.m_remarks.push_back("rounded twice: within a formula, and by the rule");
    if (expanded) m_trace.m_roundedUncertainty = RoundedUncertainty(*expanded);
}

// To two digits, and no finer than the result, unless nothing would be left.
std::optional<Decimal> TraceConclusion::RoundedUncertainty(const Decimal& expanded) const {
    constexpr DecimalRounding kHalfAway = DecimalRounding::kHalfAwayFromZero;
    const std::optional<RoundingRule>& rule = m_trace.m_calculation.rule;
    const int digits = rule ? rule->UncertaintyDigits().value_or(2) : 2;
    const Decimal rounded = RoundingRule::ToDigits(kHalfAway, digits).Round(expanded).rounded;
    if (!rounded.IsFinite()) return {};
    if (!m_trace.m_rounded || m_trace.m_rounded->rounded.Exponent() <= rounded.Exponent()) return rounded;
    const int places = -m_trace.m_rounded->rounded.Exponent();
    const Decimal coarser = RoundingRule::ToPlaces(kHalfAway, places).Round(expanded).rounded;
    return coarser.IsFinite() && !coarser.IsZero() ? coarser : rounded;
}

void TraceConclusion::Decide() {
    const Calculation& calculation = m_trace.m_calculation;
    if (!calculation.limits) return;
    std::string reason;
    m_trace.m_decision = DecideResult(*m_part.result, calculation.rule, m_part.budget, *calculation.limits, reason);
    if (!m_trace.m_decision) {
        m_trace.m_remarks.push_back("no decision: " + reason);
        return;
    }
    if (!m_trace.m_decision->isRounded) return;
    const bool isSimple = calculation.limits->rule.RuleKind() == DecisionRule::Kind::kSimpleAcceptance;
    const auto unrounded = DecideResult(*m_part.result, {}, m_part.budget, *calculation.limits, reason);
    if (unrounded && unrounded->isPassed != m_trace.m_decision->isPassed)
        m_trace.m_remarks.push_back(std::string("rounding decides: the unrounded value") +
                                    (isSimple ? "" : ", which a guard band is for,") + " has " +
                                    (unrounded->isPassed ? "passed" : "not passed"));
}

void TraceConclusion::TryOut(const QuantityFormula& result, const TraceUncertainty& uncertainty, unsigned threads) {
    const Calculation& calculation = m_trace.m_calculation;
    if (calculation.trials == 0) return;
    const auto refuse = [&](const std::string& why) { m_trace.m_remarks.push_back("no trials: " + why); };
    if (!m_part.budget) return refuse("the result has no uncertainty to first order");
    MonteCarloOptions options;
    options.trials = calculation.trials;
    options.seed = calculation.seed;
    options.threads = threads;
    // Correlation coefficients leave the degrees of freedom undefined; the trials are normal then, and so is what k
    // covers.
    const double normal =
        1.0 - 2.0 * StudentDistribution(-m_part.budget->coverageFactor, UncertaintyComponent::kInfinite);
    options.coverageProbability = m_part.budget->coverageProbability.value_or(normal);
    options.correlations = calculation.uncertainty.correlations;
    FormulaError error;
    m_trace.m_trials = uncertainty.Try(result, options, error);
    if (!m_trace.m_trials) return refuse(error.Text(m_part.formula));
    m_trace.m_firstOrder = ValidateFirstOrder(*m_part.budget, *m_trace.m_trials);
}

void TraceConclusion::RemarkKink() {
    const bool isEnough = m_trace.m_firstOrder && m_trace.m_firstOrder->isEnough;
    if (!m_part.budget || !m_part.budget->isAtKink || isEnough) return;
    m_trace.m_remarks.push_back("first order is not enough for the uncertainty of " + m_part.name +
                                ": within it the formula takes another branch, bends or steps");
}

}  // namespace qel
