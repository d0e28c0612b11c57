#include "qellib10/quantity/formula_set.h"

#include <algorithm>

#include "../support/test.h"
#include "uncertain_inputs.h"

namespace {

using qel::FormulaSet;
using qel::Reading;

using Named = std::vector<std::pair<std::string, std::string>>;

FormulaSet SetOf(const Named& formulas) {
    qel::FormulaScope scope;
    scope.Add("V");
    scope.Add("LOW");
    FormulaSet set(scope);
    for (const auto& [name, text] : formulas) EXPECT_TRUE(set.Add(name, text)) << name;
    return set;
}

// The results, or what is wrong.
std::string Answer(const Named& formulas) {
    FormulaSet set = SetOf(formulas);
    const auto told = [&](const FormulaSet::Fault& fault) {
        return formulas[fault.formula].first + ": " + fault.error.Text(formulas[fault.formula].second);
    };
    if (const auto fault = set.Parse()) return told(*fault);
    FormulaSet::Fault fault;
    const auto results = set.EvaluateExactly(std::vector{*Reading::OfText("6"), *Reading::OfText("< 0.3")},
                                             {qel::LimitSubstitution::kHalf}, fault);
    if (!results) return told(fault);
    std::string all;
    for (const qel::ExactResult& result : *results) all += result.Text() + (result.flags.isInexact ? "~; " : "; ");
    return all;
}

}  // namespace

TEST(FormulaSet, ComputesEachFormulaAfterThoseThatItNeeds) {
    for (const auto& [formulas, expected] : Cases<Named, const char*>{
             {{{"SUM", "half + V"}, {"Half", "V / 2"}}, "9; 3; "},
             {{{"T", "V / 9"}, {"U", "T * 3"}},
              "0.6666666666666666666666666666666667~; 2.000000000000000000000000000000000~; "},
             {{{"T", "LOW * 2"}, {"U", "10 - T"}, {"W", "U * T"}}, "< 0.6; > 9.4; not determinable; "},
             {{{"T", "mean(LOW, V)"}}, "3.075; "},
             {{{"T", "LOW"}, {"U", "mean(T, V)"}},
              "U: not determinable at character 1: \"mean\", because of a computed limit, which has no substitute"},
             {{{"A", "B + 1"}, {"B", "C + 1"}, {"C", "A + V"}},
              "A: the formula needs its own result at character 1: \"B\": A needs B needs C needs A"},
             {{{"X", "Y"}, {"Y", "V + Y"}}, "Y: the formula needs its own result at character 5: \"Y\": Y needs Y"},
             {{{"OK", "V > 1"}, {"X", "1 + OK"}}, "X: a number, not a condition, is needed at character 5: \"OK\""},
             {{{"X", "V +"}, {"Y", "X"}},
              "X: the formula is not valid at its end: a number, a name or an opening bracket is expected"},
             {{{"X", "V - 6"}, {"Y", "1 / X"}}, "Y: a division by zero at character 3: \"/\""},
         })
        EXPECT_EQ(Answer(formulas), expected);
}

TEST(FormulaSet, NamesAreThoseOfOneFormulaOrVariable) {
    FormulaSet set = SetOf({{"A", "V"}});
    for (const char* name : {"a", "v", ""}) EXPECT_FALSE(set.Add(name, "1")) << name;
}

