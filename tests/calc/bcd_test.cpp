#include "qellib10/calc/bcd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <utility>
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

// A whole number of up to 15 digits.
Wide Digits() {
    const auto digits = static_cast<Wide>(g_random() % 1'000'000'000'000'000) / Power(Random(0, 15));
    return Random(0, 1) == 0 ? digits : -digits;
}

// value * 10^exponent (with something behind its last digit when more is set) without the digits below 10^place.
CBCD Rounded(Wide value, int exponent, int place, int mode, bool more = false) {
    const bool negative = value < 0;
    const Wide magnitude = negative ? -value : value, unit = Power(std::clamp(place - exponent, 0, 37));
    const Wide rest = magnitude % unit, kept = magnitude / unit;
    const bool inexact = rest != 0 || more, tie = rest == unit - rest && !more, over = rest >= unit - rest && !tie;
    const bool up[] = {
        inexact && !negative,    inexact, over || tie, over || (tie && kept % 2 == 1), over, false, inexact && negative,
        inexact && kept % 5 == 0};
    std::string text = std::to_string(static_cast<long long>(kept + up[mode]));
    text += 'E' + std::to_string(std::max(place, exponent));
    return (negative ? '-' + text : text).c_str();
}

CBCD Rounded15(Wide value, int exponent, int mode, bool more = false) {
    int place = exponent;
    for (Wide rest = value / Power(15); rest != 0; rest /= 10) ++place;
    return Rounded(value, exponent, place, mode, more);
}

}  // namespace

TEST(Bcd, ArithmeticAndRoundGiveTheExactResultRoundedInEveryMode) {
    for (int i = 0; i < 40000; ++i) {
        const Wide a = Digits(), b = Digits();
        const int exponentA = Random(-9, 0), exponentB = Random(-9, 0), decimals = Random(0, 9), mode = Random(0, 7);
        CBCD left = Rounded15(a, exponentA, mode), right = Rounded15(b, exponentB, mode);
        SCOPED_TRACE(Text(left) + ", " + Text(right) + ", " + std::to_string(decimals) + ", mode " +
                     std::to_string(mode));
        left.Round(9, static_cast<rounding>(mode));  // sets the mode only

        const Wide x = a * Power(exponentA + 9), y = b * Power(exponentB + 9);
        ASSERT_TRUE(left + right == Rounded15(x + y, -9, mode) && left - right == Rounded15(x - y, -9, mode));
        ASSERT_TRUE(left * right == Rounded15(a * b, exponentA + exponentB, mode));
        ASSERT_TRUE((left < right) == (x < y) && (left == right) == (x == y));
        int shift = 0;
        while (a != 0 && std::max(a, -a) * Power(shift) < Power(36)) ++shift;
        const Wide dividend = a * Power(shift), divisor = b == 0 ? 1 : b;
        const int exponent = exponentA - shift - exponentB;
        ASSERT_TRUE(b == 0 || left / right == Rounded15(dividend / divisor, exponent, mode, dividend % divisor != 0));

        CBCD small = Rounded15(a, 2 * exponentB, mode);  // down to far below the last place
        small.Round(decimals, static_cast<rounding>(mode));
        ASSERT_TRUE(small == Rounded(a, 2 * exponentB, -decimals, mode));
    }
}

