#include "qellib10/quantity/trace.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>

#include "../support/test.h"
#include "json_schema.h"
#include "qellib10/calc/calc_variable_list.h"
#include "qellib10/platform/json/json_value.h"
#include "qellib10/quantity/operation_name.h"
#include "qellib10/quantity/trace_phrases.h"

namespace {

using qel::Calculation;
using qel::Reading;
using qel::Trace;
using qel::UncertaintyComponent;

qel::CalculationInput Input(const std::string& name, const std::string& reading,
                            std::vector<UncertaintyComponent> components = {}) {
    return {name, *Reading::OfText(reading), "", "", std::move(components)};
}

// The titre of a solution by weighed potassium hydrogen phthalate, and an acid with it.
Calculation Acid() {
    Calculation calculation;
    calculation.result = {"ACID", "TITRE * VT / VA", ""};
    calculation.helpers = {{"TITRE", "1000 * M * P / (MW * VT1)", ""}};
    calculation.inputs = {
        Input("M", "0.3888", {*UncertaintyComponent::Standard(0.00013, "balance")}),
        Input("P", "1.0", {*UncertaintyComponent::Rectangular(0.0005)}),
        Input("MW", "204.2212", {*UncertaintyComponent::Standard(0.0038)}),
        Input("VT1", "18.64",
              {*UncertaintyComponent::Standard(0.01, "burette"), *UncertaintyComponent::Readings(0.012, 10)}),
        Input("VT", "14.89", {*UncertaintyComponent::Standard(0.01, "burette")}),
        Input("VA", "15", {*UncertaintyComponent::Certificate(0.022, 2)}),
    };
    calculation.inputs[0].origin = "balance 3";
    calculation.rule = qel::RoundingRule::ToUncertainty(qel::DecimalRounding::kHalfEven, 2);
    return calculation;
}

// The result in words, of inputs as CalculationInput::Of reads them.
std::string AnswerOf(const std::vector<std::pair<const char*, const char*>>& inputs,
                     std::vector<qel::CalculationFormula> helpers, const char* formula, const char* unit) {
    Calculation calculation;
    for (const auto& [name, text] : inputs) calculation.inputs.push_back(*qel::CalculationInput::Of(name, text));
    calculation.helpers = std::move(helpers);
    calculation.result = {"X", formula, unit};
    const Trace trace = Trace::Of(calculation);
    return trace.Fault() != nullptr ? trace.Fault()->name + ": " + trace.Fault()->sentence : trace.ResultText();
}

}  // namespace

TEST(Trace, HasTheResultWithItsUncertaintyAndEachStep) {
    const Trace trace = Trace::Of(Acid());
    ASSERT_EQ(trace.Fault(), nullptr);
    ASSERT_EQ(trace.Parts().size(), 2U);
    EXPECT_EQ(Line({trace.Parts()[0].name, trace.Parts()[1].name, trace.Parts()[0].steps.size()}), "TITRE ACID 9");
    EXPECT_EQ(trace.ResultWithUncertainty(), "0.10139 ± 0.00018 (k = 2.001)");
}

// The same computation in one formula: what the helper and the result have in common is correlated alike.
TEST(Trace, AHelperLosesNoCorrelation) {
    Calculation whole = Acid();
    whole.helpers.clear();
    whole.result.formula = "1000 * M * P / (MW * VT1) * VT / VA";
    const Trace parts = Trace::Of(Acid()), one = Trace::Of(whole);
    ASSERT_TRUE(parts.Result()->budget && one.Result()->budget);
    EXPECT_NEAR(parts.Result()->budget->uncertainty / one.Result()->budget->uncertainty, 1.0, 1e-12);
    EXPECT_EQ(parts.Result()->budget->degreesOfFreedom, one.Result()->budget->degreesOfFreedom);
    Calculation twice = Acid();
    twice.helpers.push_back({"AGAIN", "1000 * M * P / (MW * VT1)", ""});
    twice.result.formula = "TITRE - AGAIN + 1";
    EXPECT_NEAR(Trace::Of(twice).Result()->budget->uncertainty, 0.0, 1e-18);
}

// What is not known of a formula is not known of those that use it either.
TEST(Trace, AHelperLosesNoUncertainty) {
    Calculation calculation;
    calculation.helpers = {{"H", "sqrt(A)", ""}};
    calculation.result = {"X", "H + B", ""};
    calculation.inputs = {Input("A", "0", {*UncertaintyComponent::Standard(0.2)}),
                          Input("B", "2", {*UncertaintyComponent::Standard(0.1)})};
    const Trace unknown = Trace::Of(calculation);
    EXPECT_FALSE(unknown.Result()->budget);
    EXPECT_EQ(unknown.Remarks().back(), "no uncertainty of X: that of H is not known");
    calculation.helpers[0].formula = "A";
    calculation.inputs[1].components[0].source = "A/1";  // no name of a source makes it another one
    EXPECT_NEAR(Trace::Of(calculation).Result()->budget->uncertainty, std::hypot(0.2, 0.1), 1e-15);
    calculation = {};
    calculation.helpers = {{"H", "mean(A, 3)", ""}};
    calculation.result = {"X", "H * B", ""};
    calculation.substitution = qel::LimitSubstitution::kLimit;
    calculation.inputs = {Input("A", "< 2"), Input("B", "3", {*UncertaintyComponent::Standard(0.1)})};
    EXPECT_FALSE(Trace::Of(calculation).Result()->budget);
    calculation = {};
    calculation.helpers = {{"H", "A * 2", ""}};
    calculation.result = {"X", "H + 1", ""};
    calculation.inputs = {Input("A", "missing")};
    EXPECT_EQ(Trace::Of(calculation).ResultText(), "not determinable: A");
    calculation.inputs[0].origin = "\xFF";
    EXPECT_EQ(Trace::Of(calculation).Fault()->sentence, "a text is not UTF-8");
    calculation.helpers[0].formula = "A \xFF";
    EXPECT_EQ(Trace::Of(calculation).Fault()->sentence, "H: the formula is not UTF-8 at character 3");
    calculation = {};
    calculation.result = {"X", "const.u * 2", ""};
    EXPECT_TRUE(Trace::Of(calculation).Result()->budget);
}

