// A result next to its limit: whether it passes depends on the rule, so the report names it.
#include <qellib10/quantity.h>

#include <cstdio>

int main() {
    qel::Calculation calculation;
    calculation.result = {"CHLORIDE", "M / V", "mg/L"};
    calculation.inputs = {
        *qel::CalculationInput::Of("M", "24.6 mg", {*qel::UncertaintyComponent::Standard(0.2)}),
        *qel::CalculationInput::Of("V", "100.0 mL", {*qel::UncertaintyComponent::Triangular(0.1)}),
    };
    calculation.rule = qel::RoundingRule::ToPlaces(qel::DecimalRounding::kHalfEven, 0);
    calculation.limits.emplace();
    calculation.limits->upper = qel::Decimal(250);
    for (const auto& rule : {qel::DecisionRule::SimpleAcceptance(), qel::DecisionRule::GuardedAcceptance(),
                             qel::DecisionRule::GuardedAcceptance(2), qel::DecisionRule::GuardedRejection()}) {
        calculation.limits->rule = rule;
        const qel::Trace trace = qel::Trace::Of(calculation);
        if (!trace.Decision()) return std::puts("no decision"), 1;
        std::printf("%s, %s: %s, conforms with %.1f %%\n", trace.ResultWithUncertainty().c_str(), rule.Name().c_str(),
                    trace.Decision()->isPassed ? "passed" : "not passed",
                    100 * trace.Decision()->byUncertainty->conformity);
    }
}
