#include "qellib10/quantity/rounding_rule.h"

#include "../support/test.h"

namespace {

using qel::Decimal;
using qel::DecimalRounding;
using qel::RoundingRule;

Decimal Of(const std::string& text) {
    qel::DecimalFlags ignored;
    return Decimal::OfText(text, ignored);
}

// By the four rules in the order of DecimalRounding: half even, half away, truncation, away from zero.
std::string ByEach(const std::string& value, RoundingRule (*rule)(DecimalRounding)) {
    std::string all;
    for (const DecimalRounding rounding : {DecimalRounding::kHalfEven, DecimalRounding::kHalfAwayFromZero,
                                           DecimalRounding::kTowardZero, DecimalRounding::kAwayFromZero})
        all += (all.empty() ? "" : " ") + rule(rounding).Round(Of(value)).rounded.Text();
    return all;
}

template <int kPlaces> RoundingRule Places(DecimalRounding rounding) {
    return RoundingRule::ToPlaces(rounding, kPlaces);
}
template <int kDigits> RoundingRule Digits(DecimalRounding rounding) {
    return RoundingRule::ToDigits(rounding, kDigits);
}
RoundingRule Twentieths(DecimalRounding rounding) { return RoundingRule::ToMultiple(rounding, Of("0.05")); }
RoundingRule Thirties(DecimalRounding rounding) { return RoundingRule::ToMultiple(rounding, Of("30")); }

}  // namespace

// Reckoned from the rules: JIS Z 8401 A and B, ASTM E29, the general notices of the pharmacopoeias.
TEST(RoundingRule, RoundsByMagnitudeAndOnce) {
    for (const auto& [value, rule, expected] : Cases<const char*, RoundingRule (*)(DecimalRounding), const char*>{
             {"2.5", Places<0>, "2 3 2 3"},
             {"3.5", Places<0>, "4 4 3 4"},
             {"-2.5", Places<0>, "-2 -3 -2 -3"},
             {"2.4999999999999999999999999999999", Places<0>, "2 2 2 3"},
             {"2.4495", Places<1>, "2.4 2.4 2.4 2.5"},
             {"12.25", Places<1>, "12.2 12.3 12.2 12.3"},
             {"1250", Places<-2>, "1.2E+3 1.3E+3 1.2E+3 1.3E+3"},
             {"0.1", Places<3>, "0.100 0.100 0.100 0.100"},
             {"9.96", Digits<2>, "10 10 9.9 10"},
             {"0.012345", Digits<4>, "0.01234 0.01235 0.01234 0.01235"},
             {"0.000", Digits<2>, "0 0 0 0"},
             {"1.225", Twentieths, "1.20 1.25 1.20 1.25"},
             {"-1.276", Twentieths, "-1.30 -1.30 -1.25 -1.30"},
             {"45", Thirties, "60 60 30 60"},
             {"75", Thirties, "60 90 60 90"},
             {"1e33", Places<1>, "NaN NaN NaN NaN"},
             {"Infinity", Places<1>, "NaN NaN NaN NaN"},
         })
        EXPECT_EQ(ByEach(value, rule), expected) << value;
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
    for (const char* name : {"", "half even", "half even, 2", "half even, 2 decimal placesx",
                             "half even, x decimal places", "half even, multiples of x", "half odd, 2 decimal places"})
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
