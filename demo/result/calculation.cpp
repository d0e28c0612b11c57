#include "demo/result/calculation.h"

#include <cmath>

#include "demo/result/result_trace.h"
#include "demo/support/failure.h"

namespace titration {
namespace {

constexpr double kLargestResult = 1e15;  // above this, a double has no decimal places left to round to

CString Text(const std::string& text) { return CString(text.c_str()); }

void Add(CCalcVariableList& list, const std::string& name, double value) {
    CCalcVariable variable;
    variable.InitParameter();
    variable.m_szName = Text(name);
    variable.m_dValue = value;
    list.AddVariableData(variable);
}

CCalcVariableList Variables(const Settings& settings, double endPointVolume) {
    CCalcVariableList list;
    if (settings.variableDigits >= 0) {
        list.SetRoundUpFlag(1);
        list.SetRoundUpDigit(settings.variableDigits);
    }
    for (const NamedValue& variable : settings.variables) Add(list, variable.name, variable.value);
    Add(list, settings.endPoint, endPointVolume);
    return list;
}

// After the calculator has refused the formula.
Failure Refusal(const std::string& formula) {
    const qel::Failure why = qel::LastFailure();
    const std::string sentence = qel::FormulaSentence(formula, why);
    switch (why.kind) {
        case qel::FailureKind::kUnknownName:
            return Failure(sentence + "; add it to [variables]");
        case qel::FailureKind::kZeroDivisor:
            return Failure(sentence + "; see the values in [variables]");
        default:
            return Failure(sentence + "; expected names, numbers, + - * / and brackets");
    }
}

std::vector<std::string> UsedNames(const CCalcVariableList& list) {
    std::vector<std::string> names;
    CCalcVariable variable;
    for (int i = 0; list.GetUseVariableData(i, &variable) != 0; ++i) names.emplace_back(variable.m_szName);
    return names;
}

Result Compute(const Settings& settings, const qel::CurveResult& endPoint) {
    CQWCalc calculator;
    calculator.SetCalcVarList(Variables(settings, *endPoint.value));
    const CString formula = Text(settings.formula);
    if (calculator.CheckCalcFormula(Text(settings.name), formula) == 0) throw Refusal(settings.formula);
    double value = 0;
    if (calculator.ConcCalculation(formula, &value) == 0) throw Refusal(settings.formula);
    if (!(std::abs(value) < kLargestResult))
        throw Failure("the result is too large to be written; expected one below 1e15, see the values in [variables]");

    Result result;
    result.computed = value;
    result.value = CQVariant::fround(value, settings.digits, 0);
    result.variables = calculator.GetCalcVarList();
    result.trace = TraceOf(settings, result.variables, endPoint);
    result.used = UsedNames(result.variables);
    result.name = settings.name;
    result.text = CQVariant::DoubleToStr(result.value, settings.digits, 0);
    result.unit = settings.unit;
    Add(result.variables, settings.name, result.value);
    return result;
}

}  // namespace

std::string Shown(const Result& result) { return result.name + " = " + result.text + " " + result.unit; }

Result Calculate(const Settings& settings, const qel::CurveResult& endPoint) {
    return About(settings.formulaPlace, [&] { return Compute(settings, endPoint); });
}

}  // namespace titration
