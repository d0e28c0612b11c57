#include "qellib10/base/rounding.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>

#include "qellib10/base/power_of_ten.h"
#include "qellib10/base/q_variant.h"
#include "qellib10/base/rounded_text.h"

namespace {

std::mt19937_64 g_random(8);
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

}  // namespace

TEST(Rounding, QuickFormsGiveTheResultsOfTheRule) {
    for (int i = 0; i < 500000; ++i) {
        const int digits = Random(24), mode = Random(5) - 2;
        const double x = Number(digits);
        const double quick = CQVariant::fround(x, digits, mode), plain = qel::RoundByRule(x, digits, mode);
        const bool sameText =
            digits == 0 || qel::RoundedText(x, digits, mode) == qel::RoundedTextByRule(x, digits, mode);
        ASSERT_TRUE(sameText && std::bit_cast<std::uint64_t>(quick) == std::bit_cast<std::uint64_t>(plain))
            << std::hexfloat << x << ", digits " << digits << ", mode " << mode;
    }
}

TEST(Rounding, PowersOfTenAreThoseOfTheMathLibrary) {
    for (int exponent = -22; exponent <= 22; ++exponent) EXPECT_EQ(qel::PowerOfTen(exponent), std::pow(10, exponent));
}
