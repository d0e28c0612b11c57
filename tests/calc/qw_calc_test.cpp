#include "qellib10/calc/qw_calc.h"

#include "../support/test.h"
#include "qellib10/calc/formula_sentence.h"

namespace {

constexpr double kFails = -12345.0;  // a result that was not touched

// The protected levels, opened.
struct Opened : CQWCalc {
    using CQWCalc::CalcFormulaFactor, CQWCalc::CalcFormulaTerm, CQWCalc::CheckCalcFormulaSub,
        CQWCalc::CheckVariableExist, CQWCalc::GetNextCharacter, CQWCalc::SetFormula;
};

const std::string kLongName(200, 'n');

void Fill(CQWCalc& calc) {
    CCalcVariableList list;
    for (const auto& [name, value] : std::initializer_list<std::pair<std::string, double>>{
             {"A", 10},
             {"B", 4},
             {"C", 0},
             {"X1.5", 3},
             {"a", 99},
             {"\x83\x41", 7},
             {"\x82\x60", 6},
             {kLongName, 2},
         }) {
        CCalcVariable variable;
        variable.m_szName = CString(name);
        variable.m_dValue = value;
        list.AddVariableData(variable);
    }
    calc.SetCalcVarList(list);
}

double Calculated(CQWCalc& calc, const std::string& formula) {
    double result = kFails;
    const int done = calc.ConcCalculation(CString(formula), &result);
    EXPECT_EQ(done, result == kFails ? 0 : 1);
    return result;
}

}  // namespace

TEST(QWCalc, FormulasAreCheckedAndCalculated) {
    const CodePageScope japanese(932);
    const std::string open(127, '('), close(127, ')'), blanks(254, ' ');
    CQWCalc calc;
    Fill(calc);
    for (const auto& [formula, valid, result] : Cases<std::string, int, double>{
             {"(A+B)*2", 1, 28},
             {"a + b", 1, 14},
             {"2*(3+B*(5-A/(7-2)))-8/4/2+a*\x82\x81-1", 1, 88},
             {"-A+B", 1, -6},
             {"1 2\t+ x\t1.5", 1, 15},
             {"1 . 5", 1, 1.5},
             {"\x83\x41*1", 1, 7},
             {"\x82\x81", 1, 6},
             {" \t ", 1, 0},
             {"", 1, 0},
             {"2*", 1, 0},
             {"()", 1, 0},
             {"1-.", 1, 1},
             {"-2.5A", 1, -10},
             {"2*-3", 0, kFails},
             {"2+*3", 0, kFails},
             {"--3", 0, kFails},
             {"-(3)", 0, kFails},
             {"1.2.3", 0, kFails},
             {"A=B", 0, kFails},
             {"(A", 0, kFails},
             {"A)", 0, kFails},
             {"A(B)", 0, kFails},
             {"1+Z", 0, kFails},
             {"1e5", 0, kFails},
             // A zero divisor: the check refuses constant ones, the calculation all.
             {"A/0", 0, kFails},
             {"A/(2-2)", 0, kFails},
             {"A/(0*B)", 0, kFails},
             {"A/(0/B)", 0, kFails},
             {"A/(0+0)", 0, kFails},
             {"A/(A-A)", 0, kFails},
             {"A/(A-a)", 1, kFails},
             {"A/(B-4)", 1, kFails},
             {"0/A", 1, 0},
             {"A/(0+B)", 1, 2.5},
             // Constants count without their sign and their name; combined expressions have equal names.
             {"A/(-2-2)", 0, -2.5},
             {"A/(-2+2)", 1, kFails},
             {"A/0B", 0, 2.5},
             {"A/((A+B)-(B*1))", 0, 1},
             {"A/(-A-A)", 0, -0.5},
             // The longest texts, names and depths.
             {open + "(" + open, 0, kFails},
             {open + "1" + close, 1, 1},
             {blanks + "1", 1, 1},
             {blanks + " 1", 0, kFails},
             {"1." + std::string(252, '0') + "1", 1, 1},
             {std::string(200, '9') + "*" + std::string(54, '9'), 1, 1e254},
             {kLongName, 1, 2},
             {kLongName + "n", 0, kFails},
             {kLongName.substr(1), 0, kFails},
             {std::string("1\0+Z", 4), 1, 1},
         }) {
        SCOPED_TRACE(formula);
        EXPECT_EQ(calc.CheckCalcFormula("", CString(formula)), valid);
        EXPECT_DOUBLE_EQ(Calculated(calc, formula), result);
    }
    EXPECT_EQ(calc.ConcCalculation("1", nullptr), 0);
}

