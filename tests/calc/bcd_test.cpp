#include "qellib10/calc/bcd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

static_assert(std::is_trivially_copyable_v<CBCD>);

namespace {

using Wide = __int128;
constexpr int kMost = std::numeric_limits<int>::max(), kLeast = std::numeric_limits<int>::min();

std::mt19937_64 g_random(10);
int Random(int low, int high) { return std::uniform_int_distribution<int>(low, high)(g_random); }

std::string Text(const CBCD& number) {
    const decNumber value = number.GetBCDValue();
    char text[64];
    return decNumberToString(&value, text);
}

Wide Power(int n) { return n == 0 ? 1 : 10 * Power(n - 1); }

// A number of up to 37 digits, with something behind the last one when more is set.
struct Exact {
    Wide magnitude;
    int exponent;
    bool negative, more = false;

    Exact(Wide value, int power) : magnitude(value < 0 ? -value : value), exponent(power), negative(value < 0) {}
    Wide Signed() const { return negative ? -magnitude : magnitude; }

    // Without the digits below 10^place, by the definition of each mode, as decNumber reads it.
    std::string Rounded(int place, int mode) const {
        const Wide unit = Power(std::clamp(place - exponent, 0, 37)), rest = magnitude % unit;
        Wide kept = magnitude / unit;
        const bool inexact = rest != 0 || more;
        const int half = rest > unit - rest || (rest == unit - rest && more) ? 1 : rest == unit - rest ? 0 : -1;
        // clang-format off
        const bool up[] = {inexact && !negative, inexact, half >= 0, half > 0 || (half == 0 && kept % 2 == 1),
                           half > 0, false, inexact && negative, inexact && kept % 5 == 0};
        // clang-format on
        kept += up[mode];
        std::string text = std::to_string(std::max(place, exponent));
        text.insert(0, 1, 'E');
        for (; kept != 0 || text[0] == 'E'; kept /= 10)
            text.insert(0, 1, static_cast<char>('0' + static_cast<int>(kept % 10)));
        if (negative) text.insert(0, 1, '-');
        return text;
    }
    CBCD To15Digits(int mode) const {
        int place = exponent;
        for (Wide rest = magnitude / Power(15); rest != 0; rest /= 10) ++place;
        return Rounded(place, mode).c_str();
    }
};

Exact Any(int lowExponent, int highExponent) {
    const auto digits = static_cast<Wide>(g_random() % 2'000'000'000'000'000) - 1'000'000'000'000'000;
    return {digits / Power(Random(1, 15)), Random(lowExponent, highExponent)};
}

struct Case {
    const char* value;
    int width, decimals;
    rounding mode;
    const char* expected;
};

}  // namespace

TEST(Bcd, ArithmeticRoundsTheExactResultByTheModeOfTheLeftOperand) {
    for (int i = 0; i < 40000; ++i) {
        const Exact a = Any(-9, 0), b = Any(-9, 0);
        const int mode = Random(0, 7), exponent = std::min(a.exponent, b.exponent);
        CBCD left(a.Rounded(-9, mode).c_str());
        left.Round(9, static_cast<rounding>(mode));
        const CBCD right(b.Rounded(-9, mode).c_str());
        SCOPED_TRACE(Text(left) + " and " + Text(right) + ", mode " + std::to_string(mode));

        const Wide alignedA = a.Signed() * Power(a.exponent - exponent),
                   alignedB = b.Signed() * Power(b.exponent - exponent);
        ASSERT_TRUE(left + right == Exact(alignedA + alignedB, exponent).To15Digits(mode));
        ASSERT_TRUE(left - right == Exact(alignedA - alignedB, exponent).To15Digits(mode));
        ASSERT_TRUE(left * right == Exact(a.Signed() * b.Signed(), a.exponent + b.exponent).To15Digits(mode));
        ASSERT_TRUE((left < right) == (alignedA < alignedB) && (left == right) == (alignedA == alignedB));
        if (b.magnitude == 0) continue;
        int shift = 0;
        while (a.magnitude != 0 && a.magnitude * Power(shift) < Power(36)) ++shift;
        const Wide dividend = a.Signed() * Power(shift);
        Exact quotient(dividend / b.Signed(), a.exponent - shift - b.exponent);
        quotient.more = dividend % b.Signed() != 0;
        ASSERT_TRUE(left / right == quotient.To15Digits(mode));
    }
}

TEST(Bcd, RoundGivesTheExactlyRoundedNumberAlsoFarBelowOnePlace) {
    for (int i = 0; i < 40000; ++i) {
        const Exact number = Any(-22, 3);
        const int decimals = Random(0, 12), mode = Random(0, 7);
        CBCD rounded = number.To15Digits(DEC_ROUND_DOWN);
        rounded.Round(decimals, static_cast<rounding>(mode));
        ASSERT_TRUE(rounded == number.Rounded(-decimals, mode).c_str())
            << Text(number.To15Digits(5)) << " " << decimals << " " << mode;
    }
}

TEST(Bcd, RoundDropsZerosAndLeavesWhatNeedsNoRounding) {
    for (const Case& c : {
             Case{"2.345", 0, 2, DEC_ROUND_HALF_UP, "2.35"},
             Case{"2.345", 0, 2, DEC_ROUND_DOWN, "2.34"},
             Case{"2.500", 0, 2, DEC_ROUND_HALF_UP, "2.5"},
             Case{"100", 0, 2, DEC_ROUND_HALF_UP, "1E+2"},
             Case{"999.5", 0, -3, DEC_ROUND_HALF_UP, "1E+3"},
             Case{"-0.04", 0, 1, DEC_ROUND_HALF_UP, "-0"},
             Case{"1.5E+384", 0, 2, DEC_ROUND_HALF_UP, "1.5E+384"},  // 15 digits until then: exponents are clamped
             Case{"9.87654321098765E+384", 0, kMost, DEC_ROUND_UP, "9.87654321098765E+384"},
             Case{"1.23456789E-389", 0, 392, DEC_ROUND_HALF_UP, "1.235E-389"},
             Case{"4E-397", 0, 390, DEC_ROUND_UP, "1E-390"},
             Case{"4E-397", 0, kMost, DEC_ROUND_UP, "4E-397"},
             Case{"-Infinity", 0, kMost, DEC_ROUND_DOWN, "-Infinity"},
             Case{"NaN12", 0, 400, DEC_ROUND_DOWN, "NaN12"},
             Case{"2.5", 0, 1, DEC_ROUND_MAX, "2.5"},
             Case{"2.5", 0, 0, DEC_ROUND_MAX, "NaN"},
         }) {
        CBCD number(c.value);
        number.Round(c.decimals, c.mode);
        EXPECT_EQ(Text(number), c.expected) << c.value << " with " << c.decimals;
    }
}

TEST(Bcd, GetStringFillsItsField) {
    for (const Case& c : {
             Case{"3.14159", 8, 2, DEC_ROUND_HALF_UP, "    3.14"},
             Case{"-3.14159", 8, 2, DEC_ROUND_HALF_UP, "   -3.14"},
             Case{"100", 8, 2, DEC_ROUND_HALF_UP, " 1E+2.00"},
             Case{"2.5", 8, 3, DEC_ROUND_HALF_UP, "   2.500"},
             Case{"1E-7", 10, 9, DEC_ROUND_HALF_UP, "    1E-700"},
             Case{"1234", 8, -2, DEC_ROUND_UP, "  1.3E+3"},
             Case{"7", 8, -400, DEC_ROUND_FLOOR, "      0."},
             Case{"7", 9, kLeast, DEC_ROUND_UP, "Infinity."},
             Case{"123456.789", 8, 2, DEC_ROUND_HALF_UP, "123456.8"},   // a digit less when they fill the field
             Case{"-123456.789", 8, 2, DEC_ROUND_HALF_UP, "-123457."},  // 6 digits: width - 1, then one less
             Case{"-123456789", 8, 2, DEC_ROUND_HALF_UP, "-1.23456"},   // 7 digits, no decimals to shorten
             Case{"-Infinity", 12, 2, DEC_ROUND_HALF_UP, "-Infinity.00"},
             Case{"1", 0, 2, DEC_ROUND_HALF_UP, ""},
         }) {
        std::vector<char> field(c.width + 1, '?');
        CBCD(c.value).GetString(field.data(), c.width, c.decimals, c.mode);
        EXPECT_STREQ(field.data(), c.expected) << c.value;
    }
    char untouched = '?';
    CBCD(1).GetString(&untouched, -1, 2, DEC_ROUND_DOWN);
    EXPECT_EQ(untouched, '?');
    EXPECT_STREQ(CBCD("-3.14159").GetString(3, DEC_ROUND_HALF_UP), "-3.142");
    EXPECT_EQ(CBCD("0.5").GetString(kMost, DEC_ROUND_DOWN), CString("0.5") + CString('0', 61));
}

TEST(Bcd, GetDoublePrintsAsTheDecimalDoes) {
    EXPECT_EQ(CBCD("2.5").GetDouble(0, DEC_ROUND_HALF_EVEN), 2);
    EXPECT_EQ(CBCD("0.125").GetDouble(2, DEC_ROUND_HALF_UP), 0.13);
    EXPECT_EQ(CBCD("-1.005").GetDouble(2, DEC_ROUND_UP), -1.01);
    EXPECT_EQ(CBCD("100").GetDouble(2, DEC_ROUND_HALF_UP), 100);
    EXPECT_EQ(CBCD("1234").GetDouble(-2, DEC_ROUND_HALF_UP), 1200);
    EXPECT_EQ(CBCD("1E+384").GetDouble(kMost, DEC_ROUND_HALF_UP), HUGE_VAL);
    EXPECT_EQ(CBCD("0.5").GetDouble(kLeast, DEC_ROUND_HALF_UP), 0);
    EXPECT_TRUE(std::isnan(CBCD("abc").GetDouble(2, DEC_ROUND_HALF_UP)));
}

TEST(Bcd, WhatIsNoNumberBecomesASpecialValue) {
    CBCD zero, one(1);
    const std::pair<CBCD, const char*> cases[] = {
        {kLeast, "-2147483648"},
        {"", "NaN"},
        {" 1", "NaN"},
        {static_cast<const char*>(nullptr), "NaN"},
        {"-1E99999999999", "-Infinity"},
        {"1E-99999999999", "0E-397"},
        {std::string(60, '6').c_str(), "6.66666666666667E+59"},
        {one / 0, "Infinity"},
        {zero / 0, "NaN"},
        {CBCD::SquareRoot(2), "1.41421356237310"},
        {CBCD::SquareRoot(-1), "NaN"},
        {CBCD("NaN") ^ 0, "1.0"},
        {CBCD(5) ^ 0, "1.0"},
        {CBCD("1.1") ^ 2, "1.210"},
        {CBCD("-1") ^ 4294967295, "-1.0"},
        {CBCD("-Infinity") ^ 4000000000, "Infinity"},
        {CBCD("1.0") ^ 4000000000, "1.00000000000000"},
        {CBCD("0.1") ^ 4000000000, "0E-397"},
    };
    for (const auto& [number, expected] : cases) EXPECT_EQ(Text(number), expected);
}

TEST(Bcd, EveryTwoNumbersHaveOneOrder) {
    const char* const ascending[] = {"-NaN", "-Infinity", "-1E+384", "-1",       "-1E-397", "0",   "1E-397",
                                     "0.5",  "2",         "2.5",     "Infinity", "NaN",     "NaN5"};
    for (const auto& a : ascending) {
        for (const auto& b : ascending) {
            const CBCD left(a);
            EXPECT_TRUE((left < b) == (&a < &b) && (left <= b) == (&a <= &b) && (left > b) == (&a > &b) &&
                        (left >= b) == (&a >= &b) && (left == b) == (&a == &b) && (left != b) == (&a != &b))
                << a << " and " << b;
        }
    }
    EXPECT_TRUE(CBCD("1.0") == "1.00" && CBCD("-0") == 0 && CBCD(2) < "2.5" && CBCD("2.5") > 2 &&
                CBCD(1) == CBCD(1).GetBCDValue());
}

TEST(Bcd, TheModeOfTheLastRoundingStaysUntilAnAssignment) {
    CBCD number("1.23456789012345"), small("4E-15"), big(1);
    number.Round(20, DEC_ROUND_UP);
    EXPECT_EQ(Text(number + small), "1.23456789012346");
    EXPECT_EQ(Text(small + number), "1.23456789012345");
    EXPECT_EQ(Text(number += small), "1.23456789012346");
    EXPECT_EQ(Text(number -= "4E-15"), "1.23456789012346");
    EXPECT_EQ(Text(((big *= 9) /= small.GetBCDValue()) + 1), "2.25000000000000E+15");
}

TEST(Bcd, ADamagedNumberIsNanAndNoOperationLeavesItsMemory) {
    for (int i = 0; i < 20000; ++i) {
        decNumber fields[2];
        for (decNumber& number : fields) {
            number = Any(-20, 5).To15Digits(DEC_ROUND_DOWN).GetBCDValue();
            if (Random(0, 1) == 0) number.exponent = static_cast<int>(g_random() % 2000000012) - 1000000013;
            if (Random(0, 3) == 0) number.bits = static_cast<std::uint8_t>(g_random());
            if (Random(0, 3) == 0) number.digits = Random(-1, 17);
            if (Random(0, 3) == 0) number.lsu[Random(0, 4)] = static_cast<std::uint16_t>(g_random() % 1001);
        }
        CBCD a(fields[0]), b(fields[1]);
        for (const CBCD& result : {a + b, a - b, a * b, a / b, CBCD::SquareRoot(a), a ^ 3}) {
            EXPECT_TRUE(result == CBCD(result.GetBCDValue()));
            const int width = Random(0, 200), scale = Random(0, 9);
            std::vector<char> field(width + 1);
            CBCD(result).GetString(field.data(), width, Random(kLeast, kMost) >> (3 * scale),
                                   static_cast<rounding>(Random(0, 8)));
            EXPECT_EQ(std::strlen(field.data()), static_cast<std::size_t>(width));
        }
    }
    decNumber tooLong = CBCD(1).GetBCDValue();
    tooLong.digits = 16;
    EXPECT_EQ(Text(CBCD(tooLong)), "NaN");
}
