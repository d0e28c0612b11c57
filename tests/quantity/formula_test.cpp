#include "qellib10/quantity/formula.h"

#include <cmath>
#include <random>

#include "../support/test.h"
#include "qellib10/calc/calc_variable_list.h"
#include "qellib10/calc/qw_calc.h"
#include "qellib10/quantity/calculation.h"
#include "qellib10/quantity/quantity_formula.h"

namespace {

using qel::Decimal;
using qel::ExactResult;
using qel::Formula;
using qel::FormulaError;
using qel::FormulaScope;
using qel::Reading;

const std::vector<double> kValues = {10, 4, 0, 3, 2, 7, 1, 5};

FormulaScope Scope(std::initializer_list<const char*> names = {"A", "B", "ZERO", "A<B", "min", "試料", "x]y", "EP1"}) {
    FormulaScope scope;
    for (const char* name : names) scope.Add(name);
    return scope;
}

// Of the variable X.
Formula Parsed(const std::string& text) {
    FormulaError error;
    const std::optional<Formula> formula = Formula::Parse(text, Scope({"X"}), error);
    EXPECT_TRUE(formula) << error.Text(text);
    return formula.value();
}

std::optional<ExactResult> Exactly(const Formula& formula, const Reading& reading) {
    FormulaError error;
    return formula.EvaluateExactly(std::vector{reading}, {}, error);
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

TEST(FormulaExact, StepsAreListedWithTheirPlaceAndWhatHappened) {
    const auto listed = [](auto parse, const char* text) {
        FormulaError error;
        std::vector<qel::ExactStep> steps;
        const std::optional<Formula> formula = parse(text, Scope({"A", "LOW"}), error);
        const std::vector<Reading> readings = {Reading::Of(Decimal(10)), *Reading::OfText("< 0.02")};
        EXPECT_TRUE(formula && formula->EvaluateExactly(readings, {}, error, &steps)) << text;
        std::string all;
        for (const qel::ExactStep& step : steps)
            all += std::to_string(step.position) + '+' + std::to_string(step.length) + ' ' + step.operation +
                   (step.flags.isInexact ? "~" : "=") + step.result + "; ";
        return all;
    };
    EXPECT_EQ(listed(Formula::Parse, "(A - 1) / 7 + LOW"),
              "1+1 variable=10; 5+1 number=1; 3+1 -=9; 10+1 number=7; 8+1 /~1.285714285714285714285714285714286; "
              "14+3 variable=< 0.02; 12+1 +~< 1.305714285714285714285714285714287; ");
    EXPECT_EQ(listed(Formula::Kept, "A*( - 1 .5)-(-A)"),
              "0+1 variable=10; 6+4 number=1.5; 4+1 -=-1.5; 1+1 *=-15.0; 14+1 variable=10; 13+1 -=-10; 11+1 -=-5.0; ");
}

// Any numbers that the readings may be give a result that the interval has, also at the ends of the range.
TEST(FormulaExact, EveryPossibleValueIsWithinTheInterval) {
    const std::vector<std::string> operations = {"+", "-", "*", "/"};
    std::mt19937_64 random(5);
    const auto pick = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    int limits = 0;
    for (int i = 0; i < 3000; ++i) {
        std::string text = "X";
        for (int k = 0; k < 3; ++k) {
            const std::string& operation = operations[static_cast<std::size_t>(pick(4))];
            const std::string number = std::to_string(pick(9) - 4);
            const std::string operand = pick(3) == 0 ? "X" : pick(6) == 0 ? (pick(2) ? "10^6144" : "10^-6176") : number;
            text = "(" + text + operation + "(" + operand + "))";
            if (pick(5) == 0) text = "(1" + operation + text + ")";
        }
        const Formula formula = Parsed(text);
        const int limit = pick(9) - 4;
        const bool isBelow = pick(2) == 0;
        const Reading reading = isBelow ? Reading::Below(Decimal(limit)) : Reading::Above(Decimal(limit));
        const std::optional<ExactResult> result = Exactly(formula, reading);
        if (!result || (result->kind != ExactResult::Kind::kBelow && result->kind != ExactResult::Kind::kAbove))
            continue;
        ++limits;
        for (int k = 0; k < 20; ++k) {
            qel::DecimalFlags ignored;
            const Decimal step = Decimal::Scaled(1 + pick(100'000), -pick(6), ignored);
            const Decimal value =
                isBelow ? Subtract(Decimal(limit), step, ignored) : Add(Decimal(limit), step, ignored);
            const std::optional<ExactResult> one = Exactly(formula, Reading::Of(value));
            if (!one) continue;
            const bool isWithin =
                result->kind == ExactResult::Kind::kBelow ? one->value < result->value : one->value > result->value;
            EXPECT_TRUE(isWithin || one->value == result->value)
                << text << " X = " << value.Text() << ": " << one->Text() << ", " << result->Text();
        }
    }
    EXPECT_GT(limits, 300);
}

TEST(FormulaExact, TheReadingIsSubstitutedInItsOwnUnit) {
    for (const auto& [unit, reading, substitution, expected] :
         Cases<const char*, const char*, qel::LimitSubstitution, const char*>{
             {"g", "< 3", qel::LimitSubstitution::kHalf, "1.2500"},
             {"K", "< 3", qel::LimitSubstitution::kZero, "137.075"},
             {"K", "> 3", qel::LimitSubstitution::kZero, "138.575"},
         }) {
        FormulaError error;
        std::string ignored;
        const std::vector<qel::Unit> units = {*qel::Unit::Parse(unit, ignored),
                                              *qel::Unit::Parse(*unit == 'g' ? "mg" : "°C", ignored)};
        const auto bound =
            qel::QuantityFormula::Bind(*Formula::Parse("mean(A, X)", Scope({"A", "X"}), error), units, {}, error);
        ASSERT_TRUE(bound) << unit;
        const std::vector<Reading> readings = {*Reading::OfText(*unit == 'g' ? "2.4985" : "1"),
                                               *Reading::OfText(reading)};
        const std::optional<ExactResult> result = bound->EvaluateExactly(readings, {substitution}, error);
        EXPECT_EQ(result ? result->Text() : error.Text(""), expected) << unit;
    }
}

TEST(ExactResult, ALimitIsRoundedSoThatItStaysTrue) {
    using qel::DecimalRounding;
    const qel::RoundingRule rule = qel::RoundingRule::ToPlaces(DecimalRounding::kHalfEven, 1);
    const auto rounded = [&](ExactResult::Kind kind, const char* text) {
        qel::DecimalFlags ignored;
        ExactResult result;
        result.kind = kind;
        result.value = Decimal::OfText(text, ignored);
        const auto value = result.Rounded(rule);
        return value ? value->rounded.Text() : "nothing";
    };
    for (const auto& [kind, text, expected] : Cases<ExactResult::Kind, const char*, const char*>{
             {ExactResult::Kind::kValue, "2.44", "2.4"},
             {ExactResult::Kind::kBelow, "2.44", "2.5"},
             {ExactResult::Kind::kBelow, "-2.44", "-2.4"},
             {ExactResult::Kind::kAbove, "2.49", "2.4"},
             {ExactResult::Kind::kAbove, "-2.41", "-2.5"},
             {ExactResult::Kind::kYes, "0", "nothing"},
         })
        EXPECT_EQ(rounded(kind, text), expected) << text;
}

TEST(ExactResult, LostDigitsOfALimitCostNoPlaceAndStayOutside) {
    for (const auto& [text, reading, places, expected] : Cases<const char*, const char*, int, const char*>{
             {"X / 3 * 150", "< 0.02", 1, "< 1.0"},
             {"X * 150 / 3", "< 0.02", 1, "< 1.0"},
             {"X / 3 * 150", "<= 0.02", 1, "<= 1.0"},
             {"-X / 3 * 150", "< 0.02", 1, "> -1.0"},
             {"X / 3", "< 2", 1, "< 0.7"},
             {"X / 3 * 10^-6176", "< 1", 1, "< 0.1"},
             {"X / 3 * 10^6144", "> 70", 1, "> 9.999999999999999999999999999999999E+6144"},
             {"X / 3", "< 1", 33, "< 0.333333333333333333333333333333334"},
             {"X / 3 + 1e20", "< 1", 13, "< 100000000000000000000.3333333333334"},
             {"X / 3 * 3", "< 1.000000000000000000000000000000004", 1, "< 1.1"},
             {"(X - 0.1) / 3 * 3 - 0.1", "< 0.2", 2, "< 0.00"},
             {"2 / 3 * X", "< 3", 1, "< 2.0"},
             {"-(X / 3) / 7 * 21", "<= 1", 1, ">= -1.0"},
             {"(X / 3) ^ 2 * 9", "> 1", 1, "> 0.9"},
             {"X + 1E40 - 1E40", "< 5", 1, "< 10000000.0"},  // 4 and 1E40 and -1E40 are 0 in 34 digits
         }) {
        const qel::RoundingRule rule = qel::RoundingRule::ToPlaces(qel::DecimalRounding::kHalfEven, places);
        ExactResult result = Exactly(Parsed(text), *Reading::OfText(reading)).value();
        result.value = result.Rounded(rule).value_or(qel::RoundedValue{{}, result.value}).rounded;
        EXPECT_EQ(result.Text(), expected) << text;
    }
}

TEST(Reading, TextsAreReadAgain) {
    for (const auto& [text, expected] : Cases<const char*, const char*>{
             {" 12.50 ", "12.50"},
             {"<0.02", "< 0.02"},
             {"> -1e3", "> -1E+3"},
             {"missing", "missing"},
             {"invalid", "invalid"},
         }) {
        const std::optional<Reading> reading = Reading::OfText(text);
        ASSERT_TRUE(reading) << text;
        EXPECT_EQ(reading->Text(), expected);
        EXPECT_EQ(Reading::OfText(reading->Text()), reading);
    }
    for (const char* text : {"", "<", "1 2", "NaN", "Infinity", "1,5", "12345678901234567890123456789012345"})
        EXPECT_FALSE(Reading::OfText(text)) << text;
    for (const char* text : {"5 e3", "5 e 3", "5e 3", "5  E - 3 mL", "< 5 e+3", "mL", "1 500 mg", "12 345",
                             "< 12 345.6 mg/L", "1 500/min", "5 1000/µL", "1 025 mg"}) {
        EXPECT_FALSE(qel::CalculationInput::Of("A", text)) << text;
        EXPECT_EQ(qel::CalculationInput::WhyNot(text).empty(), std::string_view(text) == "5e 3" || text[0] == 'm')
            << text;
    }
    for (const auto& [text, unit] : Cases<const char*, const char*>{
             {"5 10^3/µL", "10^3/µL"},
             {"5 10³/µL ", "10³/µL"},
             {"72 1/min", "1/min"},
             {"5 × 1000/µL", "1000/µL"},
             {"5 ×", "×"},
         }) {
        const auto input = qel::CalculationInput::Of("A", text);
        ASSERT_TRUE(input) << text;
        EXPECT_EQ(input->unit, unit);
    }
}

TEST(Reading, OfAListThatRoundsItsValuesIsAskedFor) {
    CCalcVariableList list;
    CCalcVariable variable;
    variable.m_szName = "V";
    variable.m_dValue = 16.519;
    list.AddVariableData(variable);
    EXPECT_EQ(ReadingsOf(list, qel::RoundedList::kRefuse)->front(), Reading::OfDouble(16.519));
    list.SetRoundUpFlag(1);
    list.SetRoundUpDigit(2);
    EXPECT_FALSE(ReadingsOf(list, qel::RoundedList::kRefuse));
    const Reading reading = ReadingsOf(list, qel::RoundedList::kAccept)->front();
    EXPECT_EQ(Line({reading.Text(), reading.isFromBinary, *reading.places, reading.beforeRounding->Text()}),
              "16.52 1 2 16.519");
    list.SetRoundUpDigit(4);
    variable.m_dValue = 0.03;
    list.AddVariableData(variable);
    list.GetVariableData(0, &variable);
    EXPECT_NE(variable.m_dValue, 0.03);
    EXPECT_EQ(ReadingsOf(list, qel::RoundedList::kAccept)->back().Text(), "0.03");
}
