#include "qellib10/calc/qw_calc.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "../support/code_page_scope.h"

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
             {"A", 10}, {"B", 4}, {"C", 0}, {"X1.5", 3}, {"a", 99}, {"\x83\x41", 7}, {"\x82\x60", 6}, {kLongName, 2}}) {
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

std::mt19937 g_random(3);
int Random(int most) { return static_cast<int>(g_random() % (static_cast<unsigned>(most) + 1)); }

// A formula and its value, made together: the value does not depend on a reading of the text.
struct Made {
    std::string text;
    double value;
};

// Whole numbers, as digits behind the point are added with rounding; never 0.
Made MakeNumber() {
    const int number = 1 + Random(4000);
    return number > 2000   ? Made{"a", 10}
           : number > 1000 ? Made{"\x82\x81", 6}
                           : Made{std::to_string(number), 1.0 * number};
}

Made MakeLevel(int depth, bool isSum) {
    const auto part = [&](char operation) {
        if (isSum) return MakeLevel(depth, false);
        if (operation == '/' || depth == 0 || Random(2) > 0) return MakeNumber();
        const Made inner = MakeLevel(depth - 1, true);
        return Made{"(" + inner.text + ")", inner.value};
    };
    Made made = part(' ');
    for (int more = Random(2); more > 0; --more) {
        const char operation = (isSum ? "+-" : "*/")[Random(1)];
        const auto [text, value] = part(operation);
        made.text += operation + text;
        made.value = isSum              ? made.value + (operation == '+' ? value : -value)
                     : operation == '*' ? made.value * value
                                        : made.value / value;
    }
    return made;
}

}  // namespace

TEST(QWCalc, ChecksAndCalculates) {
    const CodePageScope japanese(932);
    struct Case {
        std::string formula;
        int valid;
        double result;
    };
    const std::string open(127, '('), close(127, ')'), blanks(254, ' ');
    CQWCalc calc;
    Fill(calc);
    for (const Case& c :
         {Case{"A+B*2", 1, 18}, Case{"(A+B)*2", 1, 28}, Case{"A/B", 1, 2.5}, Case{"a + b", 1, 14}, Case{"A-B-1", 1, 5},
          Case{"100/A/5", 1, 2}, Case{"-3+5", 1, 2}, Case{"2*(-3)", 1, -6}, Case{"-A+B", 1, -6},
          Case{"1 2\t+ x\t1.5", 1, 15}, Case{"1 . 5", 1, 1.5}, Case{".5+5.", 1, 5.5}, Case{"\x83\x41*1", 1, 7},
          Case{"\x82\x81", 1, 6}, Case{"", 1, 0}, Case{" \t ", 1, 0}, Case{"+3", 1, 3}, Case{"2*", 1, 0},
          Case{"()", 1, 0}, Case{"1-.", 1, 1}, Case{"2A", 1, 10}, Case{"-2.5A", 1, -10}, Case{"2*-3", 0, kFails},
          Case{"2+*3", 0, kFails}, Case{"2--3", 0, kFails}, Case{"--3", 0, kFails}, Case{"-(3)", 0, kFails},
          Case{"1.2.3", 0, kFails}, Case{"..", 0, kFails}, Case{"A=B", 0, kFails}, Case{"(A", 0, kFails},
          Case{"A)", 0, kFails}, Case{"A(B)", 0, kFails}, Case{"1+Z", 0, kFails}, Case{"1e5", 0, kFails},
          Case{"1,5", 0, kFails},
          // A zero divisor: the check refuses constant ones, the calculation all.
          Case{"A/0", 0, kFails}, Case{"A/(2-2)", 0, kFails}, Case{"A/(0*B)", 0, kFails}, Case{"A/(0/B)", 0, kFails},
          Case{"A/(0+0)", 0, kFails}, Case{"A/(A-A)", 0, kFails}, Case{"A/(A-a)", 1, kFails}, Case{"A/C", 1, kFails},
          Case{"A/(B-4)", 1, kFails}, Case{"A/(B*C)", 1, kFails}, Case{"0/A", 1, 0}, Case{"A/(0+B)", 1, 2.5},
          // Constants count without their sign and their name; combined expressions have equal names.
          Case{"A/(-2-2)", 0, -2.5}, Case{"A/(-2+2)", 1, kFails}, Case{"A/0B", 0, 2.5}, Case{"A/2C", 1, kFails},
          Case{"A/((A+B)-(B*1))", 0, 1}, Case{"A/(-A-A)", 0, -0.5},
          // The longest texts, names and depths.
          Case{open + "(" + open, 0, kFails}, Case{open + "1" + close, 1, 1}, Case{blanks + "1", 1, 1},
          Case{blanks + " 1", 0, kFails}, Case{"1." + std::string(252, '0') + "1", 1, 1},
          Case{std::string(200, '9') + "*" + std::string(54, '9'), 1, 1e254}, Case{kLongName, 1, 2},
          Case{kLongName + "n", 0, kFails}, Case{kLongName.substr(1), 0, kFails},
          Case{std::string("1\0+Z", 4), 1, 1}}) {
        SCOPED_TRACE(c.formula);
        EXPECT_EQ(calc.CheckCalcFormula("", CString(c.formula)), c.valid);
        EXPECT_DOUBLE_EQ(Calculated(calc, c.formula), c.result);
    }
    EXPECT_EQ(calc.ConcCalculation("1", nullptr), 0);
}

TEST(QWCalc, CalculatesWhatWasMeant) {
    CQWCalc calc;
    Fill(calc);
    for (int i = 0; i < 3000; ++i) {
        Made made = MakeLevel(3, true);
        if (made.text.size() > 255) continue;
        const auto at = static_cast<std::size_t>(Random(static_cast<int>(made.text.size())));
        if (made.text.size() < 255) made.text.insert(at, 1, " \t"[i % 2]);
        ASSERT_EQ(Calculated(calc, made.text), made.value) << made.text;
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
    EXPECT_EQ(calc.CheckCalcFormula("x1.5", "a*C+Z+B"), 0);  // B stands behind the error
    EXPECT_EQ(calc.CheckCalcFormula("no such variable", ""), 1);
    EXPECT_EQ(calc.GetUseVariableCount(), 3);
    calc.SetCalcVarList(calc.GetCalcVarList());
    list = calc.GetCalcVarList();
    list.SetRoundUpFlag(0);
    CCalcVariable variable;
    ASSERT_EQ(list.GetUseVariableData(0, &variable), 1);
    EXPECT_EQ(variable.m_dValue, 1.3);  // what is marked for the first time goes back rounded
    EXPECT_EQ((other = calc).GetVariableData(0, &variable), 0);
}

TEST(QWCalc, LevelsAnswerVariables) {
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
