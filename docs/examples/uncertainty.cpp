// A cadmium standard: metal is weighed, dissolved and filled up to 100 mL. Its uncertainty, whether first order is
// enough for it, and whether it is within its limits.
#include <qellib10/quantity.h>

#include <cstdio>

using Component = qel::UncertaintyComponent;

int main() {
    qel::FormulaScope scope;
    for (const char* name : {"MASS", "PURITY", "VOLUME"}) scope.Add(name);
    const char* const text = "1000 * MASS * PURITY / VOLUME";
    qel::FormulaError error;
    const auto formula = qel::Formula::Parse(text, scope, error);
    const auto mass = Component::Standard(0.05, "balance");
    const auto purity = Component::Rectangular(0.0001);
    const auto flask = Component::Triangular(0.1), filling = Component::Readings(0.02, 10),
               heat = Component::Rectangular(0.084);
    if (!formula || !mass || !purity || !flask || !filling || !heat) return 1;
    const std::vector<qel::UncertainInput> inputs = {
        {"MASS", 100.28, {*mass}}, {"PURITY", 0.9999, {*purity}}, {"VOLUME", 100.0, {*flask, *filling, *heat}}};

    const auto budget = qel::PropagateUncertainty(*formula, inputs, {}, error);
    if (!budget) {
        std::puts(error.Text(text).c_str());
        return 1;
    }
    for (const qel::UncertaintyRow& row : budget->rows)
        std::printf("%-6s u %.5f, sensitivity %8.3f, %4.1f %%\n", row.name.c_str(), row.uncertainty, row.sensitivity,
                    100 * row.share);
    std::printf("%.1f mg/L, u %.2f, k %.2f, U %.1f\n", budget->value, budget->uncertainty, budget->coverageFactor,
                budget->expandedUncertainty);

    qel::MonteCarloOptions options;
    options.threads = 2;
    const auto trials = qel::PropagateDistributions(*formula, inputs, options, error);
    if (!trials) return 1;
    const auto check = qel::ValidateFirstOrder(*budget, *trials);
    std::printf("trials: %.1f to %.1f; first order is %s\n", trials->symmetric.low, trials->symmetric.high,
                check && check->isEnough ? "enough" : "not enough");

    for (const auto& rule : {qel::DecisionRule::SimpleAcceptance(), qel::DecisionRule::GuardedAcceptance()}) {
        const auto decision = qel::DecideLimits(*budget, {998.0, 1004.0}, rule);
        if (!decision) return 1;
        std::printf("%s: %s%s, conformity %.1f %%\n", rule.Name().c_str(), decision->isPassed ? "pass" : "fail",
                    decision->isUndecided ? " by the rule alone" : "", 100 * decision->conformity);
    }
    return 0;
}
