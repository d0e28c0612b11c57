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

// The value, or the error in words.
std::string Answer(const std::string& text) {
    FormulaError error;
    const std::optional<Formula> formula = Formula::Parse(text, Scope(), error);
    if (!formula) return error.Text(text);
    const std::optional<double> value = formula->Evaluate(kValues, error);
    if (!value) return error.Text(text);
    char shown[32];
    std::snprintf(shown, sizeof shown, "%.12g", *value);
    for (char* at = shown; *at != '\0'; ++at)
        if (*at == ',') *at = '.';
    return shown;
}

}  // namespace

TEST(Formula, IsComputed) {
    for (const auto& [text, expected] : Cases<const char*, const char*>{
             {"A + B * 2 - 1", "17"},
             {"(A - B) / 3", "2"},
             {"2 ^ 3 ^ 2", "512"},
             {"-2 ^ 2", "-4"},
             {"2 ^ -1", "0.5"},
             {"2 * -3", "-6"},
             {"- - 3 + +1", "4"},
             {"1e-3 * 1E+3 + .5", "1.5"},
             {"1 2 . 5 * 2", "25"},
             {"E P 1 * 2", "10"},
             {"ep1", "5"},
             {"試料 * 2", "14"},
             {"[A<B] + 1", "4"},
             {"[x]]y] + 1", "2"},
             {"min + 1", "3"},
             {"max(A, B, 11) - mean(1, 2, 6) + sum(1, 2)", "11"},
             {"sqrt(16) + abs(-2) + exp(0) + ln(1) + log10(100) + log2(8)", "12"},
             {"round(2.345, 2) + round(2.5, 0, half_even) + round(0.26, 0.05, truncate, multiple)", "4.6"},
             {"round(1234, 2, away, digits)", "1300"},
             {"if(A > B and not A = 3, A, B)", "10"},
             {"if(A < B or B <> 4, 1, 2)", "2"},
             {"if(ZERO = 0, 0, A / ZERO)", "0"},
             {"ZERO <> 0 and A / ZERO > 1", "0"},
             {"A >= 10 or 1 / ZERO = 1", "1"},
             {"const.R * 2", "16.6289252363"},
             {"A // to the end\n + /* between */ 1", "11"},
         })
        EXPECT_EQ(Answer(text), expected) << text;
}

TEST(Formula, FaultsHaveTheirPlace) {
    for (const auto& [text, expected] : Cases<const char*, const char*>{
             {"", "the formula is not valid at its end: a number, a name or an opening bracket is expected"},
             {"A +", "the formula is not valid at its end: a number, a name or an opening bracket is expected"},
             {"(A + 1", "the formula is not valid at its end: a closing bracket is expected"},
             {"A 試", "a variable that nobody knows at character 1: \"A 試\""},
             {"試料 + EPP1", "a variable that nobody knows at character 6: \"EPP1\"; did you mean \"EP1\"?"},
             {"2x",
              "the formula is not valid at character 2: \"x\": an operator between a number and a name is expected"},
             {"1.2.3", "the formula is not valid at character 4: \".\": one decimal point in a number is expected"},
             {"sqr(4)", "a function that nobody knows at character 1: \"sqr\"; did you mean \"sqrt\"?"},
             {"const.r", "a constant that nobody knows at character 1: \"const.r\"; did you mean \"R\"?"},
             {"sqrt(1, 2)", "wrong arguments at character 1: \"sqrt\": one argument is expected"},
             {"A = 1 + (B = 2)", "a number is needed at character 9: \"(B = 2)\""},
             {"if(A, 1, 2)", "a condition is needed at character 4: \"A\""},
             {"1 < 2 < 3", "the formula is not valid at character 7: \"<\": an operator is expected"},
             {"A / (B - 4)", "a division by zero at character 3: \"/\""},
             {"ln(ZERO)", "the result is not defined at character 1: \"ln\""},
             {"exp(1000) + 1", "the number is too large at character 1: \"exp\""},
             {"1e999", "the number is too large at character 1: \"1e999\""},
             {"round(A, 35, half_even, digits)",
              "wrong arguments at character 10: \"35\": a whole number from 1 to 34 is expected"},
             {"A /* open", "the formula is not valid at character 3: \"/*\": */ after the comment is expected"},
             {"[A", "the formula is not valid at character 1: \"[\": ] after the name is expected"},
             {"A\xFF", "the formula is not UTF-8 at character 1"},
         })
        EXPECT_EQ(Answer(text), expected) << text;
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
             {"A + (B", "the formula is not valid at its end: something else is expected"},
             {"A * -B", "the formula is not valid at character 5: \"-\": something else is expected"},
             {"A + Q Q", "a variable that nobody knows at character 5: \"Q Q\""},
         }) {
        EXPECT_FALSE(Formula::Kept(text, Scope(), error)) << text;
        EXPECT_EQ(error.Text(text), expected);
    }
}
