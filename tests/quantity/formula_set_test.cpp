#include "qellib10/quantity/formula_set.h"

#include "../support/test.h"

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