TEST(Trace, RemarksWhereAnUncertaintyMeansLittle) {
    const auto answer = [](const char* helper, const char* formula, const char* value) {
        Calculation calculation;
        calculation.helpers = {{"H", helper, ""}};
        calculation.result = {"X", formula, ""};
        calculation.inputs = {Input("A", value, {*UncertaintyComponent::Standard(0.1)})};
        const Trace trace = Trace::Of(calculation);
        std::string text = trace.ResultWithUncertainty();
        for (const std::string& remark : trace.Remarks()) text += "; " + remark;
        return text;
    };
    const std::string branch =
        "; first order is not enough for the uncertainty of X: within it the formula takes another branch, bends or "
        "steps";
    EXPECT_EQ(answer("if(A > 0.3, 1, 2)", "H", "0.4"), "1 ± 0 (k = 2)" + branch);
    EXPECT_EQ(answer("1", "if(A > 0.3, 1, H + 1)", "0.4"), "1 ± 0 (k = 2)" + branch);
    EXPECT_EQ(answer("if(A > 0.3, 1, 2)", "H", "0.6"), "1 ± 0 (k = 2)");
    EXPECT_EQ(answer("A * A", "H", "0"), "0 ± 0 (k = 2)" + branch);
    EXPECT_EQ(answer("1E-400", "A * H", "2"), "2E-400; no uncertainty of X: H is below 1E-308");
    EXPECT_EQ(answer("1E-400", "round(A + H, 1)", "2"), "2.0 ± 0.20 (k = 2)");
}

TEST(Trace, ShowsNoLongRowOfZeros) {
    constexpr auto kHalfEven = qel::DecimalRounding::kHalfEven;
    const auto toTwoDigits = qel::RoundingRule::ToUncertainty(kHalfEven, 2),
               toTwoPlaces = qel::RoundingRule::ToPlaces(kHalfEven, 2);
    for (const auto& [formula, value, u, rule, expected] :
         Cases<const char*, const char*, double, std::optional<qel::RoundingRule>, const char*>{
             {"A", "1E+25", 1e22, {}, "(1 ± 0.0020)E+25 (k = 2)"},
             {"A", "1.00E-9", 1e-11, {}, "(1.00 ± 0.020)E-9 (k = 2)"},
             {"A", "1.00E-9", 0, {}, "1.00E-9"},
             {"A", "0", 1e-11, {}, "(0 ± 2.0)E-11 (k = 2)"},
             {"A", "2", 1e-11, {}, "2 ± 0.000000000020 (k = 2)"},
             {"1 / A - 1 / A", "3", 0, {}, "0"},
             {"A", "1.234E-26", 3e-28, toTwoDigits, "(1.234 ± 0.060)E-26 (k = 2)"},
             {"A", "1.234E-26", 0, toTwoPlaces, "0.00"},
             {"A", "1.234E-26", 3e-28, toTwoPlaces, "0.00 ± 6.0E-28 (k = 2)"},
             {"A - 3.00", "3", 0, {}, "0.00"},
         }) {
        Calculation calculation;
        calculation.result = {"X", formula, ""};
        calculation.inputs = {Input("A", value)};
        calculation.rule = rule;
        if (u > 0.0) calculation.inputs[0].components = {*UncertaintyComponent::Standard(u)};
        EXPECT_EQ(Trace::Of(calculation).ResultWithUncertainty(), expected);
    }
}

TEST(Trace, RemarksWhereItIsRoundedTwice) {
    Calculation calculation;
    calculation.rule = qel::RoundingRule::ToPlaces(qel::DecimalRounding::kHalfAwayFromZero, 1);
    calculation.inputs = {Input("A", "2.4495")};
    for (const auto& [formula, expected] :
         Cases<const char*, const char*>{{"A", "2.4 0"}, {"round(A, 2)", "2.5 1"}, {"round(A, 1)", "2.4 0"}}) {
        calculation.result = {"X", formula, ""};
        const Trace trace = Trace::Of(calculation);
        EXPECT_EQ(Line({trace.ResultText(), trace.Remarks().size()}), expected) << formula;
    }
}

TEST(Trace, FaultsNameTheFormulaAndThePlace) {
    const auto faultOf = [](auto change) {
        Calculation calculation = Acid();
        change(calculation);
        const Trace trace = Trace::Of(calculation);
        return trace.Fault() != nullptr ? trace.Fault()->name + ": " + trace.Fault()->sentence : trace.ResultText();
    };
    using Change = void (*)(Calculation&);
    for (const auto& [change, expected] : Cases<Change, const char*>{
             {[](Calculation& c) { c.result.formula = "TITRE * VT /"; },
              "ACID: the formula is not valid at its end: a number, a name or an opening bracket is expected"},
             {[](Calculation& c) { c.helpers[0].formula = "ACID"; },
              "TITRE: the formula needs its own result at character 1: \"ACID\": TITRE needs ACID needs TITRE"},
             {[](Calculation& c) { c.inputs[5].reading = *Reading::OfText("0"); },
              "ACID: a division by zero at character 12: \"/\""},
             {[](Calculation& c) { c.inputs[1].name = "m"; }, "m: two inputs have this name"},
             {[](Calculation& c) { c.inputs[1].name = ""; }, ": an input has no name"},
             {[](Calculation& c) { c.helpers[0].name = "VT"; }, "VT: an input or another formula has this name"},
             {[](Calculation& c) {
                  c.result.formula = "mean(TITRE, VA)";
                  c.inputs[5].reading = *Reading::OfText("< 15");
              },
              "ACID: not determinable at character 1: \"mean\", because of a reading that is no number: VA"},
             {[](Calculation& c) {
                  c.isKept = true;
                  c.result.formula = "2*";
              },
              "0"},
         })
        EXPECT_EQ(faultOf(change), expected);
}

