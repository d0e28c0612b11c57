#include "qellib10/quantity/rounding_rule.h"

#include <sstream>

#include "../support/output_of.h"
#include "../support/soak.h"
#include "../support/test.h"
#include "decimal_words.h"

using qel::DecimalRounding;
using qel::RoundingRule;

TEST(RoundingRule, RoundsAsPythonsDecimalDoes) {
    const int count = SoakCount(20'000);
    std::istringstream lines(OutputOf(QELLIB10_TEST_DATA "/../quantity/rounded_by_decimal " + std::to_string(count) +
                                      " " + std::to_string(SoakSeed())));
    int tried = 0;
    for (std::string line; std::getline(lines, line) && !HasFailure(); ++tried) {
        std::istringstream fields(line);
        std::string name, value, expected;
        std::getline(fields, name, '\t');
        fields >> value >> expected;
        const std::optional<RoundingRule> rule = RoundingRule::OfName(name);
        ASSERT_TRUE(rule) << name;
        EXPECT_EQ(rule->Round(DecimalOf(value)).rounded.Text(), expected) << name << ": " << value;
    }
    EXPECT_EQ(tried, count);
    Tried("roundings", tried);
}

TEST(RoundingRule, TakesThePlaceOfTheUncertainty) {
    for (const auto& [value, uncertainty, digits, expected] : Cases<const char*, const char*, int, const char*>{
             {"1002.69972", "0.86", 1, "1002.7"},
             {"0.102136", "0.00010", 2, "0.10214"},
             {"1234.5", "96", 1, "1.2E+3"},
             {"1234.5", "99.6", 2, "1.23E+3"},
             {"1.5", "0", 2, "NaN"},
             {"1.5", "0.1", 3, "NaN"},
         }) {
        const RoundingRule rule = RoundingRule::ToUncertainty(DecimalRounding::kHalfEven, digits);
        EXPECT_EQ(rule.Round(DecimalOf(value), DecimalOf(uncertainty)).rounded.Text(), expected) << value;
    }
    EXPECT_TRUE(RoundingRule::ToUncertainty(DecimalRounding::kHalfEven, 1).Round(DecimalOf("1")).rounded.IsNan());
}

TEST(RoundingRule, HasANameThatIsReadAgain) {
    for (const RoundingRule& rule : {RoundingRule::ToPlaces(DecimalRounding::kHalfEven, -2),
                                     RoundingRule::ToDigits(DecimalRounding::kTowardZero, 34),
                                     RoundingRule::ToMultiple(DecimalRounding::kAwayFromZero, DecimalOf("0.050")),
                                     RoundingRule::ToUncertainty(DecimalRounding::kHalfAwayFromZero, 2)})
        EXPECT_EQ(RoundingRule::OfName(rule.Name()), rule) << rule.Name();
    EXPECT_EQ(RoundingRule::OfName("half even, 1 decimal places")->Name(), "half even, 1 decimal place");
    for (const char* name :
         {"", "half even", "half even, 2", "half even, 2 decimal placesx", "half even, x decimal places",
          "half even, multiples of x", "half odd, 2 decimal places", "half even, 6001 decimal places",
          "half even, 99 significant digits", "half even, 0 significant digits", "half even, multiples of 0",
          "half even, multiples of -1", "half even, 3 digits of the uncertainty"})
        EXPECT_FALSE(RoundingRule::OfName(name)) << name;
}

TEST(LimitComparison, SaysWhatWasCompared) {
    const RoundingRule rule = RoundingRule::ToPlaces(DecimalRounding::kHalfEven, 1);
    const qel::LimitComparison rounded = CompareRounded(DecimalOf("10.04"), DecimalOf("10.0"), rule);
    EXPECT_TRUE(rounded.order == 0 && rounded.isRounded);
    EXPECT_EQ(rounded.compared.Text(), "10.0");
    const qel::LimitComparison unrounded = qel::CompareUnrounded(DecimalOf("10.04"), DecimalOf("10.0"));
    EXPECT_TRUE(unrounded.order > 0 && !unrounded.isRounded);
    EXPECT_TRUE(CompareRounded(DecimalOf("NaN"), DecimalOf("10.0"), rule).order == std::partial_ordering::unordered);
}
