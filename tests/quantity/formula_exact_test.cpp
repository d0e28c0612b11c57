#include <random>

#include "../support/test.h"
#include "qellib10/calc/calc_variable_list.h"
#include "qellib10/quantity/formula.h"

namespace {

using qel::Decimal;
using qel::ExactResult;
using qel::Formula;
using qel::FormulaError;
using qel::Reading;

const std::vector<std::string> kNames = {"A", "B", "LOW", "HIGH", "LOST", "BAD", "ZERO", "NEG"};
const std::vector<std::string> kReadings = {"10", "4", "< 0.02", "> 14", "missing", "invalid", "0", "-2"};

qel::FormulaScope Scope() {
    qel::FormulaScope scope;
    for (const std::string& name : kNames) scope.Add(name);
    return scope;
}

std::vector<Reading> Readings() {
    std::vector<Reading> readings;
    for (const std::string& text : kReadings) readings.push_back(*Reading::OfText(text));
    return readings;
}

// The result with what made it so, or the error in words.
std::string Answer(const std::string& text, const qel::ExactOptions& options = {}) {
    FormulaError error;
    const std::optional<Formula> formula = Formula::Parse(text, Scope(), error);
    if (!formula) return error.Text(text);
    const std::optional<ExactResult> result = formula->EvaluateExactly(Readings(), options, error);
    if (!result) return error.Text(text) + (error.cause ? " (" + kNames[*error.cause] + ")" : "");
    return result->Text() +
           (result->flags.isInexact && result->kind != ExactResult::Kind::kNotDeterminable ? " inexact" : "") +
           (result->cause ? " (" + kNames[*result->cause] + ")" : "");
}

}  // namespace

TEST(FormulaExact, HasDecimalsAndSaysWhatIsInexact) {
    for (const auto& [text, expected] : Cases<const char*, const char*>{
             {"0.1 + 0.2", "0.3"},
             {"(A - B) * 1.50", "9.00"},
             {"A / 3", "3.333333333333333333333333333333333 inexact"},
             {"A / B", "2.5"},
             {"ln(A)", "2.302585092994045684017991454684364 inexact"},
             {"log2(0.125) + log2(1e30)", "96.65784284662087043610958288468171 inexact"},
             {"3 ^ 0.5 * 3 ^ 0.5 = 3", "no inexact"},
             {"mean(1, 2, A)", "4.333333333333333333333333333333333 inexact"},
             {"round(2.345, 2) = 2.35 and not A < B", "yes"},
             {"0.1234567890123456789012345678901234567", "0.1234567890123456789012345678901235 inexact"},
             {"const.F * 1", "96485.3321233100184"},
             {"A / (B - 4)", "a division by zero at character 3: \"/\""},
             {"ZERO / ZERO", "a division by zero at character 6: \"/\""},
             {"ln(ZERO)", "the result is not defined at character 1: \"ln\""},
             {"sqrt(NEG)", "the result is not defined at character 1: \"sqrt\""},
             {"A ^ 7000", "the number is too large at character 3: \"^\""},
             {"LOW + sum(A ^ 6144 * 9, A ^ 6144 * 9)", "the number is too large at character 7: \"sum\""},
         })
        EXPECT_EQ(Answer(text), expected) << text;
}

TEST(FormulaExact, LimitsStayLimits) {
    for (const auto& [text, expected] : Cases<const char*, const char*>{
             {"LOW", "< 0.02 (LOW)"},
             {"LOW * A / B", "< 0.05 (LOW)"},
             {"A - LOW", "> 9.98 (LOW)"},
             {"-LOW * 3", "> -0.06 (LOW)"},
             {"LOW * NEG", "> -0.04 (LOW)"},
             {"HIGH + LOW", "not determinable (HIGH)"},
             {"HIGH * HIGH", "> 196 (HIGH)"},
             {"HIGH ^ 2", "> 196 (HIGH)"},
             {"LOW ^ 2", ">= 0 (LOW)"},
             {"LOW ^ 3", "< 0.000008 (LOW)"},
             {"sqrt(HIGH + 2)", "> 4 (HIGH)"},
             {"sqrt(LOW)", "not determinable (LOW)"},
             {"sqrt(LOW - 1)", "the result is not defined at character 1: \"sqrt\""},
             {"log10(HIGH - 4)", "> 1 (HIGH)"},
             {"exp(LOW)", "not determinable (LOW)"},
             {"1 / HIGH", "not determinable (HIGH)"},
             {"A / LOW", "not determinable (LOW)"},
             {"A / LOST", "not determinable (LOST)"},
             {"LOW * ZERO", "0"},
             {"BAD + 1", "not determinable (BAD)"},
             {"abs(HIGH)", "> 14 (HIGH)"},
             {"round(LOW, 1)", "<= 0.0 (LOW)"},
             {"round(LOW + 0.04, 1)", "<= 0.1 (LOW)"},
             {"sum(A, LOW, B)", "< 14.02 (LOW)"},
             {"if(A > B, A, BAD)", "10"},
             {"2 ^ LOW", "not determinable (LOW)"},
             {"LOW / ZERO", "a division by zero at character 5: \"/\""},
         })
        EXPECT_EQ(Answer(text), expected) << text;
}

