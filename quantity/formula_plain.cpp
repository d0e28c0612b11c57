#include "qellib10/quantity/double_arithmetic.h"
#include "qellib10/quantity/formula_constants.h"
#include "qellib10/quantity/formula_double.h"
#include "qellib10/quantity/formula_machine.h"

namespace qel {

double ConstantValue(std::size_t index) {
    static const std::vector<double> kValues = [] {
        std::vector<double> values;
        DecimalFlags ignored;
        for (const FormulaConstant& constant : FormulaConstants())
            values.push_back(Decimal::OfText(constant.value, ignored).ToDouble());
        return values;
    }();
    return kValues[index];
}

double Rounded(double value, const RoundingRule& rule) {
    return rule.Round(Decimal::OfDouble(value)).rounded.ToDouble();
}

std::optional<double> EvaluatePlainly(const FormulaProgram& program, std::span<const double> values,
                                      FormulaError& error) {
    try {
        DoubleArithmetic arithmetic(program, values);
        return FormulaMachine(program, arithmetic).Run();
    } catch (const FormulaError& failure) {
        error = failure;
        return {};
    }
}

}  // namespace qel