TEST(FormulaSet, ALongChainNeedsNoDeepStack) {
    Named chain;
    for (int i = 0; i < 20'000; ++i) chain.emplace_back("F" + std::to_string(i), "F" + std::to_string(i + 1) + " + 1");
    Named cycle = chain;
    chain.emplace_back("F20000", "V");
    EXPECT_TRUE(Answer(chain).starts_with("20006; 20005; "));
    cycle.emplace_back("F20000", "F0");
    EXPECT_TRUE(Answer(cycle).ends_with("needs ... needs F0")) << Answer(cycle);
}

// Of the formulas with the last one as the result, and of the one that has the others written into it: bit for bit.
TEST(FormulaSet, TriesAFormulaAsIfTheOthersWereWrittenIntoIt) {
    UncertainInputs inputs(
        {Input("A", 10, 0.3, "s", 4), Input("B", 2, 0.1, "s", 4), Input("C", 1, 0.4), Input("D", 5, 0)});
    inputs.inputs[2].components.push_back(*qel::UncertaintyComponent::Rectangular(0.1));
    std::string sums = "C", shifts;
    for (int i = 0; i < 600; ++i) shifts += " + 0";
    for (int i = 0; i < 20; ++i) sums = "C + (" + sums + ")";  // needs a stack of its own
    qel::MonteCarloOptions options;
    options.trials = 10'001;
    options.correlations = {{2, 0, 0.0}};
    for (const auto& [formulas, written] : Cases<Named, std::string>{
             {{{"H", "A / B"}, {"X", "H * C"}}, "A / B * C"},
             {{{"H", "A / B"}, {"X", "C * H"}}, "C * (A / B)"},
             {{{"X", "C - G * H"}, {"G", "H + 1"}, {"H", "A - 2 * B"}}, "C - (A - 2 * B + 1) * (A - 2 * B)"},
             {{{"G", "A"}, {"H", "A"}, {"X", "G - H + B"}}, "A - A + B"},
             {{{"G", "2.5"}, {"H", "-B"}, {"X", "max(G, H, C) * mean(H, G, G)"}},
              "max(2.5, -B, C) * mean(-B, 2.5, 2.5)"},
             {{{"G", "round(A, 1)"}, {"H", "round(G * B, 2, half_even)"}, {"X", "H + G"}},
              "round(round(A, 1) * B, 2, half_even) + round(A, 1)"},
             {{{"G", "if(A > 10, B, C)"}, {"H", "if(G < 1 or C > 1, G, 2 * G)"}, {"X", "if(H > 1, H - G, 1)"}},
              "if(if(if(A > 10, B, C) < 1 or C > 1, if(A > 10, B, C), 2 * if(A > 10, B, C)) > 1, "
              "if(if(A > 10, B, C) < 1 or C > 1, if(A > 10, B, C), 2 * if(A > 10, B, C)) - if(A > 10, B, C), 1)"},
             {{{"G", "const.u * A"}, {"H", "G * const.u"}, {"X", "const.u * H * B"}},
              "const.u * (const.u * A * const.u) * B"},
             {{{"G", sums}, {"H", "if(B > 2, G, -G)"}, {"X", "A * H + G"}},
              "A * if(B > 2, " + sums + ", -(" + sums + ")) + (" + sums + ")"},
             {{{"G", "A" + shifts}, {"X", "G * B" + shifts}}, "(A" + shifts + ") * B" + shifts},
         }) {
        FormulaSet set(inputs.scope);
        for (const auto& [name, text] : formulas) set.Add(name, text);
        ASSERT_FALSE(set.Parse());
        const auto whole =
            static_cast<std::size_t>(std::ranges::find(formulas, "X", &Named::value_type::first) - formulas.begin());
        qel::FormulaError error;
        const auto one = qel::PropagateDistributions(inputs.Parsed(written), inputs.inputs, options, error);
        ASSERT_TRUE(one) << error.Text(written);
        for (const unsigned threads : {1U, 3U}) {
            options.threads = threads;
            EXPECT_EQ(set.Try(whole, inputs.inputs, options, error), one) << written;
        }
        const auto budget = set.Propagate(whole, inputs.inputs, {}, error);
        const auto budgetOfOne = qel::PropagateUncertainty(inputs.Parsed(written), inputs.inputs, {}, error);
        EXPECT_EQ(budget->value, budgetOfOne->value);
        EXPECT_NEAR(budget->uncertainty, budgetOfOne->uncertainty, 1e-14 * budgetOfOne->uncertainty) << written;
        EXPECT_EQ(Line({budget->rows.size(), budget->isAtKink}),
                  Line({budgetOfOne->rows.size(), budgetOfOne->isAtKink}));
    }
}

TEST(FormulaSet, TrialsHaveNoResultWhereOneThatIsNeededHasNone) {
    UncertainInputs inputs({Input("A", 1, 1), Input("B", 2, 0.1), Input("C", 3, 0.1, "s"), Input("E", 1, 0)});
    inputs.inputs[3].components.clear();
    qel::MonteCarloOptions options;
    options.trials = 10'000;
    // The failed trials of the last formula, its uncertainty, or why there is none.
    const auto tried = [&](const Named& formulas, std::size_t given = 4) {
        FormulaSet set(inputs.scope);
        for (const auto& [name, text] : formulas) set.Add(name, text);
        static_cast<void>(set.Parse());
        qel::FormulaError error;
        const auto result = set.Try(formulas.size() - 1, std::span(inputs.inputs).first(given), options, error);
        return result ? Line({result->failed, result->uncertainty}) : error.Text(formulas.back().second);
    };
    std::string zeros;
    for (int i = 0; i < 600; ++i) zeros += " + 0 * A";
    const std::string failed = tried({{"X", "0 * B * ln(A)"}});
    EXPECT_TRUE(failed.starts_with("15")) << failed;  // 1587 are to be expected
    const std::string there = "not determinable at character 1, because of a formula that is not there or has a fault";
    for (const auto& [formulas, expected] : Cases<Named, std::string>{
             {{{"H", "ln(A)"}, {"X", "0 * B * H"}}, failed},
             {{{"H", "ln(A)"}, {"X", "if(B > 0, 0, H)"}}, failed},  // though no branch takes it
             {{{"H", "ln(A)"}, {"X", "if(B > 0, 0, H)" + zeros}}, failed},
             {{{"H", "ln(A)"}, {"X", "0 * B"}}, "0 0"},  // not needed
             {{{"H", "X"}, {"X", "H"}}, there},
             {{{"X", "A +"}}, there},
         })
        EXPECT_EQ(tried(formulas), expected);
    EXPECT_EQ(tried({{"H", "B * const.u"}, {"X", "H"}}, 1),
              "not determinable at character 1, because of values that are not there");
    options.correlations = {{1, 2, 1.0}};
    EXPECT_EQ(tried({{"G", "B"}, {"H", "C"}, {"X", "round(G - H, 9)"}}), "0 0");
    options.correlations = {{1, 3, 1.0}};
    EXPECT_EQ(
        tried({{"G", "A + E"}, {"H", "G"}, {"X", "A * H"}}),
        "the uncertainty cannot be computed at character 5: \"H\", because of a correlation coefficient of an input "
        "that has no uncertainty");
}
