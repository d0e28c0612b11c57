// Water in three samples, of which one is below the limit of detection. A limit stays a limit, and a mean of limits is
// refused until somebody says what stands for them.
#include <qellib10/quantity.h>

#include <cstdio>

namespace {

void Show(const char* what, const qel::Calculation& calculation) {
    const qel::Trace trace = qel::Trace::Of(calculation);
    std::printf("%-22s %s\n", what,
                trace.Fault() != nullptr ? trace.Fault()->sentence.c_str() : trace.ResultText().c_str());
}

}  // namespace

int main() {
    using qel::CalculationInput;
    qel::Calculation calculation;
    calculation.inputs = {
        *CalculationInput::Of("W1", "0.35 mg"),      *CalculationInput::Of("W2", "< 0.20 mg"),
        *CalculationInput::Of("W3", "0.41 mg"),      *CalculationInput::Of("SAMPLE", "1.25 g"),
        *CalculationInput::Of("LOST", "missing mg"),
    };
    calculation.rule = qel::RoundingRule::ToPlaces(qel::DecimalRounding::kHalfEven, 2);
    calculation.result = {"WATER", "W2 / SAMPLE", "mg/g"};
    Show("second sample", calculation);
    calculation.result.formula = "(W1 - LOST) / SAMPLE";
    Show("without the blank", calculation);
    calculation.result.formula = "mean(W1, W2, W3) / SAMPLE";
    Show("mean", calculation);
    calculation.substitution = qel::LimitSubstitution::kHalf;
    Show("mean, half of limits", calculation);
}
