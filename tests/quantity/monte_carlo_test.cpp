#include "qellib10/quantity/monte_carlo.h"

#include <cmath>

#include "../support/test.h"
#include "uncertain_inputs.h"

namespace {

using qel::MonteCarloOptions;
using qel::MonteCarloResult;
using Component = qel::UncertaintyComponent;

std::optional<MonteCarloResult> Tried(const UncertainInputs& inputs, const std::string& text,
                                      const MonteCarloOptions& options, std::string* reason = nullptr) {
    qel::FormulaError error;
    auto result = qel::PropagateDistributions(inputs.Parsed(text), inputs.inputs, options, error);
    if (reason != nullptr) *reason = error.Text(text);
    return result;
}

qel::UncertainInput Between(const std::string& name, double low, double high) {
    return {name, (low + high) / 2, {Component::Rectangular((high - low) / 2).value()}};
}

std::vector<qel::UncertainInput> Four(double lastWidth) {
    const double root = std::sqrt(3.0);
    return {Between("A", -root, root), Between("B", -root, root), Between("C", -root, root),
            Between("D", -root * lastWidth, root * lastWidth)};
}

}  // namespace

// The examples of JCGM 101, 9.2 and 9.3: results, and where first order is not enough. Of the last one the guide has
// the shortest interval, which is not well determined; the symmetric one is that of 12,000,000 trials with numpy.
TEST(MonteCarlo, HasTheResultsOfTheGuide) {
    struct Case {
        const char* formula;
        std::vector<qel::UncertainInput> inputs;
        double mean, uncertainty, low, high, tolerance;
        bool isFirstOrderEnough;  // to two digits
    };
    for (const Case& c : {
             Case{"A + B + C + D",
                  {Input("A", 0, 1), Input("B", 0, 1), Input("C", 0, 1), Input("D", 0, 1)},
                  0,
                  2,
                  -3.92,
                  3.92,
                  0.015,
                  true},
             Case{"A + B + C + D", Four(1), 0, 2, -3.88, 3.88, 0.015, true},
             Case{"A + B + C + D", Four(10), 0, 10.15, -17.0, 17.0, 0.1, false},
             Case{"(MRC + DM) * (1 + (RA - 1.2) * (1 / RW - 1 / RR)) - 100000",
                  {Input("MRC", 100000, 0.05), Input("DM", 1.234, 0.02), Between("RA", 1.1, 1.3),
                   Between("RW", 7000, 9000), Between("RR", 7950, 8050)},
                  1.234,
                  0.0754,
                  1.0845,
                  1.3836,
                  0.0008,
                  false},
         }) {
        const UncertainInputs inputs(c.inputs);
        MonteCarloOptions options;
        options.coverageProbability = 0.95;
        const auto trials = Tried(inputs, c.formula, options);
        ASSERT_TRUE(trials) << c.formula;
        EXPECT_NEAR(trials->mean, c.mean, c.tolerance);
        EXPECT_NEAR(trials->uncertainty, c.uncertainty, c.tolerance);
        EXPECT_NEAR(trials->symmetric.low, c.low, c.tolerance);
        EXPECT_NEAR(trials->symmetric.high, c.high, c.tolerance);
        EXPECT_LE(trials->shortest.high - trials->shortest.low, trials->symmetric.high - trials->symmetric.low);
        qel::UncertaintyOptions firstOrder;
        firstOrder.coverageProbability = 0.95;
        qel::FormulaError error;
        const auto budget = qel::PropagateUncertainty(inputs.Parsed(c.formula), inputs.inputs, firstOrder, error);
        const auto check = qel::ValidateFirstOrder(*budget, *trials, 2);
        EXPECT_EQ(check->isEnough, c.isFirstOrderEnough) << c.formula;
    }
}

