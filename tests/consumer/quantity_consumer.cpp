// What a program does that only computes results: no files, no drawing, no users.
#include <qellib10/quantity.h>

int main() {
    qel::FormulaScope scope;
    scope.Add("EP");
    scope.Add("SAMPLE");
    qel::FormulaError error;
    const auto formula = qel::Formula::Parse("EP * 2 / SAMPLE", scope, error);
    const double values[] = {10.0, 4.0};
    return formula && formula->Evaluate(values, error) == 5.0 ? 0 : 1;
}
