#include "qellib10/quantity/uncertainty_budget.h"

#include <array>
#include <charconv>
#include <cmath>

#include "../support/test.h"
#include "qellib10/platform/failure.h"
#include "uncertain_inputs.h"

namespace {

using Component = qel::UncertaintyComponent;

std::string Shown(double value, std::chars_format format, int digits) {
    std::array<char, 40> shown;
    return {shown.data(), std::to_chars(shown.data(), shown.data() + shown.size(), value, format, digits).ptr};
}
std::string Digits(double value, int digits) { return Shown(value, std::chars_format::general, digits); }
std::string Places(double value, int places) { return Shown(value, std::chars_format::fixed, places); }

// u, degrees of freedom, k and U, or the error in words.
std::string Shown(const UncertainInputs& inputs, const std::string& text, const qel::UncertaintyOptions& options = {}) {
    qel::FormulaError error;
    const auto budget = qel::PropagateUncertainty(inputs.Parsed(text), inputs.inputs, options, error);
    if (!budget) return error.Text(text);
    return Digits(budget->uncertainty, 6) + " " +
           (budget->degreesOfFreedom ? Digits(*budget->degreesOfFreedom, 6) : std::string("undefined")) + " " +
           Digits(budget->coverageFactor, 5) + " " + Digits(budget->expandedUncertainty, 6);
}

}  // namespace

TEST(UncertaintyComponent, IsMadeOfWhatIsStated) {
    using Made = std::optional<Component>;
    for (const auto& [made, uncertainty, degrees, statement] : Cases<Made, const char*, double, const char*>{
             {Component::Readings(0.6, 9), "0.2", 8, "Type A, 9 readings, standard deviation 0.6"},
             {Component::Standard(0.5, "s", 7), "0.5", 7, "Type B, standard uncertainty 0.5"},
             {Component::Rectangular(0.3), "0.173205", INFINITY, "Type B, rectangular, half-width 0.3"},
             {Component::Triangular(0.6), "0.244949", INFINITY, "Type B, triangular, half-width 0.6"},
             {Component::Certificate(0.3, 2), "0.15", INFINITY, "Type B, certificate, U = 0.3, k = 2"},
             {Component::Rectangular(0.3)->Opposed(), "-0.173205", INFINITY, "Type B, rectangular, half-width 0.3"},
         }) {
        ASSERT_TRUE(made) << statement;
        EXPECT_EQ(Line({Digits(made->uncertainty, 6), made->degreesOfFreedom, made->Statement()}),
                  Line({uncertainty, degrees, statement}));
    }
    const auto input = qel::UncertainInput::OfReadings("V", std::vector{10.1, 10.3, 10.2, 10.2}, "burette");
    ASSERT_TRUE(input);
    EXPECT_EQ(Line({Digits(input->value, 6), Digits(input->components[0].uncertainty, 4)}), "10.2 0.04082");
}

TEST(UncertaintyComponent, IsRefusedWithTheReason) {
    using Made = std::optional<Component>;
    const std::string negative = "an uncertainty that is negative or not finite";
    for (const auto& [make, reason] : Cases<Made (*)(), std::string>{
             {[] { return Component::Readings(0.1, 1); }, "less than two readings"},
             {[] { return Component::Readings(-0.1, 3); }, negative},
             {[] { return Component::Standard(NAN); }, negative},
             {[] { return Component::Standard(0.1, "", 0.5); }, "less than one degree of freedom"},
             {[] { return Component::Rectangular(-1e-9); }, negative},
             {[] { return Component::Triangular(INFINITY); }, negative},
             {[] { return Component::Certificate(0.1, 0); }, "a coverage factor not above 0"},
             {[] { return Component::Certificate(1e300, 1e-300); }, "an uncertainty that is too large"},
         }) {
        EXPECT_FALSE(make());
        EXPECT_EQ(qel::LastFailure().text, reason);
    }
    EXPECT_FALSE(qel::UncertainInput::OfReadings("V", std::vector{1.0, double{NAN}}));
    EXPECT_FALSE(qel::UncertainInput::OfReadings("V", {}));
}

