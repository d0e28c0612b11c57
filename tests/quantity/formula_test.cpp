#include "qellib10/quantity/formula.h"

#include <cmath>
#include <random>

#include "../support/test.h"
#include "qellib10/calc/calc_variable_list.h"
#include "qellib10/calc/qw_calc.h"

namespace {

using qel::Formula;
using qel::FormulaError;
using qel::FormulaScope;

const std::vector<double> kValues = {10, 4, 0, 3, 2, 7, 1, 5};

FormulaScope Scope() {
    FormulaScope scope;
    for (const char* name : {"A", "B", "ZERO", "A<B", "min", "試料", "x]y", "EP1"}) scope.Add(name);
    return scope;
}

}  // namespace

// All others are rows of docs/formulas.md.
TEST(Formula, WhatIsNoTextOrPastTheRangeOfDoubleIsRefused) {
    for (const auto& [text, expected] : Cases<const char*, const char*>{
             {"", "the formula is not valid at its end: a number, a name or an opening bracket is expected"},
             {"A\xFF", "the formula is not UTF-8 at character 2"},
             {"exp(1000) + 1", "the number is too large at character 1: \"exp\""},
         }) {
        FormulaError error;
        const std::optional<Formula> formula = Formula::Parse(text, Scope(), error);
        EXPECT_FALSE(formula && formula->Evaluate(kValues, error)) << text;
        EXPECT_EQ(error.Text(text), expected);
    }
}

TEST(Formula, HasBoundsForDepthAndLength) {
    FormulaError error;
    const FormulaScope scope = Scope();
    const std::string deep = std::string(300, '(') + "1" + std::string(300, ')');
    EXPECT_FALSE(Formula::Parse(deep, scope, error));
    EXPECT_EQ(error.kind, FormulaError::Kind::kTooDeep);
    EXPECT_FALSE(Formula::Parse(std::string(Formula::kLongest, ' ') + "1", scope, error));
    EXPECT_EQ(error.kind, FormulaError::Kind::kTooLong);
    std::string sum = "1", list = "max(1";
    for (int i = 0; i < 10'000; ++i) {
        sum += "+1";
        list += ",A";
    }
    EXPECT_EQ(Formula::Parse(sum, scope, error)->Evaluate(kValues, error), 10'001.0);
    EXPECT_EQ(Formula::Parse(list + ")", scope, error)->Evaluate(kValues, error), 10.0);
}

TEST(Formula, RefusesValuesThatAreNotThere) {
    FormulaError error;
    const std::optional<Formula> formula = Formula::Parse("A + B", Scope(), error);
    ASSERT_TRUE(formula);
    EXPECT_FALSE(formula->Evaluate(std::vector<double>{1.0}, error));
    EXPECT_FALSE(formula->Evaluate(std::vector<double>{1.0, NAN}, error));
    EXPECT_EQ(Line({static_cast<int>(error.kind == FormulaError::Kind::kReading), static_cast<int>(error.position)}),
              "1 4");
}

TEST(Formula, KeptFormulasHaveTheSameResultsAsTheEvaluator) {
    CCalcVariableList list;
    for (const auto& [name, value] : Cases<const char*, double>{{"A", 10}, {"B", 4}, {"C", 0}, {"x^2", 3}, {"2", 7}}) {
        CCalcVariable variable;
        variable.m_szName = name;
        variable.m_dValue = value;
        list.AddVariableData(variable);
    }
    CQWCalc calculator;
    calculator.SetCalcVarList(list);
    const FormulaScope scope(list);
    std::mt19937 random(3);
    int valid = 0;
    for (int i = 0; i < 20'000; ++i) {
        static constexpr const char* kPieces[] = {"A", "b", "C", "x^2", "1.7", "0.3", ".", "2",  "(",
                                                  ")", "+", "-", "*",   "/",   " ",   "=", "(-", "D"};
        std::string text;
        for (auto pieces = random() % 9; pieces > 0; --pieces) text += kPieces[random() % std::size(kPieces)];
        FormulaError error;
        double expected = 0.0;
        const bool isRight = calculator.ConcCalculation(CString(text), &expected) != 0;
        const std::optional<Formula> formula = Formula::Kept(text, scope, error);
        std::vector<double> values = {10, 4, 0, 3, 7};
        const std::optional<double> value = formula ? formula->Evaluate(values, error) : std::nullopt;
        EXPECT_EQ(value.has_value(), isRight) << text;
        EXPECT_EQ(value.value_or(0.0), expected) << text;
        valid += isRight;
    }
    EXPECT_GT(valid, 2000);
}

TEST(Formula, KeptFaultsHaveTheirPlace) {
    FormulaError error;
    for (const auto& [text, expected] : Cases<const char*, const char*>{
             {"A + (B", "the formula is not valid at its end: a closing bracket is expected"},
             {"A * -B",
              "the formula is not valid at character 5: \"-\": a number, a name or an opening bracket is expected"},
             {"-(A)", "the formula is not valid at character 2: \"(\": a number or a name is expected"},
             {"A + 1 . 2.",
              "the formula is not valid at character 10: \".\": one decimal point in a number is expected"},
             {"A) + 1", "the formula is not valid at character 2: \")\": an operator is expected"},
             {"A\n+ 1", "a variable that nobody knows at character 1: \"A\n\"; did you mean \"A\"?"},
             {"A + Q Q", "a variable that nobody knows at character 5: \"Q Q\""},
         }) {
        EXPECT_FALSE(Formula::Kept(text, Scope(), error)) << text;
        EXPECT_EQ(error.Text(text), expected);
    }
}
