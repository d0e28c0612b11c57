// Three determinations of one sample: the formula that the user wrote is checked, evaluated for each, and the mean
// taken without the errors of binary numbers.
#include <qellib10/qellib10.h>

#include <cstdio>
#include <utility>

namespace {

constexpr const char* kFormula = "(EP - BLANK) * CONC * F / SAMPLE";

CCalcVariable Named(const char* name, double value) {
    CCalcVariable variable;
    variable.m_szName = name;
    variable.m_dValue = value;
    return variable;
}

}  // namespace

int main() {
    CCalcVariableList list;
    list.SetRoundUpFlag(1);  // what enters and leaves the list has four places
    list.SetRoundUpDigit(4);
    for (const auto& [name, value] : {std::pair("EP", 0.0), std::pair("BLANK", 0.03), std::pair("CONC", 0.1),
                                      std::pair("F", 1.006), std::pair("SAMPLE", 2.0), std::pair("TEMP", 25.0)})
        list.AddVariableData(Named(name, value));

    CQWCalc calculator;
    calculator.SetCalcVarList(list);
    if (!calculator.CheckCalcFormula("", kFormula)) return 1;
    CCalcVariable used;
    for (int i = 0; calculator.GetCalcVarList().GetUseVariableData(i, &used); ++i)
        std::printf("%s%s", i == 0 ? "uses " : ", ", static_cast<const char*>(used.m_szName));
    std::puts("");

    CBCD sum;
    for (const double endPoint : {16.519, 16.524, 16.4985}) {
        list.SetVariableValue("EP", endPoint);
        calculator.SetCalcVarList(list);
        double result = 0;
        if (!calculator.ConcCalculation(kFormula, &result)) return 1;
        const CString text = CQVariant::DoubleToStr(result, 4, 0);  // as it is shown, printed and stored
        std::printf("%s mol/L\n", static_cast<const char*>(text));
        sum += CBCD(text);
    }
    std::puts("mean " + (sum / 3).GetString(4, DEC_ROUND_HALF_UP) + " mol/L");

    for (const char* wrong : {"(EP - BLANC) * CONC", "EP / (2 - 2)", "EP * -1"}) {
        const bool isValid = calculator.CheckCalcFormula("", wrong) != 0;
        std::printf("%s: %s\n", wrong, isValid ? "valid" : qel::FormulaSentence(wrong, qel::LastFailure()).c_str());
    }
    return 0;
}
