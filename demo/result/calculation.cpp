#include "demo/result/calculation.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "demo/support/failure.h"
#include "demo/support/text_file.h"

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

// The check returns only yes or no. A formula with one of its names alone is checked to find the unknown one.
std::optional<std::string> UnknownName(const std::string& formula, CQWCalc& calculator) {
    constexpr std::string_view kOperators = "()*+-/=";
    for (std::size_t at = 0; at < formula.size();) {
        const std::size_t end = std::min(formula.find_first_of(kOperators, at), formula.size());
        const std::string operand(Trimmed(std::string_view(formula).substr(at, end - at)));
        const bool hasName = operand.find_first_not_of("0123456789. \t") != std::string::npos;
        if (hasName && calculator.CheckCalcFormula(CString(), Text(operand)) == 0) return operand;
        at = end + 1;
    }
    return std::nullopt;
}

void RequireValid(const Settings& settings, CQWCalc& calculator) {
    if (calculator.CheckCalcFormula(Text(settings.name), Text(settings.formula)) != 0) return;
    const auto unknown = UnknownName(settings.formula, calculator);
    if (unknown)
        throw Failure("the formula names \"" + *unknown + "\", which is not a variable; add it to [variables]");
    throw Failure(
        "the formula \"" + settings.formula +
        "\" is not valid: its syntax, a division by zero, or over 255 bytes; expected names, numbers, + - * / "
        "and brackets");
}

std::vector<std::string> UsedNames(const CCalcVariableList& list) {
    std::vector<std::string> names;
    CCalcVariable variable;
    for (int i = 0; list.GetUseVariableData(i, &variable) != 0; ++i) names.emplace_back(variable.m_szName);
    return names;
}

Result Compute(const Settings& settings, const CCalcVariableList& variables) {
    CQWCalc calculator;
    calculator.SetCalcVarList(variables);
    RequireValid(settings, calculator);

    double value = 0;
    if (calculator.ConcCalculation(Text(settings.formula), &value) == 0)
        throw Failure("the formula divides by zero; see the values in [variables]");
    if (!(std::abs(value) < kLargestResult))
        throw Failure("the result is too large to be written; expected one below 1e15, see the values in [variables]");

    Result result;
    result.computed = value;
    result.value = CQVariant::fround(value, settings.digits, 0);
    result.variables = calculator.GetCalcVarList();
    result.used = UsedNames(result.variables);
    result.name = settings.name;
    result.text = CQVariant::DoubleToStr(result.value, settings.digits, 0);
    result.unit = settings.unit;
    Add(result.variables, settings.name, result.value);
    return result;
}

}  // namespace

std::string Shown(const Result& result) { return result.name + " = " + result.text + " " + result.unit; }

Result Calculate(const Settings& settings, double endPointVolume) {
    return About(settings.formulaPlace, [&] { return Compute(settings, Variables(settings, endPointVolume)); });
}

}  // namespace titration