TEST(QWCalc, ARefusalIsReportedInASentence) {
    CQWCalc calc;
    Fill(calc);
    const Cases<std::string, std::string> cases = {
        {" ( A + B", "the formula is not valid: a closing bracket is missing at its end"},
        {"A +\t+ B", "the formula is not valid at byte 5: \"+ B\""},
        {"A + (B - Z) * Z", "the formula names \"Z\", which has no value"},
        {"A / ( B-B )", "the formula divides by zero at byte 3: \"/ ( B-B )\""},
        {"1/(A/ C + 1)", "the formula divides by zero at byte 5: \"/ C + 1)\""},
        {std::string(256, ' '), "the formula has more than 255 bytes"}};
    for (const auto& [formula, expected] : cases) {
        double result = 0;
        EXPECT_EQ(calc.ConcCalculation(CString(formula), &result), 0);
        EXPECT_EQ(qel::FormulaSentence(formula, qel::LastFailure()), expected);
    }
}

TEST(QWCalc, MarksAndRoundsTheVariablesItMeets) {
    CQWCalc calc, other;
    Fill(calc);
    CCalcVariableList list = calc.GetAllVariable();
    list.SetVariableValue("A", 1.25);
    list.SetRoundUpFlag(1);
    list.SetRoundUpDigit(1);
    calc.SetAllVariable(list);
    EXPECT_EQ(Calculated(calc, "A"), 1.3);
    EXPECT_EQ(calc.GetUseVariableCount(), 0);
    EXPECT_EQ(calc.CheckCalcFormula("x1.5", "a*C+Z+B"), 0);  // B comes after the error
    EXPECT_EQ(calc.CheckCalcFormula("no such variable", ""), 1);
    EXPECT_EQ(calc.GetUseVariableCount(), 3);
    calc.SetCalcVarList(calc.GetCalcVarList());
    list = calc.GetCalcVarList();
    list.SetRoundUpFlag(0);
    CCalcVariable variable;
    // What is marked for the first time goes back rounded.
    EXPECT_EQ(list.GetUseVariableData(0, &variable), 1);
    EXPECT_EQ(variable.m_dValue, 1.3);
    EXPECT_EQ((other = calc).GetVariableData(0, &variable), 0);
}

TEST(QWCalc, EachLevelReturnsAVariable) {
    Opened calc;
    Fill(calc);
    ASSERT_TRUE(calc.SetFormula("- b * (2 + 3) - ."));  // a new evaluator checks
    const CCalcVariable single = calc.CalcFormulaFactor();
    EXPECT_EQ(single.m_szName, "b");
    EXPECT_EQ(single.m_dValue, -1.0);
    calc.GetNextCharacter();
    CCalcVariable five = calc.CalcFormulaTerm();
    EXPECT_EQ(five.m_nState, 1);
    EXPECT_EQ(five.m_dValue, 5.0);
    EXPECT_EQ(calc.CheckCalcFormulaSub(single, single).m_nState, 1);
    char name[] = "B";
    EXPECT_EQ(calc.CheckVariableExist(name, &five.m_dValue), 1);
    EXPECT_EQ(five.m_dValue, 4.0);
}