// Worked examples of the guide of Eurachem and CITAC, the third in its form, to the digits shown there.
TEST(UncertaintyBudget, HasTheResultsOfWorkedExamples) {
    const auto rectangular = [](const char* name, double value, double halfWidth) {
        return qel::UncertainInput{name, value, {Component::Rectangular(halfWidth).value()}};
    };
    struct Case {
        const char* formula;
        std::vector<qel::UncertainInput> inputs;
        int places;
        const char* expected;
    };
    for (const Case& c : {
             Case{"1000 * m * P / V",
                  {Input("m", 100.28, 0.05), rectangular("P", 0.9999, 0.0001), Input("V", 100.0, 0.07)},
                  1,
                  "1002.7 0.9"},
             Case{"1000 * m * P / (KHP * V) * rep",
                  {Input("m", 0.3888, 0.00013), rectangular("P", 1.0, 0.0005), Input("KHP", 204.2212, 0.0038),
                   Input("V", 18.64, 0.013), Input("rep", 1, 0.0005)},
                  5,
                  "0.10214 0.00010"},
             Case{"1000 * m * P * V2 / (V1 * KHP * V) * rep",
                  {Input("m", 0.3888, 0.00013), Input("P", 1.0, 0.00029), Input("V2", 14.89, 0.015),
                   Input("V1", 18.64, 0.016), Input("KHP", 204.2212, 0.0038), Input("V", 15, 0.011),
                   Input("rep", 1, 0.001)},
                  6,
                  "0.101387 0.000189"},
         }) {
        const UncertainInputs inputs(c.inputs);
        qel::FormulaError error;
        const auto budget = qel::PropagateUncertainty(inputs.Parsed(c.formula), inputs.inputs, {}, error);
        ASSERT_TRUE(budget) << error.Text(c.formula);
        EXPECT_EQ(Places(budget->value, c.places) + " " + Places(budget->uncertainty, c.places), c.expected);
        double shares = 0.0;
        for (const qel::UncertaintyRow& row : budget->rows) shares += row.share;
        EXPECT_NEAR(shares, 1.0, 1e-14);
    }
}

TEST(UncertaintyBudget, CombinesSourcesNotInputs) {
    UncertainInputs inputs({Input("A", 1, 0.3, "flask", 4), Input("B", 1, 0.4, "flask", 4), Input("C", 1, 0.3, "", 4),
                            Input("D", 1, 0.4, "", 4), Input("E", 2, 0), Input("Z", 0, 0.5),
                            Input("G", 1, 0.1, "", 2.5), Input("X", 5.3, 0.1), Input("P", 1, 0.1, "scale"),
                            Input("Q", 2, 0.3, "scale")});
    inputs.inputs.push_back({"H", 1, {Component::Standard(0.3, "flask", 4)->Opposed()}});
    inputs.scope.Add("H");
    for (const auto& [formula, expected] : Cases<const char*, const char*>{
             {"C + D", "0.5 7 2.4288 1.2144"},    // 7.42 is cut
             {"A + B", "0.7 4 2.8693 2.00852"},   // one source: the uncertainties add up
             {"B - A", "0.1 4 2.8693 0.286932"},  //
             {"A + H", "0 inf 2 0"},              // moved in opposite directions
             {"A - H", "0.6 4 2.8693 1.72159"},   //
             {"C - C", "0 inf 2 0"},              //
             {"C + C", "0.6 4 2.8693 1.72159"},   //
             {"(X * 3) / (X * 7)", "0 inf 2 0"},  // not the rounding of double
             {"exp(ln(X)) - X", "0 inf 2 0"},     //
             {"3 * P - Q", "0 inf 2 0"},          //
             {"exp(1e-10 * X) - 1e-10 * X", "5.3e-21 inf 2 1.06e-20"},
             {"E * 2", "0 inf 2 0"},                //
             {"G", "0.1 2 4.5266 0.452655"},        //
             {"abs(Z)", "0.5 inf 2 1"},             //
             {"max(0, Z)", "0.25 inf 2 0.500001"},  // equal operands share
             {"round(C * 1.23456, 1)", "0.370368 4 2.8693 1.0627"},
             {"if(Z < 1, C, D)", "0.3 4 2.8693 0.860795"},
             {"sqrt(Z)", "the result is not defined at character 1: \"sqrt\""},
             {"sqrt(0) + C", "0.3 4 2.8693 0.860795"},
             {"max(1, sqrt(Z)) + C", "0.3 4 2.8693 0.860795"},
             {"Z ^ 2 + C", "0.3 4 2.8693 0.860795"},
             {"C < D", "a number is needed at character 1"},
             {"const.u * 1e27", "5e-10 inf 2 1e-09"},
         })
        EXPECT_EQ(Shown(inputs, formula), expected) << formula;
}