TEST(Trace, ALimitHasNoBudgetAndSaysWhy) {
    Calculation calculation = Acid();
    calculation.inputs[4].reading = *Reading::OfText("< 0.3");
    calculation.rule = qel::RoundingRule::ToPlaces(qel::DecimalRounding::kHalfEven, 4);
    const Trace trace = Trace::Of(calculation);
    EXPECT_EQ(Line({trace.ResultWithUncertainty(), trace.Result()->withoutBudget}), "< 0.0021 VT is no number");
    EXPECT_NE(trace.Text(qel::TraceLanguage::kEnglish).find("After   < 0.0021"), std::string::npos);
}

TEST(Trace, IsComputedAgainWithTheSameDigits) {
    const std::string json = Trace::Of(Acid()).Json();
    std::string error;
    const std::optional<qel::TraceCheck> check = qel::CheckTrace(json, error);
    ASSERT_TRUE(check) << error;
    EXPECT_EQ(check->differences, std::vector<std::string>{});
    EXPECT_EQ(check->computed.Json(), json);
}

TEST(Trace, EveryChangedMemberIsADifferenceOrRefused) {
    const std::string json = Trace::Of(Acid()).Json();
    std::string error;
    std::vector<qel::JsonValue*> leaves;
    qel::JsonValue root = *qel::JsonValue::Parse(json, error);
    // The order of the members says nothing and hides nothing.
    const auto collect = [&](auto&& self, qel::JsonValue& value, const std::string& name) -> void {
        std::ranges::reverse(value.members);
        for (auto& item : value.items) self(self, item, name);
        for (auto& [member, inner] : value.members) self(self, inner, member);
        // Where a value is from nothing computes.
        const bool isLeaf = value.items.empty() && value.members.empty();
        if (isLeaf && name != "origin") leaves.push_back(&value);
    };
    collect(collect, root, "");
    EXPECT_GT(leaves.size(), 150U);
    EXPECT_EQ(qel::CheckTrace(root.Dump(), error)->differences, std::vector<std::string>{});
    for (qel::JsonValue* const leaf : leaves) {
        const qel::JsonValue before = *leaf;
        if (leaf->kind == qel::JsonValue::Kind::kNumber)
            *leaf = qel::JsonValue::Number(*leaf->Double() * 1.5 + 1.0);
        else if (leaf->kind == qel::JsonValue::Kind::kBoolean)
            leaf->isTrue = !leaf->isTrue;
        else
            leaf->text += 'x';
        const auto check = qel::CheckTrace(root.Dump(), error);
        EXPECT_TRUE(!check || !check->differences.empty()) << before.Dump();
        *leaf = before;
    }
}

// Without an input with a unit, that of the result is only shown.
TEST(Trace, UnitsAreCheckedAndConverted) {
    for (const auto& [formula, unit, a, b, expected] :
         Cases<const char*, const char*, const char*, const char*, const char*>{
             {"A / B", "mg/L", "5 mg", "20 mL", "250 mg/L"},
             {"A + B", "", "5 mL", "20 µL", "5.020 mL"},
             {"A / B", "", "5 mg", "20 mL", "0.25 mg/mL"},
             {"A - B", "", "25.0 °C", "20.0 °C", "5.0 K"},
             {"A / B", "%(m/m)", "5 mg", "2 g", "0.25 %(m/m)"},
             {"A", "mol/L", "5", "2", "5 mol/L"},
             {"A + B", "", "5 mL", "2 g",
              "X: the units do not go together at character 3: \"+\": mL and g cannot be added"},
             {"A", "mol", "5 mL", "2 g",
              "X: the units do not go together at character 1: \"A\": mL is not converted to mol"},
             {"A", "", "5 mLL", "2 g", "A: \"mLL\" is not a unit that is known"},
             {"A", "mLL", "5 mL", "2 g", "X: \"mLL\" is not a unit that is known"},
             {"A - B", "", "missing mL", "5 mL", "not determinable: A"},
             {"const.R * A", "kJ/mol", "298.15", "2",
              "X: the units do not go together at character 1: \"const.R * A\": J/(mol*K) is not converted to kJ/mol"},
         })
        EXPECT_EQ(AnswerOf({{"A", a}, {"B", b}}, {}, formula, unit), expected) << formula;
}

