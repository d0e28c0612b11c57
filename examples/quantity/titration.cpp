// The content of an acid by titration, with a budget of its uncertainty. The burette is one source: what it adds to the
// volumes of sample and blank is the same, and cancels.
#include <qellib10/quantity.h>

#include <cstdio>

int main() {
    using qel::CalculationInput, qel::UncertaintyComponent;
    qel::Calculation calculation;
    calculation.result = {"CONTENT", "N * MW / SAMPLE", "%(m/m)"};
    calculation.helpers = {{"N", "(EP - BLANK) * TITRE", "mmol"}};
    calculation.inputs = {
        *CalculationInput::Of(
            "EP", "16.519 mL",
            {*UncertaintyComponent::Standard(0.012, "burette"), *UncertaintyComponent::Readings(0.009, 6)}),
        *CalculationInput::Of("BLANK", "0.025 mL", {*UncertaintyComponent::Standard(0.012, "burette")}),
        *CalculationInput::Of("TITRE", "0.1002 mol/L", {*UncertaintyComponent::Certificate(0.0002, 2)}),
        *CalculationInput::Of("MW", "90.078 g/mol"),
        *CalculationInput::Of("SAMPLE", "0.1512 g", {*UncertaintyComponent::Rectangular(0.0001)}),
    };
    calculation.rule = qel::RoundingRule::ToPlaces(qel::DecimalRounding::kHalfAwayFromZero, 1);
    const qel::Trace trace = qel::Trace::Of(calculation);
    if (trace.Fault() != nullptr) return std::puts(trace.Fault()->sentence.c_str()), 1;
    std::printf("%s\n", trace.ResultWithUncertainty().c_str());
    for (const qel::UncertaintyRow& row : trace.Result()->budget->rows)
        std::printf("  %-6s %-8s %6.1f %%\n", row.name.c_str(), row.source.c_str(), 100 * row.share);
}