TEST(MonteCarlo, IsTheSameForAnyNumberOfThreads) {
    UncertainInputs inputs({Input("A", 10, 0.3), Input("B", 2, 0.1, "", 4), Between("C", 1, 2)});
    inputs.inputs[2].components.push_back(Component::Triangular(0.1).value());
    MonteCarloOptions options;
    options.trials = 30'001;
    const auto one = Tried(inputs, "A * B / C", options);
    for (const unsigned threads : {0U, 2U, 3U, 1000U}) {
        options.threads = threads;
        EXPECT_TRUE(Tried(inputs, "A * B / C", options) == one) << threads;
        // Conditions are evaluated trial by trial.
        EXPECT_TRUE(Tried(inputs, "if(A < 100, A * B / C, 0)", options) == one) << threads;
    }
    options.seed = 2;
    EXPECT_FALSE(Tried(inputs, "A * B / C", options) == one);
}

TEST(MonteCarlo, DrawsSourcesAndCorrelatedInputsTogether) {
    UncertainInputs inputs({Input("A", 1, 0.3, "flask"), Input("B", 1, 0.4, "flask"), Input("C", 1, 0.3),
                            Input("D", 1, 0.4), Input("E", 1, 1, "", 5), Input("F", 1, 0.1)});
    inputs.inputs[2].components.push_back(Component::Standard(0.4).value());
    MonteCarloOptions options;
    options.trials = 200'000;
    for (const auto& [formula, correlations, expected] : Cases<const char*, std::vector<qel::InputCorrelation>, double>{
             {"A + B", {}, 0.7},
             {"A - B", {}, 0.1},
             {"A / 3 - B / 4", {}, 0.0},
             {"C", {}, 0.5},
             {"D + F", {{3, 5, 0.5}}, std::sqrt(0.16 + 0.01 + 0.04)},
             {"D - 4 * F", {{3, 5, 1}}, 0.0},
             {"E", {}, std::sqrt(5.0 / 3)},  // Student's
             {"const.u * 1e27", {}, 5e-10},
         }) {
        options.correlations = correlations;
        const auto result = Tried(inputs, formula, options);
        EXPECT_NEAR(result->uncertainty, expected, 0.01 * expected + 1e-15) << formula;
    }
}

TEST(MonteCarlo, CountsTrialsThatHaveNoResult) {
    const UncertainInputs inputs({Input("A", 1, 1), Input("Z", -5, 0.1)});
    MonteCarloOptions options;
    options.trials = 100'000;
    const auto result = Tried(inputs, "ln(A)", options);
    EXPECT_NEAR(static_cast<double>(result->failed), 15'866, 600);
    EXPECT_EQ(result->trials + result->failed, options.trials);
    qel::FormulaError error;
    const auto budget = qel::PropagateUncertainty(inputs.Parsed("ln(A)"), inputs.inputs, {}, error);
    EXPECT_FALSE(qel::ValidateFirstOrder(*budget, *result)->isEnough);
    EXPECT_FALSE(qel::ValidateFirstOrder(*budget, *result, 3));
    options.coverageProbability = 0.9;
    EXPECT_FALSE(qel::ValidateFirstOrder(*budget, *Tried(inputs, "ln(A)", options)));
    std::string reason;
    EXPECT_FALSE(Tried(inputs, "ln(Z)", options, &reason));
    EXPECT_EQ(reason, "the uncertainty cannot be computed, because of trials for which the formula is not defined");
}

TEST(MonteCarlo, RefusesOptionsThatAreNotValid) {
    const UncertainInputs inputs({Input("A", 1, 1)});
    for (const auto& [trials, probability, correlations] :
         Cases<std::size_t, double, std::vector<qel::InputCorrelation>>{{0, 0.95, {}},
                                                                        {1, 0.95, {}},
                                                                        {9, 0.95, {}},
                                                                        {1'000'000'000, 0.95, {}},
                                                                        {1000, 1.0, {}},
                                                                        {1000, NAN, {}},
                                                                        {1000, 0.9, {{0, 5, 1}}}}) {
        MonteCarloOptions options;
        options.trials = trials;
        options.coverageProbability = probability;
        options.correlations = correlations;
        std::string reason;
        EXPECT_FALSE(Tried(inputs, "A", options, &reason)) << trials << " " << probability;
        EXPECT_TRUE(reason.starts_with("the uncertainty cannot be computed")) << reason;
    }
    EXPECT_FALSE(Tried(inputs, "A > 1", {}));
    MonteCarloOptions few;
    few.trials = 100;
    EXPECT_TRUE(Tried(inputs, "A", few));
}