// Of g by g that a helper computed it is known that it may be a number; its unit says what it is.
TEST(Trace, AComputedRatioStaysOneInOtherFormulas) {
    for (const auto& [helper, helperUnit, formula, unit, expected] :
         Cases<const char*, const char*, const char*, const char*, const char*>{
             {"Q / R", "", "EP - BLANK * HELP", "", "11.875 mL"},
             {"Q / R", "", "EP - BLANK * (HELP - 1 + HELP)", "", "11.750 mL"},
             {"Q / R", "1", "EP - BLANK * HELP", "", "11.875 mL"},
             {"Q / R", "", "HELP", "%(m/m)", "125 %(m/m)"},
             {"Q / R", "", "HELP * 100", "%(v/v)",
              "X: the units do not go together at character 1: \"HELP * 100\": g/g is not converted to %(v/v)"},
             {"Q / R", "g/g", "EP - BLANK * HELP", "",
              "X: the units do not go together at character 4: \"-\": mL and L*(g/g) cannot be subtracted"},
             {"Q / R", "%(m/m)", "(Q - R) / R / T * HELP", "1/h",
              "X: the units do not go together at character 1: \"(Q - R) / R / T * HELP\": (g/g)*%(m/m)/h is not "
              "converted to 1/h"},
             {"(Q - R) / R", "", "HELP / T", "1/h", "0.125 1/h"},
             {"(Q - R) / (R * T)", "", "HELP", "1/h", "0.125 1/h"},
             {"BLANK * (Q / R)", "", "EP - HELP", "", "11.875 mL"},
             {"BLANK * (Q / R)", "mL", "EP - HELP", "", "11.875 mL"},
             {"W * Q", "", "EP - BLANK * (HELP / R)", "",
              "X: the units do not go together at character 4: \"-\": mL and L*%(m/m) cannot be subtracted"},
             {"W * Q", "g", "EP - BLANK * (HELP / R)", "", "12.46875 mL"},
         })
        EXPECT_EQ(
            AnswerOf(
                {{"EP", "12.5 mL"}, {"BLANK", "0.0005 L"}, {"Q", "5 g"}, {"R", "4 g"}, {"T", "2 h"}, {"W", "5 %(m/m)"}},
                {{"HELP", helper, helperUnit}}, formula, unit),
            expected)
            << helper << ' ' << formula;
}

// A difference of temperatures stays one in the formulas that use it, and a temperature stays one in K.
TEST(Trace, KelvinsStayWhatTheyAreInOtherFormulas) {
    const std::string refused = "X: the units do not go together at character ";
    const std::string difference =
        refused + "1: \"min(D, E)\": K is not converted to °C: K that was computed may be a difference";
    const std::string sum =
        refused + "3: \"+\": a temperature such as °C is only compared, or has K added or subtracted; use K";
    for (const auto& [helper, helperUnit, formula, unit, expected] :
         Cases<const char*, const char*, const char*, const char*, std::string>{
             {"A - B", "", "min(D, E)", "°C", difference},
             {"A - B", "K", "min(D, E)", "°C", difference},
             {"A", "K", "min(D, E)", "°C", "25.00 °C"},
             {"A", "K", "A + D", "", sum},
             {"A", "K", "A + E", "", sum},
             {"A", "K", "A + (D - E)", "", "25.00 °C"},
             {"A - B", "K", "A + D", "", "30 °C"},
         })
        EXPECT_EQ(AnswerOf({{"A", "25 °C"}, {"B", "20 °C"}}, {{"D", helper, helperUnit}, {"E", "mean(D, D)", ""}},
                           formula, unit),
                  expected)
            << helper << ' ' << formula;
}

TEST(Trace, RemarksOnUnitsThatArePossiblyWrong) {
    for (const auto& [value, formula, unit, expected] : Cases<const char*, const char*, const char*, const char*>{
             {"-500 °C", "A", "K", "A is below absolute zero"},
             {"-273.15 °C", "A", "K", ""},
             {"98 g/kg", "A * 100", "%(m/m)", "the formula of X has the number 100, and %(m/m) has this factor too"},
             {"98 g/kg", "A * 100", "ppm(m/m)", ""},
             {"98 g/kg", "A * 100", "g/g", ""},
         }) {
        Calculation calculation;
        calculation.result = {"X", formula, unit};
        calculation.inputs = {*qel::CalculationInput::Of("A", value)};
        const std::vector<std::string> remarks = Trace::Of(calculation).Remarks();
        EXPECT_EQ(remarks.empty() ? "" : remarks.front(), expected) << value << ' ' << formula;
    }
}