TEST(FormulaExact, ComparisonsOfLimitsAreYesNoOrUndecided) {
    for (const auto& [text, expected] : Cases<const char*, const char*>{
             {"LOW < 0.02", "yes"},
             {"LOW <= 0.02", "yes"},
             {"LOW < 0.01", "undecided (LOW)"},
             {"LOW > 0.02", "no"},
             {"LOW >= 0.02", "no"},
             {"LOW = 0.03", "no"},
             {"LOW <> 0.03", "yes"},
             {"LOW = 0.01", "undecided (LOW)"},
             {"LOW < HIGH", "yes"},
             {"not LOST > 1", "undecided (LOST)"},
             {"LOST > 1 and A = 3", "no"},
             {"LOST > 1 or A = 10", "yes"},
             {"LOST > 1 or A = 3", "undecided (LOST)"},
             {"A = 10 and LOST > 1", "undecided (LOST)"},
             {"if(LOST > 1, A, B) + 1", "not determinable (LOST)"},
             {"if(LOST > 1, A > 1, B > 1) and A = 3", "no"},
             {"if(if(LOST > 1, A, B) > 1, A, B)", "not determinable (LOST)"},
         })
        EXPECT_EQ(Answer(text), expected) << text;
}

TEST(FormulaExact, MinMaxAndMeanNeedNumbersOrASubstitution) {
    using qel::LimitSubstitution;
    for (const auto& [text, substitution, expected] : Cases<const char*, LimitSubstitution, const char*>{
             {"mean(A, LOW)", LimitSubstitution::kNone,
              "not determinable at character 1: \"mean\", because of a reading that is no number (LOW)"},
             {"mean(A, LOW)", LimitSubstitution::kZero, "5"},
             {"mean(A, LOW)", LimitSubstitution::kHalf, "5.005"},
             {"mean(A, LOW)", LimitSubstitution::kLimit, "5.01"},
             {"max(A, HIGH)", LimitSubstitution::kZero, "14"},
             {"min(A, LOST)", LimitSubstitution::kLimit,
              "not determinable at character 1: \"min\", because of a reading that is no number (LOST)"},
         })
        EXPECT_EQ(Answer(text, {substitution}), expected) << text;
    EXPECT_EQ(qel::LimitSubstitutionOf(NameOf(LimitSubstitution::kHalf)), LimitSubstitution::kHalf);
}

TEST(FormulaExact, StepsAreListedWithWhatHappened) {
    const std::string text = "(A - 1) / 7 + LOW";
    FormulaError error;
    std::vector<qel::ExactStep> steps;
    const std::optional<Formula> formula = Formula::Parse(text, Scope(), error);
    ASSERT_TRUE(formula && formula->EvaluateExactly(Readings(), {}, error, &steps));
    std::string all;
    for (const qel::ExactStep& step : steps)
        all += step.operation + (step.flags.isInexact ? "~" : "=") + step.result + "; ";
    EXPECT_EQ(all,
              "variable=10; number=1; -=9; number=7; /~1.285714285714285714285714285714286; variable=< 0.02; "
              "+=< 1.305714285714285714285714285714286; ");
    EXPECT_EQ(Line({steps[2].position, steps[2].length}), "3 1");
}

// Any numbers that the readings may be give a result that the interval has.
TEST(FormulaExact, EveryPossibleValueIsWithinTheInterval) {
    const std::vector<std::string> operations = {"+", "-", "*", "/"};
    std::mt19937_64 random(5);
    const auto pick = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    int limits = 0;
    for (int i = 0; i < 3000; ++i) {
        std::string text = "X";
        for (int k = 0; k < 3; ++k) {
            const std::string& operation = operations[static_cast<std::size_t>(pick(4))];
            const std::string operand = pick(3) == 0 ? "X" : std::to_string(pick(9) - 4);
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
    EXPECT_EQ(Line({reading.Text(), reading.isFromBinary, *reading.places}), "16.52 1 2");
}