TEST(Bcd, GetStringRoundsDropsZerosAndFillsItsField) {
    struct Case {
        const char* value;
        int width, decimals;
        rounding mode;
        const char* expected;
    };
    for (const Case& c : {
             Case{"3.14159", 8, 2, DEC_ROUND_HALF_UP, "    3.14"},
             Case{"-3.14159", 8, 3, DEC_ROUND_DOWN, "  -3.141"},
             Case{"100", 8, 2, DEC_ROUND_HALF_UP, " 1E+2.00"},
             Case{"1E-7", 10, 9, DEC_ROUND_HALF_UP, "    1E-700"},
             Case{"1234", 8, -2, DEC_ROUND_UP, "  1.3E+3"},
             Case{"-0.04", 4, 1, DEC_ROUND_HALF_UP, "-0.0"},
             Case{"123456.789", 8, 2, DEC_ROUND_HALF_UP, "123456.8"},    // a digit less when they fill the field
             Case{"-123456.789", 8, 2, DEC_ROUND_HALF_UP, "-123457."},   // 6 digits: width - 1, then one less
             Case{"-123456789", 8, 2, DEC_ROUND_HALF_UP, "-1.23456"},    // 7 digits, no decimals to shorten
             Case{"1.5E+384", 11, 2, DEC_ROUND_HALF_UP, "1.5E+384.00"},  // kept with 15 digits, exponents being clamped
             Case{"1.23456789E-389", 10, 392, DEC_ROUND_UP, "1.235E-389"},
             Case{"9.87654321098765E+384", 22, kMost, DEC_ROUND_UP, "9.87654321098765E+384."},
             Case{"7", 10, kLeast, DEC_ROUND_UP, " Infinity."},
             Case{"-Infinity", 12, -5, DEC_ROUND_UP, "  -Infinity."},
             Case{"2.5", 3, 1, DEC_ROUND_MAX, "2.5"},
             Case{"2.5", 3, 0, DEC_ROUND_MAX, "NaN"},
             Case{"1", 0, 2, DEC_ROUND_HALF_UP, ""},
         }) {
        std::vector<char> field(c.width + 2, '?');
        CBCD(c.value).GetString(&field.back(), -1, c.decimals, c.mode);
        CBCD(c.value).GetString(nullptr, c.width, c.decimals, c.mode);
        CBCD(c.value).GetString(field.data(), c.width, c.decimals, c.mode);
        EXPECT_STREQ(field.data(), c.expected) << c.value;
        EXPECT_EQ(field.back(), '?');
    }
    EXPECT_EQ(CBCD("0.5").GetString(kMost, DEC_ROUND_DOWN), CString("0.5") + CString('0', 61));
}

TEST(Bcd, GetDoublePrintsAsTheDecimalDoes) {
    EXPECT_EQ(CBCD("2.5").GetDouble(0, DEC_ROUND_HALF_EVEN), 2);
    EXPECT_EQ(CBCD("0.125").GetDouble(2, DEC_ROUND_HALF_UP), 0.13);
    EXPECT_EQ(CBCD("1E+384").GetDouble(kMost, DEC_ROUND_HALF_UP), HUGE_VAL);
    EXPECT_EQ(CBCD("0.5").GetDouble(kLeast, DEC_ROUND_HALF_UP), 0);
    EXPECT_EQ(CBCD("-1250").GetDouble(-2, DEC_ROUND_HALF_UP), -1300);
    EXPECT_TRUE(std::isnan(CBCD("abc").GetDouble(2, DEC_ROUND_HALF_UP)));
}

TEST(Bcd, WhatIsNoNumberBecomesASpecialValue) {
    CBCD zero, one(1);
    const std::pair<CBCD, const char*> cases[] = {
        {kLeast, "-2147483648"},
        {" 1", "NaN"},
        {static_cast<const char*>(nullptr), "NaN"},
        {"-1E99999999999", "-Infinity"},
        {"1E-99999999999", "0E-397"},
        {one / 0, "Infinity"},
        {zero / 0, "NaN"},
        {CBCD::SquareRoot(2), "1.41421356237310"},
        {CBCD::SquareRoot(-1), "NaN"},
        {CBCD("1.1") ^ 2, "1.210"},
        {CBCD("-1") ^ 4294967295, "-1.0"},
        {CBCD("-Infinity") ^ 4000000000, "Infinity"},
    };
    for (const auto& [number, expected] : cases) EXPECT_EQ(Text(number), expected);
}

