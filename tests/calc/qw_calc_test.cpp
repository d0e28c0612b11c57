#include "qellib10/calc/qw_calc.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <string>

#include "../support/code_page_scope.h"

namespace {

CCalcVariable Variable(const char* name, double value) {
    CCalcVariable variable;
    variable.m_szName = name;
    variable.m_dValue = value;
    return variable;
}

// Opens the levels of the grammar.
struct Opened : CQWCalc {
    using CQWCalc::CheckCalcFormulaAdd, CQWCalc::CheckCalcFormulaDiv, CQWCalc::CheckCalcFormulaMul,
        CQWCalc::CheckCalcFormulaSub, CQWCalc::CalcFormulaFactor, CQWCalc::CalcFormulaTerm, CQWCalc::SetFormula,
        CQWCalc::CheckVariableExist, CQWCalc::IsArithmeticDuplicate, CQWCalc::GetNextCharacter;
};

// A = 10, B = 4, C = 0, X1.5 = 3, a double-byte name that ends in a byte of "A", and a second, shadowed, "a".
CCalcVariableList List() {
    CCalcVariableList list;
    for (const auto& [name, value] : {std::pair{"A", 10.0},
                                      {"B", 4.0},
                                      {"C", 0.0},
                                      {"X1.5", 3.0},
                                      {"\x83\x41", 7.0},
                                      {"a", 99.0},
                                      {"\x82\x60", 6.0}})
        list.AddVariableData(Variable(name, value));
    return list;
}

std::string Repeated(const std::string& text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

constexpr double kFails = -12345.0;  // a result that was not touched

double Calculated(CQWCalc& calc, const std::string& formula) {
    double result = kFails;
    const int done = calc.ConcCalculation(CString(formula), &result);
    EXPECT_EQ(done, result == kFails ? 0 : 1);
    return result;
}

std::mt19937 g_random(3);
int Random(int low, int high) { return std::uniform_int_distribution<int>(low, high)(g_random); }

// A formula and its value, made together, so that the value does not depend on any reading of the text.
struct Made {
    std::string text;
    double value;
};

Made MakeNumber() {
    const int number = Random(1, 4000);  // whole, as digits behind the point are added with rounding
    return number > 2000   ? Made{"a", 10.0}
           : number > 1000 ? Made{"\x82\x81", 6.0}
                           : Made{std::to_string(number), 1.0 * number};
}

Made MakeExpression(int depth);

Made MakeFactor(int depth) {
    if (depth == 0 || Random(0, 2) > 0) return MakeNumber();
    const Made inner = MakeExpression(depth - 1);
    return {"(" + inner.text + ")", inner.value};
}

// Divisors are single numbers: a divisor that is known to be zero would be refused.
Made MakeTerm(int depth) {
    Made term = MakeFactor(depth);
    for (int more = Random(0, 2); more > 0; --more) {
        const bool divides = Random(0, 2) == 0;
        const Made next = divides ? MakeNumber() : MakeFactor(depth);
        term = {term.text + (divides ? "/" : "*") + next.text,
                divides ? term.value / next.value : term.value * next.value};
    }
    return term;
}

Made MakeExpression(int depth) {
    Made sum = MakeTerm(depth);
    for (int more = Random(0, 2); more > 0; --more) {
        const bool subtracts = Random(0, 1) == 0;
        const Made next = MakeTerm(depth);
        sum = {sum.text + (subtracts ? "-" : "+") + next.text,
               subtracts ? sum.value - next.value : sum.value + next.value};
    }
    return sum;
}

}  // namespace

TEST(QWCalc, ChecksAndCalculates) {
    const CodePageScope japanese(932);
    struct Case {
        std::string formula;
        int valid;
        double result;
    };
    const std::array cases = {
        Case{"A+B*2", 1, 18}, Case{"(A+B)*2", 1, 28}, Case{"A/B", 1, 2.5}, Case{"a + b", 1, 14}, Case{"A-B-1", 1, 5},
        Case{"100/A/5", 1, 2}, Case{"-3+5", 1, 2}, Case{"2*(-3)", 1, -6}, Case{"-A+B", 1, -6}, Case{"1 . 5", 1, 1.5},
        Case{"1 2\t+ x\t1.5", 1, 15}, Case{"\x83\x41*1", 1, 7}, Case{"\x82\x81", 1, 6}, Case{".5+5.", 1, 5.5},
        Case{"", 1, 0}, Case{" \t ", 1, 0}, Case{"+3", 1, 3}, Case{"2*", 1, 0}, Case{"()", 1, 0}, Case{"1-.", 1, 1},
        Case{"2A", 1, 10}, Case{"-2.5A", 1, -10},  // a name replaces the digits before it
        Case{"2*-3", 0, kFails}, Case{"2+*3", 0, kFails}, Case{"2--3", 0, kFails}, Case{"--3", 0, kFails},
        Case{"-(3)", 0, kFails}, Case{"1.2.3", 0, kFails}, Case{"..", 0, kFails}, Case{"A=B", 0, kFails},
        Case{"=", 0, kFails}, Case{"(A", 0, kFails}, Case{"A)", 0, kFails}, Case{"A(B)", 0, kFails},
        Case{"Z", 0, kFails}, Case{"1+Z", 0, kFails}, Case{"1e5", 0, kFails}, Case{"1,5", 0, kFails},
        // A zero divisor: constant ones are refused by the check, others by the calculation.
        Case{"A/0", 0, kFails}, Case{"A/(2-2)", 0, kFails}, Case{"A/(0*B)", 0, kFails}, Case{"A/(0/B)", 0, kFails},
        Case{"A/(0+0)", 0, kFails}, Case{"0/A", 1, 0}, Case{"A/C", 1, kFails}, Case{"A/(B-4)", 1, kFails},
        Case{"A/-C", 0, kFails}, Case{"A/(B+0*A)", 1, 2.5}, Case{"A/(A-A)", 0, kFails}, Case{"A/(A-a)", 1, kFails},
        Case{"A/(B*C)", 1, kFails}, Case{"A/(0+B)", 1, 2.5},
        // Kept: constants count without their sign, and combined expressions have equal names.
        Case{"A/(-2-2)", 0, -2.5}, Case{"A/(-2+2)", 1, kFails}, Case{"A/((A+B)-(B*2))", 0, 10.0 / 6.0},
        Case{"A/(-A-A)", 0, -0.5}, Case{"A/0B", 0, 2.5}, Case{"A/2C", 1, kFails},
        // The longest formula and its depth.
        Case{Repeated("(", 255), 0, kFails}, Case{Repeated("(", 127) + "1" + Repeated(")", 127), 1, 1},
        Case{Repeated("1", 255), 1, NAN}, Case{Repeated(" ", 254) + "1", 1, 1},
        Case{Repeated(" ", 255) + "1", 0, kFails}, Case{"1." + Repeated("0", 252) + "1", 1, 1},
        Case{std::string("1\0+", 3), 1, 1}};
    CQWCalc calc;
    calc.SetCalcVarList(List());
    for (const Case& c : cases) {
        SCOPED_TRACE(c.formula);
        EXPECT_EQ(calc.CheckCalcFormula("", CString(c.formula)), c.valid);
        const double result = Calculated(calc, c.formula);
        EXPECT_EQ(std::isnan(c.result) ? result > 1e254 : result == c.result, true) << result;
    }
    EXPECT_EQ(calc.ConcCalculation("1", nullptr), 0);
}

TEST(QWCalc, CalculatesWhatWasMeant) {
    CQWCalc calc;
    calc.SetCalcVarList(List());
    for (int i = 0; i < 3000; ++i) {
        Made made = MakeExpression(3);
        if (made.text.size() > 255) continue;
        SCOPED_TRACE(made.text);
        EXPECT_EQ(Calculated(calc, made.text), made.value);
        for (int blanks = Random(0, 5); blanks > 0 && made.text.size() < 255; --blanks) {
            made.text.insert(static_cast<std::size_t>(Random(0, static_cast<int>(made.text.size()))), 1,
                             " \t"[blanks % 2]);
        }
        EXPECT_EQ(Calculated(calc, made.text), made.value);
    }
}

TEST(QWCalc, MarksAndRoundsTheVariablesItMeets) {
    CCalcVariableList list = List();
    list.SetVariableValue("A", 1.25);
    list.SetRoundUpFlag(1);
    list.SetRoundUpDigit(1);
    CQWCalc calc;
    calc.SetCalcVarList(list);
    EXPECT_EQ(Calculated(calc, "A"), 1.3);
    EXPECT_EQ(calc.GetUseVariableCount(), 0);
    EXPECT_EQ(calc.CheckCalcFormula("x1.5", "a*C+Z+B"), 0);
    EXPECT_EQ(calc.GetUseVariableCount(), 3);  // B stands behind the error
    EXPECT_EQ(calc.CheckCalcFormula("no such variable", ""), 1);
    EXPECT_EQ(calc.GetUseVariableCount(), 3);

    // What is marked for the first time goes back rounded.
    CCalcVariableList marked = calc.GetAllVariable();
    marked.SetRoundUpFlag(0);
    CCalcVariable variable;
    ASSERT_EQ(marked.GetVariableData(0, &variable), 1);
    EXPECT_EQ(variable.m_dValue, 1.3);
    EXPECT_EQ(variable.m_nUse, 1);

    CQWCalc other;
    EXPECT_EQ(&(other = calc), &other);
    EXPECT_EQ(other.GetCalcVarList().GetVariableCount(), 0);
    calc.SetAllVariable(calc.GetCalcVarList());
    EXPECT_EQ(calc.GetVariableData(0, &variable), 1);
    calc.InitParameter();
    EXPECT_EQ(calc.GetVariableData(0, &variable), 0);
    EXPECT_EQ(Calculated(calc, "1/0"), kFails);  // the error result is still one
}

TEST(QWCalc, LongNamesAreTheirOwn) {
    const std::string name(200, 'n');
    CCalcVariableList list;
    list.AddVariableData(Variable(name.substr(1).c_str(), 1));
    CQWCalc calc;
    calc.SetCalcVarList(list);
    EXPECT_EQ(Calculated(calc, name), kFails);
    list.AddVariableData(Variable(name.c_str(), 2));
    calc.SetCalcVarList(list);
    EXPECT_EQ(Calculated(calc, name + "+" + "1"), 3);
}

TEST(QWCalc, LevelsAnswerVariables) {
    Opened calc;
    calc.SetCalcVarList(List());
    ASSERT_EQ(calc.CheckCalcFormula("", ""), 1);  // into the check pass
    ASSERT_TRUE(calc.SetFormula("- b * (2 + 3) - ."));
    const CCalcVariable sign = calc.CalcFormulaFactor();
    EXPECT_EQ(sign.m_nState, 0);
    EXPECT_EQ(sign.m_szName, "b");
    EXPECT_EQ(sign.m_dValue, -1.0);
    calc.GetNextCharacter();
    EXPECT_EQ(calc.IsArithmeticDuplicate(), 0);
    const CCalcVariable folded = calc.CalcFormulaTerm();
    EXPECT_EQ(folded.m_nState, 1);
    EXPECT_EQ(folded.m_dValue, 5.0);

    CCalcVariable zero;
    zero.m_nState = 1;
    CCalcVariable error;
    error.m_nState = -1;
    EXPECT_EQ(calc.CheckCalcFormulaMul(sign, zero).m_nState, 1);
    EXPECT_EQ(calc.CheckCalcFormulaAdd(zero, sign).m_dValue, 1.0);
    EXPECT_EQ(calc.CheckCalcFormulaSub(sign, sign).m_nState, 1);
    EXPECT_EQ(calc.CheckCalcFormulaDiv(sign, zero).m_nState, -1);
    EXPECT_EQ(calc.CheckCalcFormulaDiv(error, folded).m_nState, 0);
    for (auto combine : {&Opened::CheckCalcFormulaAdd, &Opened::CheckCalcFormulaSub, &Opened::CheckCalcFormulaMul,
                         &Opened::CheckCalcFormulaDiv})
        EXPECT_EQ((calc.*combine)(folded, error).m_nState, -1);

    char name[] = "B";
    double value = 0;
    EXPECT_EQ(calc.CheckVariableExist(name, &value), 1);
    EXPECT_EQ(value, 4.0);
    EXPECT_EQ(calc.CheckVariableExist(nullptr, &value), 0);
}
