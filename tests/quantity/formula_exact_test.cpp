#include <random>

#include "../support/test.h"
#include "qellib10/calc/calc_variable_list.h"
#include "qellib10/quantity/calculation.h"
#include "qellib10/quantity/formula.h"
#include "qellib10/quantity/quantity_formula.h"

namespace {

using qel::Decimal;
using qel::ExactResult;
using qel::Formula;
using qel::FormulaError;
using qel::Reading;

}  // namespace

TEST(FormulaExact, StepsAreListedWithWhatHappened) {
    const std::string text = "(A - 1) / 7 + LOW";
    FormulaError error;
    std::vector<qel::ExactStep> steps;
    qel::FormulaScope scope;
    for (const char* name : {"A", "LOW"}) scope.Add(name);
    const std::optional<Formula> formula = Formula::Parse(text, scope, error);
    const std::vector<Reading> readings = {Reading::Of(Decimal(10)), *Reading::OfText("< 0.02")};
    ASSERT_TRUE(formula && formula->EvaluateExactly(readings, {}, error, &steps));
    std::string all;
    for (const qel::ExactStep& step : steps)
        all += step.operation + (step.flags.isInexact ? "~" : "=") + step.result + "; ";
    EXPECT_EQ(all,
              "variable=10; number=1; -=9; number=7; /~1.285714285714285714285714285714286; variable=< 0.02; "
              "+~< 1.305714285714285714285714285714287; ");
    EXPECT_EQ(Line({steps[2].position, steps[2].length}), "3 1");
}

TEST(FormulaExact, ASignOfAnOlderFormulaHasItsPlace) {
    FormulaError error;
    std::vector<qel::ExactStep> steps;
    qel::FormulaScope scope;
    scope.Add("A");
    const std::optional<Formula> formula = Formula::Kept("A*( - 1 .5)-(-A)", scope, error);
    ASSERT_TRUE(formula && formula->EvaluateExactly(std::vector{Reading::Of(Decimal(4))}, {}, error, &steps));
    std::string all;
    for (const qel::ExactStep& step : steps)
        all += std::to_string(step.position) + "+" + std::to_string(step.length) + " " + step.result + "; ";
    EXPECT_EQ(all, "0+1 4; 6+4 1.5; 4+1 -1.5; 1+1 -6.0; 14+1 4; 13+1 -4; 11+1 -2.0; ");
}

// 4 and 1E40 and -1E40 are 0 in 34 digits, so the bound is not 0.
TEST(FormulaExact, ABoundThatLosesDigitsGoesOutwards) {
    qel::FormulaScope scope;
    scope.Add("A");
    FormulaError error;
    const std::optional<Formula> formula = Formula::Parse("A + 1E40 - 1E40", scope, error);
    ASSERT_TRUE(formula);
    const auto limit = formula->EvaluateExactly(std::vector{*Reading::OfText("< 5")}, {}, error);
    const auto number = formula->EvaluateExactly(std::vector{*Reading::OfText("4")}, {}, error);
    ASSERT_TRUE(limit && number);
    EXPECT_EQ(limit->kind, ExactResult::Kind::kBelow);
    EXPECT_LT(number->value, limit->value);
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
        FormulaError error;
        qel::FormulaScope scope;
        scope.Add("X");
        const std::optional<Formula> formula = Formula::Parse(text, scope, error);
        ASSERT_TRUE(formula) << text;
        const int limit = pick(9) - 4;
        const bool isBelow = pick(2) == 0;
        const Reading reading = isBelow ? Reading::Below(Decimal(limit)) : Reading::Above(Decimal(limit));
        const std::optional<ExactResult> result = formula->EvaluateExactly(std::vector{reading}, {}, error);
        if (!result || (result->kind != ExactResult::Kind::kBelow && result->kind != ExactResult::Kind::kAbove))
            continue;
        ++limits;
        for (int k = 0; k < 20; ++k) {
            qel::DecimalFlags ignored;
            const Decimal step = Decimal::Scaled(1 + pick(100'000), -pick(6), ignored);
            const Decimal value =
                isBelow ? Subtract(Decimal(limit), step, ignored) : Add(Decimal(limit), step, ignored);
            const std::optional<ExactResult> one = formula->EvaluateExactly(std::vector{Reading::Of(value)}, {}, error);
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
        qel::FormulaScope scope;
        for (const char* name : {"A", "X"}) scope.Add(name);
        const std::vector<qel::Unit> units = {*qel::Unit::Parse(unit, ignored),
                                              *qel::Unit::Parse(*unit == 'g' ? "mg" : "°C", ignored)};
        const auto bound = qel::QuantityFormula::Bind(*Formula::Parse("mean(A, X)", scope, error), units, {}, error);
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
    qel::FormulaScope scope;
    scope.Add("L");
    for (const auto& [text, reading, places, expected] : Cases<const char*, const char*, int, const char*>{
             {"L / 3 * 150", "< 0.02", 1, "< 1.0"},
             {"L * 150 / 3", "< 0.02", 1, "< 1.0"},
             {"L / 3 * 150", "<= 0.02", 1, "<= 1.0"},
             {"-L / 3 * 150", "< 0.02", 1, "> -1.0"},
             {"L / 3", "< 2", 1, "< 0.7"},
             {"L / 3 * 10^-6176", "< 1", 1, "< 0.1"},
             {"L / 3 * 10^6144", "> 70", 1, "> 9.999999999999999999999999999999999E+6144"},
             {"L / 3", "< 1", 33, "< 0.333333333333333333333333333333334"},
             {"L / 3 + 1e20", "< 1", 13, "< 100000000000000000000.3333333333334"},
             {"L / 3 * 3", "< 1.000000000000000000000000000000004", 1, "< 1.1"},
             {"(L - 0.1) / 3 * 3 - 0.1", "< 0.2", 2, "< 0.00"},
             {"2 / 3 * L", "< 3", 1, "< 2.0"},
             {"-(L / 3) / 7 * 21", "<= 1", 1, ">= -1.0"},
             {"(L / 3) ^ 2 * 9", "> 1", 1, "> 0.9"},
         }) {
        const qel::RoundingRule rule = qel::RoundingRule::ToPlaces(qel::DecimalRounding::kHalfEven, places);
        FormulaError error;
        ExactResult result =
            *Formula::Parse(text, scope, error)->EvaluateExactly(std::vector{*Reading::OfText(reading)}, {}, error);
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
    for (const char* text : {"5 e3", "5 e 3", "5e 3", "5  E - 3 mL", "< 5 e+3", "mL"})
        EXPECT_FALSE(qel::CalculationInput::Of("A", text)) << text;
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