TEST(UncertaintyBudget, ABendWithinTheUncertaintyIsSeen) {
    UncertainInputs inputs({Input("A", 1, 0.3), Input("B", 1.5, 0.4), Input("E", 2, 0), Input("Z", 0, 0.5)});
    for (const auto& [formula, expected] : Cases<const char*, bool>{
             {"if(A > 0.5, 1, 2)", true},
             {"if(A > 0.3, 1, 2)", false},
             {"if(A = 1, 1, 2)", true},
             {"if(E = 2, A, 2)", false},
             {"if(A > 5 or Z > 0.9, 1, 2)", true},
             {"if(A - A < 0.1, 1, 2)", false},
             {"if(sqrt(Z) > 1, 1, 2)", true},
             {"min(E, A, B)", true},
             {"max(A, E)", false},
             {"abs(A - 0.5)", true},
             {"abs(A)", false},
             {"Z * Z", true},
             {"Z - Z", false},
             {"A + Z * Z", true},
             {"100 * A + Z * Z", false},
             {"A * Z", false},
             {"(A - A + Z - Z) * B", false},
             {"(B - A - 0.5) ^ 2", true},
             {"(E - 2) * A", false},
             {"round(A, 0)", true},
             {"round(10 * A, 5, half_even, multiple)", true},
             {"round(A, 3)", false},
             {"round(E, 0) * A", false},
             {"round(A, 1) + 0 * B", false},
             {"A - round(A, 1)", true},  // the argument cancels, its steps are left
             {"1e-3 * B + A - round(A, 1)", true},
             {"B + A - round(A, 1)", false},
             {"A / round(10 * A, 0)", true},
             {"B + round(A - A, 0)", false},
         }) {
        qel::FormulaError error;
        const auto budget = qel::PropagateUncertainty(inputs.Parsed(formula), inputs.inputs, {}, error);
        ASSERT_TRUE(budget) << error.Text(formula);
        EXPECT_EQ(budget->isAtKink, expected) << formula;
    }
}

TEST(UncertaintyBudget, IsNotWhatAnUnderflowHasLeft) {
    UncertainInputs inputs({Input("A", 1, 0.25), Input("S", 1e-200, 1e-200), Input("T", 1, 1e-310)});
    for (const char* formula :
         {"S * S", "(S * S) ^ 2 * 1e300", "exp(-800 * A)", "1e-400 * A", "S / 1e200", "A ^ 0 * S ^ 2", "T"})
        EXPECT_EQ(Shown(inputs, formula), "the uncertainty cannot be computed, because of numbers below 1E-308")
            << formula;
    EXPECT_EQ(Shown(inputs, "A + exp(-800 * A) + S * S + T"), "0.25 inf 2 0.500001");
    EXPECT_EQ(Shown(inputs, "S * 1e200"), "1 inf 2 2");
}