TEST(Trace, DecidesByWhatTheLimitsCompare) {
    using Rule = qel::DecisionRule;
    const auto decided = [](const char* reading, const char* upper, const Rule& rule, bool comparesRounded, double u) {
        Calculation calculation;
        calculation.result = {"X", "A", ""};
        calculation.inputs = {Input("A", reading)};
        if (u > 0.0) calculation.inputs[0].components = {*UncertaintyComponent::Standard(u)};
        calculation.uncertainty.coverageFactor = 2.0;
        calculation.rule = qel::RoundingRule::ToPlaces(qel::DecimalRounding::kHalfEven, 1);
        qel::DecimalFlags ignored;
        calculation.limits = {{}, qel::Decimal::OfText(upper, ignored), rule, comparesRounded};
        const Trace trace = Trace::Of(calculation);
        const auto& decision = trace.Decision();
        std::string shown = !decision ? "" : decision->isPassed ? "passed" : "failed";
        if (decision && decision->isUndecided) shown += ", undecided";
        if (decision && decision->byUncertainty)
            shown += ", " + std::to_string(std::lround(100 * decision->byUncertainty->conformity)) + " %";
        for (const std::string& remark : trace.Remarks()) shown += (shown.empty() ? "" : "; ") + remark;
        return shown;
    };
    for (const auto& [reading, upper, rule, comparesRounded, u, expected] :
         Cases<const char*, const char*, Rule, bool, double, const char*>{
             {"10.04", "10.0", Rule::SimpleAcceptance(), true, 0,
              "passed; rounding decides: the unrounded value has not passed"},
             {"10.04", "10.0", Rule::SimpleAcceptance(), false, 0, "failed"},
             {"10.00000000000000000001", "10", Rule::SimpleAcceptance(), false, 0, "failed"},
             {"9.9", "10", Rule::GuardedAcceptance(), false, 0,
              "no decision: a guard band needs the uncertainty of the result"},
             {"9.9", "10", Rule::GuardedAcceptance(), false, 0.1, "failed, undecided, 84 %"},
             {"0.2", "0.3", Rule::GuardedAcceptance(0.5), false, 0.1, "passed, 84 %"},
             {"10.00000000000000000001", "10", Rule::GuardedAcceptance(0), false, 0.1, "failed, 50 %"},
             {"10.1", "10", Rule::GuardedRejection(), false, 0.1, "passed, undecided, 16 %"},
             {"10.04", "10.02", Rule::GuardedAcceptance(), true, 0.01,
              "passed, 2 %; rounding decides: the unrounded value, which a guard band is for, has not passed"},
             {"< 9.9", "10", Rule::SimpleAcceptance(), false, 0, "passed"},
             {"< 10", "10", Rule::SimpleAcceptance(), false, 0, "passed"},
             {"< 11", "10", Rule::SimpleAcceptance(), false, 0, "failed, undecided"},
             {"> 10", "10", Rule::SimpleAcceptance(), false, 0, "failed"},
             {"< 0.161", "0.165", Rule::SimpleAcceptance(), true, 0,  // one place: 0.2
              "failed, undecided; rounding decides: the unrounded value has passed"},
             {"< 10.04", "10", Rule::SimpleAcceptance(), true, 0,
              "passed; rounding decides: the unrounded value has not passed"},
             {"< 10.15", "10.1", Rule::SimpleAcceptance(), true, 0,
              "passed; rounding decides: the unrounded value has not passed"},
             {"<= 10.15", "10.1", Rule::SimpleAcceptance(), true, 0, "failed, undecided"},
             {"> 10.05", "10", Rule::SimpleAcceptance(), true, 0, "failed"},
             {"> 0.54", "0.5", Rule::SimpleAcceptance(), true, 0, "failed, undecided"},
             {"missing", "10", Rule::SimpleAcceptance(), false, 0, "no decision: the result is no number and no limit"},
         })
        EXPECT_EQ(decided(reading, upper, rule, comparesRounded, u), expected) << reading;
}

TEST(Trace, TrialsSayWhetherFirstOrderIsEnough) {
    Calculation calculation;
    calculation.result = {"X", "A ^ 2", ""};
    calculation.trials = 20'000;
    for (const auto& [reading, isEnough] : Cases<const char*, bool>{{"10", true}, {"0.1", false}}) {
        calculation.inputs = {Input("A", reading, {*UncertaintyComponent::Standard(0.1)})};
        const Trace trace = Trace::Of(calculation, 2);
        ASSERT_TRUE(trace.FirstOrder()) << reading;
        EXPECT_EQ(trace.FirstOrder()->isEnough, isEnough) << reading;
        EXPECT_EQ(trace.Json(), Trace::Of(calculation, 1).Json());
    }
}

// Formula by formula, or all written into one, with the conversions and the rounding within the formulas.
TEST(Trace, TrialsComputeEachFormulaThatTheResultNeeds) {
    using Formulas = std::vector<qel::CalculationFormula>;
    Calculation calculation;
    calculation.inputs = {
        *qel::CalculationInput::Of("V", "16.519 mL", {*UncertaintyComponent::Standard(0.5, "burette", 5)}),
        *qel::CalculationInput::Of("V0", "25 uL", {*UncertaintyComponent::Standard(2, "burette", 5)}),
        *qel::CalculationInput::Of("C", "0.1002 mol/L", {*UncertaintyComponent::Rectangular(0.002)}),
        *qel::CalculationInput::Of("M", "1 g", {*UncertaintyComponent::Triangular(0.01)}), Input("K", "missing")};
    calculation.trials = 10'000;
    const auto tried = [&](const Formulas& helpers, const qel::CalculationFormula& result, bool isKept = false) {
        calculation.helpers = helpers;
        calculation.result = result;
        calculation.isKept = isKept;
        const Trace trace = Trace::Of(calculation, 3);
        std::string error;
        EXPECT_EQ(trace.Json(), Trace::Of(calculation).Json());
        EXPECT_EQ(qel::CheckTrace(trace.Json(), error)->differences, std::vector<std::string>{});
        return trace;
    };
    for (const auto& [helpers, result, written] : Cases<Formulas, qel::CalculationFormula, qel::CalculationFormula>{
             {{{"D", "V - V0", "mL"}, {"N", "D * C", "mmol"}}, {"X", "N / M", ""}, {"X", "(V - V0) * C / M", "mmol/g"}},
             {{{"D", "V - V0", ""}}, {"X", "D * C + D * C", "mmol"}, {"X", "(V - V0) * C + (V - V0) * C", "mmol"}},
             // What the result does not need, and a formula that needs the result, are no part of it.
             {{{"N", "X * K", ""}, {"L", "ln(K)", ""}, {"R", "round(V, 0)", ""}},
              {"X", "R", ""},
              {"X", "round(V, 0)", ""}},
         }) {
        const Trace parts = tried(helpers, result), one = tried({}, written);
        ASSERT_TRUE(parts.Trials() && one.Trials()) << parts.Text(qel::TraceLanguage::kEnglish);
        EXPECT_EQ(parts.Trials(), one.Trials()) << result.formula;
        EXPECT_TRUE(parts.FirstOrder());
    }
    calculation.inputs[4] = Input("X", "3", {*UncertaintyComponent::Standard(0.1)});
    for (qel::CalculationInput& input : calculation.inputs) input.unit.clear();
    const Trace kept =
        tried({{"H", "X * 2", ""}}, {"X", "H - X", ""}, true);  // the older grammar, with an input's name
    EXPECT_EQ(kept.Trials(), tried({}, {"Y", "X * 2 - X", ""}).Trials());
    EXPECT_EQ(tried({{"H", "V", ""}, {"J", "V", ""}}, {"Y", "H - J", ""}).Trials()->uncertainty, 0.0);
    calculation.inputs[0].reading = *Reading::OfText("< 16");
    EXPECT_EQ(tried({{"H", "V", ""}}, {"Y", "H + X", ""}).Remarks(),
              (std::vector<std::string>{"no uncertainty of H: V is no number", "no uncertainty of Y: H is no number",
                                        "no trials: the result has no uncertainty to first order"}));
}

