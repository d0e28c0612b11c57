#include "qellib10/quantity/limit_decision.h"

#include <cmath>

#include "../support/test.h"
#include "qellib10/platform/failure.h"

namespace {

using qel::DecisionRule;
using qel::ToleranceLimits;

// A result with u = 1 and k = 2.
qel::UncertaintyBudget Result(double value) {
    qel::UncertaintyBudget result;
    result.value = value;
    result.uncertainty = 1.0;
    result.expandedUncertainty = 2.0;
    result.degreesOfFreedom = qel::UncertaintyComponent::kInfinite;
    return result;
}

std::string Shown(double value, const ToleranceLimits& limits, const DecisionRule& rule) {
    const auto decision = qel::DecideLimits(Result(value), limits, rule);
    if (!decision) return qel::LastFailure().text;
    return Line({decision->isPassed ? "pass" : "fail", decision->isUndecided ? "undecided" : "clear",
                 std::lround(decision->conformity * 1e4)});
}

}  // namespace

TEST(LimitDecision, FollowsItsRule) {
    const DecisionRule simple = DecisionRule::SimpleAcceptance();
    const DecisionRule acceptance = DecisionRule::GuardedAcceptance(), rejection = DecisionRule::GuardedRejection();
    const DecisionRule half = DecisionRule::GuardedAcceptance(0.5);
    const ToleranceLimits both{10, 20}, upper{{}, 20}, lower{10, {}}, narrow{10, 13};
    for (const auto& [value, limits, rule, expected] : Cases<double, ToleranceLimits, DecisionRule, const char*>{
             {15, both, simple, "pass clear 10000"},
             {20, both, simple, "pass undecided 5000"},
             {20.1, both, simple, "fail undecided 4602"},
             {22.5, both, simple, "fail clear 62"},
             {18, upper, acceptance, "pass clear 9772"},
             {18.1, upper, acceptance, "fail undecided 9713"},
             {20.5, upper, acceptance, "fail undecided 3085"},
             {22.1, upper, acceptance, "fail clear 179"},
             {18.9, upper, half, "pass clear 8643"},
             {19.1, upper, half, "fail undecided 8159"},
             {8, lower, rejection, "pass undecided 228"},
             {7.9, lower, rejection, "fail clear 179"},
             {12.5, lower, rejection, "pass clear 9938"},
             {11.5, narrow, acceptance, "fail undecided 8664"},  // the guard bands meet: nothing can pass
             {25, both, simple, "fail clear 0"},
         })
        EXPECT_EQ(Shown(value, limits, rule), expected) << value << " " << rule.Name();
    const auto moved = qel::DecideLimits(Result(15), both, half);
    EXPECT_EQ(Line({*moved->acceptance.lower, *moved->acceptance.upper, moved->guardBand}), "11 19 1");
}

TEST(LimitDecision, ConformityIsThatOfStudent) {
    qel::UncertaintyBudget result = Result(18);
    const ToleranceLimits upper{{}, 20};
    const auto conformity = [&] {
        return std::lround(qel::DecideLimits(result, upper, DecisionRule::SimpleAcceptance())->conformity * 1e6);
    };
    result.degreesOfFreedom = 4;
    EXPECT_EQ(conformity(), 941942);
    result.degreesOfFreedom.reset();
    EXPECT_EQ(conformity(), 977250);
    result.uncertainty = result.expandedUncertainty = 0.0;
    EXPECT_EQ(conformity(), 1000000);
    result.value = 20.001;
    EXPECT_EQ(conformity(), 0);
}

TEST(LimitDecision, RefusesWhatIsNotValid) {
    const DecisionRule simple = DecisionRule::SimpleAcceptance();
    for (const auto& [value, limits, rule, reason] : Cases<double, ToleranceLimits, DecisionRule, const char*>{
             {1, {}, simple, "no limit"},
             {1, {NAN, {}}, simple, "a limit that is not finite"},
             {1, {0.0, INFINITY}, simple, "a limit that is not finite"},
             {1, {2, 1}, simple, "a lower limit above the upper one"},
             {1, {0.0, 1}, DecisionRule::GuardedAcceptance(-1), "a guard band factor that is negative or not finite"},
             {NAN, {0.0, 1}, simple, "a value that is not finite"},
         })
        EXPECT_EQ(Shown(value, limits, rule), reason);
}

TEST(LimitDecision, RulesHaveNamesThatAreReadAgain) {
    for (const auto& [rule, name] : Cases<DecisionRule, const char*>{
             {DecisionRule::SimpleAcceptance(), "simple acceptance (shared risk)"},
             {DecisionRule::GuardedAcceptance(), "guarded acceptance, w = 1 U"},
             {DecisionRule::GuardedRejection(0.25), "guarded rejection, w = 0.25 U"},
         }) {
        EXPECT_EQ(rule.Name(), name);
        EXPECT_EQ(DecisionRule::OfName(name), rule);
    }
    for (const char* const name :
         {"", "guarded acceptance", "guarded acceptance, w = U", "guarded acceptance, w = -1 U",
          "guarded acceptance, w = nan U", "simple acceptance (shared risk) ", "acceptance"})
        EXPECT_FALSE(DecisionRule::OfName(name)) << name;
}
