#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>

#include "../support/soak.h"
#include "qellib10/base/power_of_ten.h"
#include "qellib10/base/q_variant.h"
#include "qellib10/base/rounded_text.h"
#include "qellib10/platform/text/number_text.h"

namespace {

std::mt19937_64 g_random(SoakSeed());
int Random(int count) { return static_cast<int>(g_random() % static_cast<unsigned>(count)); }

// Numbers where quick and plain forms could part: results of all sizes, halves of the last place and their neighbours,
// whole numbers around the limits of the quick forms, and any bits at all.
double Number(int digits) {
    const double sign = Random(2) * 2 - 1;
    const double any = std::bit_cast<double>(g_random());
    const double size = std::pow(10, std::uniform_real_distribution<double>(-12, 14)(g_random));
    const double half = (Random(100000) + 0.5) * qel::PowerOfTen(-digits);
    const double units = static_cast<double>((std::uint64_t{1} << Random(64)) + g_random() % 3) - 1;
    const double cases[] = {size, std::nextafter(half, Random(2) * 1e9), units * qel::PowerOfTen(-digits - Random(2))};
    const int which = Random(4);
    return which == 3 ? any : sign * cases[which];
}

// The rule step by step, by the math library alone.
double Tenths(double x, int digits) { return std::fabs(x * std::pow(10, std::min(digits + 1, 400))); }
double RoundedByRule(double x, int digits, int mode) {
    const double whole = std::floor(Tenths(x, digits) + 0.01);
    if (!(whole < 0x1p63)) return x;
    const auto tenths = static_cast<std::uint64_t>(whole);
    const bool up = mode == 0 ? tenths % 10 >= 5 : mode > 0 && tenths % 10 != 0;
    const double size = static_cast<double>(tenths / 10 + (up ? 1 : 0)) * std::pow(10, -digits);
    return x < 0 ? -size : size;
}

// By the digits of the value itself: the C library's are exact, and cut off after one more than wanted. Half of a place
// goes away from zero.
std::string RoundedByHand(double value, int decimals) {
    char exact[1000];
    std::fesetround(FE_TOWARDZERO);
    std::snprintf(exact, sizeof exact, "%.*f", decimals + 1, value);
    std::fesetround(FE_TONEAREST);
    std::string text(exact);
    const std::size_t point = text.find_first_of(".,"), end = point + 1 + static_cast<std::size_t>(decimals);
    bool up = text[end] >= '5';
    text[point] = '.';
    text.resize(decimals > 0 ? end : point);
    for (std::size_t i = text.size(); up && i-- > 0 && text[i] != '-';) {
        if (text[i] == '.') continue;
        up = text[i] == '9';
        text[i] = up ? '0' : static_cast<char>(text[i] + 1);
    }
    if (up) text.insert(text[0] == '-' ? 1 : 0, 1, '1');
    return text;
}

// Ties and their neighbours in half of the cases; else any number at all.
double TieOrNumber(int decimals) {
    const auto odd = static_cast<double>(g_random() >> (11 + Random(53)) | 1);
    const double tie = std::ldexp(Random(2) == 0 ? odd : -odd, -1 - decimals);
    if (const int which = Random(8); which < 4)
        return which < 2 ? tie : std::nextafter(tie, which == 2 ? -HUGE_VAL : HUGE_VAL);
    double any;
    do any = std::bit_cast<double>(g_random());
    while (!std::isfinite(any));
    return Random(2) == 0 ? any : Number(decimals % 24);
}

}  // namespace

TEST(Rounding, QuickFormsGiveTheResultsOfTheRule) {
    for (int i = 0; i < 500000; ++i) {
        const int digits = Random(24), mode = Random(5) - 2;
        const double x = Number(digits);
        const double quick = CQVariant::fround(x, digits, mode), plain = RoundedByRule(x, digits, mode);
        const bool sameText =
            digits == 0 || qel::RoundedText(x, digits, mode) == qel::RoundedTextByRule(x, digits, mode);
        ASSERT_TRUE(sameText) << std::hexfloat << x << ", digits " << digits << ", mode " << mode;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(quick), std::bit_cast<std::uint64_t>(plain))
            << std::hexfloat << x << ", digits " << digits << ", mode " << mode;
    }
}

TEST(Rounding, TextsHaveTheDigitsOfExactArithmetic) {
    const int count = SoakCount(500);
    for (int i = 0; i < count; ++i) {
        const int decimals = Random(8) == 0 ? Random(qel::kMaxColumns + 1) : Random(20), mode = Random(3) - 1;
        const double x = TieOrNumber(decimals);
        if (!std::isfinite(x)) continue;
        SCOPED_TRACE(testing::Message() << std::hexfloat << x << ", decimals " << decimals << ", mode " << mode);
        ASSERT_EQ(qel::FixedText(x, decimals), RoundedByHand(x, decimals));
        if (decimals == 0) continue;
        const double rounded = RoundedByRule(x, decimals, mode);
        ASSERT_EQ(std::bit_cast<std::uint64_t>(CQVariant::fround(x, decimals, mode)),
                  std::bit_cast<std::uint64_t>(rounded));
        const bool isItself = mode == 0 && Tenths(x, decimals) >= 0x1p53 * 10;  // no digit of the product is right
        ASSERT_STREQ(CQVariant::DoubleToStr(x, decimals, mode),
                     RoundedByHand(isItself ? x : rounded, decimals).c_str());
    }
    Tried("numbers", count);
}

TEST(Rounding, PowersOfTenAreThoseOfTheMathLibrary) {
    for (int exponent = -22; exponent <= 22; ++exponent) EXPECT_EQ(qel::PowerOfTen(exponent), std::pow(10, exponent));
}
