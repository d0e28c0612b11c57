// qel calc: checks a formula and computes it with named values.
#include <charconv>
#include <cmath>

#ifdef QEL_WITH_QUANTITY
#include "calc_exact.h"
#endif
#include "tool.h"
#include "variables.h"

namespace tool {
namespace {

constexpr double kMaxWithPlaces = 1e15;  // above this, a double has no decimal places to round to

struct Options {
    std::string formula, archive;
    std::vector<std::string> values;
    int digits = -1;
    bool onlyCheck = false, json = false;
#ifdef QEL_WITH_QUANTITY
    ExactCalculation exact;
#endif
};

// Formulas ignore the case of names, so a value replaces one of the archive in any spelling.
void Assign(CCalcVariableList& list, const std::string& assignment) {
    const std::size_t equals = assignment.find('=');
    const CString name = ExactText(assignment.substr(0, equals));
    if (equals == std::string::npos || name.IsEmpty() || name.FindOneOf(" \t()*+-/") >= 0)
        throw CLI::ValidationError("\"" + assignment + "\" is not NAME=VALUE");
    const std::optional<double> value = ParseNumber(std::string_view(assignment).substr(equals + 1));
    if (!value) throw CLI::ValidationError("\"" + assignment + "\" has no number");
    CCalcVariable variable;
    for (int i = 0; list.GetVariableData(i, &variable) != 0; ++i) {
        if (variable.m_szName.CompareNoCase(name) != 0) continue;
        variable.m_dValue = *value;
        list.SetVariableData(i, variable);
        return;
    }
    variable.InitParameter();
    variable.m_szName = name;
    variable.m_dValue = *value;
    list.AddVariableData(variable);
}

// After the calculator has refused the formula.
Failure Refusal(const CString& formula) {
    return Failure(Shown(Utf8(qel::FormulaSentence(formula.View(), qel::LastFailure()))));
}

std::string ResultText(double value, int digits) {
    if (digits >= 0 && std::abs(value) < kMaxWithPlaces)
        return std::string(CQVariant::DoubleToStr(CQVariant::fround(value, digits, 0), digits, 0));
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

CCalcVariableList Used(const CQWCalc& calculator) {
    CCalcVariableList used;
    CCalcVariable variable;
    for (int i = 0; calculator.GetCalcVarList().GetUseVariableData(i, &variable) != 0; ++i)
        used.AddVariableData(variable);
    return used;
}

void Calculate(const Options& options) {
    CCalcVariableList list;
    if (!options.archive.empty()) list = ReadVariables(options.archive, false);
    list.ClearViewFlag();
    for (const std::string& assignment : options.values) Assign(list, assignment);
    CQWCalc calculator;
    calculator.SetCalcVarList(list);
    const CString formula = ExactText(options.formula);
    if (calculator.CheckCalcFormula("", formula) == 0) throw Refusal(formula);
    Json json{{"formula", options.formula}, {"used", VariablesJson(Used(calculator))["variables"]}};
    std::string text = VariablesText(Used(calculator));
    if (!options.onlyCheck) {
        double result = 0;
        if (calculator.ConcCalculation(formula, &result) == 0) throw Refusal(formula);
        if (!std::isfinite(result)) throw Failure("the result is too large");
        text = ResultText(result, options.digits);
        json["result"] = result;
        json["text"] = text;
        text += '\n';
    }
    options.json ? Print(json) : Print(text);
}

}  // namespace

void AddCalc(CLI::App& app, Status&) {
    CLI::App* const command = app.add_subcommand("calc", "Check a formula and compute it over named values");
    const auto options = std::make_shared<Options>();
    CLI::Option* const formula =
        command->add_option("FORMULA", options->formula, "Such as \"(EP - BLANK) * 0.1 / SAMPLE\"");
    command->add_option("NAME=VALUE", options->values, "Values; they replace those of --from");
    command->add_option("--from", options->archive, "Archived list whose variables have their values")
        ->type_name("FILE");
    CLI::Option* const digits =
        command->add_option("--digits", options->digits, "Decimal places that the result is rounded to");
    digits->transform(WholeNumber(0, 15))->type_name("N");
    command->add_flag("--check", options->onlyCheck, "Only check, and list the variables that the formula uses")
        ->excludes(digits);
    command->add_flag("--json", options->json, "Write JSON");
    command->footer("Put -- before a formula that starts with a minus sign: qel calc -- -X*2 X=3");
#ifdef QEL_WITH_QUANTITY
    options->exact.AddTo(*command);
#endif
    command->callback([options, formula] {
#ifdef QEL_WITH_QUANTITY
        if (options->exact.IsWanted()) {
            if (options->exact.tracePath.empty() && formula->empty()) throw CLI::RequiredError("FORMULA");
            return options->exact.Run(options->formula, options->archive, options->values, options->json);
        }
#endif
        if (formula->empty()) throw CLI::RequiredError("FORMULA");
        Calculate(*options);
    });
}

}  // namespace tool