// A coefficient is between inputs, whichever formulas name them.
TEST(Trace, CorrelatedInputsAreThoseOfAllFormulas) {
    Calculation one = Acid();
    one.inputs[2].components.push_back(*UncertaintyComponent::Rectangular(0.002));
    for (std::size_t i : {3U, 4U}) one.inputs[i].components = {*UncertaintyComponent::Standard(0.01)};
    one.uncertainty = {.coverageFactor = 2.0, .correlations = {{3, 4, 0.75}, {2, 5, -0.5}}};
    one.trials = 10'000;
    Calculation parts = one;
    one.helpers.clear();
    one.result.formula = "1000 * M * P / (MW * VT1) * VT / VA";
    const Trace whole = Trace::Of(one), byParts = Trace::Of(parts);
    ASSERT_TRUE(whole.Trials() && byParts.Trials());
    EXPECT_EQ(byParts.Trials(), whole.Trials());
    EXPECT_NEAR(byParts.Result()->budget->uncertainty / whole.Result()->budget->uncertainty, 1.0, 1e-12);
    EXPECT_EQ(byParts.Result()->budget->rows.back().name + byParts.Result()->budget->rows.back().source, "VAVA/1");
    std::string error;
    EXPECT_EQ(qel::CheckTrace(byParts.Json(), error)->differences, std::vector<std::string>{});
    parts.helpers[0].formula += " + 0 * abs(VT1 - 18.64)";  // its bend is reported for those that use it
    EXPECT_TRUE(Trace::Of(parts).Result()->budget->isAtKink);
    parts.inputs[4].components.clear();
    const Trace refused = Trace::Of(parts);
    ASSERT_NE(refused.Fault(), nullptr);
    EXPECT_EQ(refused.Fault()->name + ": " + refused.Fault()->sentence,
              "VT: a correlation coefficient is given for an input that has no uncertainty");
    EXPECT_EQ(qel::CheckTrace(refused.Json(), error)->differences, std::vector<std::string>{});
}

// Of those of another formula first order knows nothing but what was kept.
TEST(Trace, StepsOfAnotherFormulaAreSeenWhereItsArgumentCancels) {
    for (const auto& [formula, coefficient, expected] : Cases<const char*, double, bool>{
             {"B + A - R", 0.0, true},
             {"B + A - R", 0.5, true},
             {"B + A + R", 0.0, false},
             {"B + A + R", 0.5, false},
             {"B + S - R", 0.0, false},  // the steps cancel as well
             {"A - S", 0.0, true},
         }) {
        Calculation calculation;
        calculation.inputs = {Input("A", "1.0", {*UncertaintyComponent::Standard(0.3)}),
                              Input("B", "1", {*UncertaintyComponent::Standard(0.001)})};
        calculation.helpers = {{"R", "round(A, 1)", ""}, {"S", "R + 1", ""}};
        calculation.result = {"Y", formula, ""};
        calculation.uncertainty.coverageFactor = 2.0;
        if (coefficient != 0.0) calculation.uncertainty.correlations = {{0, 1, coefficient}};
        const Trace trace = Trace::Of(calculation);
        ASSERT_TRUE(trace.Result() && trace.Result()->budget) << formula;
        EXPECT_EQ(trace.Result()->budget->isAtKink, expected) << formula << coefficient;
    }
}

// The traces of each released version, by its number, are computed again by all later ones.
TEST(Trace, ThoseOfEveryVersionAreComputedAgain) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(QELLIB10_TEST_DATA "/traces")) {
        std::ostringstream json;
        json << std::ifstream(entry.path()).rdbuf();
        std::string error;
        const std::optional<qel::TraceCheck> check = qel::CheckTrace(json.str(), error);
        ASSERT_TRUE(check) << entry.path() << error;
        EXPECT_EQ(check->differences, std::vector<std::string>{}) << entry.path();
        ++count;
    }
    EXPECT_GE(count, 6);
}

TEST(Trace, JsonIsWhatItsSchemaSays) {
    std::ostringstream text;
    text << std::ifstream(QELLIB10_TRACE_SCHEMA).rdbuf();
    const JsonSchema schema(text.str());
    Calculation limit = Acid(), wrong = Acid();
    limit.inputs[4].reading = *Reading::OfText("< 0.3");
    limit.substitution = qel::LimitSubstitution::kHalf;
    wrong.result.formula = "TITRE / 0";
    Calculation decided = limit;
    decided.inputs[4].reading = *Reading::OfText("0.3");
    decided.limits = {qel::Decimal(0), qel::Decimal(1), qel::DecisionRule::GuardedAcceptance(), false};
    decided.trials = 10'000;
    Calculation fromList = Acid();
    CCalcVariableList list;
    CCalcVariable variable;
    variable.m_szName = "V";
    variable.m_dValue = 14.894;
    list.AddVariableData(variable);
    list.SetRoundUpFlag(1);
    list.SetRoundUpDigit(2);
    fromList.inputs[4].reading = ReadingsOf(list, qel::RoundedList::kAccept)->front();
    Calculation ofResult = Acid();
    ofResult.inputs[4].reading = *Reading::OfText("<= 0.3");
    ofResult.inputs[3].reading.isInexact = true;
    for (const Calculation& calculation : {Acid(), limit, wrong, decided, fromList, ofResult}) {
        std::string error;
        const std::string json = Trace::Of(calculation).Json();
        EXPECT_EQ(schema.Objection(*qel::JsonValue::Parse(json, error)), "");
        EXPECT_EQ(qel::CheckTrace(json, error)->differences, std::vector<std::string>{});
    }
}

