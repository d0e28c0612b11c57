// The concentration of a sodium hydroxide solution, by potassium hydrogen phthalate that was weighed.
#include <qellib10/quantity.h>

#include <cstdio>

int main() {
    using qel::CalculationInput, qel::UncertaintyComponent;
    qel::Calculation calculation;
    calculation.result = {"C", "M * P / (MW * V)", "mol/L"};
    calculation.inputs = {
        *CalculationInput::Of("M", "388.8 mg", {*UncertaintyComponent::Standard(0.13)}, "balance 3"),
        *CalculationInput::Of("P", "1.0000", {*UncertaintyComponent::Rectangular(0.0005)}, "certificate of the lot"),
        *CalculationInput::Of("MW", "204.2212 g/mol", {*UncertaintyComponent::Standard(0.0038)}, "atomic masses"),
        *CalculationInput::Of("V", "18.64 mL", {*UncertaintyComponent::Standard(0.013)}, "burette 2"),
    };
    calculation.rule = qel::RoundingRule::ToUncertainty(qel::DecimalRounding::kHalfEven, 2);
    const qel::Trace trace = qel::Trace::Of(calculation);
    if (trace.Fault() != nullptr) return std::puts(trace.Fault()->sentence.c_str()), 1;
    std::printf("%s = %s\n", calculation.result.name.c_str(), trace.ResultWithUncertainty().c_str());
    std::printf("all digits: %s\n", trace.Result()->result->Text().c_str());
}
