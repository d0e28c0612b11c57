#include "qellib10/base/rounding.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "qellib10/base/power_of_ten.h"
#include "qellib10/base/q_variant.h"
#include "qellib10/base/rounded_text.h"

namespace {

// Numbers where quick and plain forms could part: results of all sizes, halves of the last place and their neighbours,
// whole numbers around the limits of the quick forms, and any bits at all.
class Numbers {
public:
    double Next(int digits) {
        const double sign = m_random() % 2 == 0 ? 1 : -1;
        switch (m_random() % 4) {
            case 0:
                return sign * std::pow(10, m_exponent(m_random));
            case 1: {
                const double half = (static_cast<double>(m_random() % 100000) + 0.5) * qel::PowerOfTen(-digits);
                return sign * std::nextafter(half, m_random() % 2 == 0 ? 0 : 1e9);
            }
            case 2: {
                const int shift = static_cast<int>(m_random() % 64);
                const double units = static_cast<double>((std::uint64_t{1} << shift) + m_random() % 3) - 1;
                return sign * units * qel::PowerOfTen(-digits - static_cast<int>(m_random() % 2));
            }
            default:
                return std::bit_cast<double>(m_random());
        }
    }
    int Digits() { return static_cast<int>(m_random() % 24); }
    int Mode() { return static_cast<int>(m_random() % 5) - 2; }

private:
    std::mt19937_64 m_random{8};
    std::uniform_real_distribution<double> m_exponent{-12, 14};
};

}  // namespace

TEST(Rounding, QuickFormsGiveTheResultsOfTheRule) {
    Numbers numbers;
    for (int i = 0; i < 500000; ++i) {
        const int digits = numbers.Digits(), mode = numbers.Mode();
        const double x = numbers.Next(digits);
        const double quick = CQVariant::fround(x, digits, mode), plain = qel::RoundByRule(x, digits, mode);
        const bool sameText =
            digits == 0 || qel::RoundedText(x, digits, mode) == qel::RoundedTextByRule(x, digits, mode);
        ASSERT_TRUE(sameText && std::bit_cast<std::uint64_t>(quick) == std::bit_cast<std::uint64_t>(plain))
            << std::hexfloat << x << ", digits " << digits << ", mode " << mode;
    }
}

TEST(Rounding, PowersOfTenAreThoseOfTheMathLibrary) {
    for (int exponent = -22; exponent <= 22; ++exponent) {
        EXPECT_EQ(qel::PowerOfTen(exponent), std::pow(10.0, exponent)) << exponent;
    }
}