// Whatever is computed can be computed again, and what cannot be kept is refused before that.
TEST(Trace, KeepsAllThatItsResultDependsOn) {
    using Change = void (*)(Calculation&);
    qel::ExactResult limit;
    limit.kind = qel::ExactResult::Kind::kBelow;
    limit.value = qel::Decimal(2);
    limit.cause = 1;
    const auto traced = [&](Change change) {
        Calculation calculation;
        calculation.result = {"X", "mean(A, B)", ""};
        calculation.inputs = {Input("A", "3", {*UncertaintyComponent::Standard(0.1)}), Input("B", "4")};
        calculation.substitution = qel::LimitSubstitution::kHalf;
        change(calculation);
        const Trace trace = Trace::Of(calculation);
        const std::string json = trace.Json();
        std::string error;
        const auto check = qel::CheckTrace(json, error);
        EXPECT_TRUE(json.empty() || (check && check->differences.empty())) << error;
        return (json.empty() ? "refused, " : "") + (trace.Fault() ? trace.Fault()->sentence : trace.ResultText());
    };
    static const Reading computed = Reading::OfResult(limit);
    static constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    static const std::string kStatement = "refused, an uncertainty is not what its own statement gives",
                             kLimit = "refused, a limit or its decision rule is not valid",
                             kFinite =
                                 "refused, a coverage factor, a coverage probability or a correlation is not a "
                                 "finite number",
                             kComputed =
                                 "not determinable at character 1: \"mean\", because of a computed limit, "
                                 "which has no substitute: A";
    for (const auto& [change, expected] : Cases<Change, std::string>{
             {[](Calculation& c) { c.inputs[0].reading = computed; }, kComputed},
             {[](Calculation& c) { c.inputs[0].reading.value = qel::Decimal::NotANumber(), c.result.formula = "A"; },
              "not determinable: A"},
             {[](Calculation& c) { c.inputs[0].reading.beforeRounding = qel::Decimal::NotANumber(); },
              "not determinable at character 1: \"mean\", because of a reading that is no number: A"},
             {[](Calculation& c) { c.uncertainty.withRows = false; }, "3.5"},
             {[](Calculation& c) { c.inputs[0].components[0].stated = 0; }, kStatement},
             {[](Calculation& c) { c.inputs[0].components[0].uncertainty = kNan; }, kStatement},
             {[](Calculation& c) {
                  c.inputs[0].components[0] = *UncertaintyComponent::Rectangular(0.1);
                  c.inputs[0].components[0].degreesOfFreedom = 5;
              },
              kStatement},
             {[](Calculation& c) {
                  c.uncertainty.correlations = {{0, 1, kNan}};
              },
              kFinite},
             {[](Calculation& c) { c.uncertainty.coverageFactor = kNan; }, kFinite},
             {[](Calculation& c) {
                  c.limits = {{}, qel::Decimal::NotANumber()};
              },
              kLimit},
             {[](Calculation& c) {
                  c.limits = {{}, qel::Decimal(1), qel::DecisionRule::GuardedAcceptance(-1)};
              },
              kLimit},
             {[](Calculation& c) { c.inputs[0].origin = "\xFF"; }, "refused, a text is not UTF-8"},
         })
        EXPECT_EQ(traced(change), expected);
}

// Nobody can change what a version says, not even its words.
TEST(Trace, IsOfAVersionThatIsKnownAndHasTheSameFault) {
    Calculation calculation = Acid();
    calculation.result.formula = "TITRE / 0";
    const std::string json = Trace::Of(calculation).Json();
    for (const auto& [before, after, expected] : Cases<const char*, const char*, const char*>{
             {"a division by zero", "no division by zero",
              "fault/sentence: \"no division by zero at character 7: \\\"/\\\"\" was recorded, "
              "\"a division by zero at character 7: \\\"/\\\"\" is computed"},
             {"\"division by zero\"", "\"undefined\"",
              "fault/kind: \"undefined\" was recorded, \"division by zero\" is computed"},
             {"\"10.0.0\"", "\"9.9.9\"", "\"9.9.9\" is no version that writes traces"},
             {"\"10.0.0\"", "\"99.0.0\"", "the trace is of version 99.0.0, which is later than this version, 10.0.0"},
         }) {
        std::string changed = json, error;
        changed.replace(changed.find(before), std::string(before).size(), after);
        const auto check = qel::CheckTrace(changed, error);
        EXPECT_EQ(check && !check->differences.empty() ? check->differences.front() : error, expected);
    }
}

// Whatever is computed can be computed again.
TEST(Trace, IsNeverTooLongToBeRead) {
    Calculation calculation;
    calculation.result = {"X", "H299", ""};
    for (std::size_t i = 0; i < Calculation::kMostHelpers; ++i) {
        const std::string name = std::to_string(i);
        calculation.inputs.push_back(Input("A" + name, "1", {*UncertaintyComponent::Standard(0.1)}));
        calculation.helpers.push_back({"H" + name, "A" + name + (i > 0 ? " + H" + std::to_string(i - 1) : ""), ""});
    }
    const Trace trace = Trace::Of(calculation);
    ASSERT_EQ(trace.Fault(), nullptr);
    std::string error;
    EXPECT_TRUE(qel::CheckTrace(trace.Json(), error)) << error;
    calculation.helpers.push_back({"H", "1", ""});
    EXPECT_NE(Trace::Of(calculation).Fault(), nullptr);
}

