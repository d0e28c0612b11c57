// The check of results with a trace.
#include <qellib10/quantity.h>

#include "selftest_checks.h"

namespace tool {
namespace {

qel::Calculation Acidity() {
    using qel::CalculationInput, qel::UncertaintyComponent;
    qel::Calculation calculation;
    calculation.result = {"ACIDITY", "(EP - BLANK) * C * M / SAMPLE", "g/L"};
    calculation.inputs = {
        *CalculationInput::Of("EP", "16.519 mL", {*UncertaintyComponent::Rectangular(0.02)}),
        *CalculationInput::Of("BLANK", "0.03 mL", {*UncertaintyComponent::Standard(0.005)}),
        *CalculationInput::Of("C", "100.23 mmol/L", {*UncertaintyComponent::Certificate(0.2, 2)}),
        *CalculationInput::Of("M", "60.052 g/mol"),
        *CalculationInput::Of("SAMPLE", "2 mL", {*UncertaintyComponent::Readings(0.009, 6)}),
    };
    calculation.rule = qel::RoundingRule::ToUncertainty(qel::DecimalRounding::kHalfEven, 2);
    calculation.limits = {qel::Decimal(45), qel::Decimal(55), qel::DecisionRule::GuardedAcceptance()};
    calculation.trials = 20'000;
    return calculation;
}

// The result, and whether its trace is computed again with the same digits, and a changed digit is noticed.
std::string Traced() {
    const qel::Trace trace = qel::Trace::Of(Acidity());
    if (trace.Fault() != nullptr) return trace.Fault()->sentence;
    std::string changed = trace.Json(), error;
    const auto again = qel::CheckTrace(changed, error);
    const std::size_t digit = changed.find("16.519");
    if (!again || digit == std::string::npos) throw Failure("the trace cannot be read: " + error);
    changed[digit] = '2';
    const auto different = qel::CheckTrace(changed, error);
    return trace.ResultWithUncertainty() +
           (!trace.Decision()            ? ", not decided"
            : trace.Decision()->isPassed ? ", passed"
                                         : ", not passed") +
           (again->differences.empty() ? ", the same again" : ", " + again->differences.front()) +
           (!different || !different->differences.empty() ? ", a change noticed" : ", a change not noticed");
}

}  // namespace

void AddTraceCheck(std::vector<SelfCheck>& checks) {
    checks.push_back({"a result with units, uncertainty and trace",
                      "49.62 g/L ± 0.25 g/L (k = 2.284), passed, the same again, a change noticed", Traced});
}

}  // namespace tool
