#include "qellib10/quantity/rounding_rule.h"

#include <array>
#include <cstdio>
#include <memory>
#include <sstream>

#include "../support/soak.h"
#include "../support/test.h"

namespace {

using qel::Decimal;
using qel::DecimalRounding;
using qel::RoundingRule;

Decimal Of(const std::string& text) {
    qel::DecimalFlags ignored;
    return Decimal::OfText(text, ignored);
}

}  // namespace

TEST(RoundingRule, RoundsAsPythonsDecimalDoes) {
    const int count = SoakCount(20'000);
    const std::string command = QELLIB10_TEST_DATA "/../quantity/rounded_by_decimal " + std::to_string(count) + " " +
                                std::to_string(SoakSeed());
    const std::unique_ptr<FILE, int (*)(FILE*)> lines(::popen(command.c_str(), "r"), ::pclose);
    ASSERT_TRUE(lines);
    int tried = 0;
    std::array<char, 256> line;
    for (; std::fgets(line.data(), static_cast<int>(line.size()), lines.get()) != nullptr && !HasFailure(); ++tried) {
        std::istringstream fields(line.data());
        std::string name, value, expected;
        std::getline(fields, name, '\t');
        fields >> value >> expected;
        const std::optional<RoundingRule> rule = RoundingRule::OfName(name);
        ASSERT_TRUE(rule) << name;
        EXPECT_EQ(rule->Round(Of(value)).rounded.Text(), expected) << name << ": " << value;
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
        EXPECT_EQ(rule.Round(Of(value), Of(uncertainty)).rounded.Text(), expected) << value;
    }
    EXPECT_TRUE(RoundingRule::ToUncertainty(DecimalRounding::kHalfEven, 1).Round(Of("1")).rounded.IsNan());
}

TEST(RoundingRule, HasANameThatIsReadAgain) {
    for (const RoundingRule& rule : {RoundingRule::ToPlaces(DecimalRounding::kHalfEven, -2),
                                     RoundingRule::ToDigits(DecimalRounding::kTowardZero, 34),
                                     RoundingRule::ToMultiple(DecimalRounding::kAwayFromZero, Of("0.050")),
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
    const qel::LimitComparison rounded = CompareRounded(Of("10.04"), Of("10.0"), rule);
    EXPECT_TRUE(rounded.order == 0 && rounded.isRounded);
    EXPECT_EQ(rounded.compared.Text(), "10.0");
    const qel::LimitComparison unrounded = qel::CompareUnrounded(Of("10.04"), Of("10.0"));
    EXPECT_TRUE(unrounded.order > 0 && !unrounded.isRounded);
    EXPECT_TRUE(CompareRounded(Of("NaN"), Of("10.0"), rule).order == std::partial_ordering::unordered);
}