TEST(UncertaintyBudget, TakesCorrelationCoefficientsWithK) {
    UncertainInputs inputs({Input("A", 10, 0.3),
                            Input("B", 20, 0.4),
                            Input("C", 1, 0.1, "flask"),
                            Input("D", 1, 0.1, "flask"),
                            {"E", 1, {}}});
    qel::UncertaintyOptions options;
    const auto shown = [&](const char* formula, std::vector<qel::InputCorrelation> correlations) {
        options.correlations = std::move(correlations);
        return Shown(inputs, formula, options);
    };
    EXPECT_EQ(shown("A + B", {{0, 1, 0.5}}),
              "the uncertainty cannot be computed, because of degrees of freedom that a "
              "correlation coefficient makes undefined: k has to be given");
    EXPECT_EQ(shown("A + C", {{0, 1, 0.5}}), "0.316228 inf 2 0.632456");  // B has no part
    options.coverageFactor = 2;
    for (const auto& [formula, correlations, expected] :
         Cases<const char*, std::vector<qel::InputCorrelation>, const char*>{
             {"A + B", {{0, 1, 0.5}}, "0.608276 undefined 2 1.21655"},
             {"A + B", {{1, 0, 1}}, "0.7 undefined 2 1.4"},
             {"A - B", {{0, 1, 1}}, "0.1 undefined 2 0.2"},
             {"A + B + C", {{0, 1, -0.9}, {0, 2, 0.2}}, "0.236643 undefined 2 0.473286"},
             {"A + B",
              {{0, 1, 1.1}},
              "the uncertainty cannot be computed, because of a correlation coefficient that is not within -1 and 1"},
             {"A + B",
              {{0, 0, 1}},
              "the uncertainty cannot be computed, because of a correlation of inputs that are not there or the same"},
             {"A + B",
              {{0, 7, 1}},
              "the uncertainty cannot be computed, because of a correlation of inputs that are not there or the same"},
             {"A + B",
              {{0, 1, 0.5}, {1, 0, 0.4}},
              "the uncertainty cannot be computed at character 1: \"A\", because of two correlation coefficients of "
              "the "
              "same inputs"},
             {"A + B + C",
              {{0, 1, 0.9}, {0, 2, 0.9}, {1, 2, -0.9}},
              "the uncertainty cannot be computed at character 1: \"A\", because of correlation coefficients that "
              "contradict each other"},
             {"A + B + C",
              {{0, 1, 1}, {1, 2, 0.5}},
              "the uncertainty cannot be computed at character 1: \"A\", because of correlation coefficients that "
              "contradict each other"},
             {"A + E",
              {{0, 4, 0.5}},
              "the uncertainty cannot be computed at character 5: \"E\", because of a correlation coefficient of an "
              "input "
              "that has no uncertainty"},
             {"A + C + D",
              {{0, 2, 0.5}},
              "the uncertainty cannot be computed at character 9: \"D\", because of a common source of an input that "
              "has "
              "a correlation coefficient"},
         })
        EXPECT_EQ(shown(formula, correlations), expected) << formula;
    options.correlations = {{0, 1, 0.5}};
    qel::FormulaError error;
    const auto budget = qel::PropagateUncertainty(inputs.Parsed("A - B"), inputs.inputs, options, error);
    // Covariances 0.09 - 0.06 and 0.16 - 0.06 of 0.13.
    EXPECT_EQ(Line({Digits(budget->rows[0].share, 5), Digits(budget->rows[1].share, 5)}), "0.23077 0.76923");
    EXPECT_FALSE(budget->coverageProbability);
}

TEST(UncertaintyBudget, RefusesWhatIsNotValid) {
    UncertainInputs inputs(
        {Input("A", 1, 0.1, "s"), Input("B", 1, 0.1, "s", 5), Input("C", 1, 1e200), Input("N", NAN, 1)});
    inputs.inputs[2].components[0].degreesOfFreedom = 0.0;
    qel::UncertaintyOptions options;
    EXPECT_EQ(Shown(inputs, "A + B"),
              "the uncertainty cannot be computed at character 5: \"B\", because of a source with "
              "two distributions or degrees of freedom");
    EXPECT_EQ(Shown(inputs, "1 + C"),
              "the uncertainty cannot be computed at character 5: \"C\", because of less than one "
              "degree of freedom");
    inputs.inputs[2].components[0].degreesOfFreedom = 5;
    EXPECT_EQ(Shown(inputs, "C / 1e200"), "1 5 2.6487 2.64865");
    EXPECT_EQ(Shown(inputs, "C * 1e200"), "the number is too large at character 1");
    EXPECT_EQ(Shown(inputs, "A + N"), "not determinable at character 5: \"N\", because of a value that is not finite");
    for (const auto& [probability, factor] : Cases<double, std::optional<double>>{
             {0.0, {}}, {1.0, {}}, {NAN, {}}, {0.95, 0.0}, {0.95, -2.0}, {0.95, INFINITY}}) {
        options.coverageProbability = probability;
        options.coverageFactor = factor;
        EXPECT_TRUE(Shown(inputs, "A", options).starts_with("the uncertainty cannot be computed")) << probability;
    }
    qel::FormulaError error;
    EXPECT_FALSE(qel::PropagateUncertainty(inputs.Parsed("A + B"), std::span(inputs.inputs).first(1), {}, error));
    EXPECT_EQ(error.kind, qel::FormulaError::Kind::kReading);
}