TEST(Bcd, EveryTwoNumbersHaveOneOrder) {
    const char* const ascending[] = {"-NaN", "-Infinity", "-1E+384", "-1E-397", "0", "0.5", "2", "Infinity", "NaN"};
    for (const auto& a : ascending) {
        for (const auto& b : ascending) {
            const CBCD left(a);
            EXPECT_TRUE((left < b) == (&a < &b) && (left <= b) == (&a <= &b) && (left > b) == (&a > &b) &&
                        (left >= b) == (&a >= &b) && (left == b) == (&a == &b) && (left != b) == (&a != &b));
        }
    }
    EXPECT_TRUE(CBCD("1.0") == "1.00" && CBCD("-0") == 0 && CBCD(2) < "2.5" && CBCD("2.5") > 2);
}

TEST(Bcd, TheModeOfTheLastRoundingStaysUntilAnAssignment) {
    CBCD number("1.23456789012345"), small("4E-15"), big(1);
    big.Round(-1, DEC_ROUND_UP);
    number.Round(20, DEC_ROUND_UP);
    EXPECT_EQ(Text(number + small), "1.23456789012346");
    EXPECT_EQ(Text(small + number), "1.23456789012345");
    EXPECT_EQ(Text(number += small), "1.23456789012346");
    EXPECT_EQ(Text(((big *= 9) /= small.GetBCDValue()) + 1), "2.25000000000000E+15");

    const auto sum = [&](const auto& set) {
        CBCD work("1.23456789012345");
        set(work);
        return Text(work + small);
    };
    EXPECT_EQ(sum([](CBCD& work) { work.GetString(2, DEC_ROUND_UP); }), "1.23456789012346");
    EXPECT_EQ(sum([](CBCD& work) { work.GetDouble(0, DEC_ROUND_CEILING); }), "1.23456789012346");
    EXPECT_EQ(sum([](CBCD& work) { work.GetString(nullptr, 0, 0, DEC_ROUND_UP), work = "1.23456789012345"; }),
              "1.23456789012345");
    EXPECT_EQ(sum([](CBCD& work) { work.Round(20, DEC_ROUND_UP), work = work.GetBCDValue(); }), "1.23456789012345");
    EXPECT_EQ(sum([](CBCD& work) { work.Round(0, DEC_ROUND_UP), work = 1; }), "1.00000000000000");
}

TEST(Bcd, ADamagedNumberIsNanAndNoOperationLeavesItsMemory) {
    for (int i = 0; i < 20000; ++i) {
        decNumber damaged = Rounded15(Digits(), Random(-20, 5), DEC_ROUND_DOWN).GetBCDValue();
        if (Random(0, 1) == 0) damaged.exponent = static_cast<int>(g_random());
        if (Random(0, 2) == 0) damaged.bits = static_cast<std::uint8_t>(g_random());
        if (Random(0, 2) == 0) damaged.digits = Random(-1, 17);
        if (Random(0, 2) == 0) damaged.lsu[Random(0, 4)] = static_cast<std::uint16_t>(g_random() % 1001);
        CBCD a(damaged), b = Rounded15(Digits(), Random(-500, 500), DEC_ROUND_DOWN);
        for (CBCD result : {a + b, b - a, a * b, a / b, b / a, CBCD::SquareRoot(a)}) {
            EXPECT_TRUE(result == CBCD(result.GetBCDValue()));
            std::vector<char> field(Random(1, 200));
            result.GetString(field.data(), static_cast<int>(field.size()) - 1, Random(kLeast, kMost) >> Random(0, 31),
                             static_cast<rounding>(Random(0, 8)));
            EXPECT_EQ(std::strlen(field.data()), field.size() - 1);
        }
    }
    decNumber tooFar = CBCD(1).GetBCDValue();
    tooFar.exponent = kMost;
    EXPECT_EQ(Text(CBCD(tooFar)), "NaN");
}