TEST(Trace, OfOtherTextsThereIsNone) {
    for (const char* json :
         {"", "{}", "[]", "{\"format\": \"qellib10-trace-1\"}",
          "{\"format\": \"qellib10-trace-1\", \"engine\": \"1\", \"calculation\": {}, \"outcome\": {}}",
          "{\"format\": \"qellib10-trace-1\", \"engine\": \"1\", \"calculation\": {\"result\": "
          "{\"name\": 1}}, \"outcome\": {}}"}) {
        std::string error;
        EXPECT_FALSE(qel::CheckTrace(json, error)) << json;
        EXPECT_NE(error, "") << json;
    }
}

TEST(Trace, IsReadInEnglishAndJapanese) {
    Calculation calculation = Acid();
    calculation.inputs[3].reading = Reading::OfDouble(18.64);
    const Trace trace = Trace::Of(calculation);
    const std::string english = trace.Text(qel::TraceLanguage::kEnglish),
                      japanese = trace.Text(qel::TraceLanguage::kJapanese);
    for (const char* text : {"Result: ACID", "TITRE = 1000 * M * P / (MW * VT1)", "balance 3", "was a binary number",
                             "rectangular, half-width 0.0005", "inexact", "half even, 2 digits of the uncertainty",
                             "Coverage factor k", "burette"})
        EXPECT_NE(english.find(text), std::string::npos) << text << "\n" << english;
    for (const char* text : {"結果: ACID", "二進数から変換", "拡張不確かさ U", "タイプ B、一様分布、半幅 0.0005",
                             "タイプ A、測定回数 10、標準偏差 0.012", "偶数への丸め、不確かさの有効数字 2 桁の位まで"})
        EXPECT_NE(japanese.find(text), std::string::npos) << text << "\n" << japanese;
}

TEST(Trace, ShowsCorrelationsTrialsAndUnits) {
    Calculation calculation;
    calculation.result = {"X", "A + B", ""};
    calculation.inputs = {*qel::CalculationInput::Of("A", "5 mg", {*UncertaintyComponent::Standard(1.5)}),
                          *qel::CalculationInput::Of("B", "6 mg", {*UncertaintyComponent::Standard(0.25)})};
    calculation.trials = 10'000;
    calculation.seed = 77;
    std::string text = Trace::Of(calculation).Text(qel::TraceLanguage::kEnglish);
    calculation.uncertainty.coverageFactor = 2.0;
    calculation.uncertainty.correlations = {{0, 1, -0.125}};
    const Trace correlated = Trace::Of(calculation);
    EXPECT_TRUE(correlated.FirstOrder() && correlated.FirstOrder()->isEnough);
    text += correlated.Text(qel::TraceLanguage::kEnglish);
    for (const char* shown : {"Trials  ", "10000\n", "Seed", "77\n", "95.45 % (shortest interval)", "1.5 mg", "0.25 mg",
                              "Before  11 mg", "Correlation coefficients\n", "A     B     -0.125\n"})
        EXPECT_NE(text.find(shown), std::string::npos) << shown << "\n" << text;
}

// Whatever a trace takes from elsewhere has a translation; names of inputs stay, also where they are words.
TEST(Trace, NoRuleAndNoOperationStaysEnglish) {
    using Rounding = qel::DecimalRounding;
    std::vector<std::string> texts;
    for (int i = 0; i <= static_cast<int>(qel::FormulaOperation::kGoOn); ++i)
        texts.emplace_back(qel::NameOf(static_cast<qel::FormulaOperation>(i)));
    for (const Rounding rounding :
         {Rounding::kHalfAwayFromZero, Rounding::kHalfEven, Rounding::kTowardZero, Rounding::kAwayFromZero})
        for (const qel::RoundingRule& rule :
             {qel::RoundingRule::ToPlaces(rounding, 2), qel::RoundingRule::ToDigits(rounding, 3),
              qel::RoundingRule::ToMultiple(rounding, qel::Decimal(5)), qel::RoundingRule::ToUncertainty(rounding, 2)})
            texts.push_back(rule.Name());
    for (const auto& made :
         {UncertaintyComponent::Readings(1, 2), UncertaintyComponent::Standard(1), UncertaintyComponent::Rectangular(1),
          UncertaintyComponent::Triangular(1), UncertaintyComponent::Certificate(1, 2)})
        texts.push_back(made->Statement());
    using qel::DecisionRule;
    for (const DecisionRule& rule :
         {DecisionRule::SimpleAcceptance(), DecisionRule::GuardedAcceptance(), DecisionRule::GuardedRejection()})
        texts.push_back(rule.Name());
    for (const std::string& text : texts) {
        const bool isWord = text.find_first_not_of("+-*/^<=>") != std::string::npos;
        EXPECT_EQ(qel::JapaneseOf(text) != text, isWord) << text;
    }
    for (const auto& [english, japanese] : Cases<const char*, const char*>{
             {"half even, 2 decimal places", "偶数への丸め、小数点以下 2 桁"},
             {"truncation, multiples of 0.05", "切捨て、0.05 の倍数"},
             {"guarded acceptance, w = 0.5 U", "ガードバンド付き受入れ、w = 0.5 U"},
             {"not determinable: limit", "決定できない: limit"},
             {"12 mL ± 1 mL (k = 2)", "12 mL ± 1 mL (k = 2)"},
         })
        EXPECT_EQ(qel::JapaneseOf(english), japanese);
}
