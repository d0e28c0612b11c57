#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "qellib10/base/q_variant.h"
#include "qellib10/tests/support/cases.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int kMost = std::numeric_limits<int>::max(), kLeast = std::numeric_limits<int>::min();

}  // namespace

TEST(QVariantNumber, RoundsByTheFirstDroppedDigit) {
    // clang-format off
    const Cases<double, int, int, double> cases = {
        {1.005, 2, 0, 1.01}, {-1.005, 2, 0, -1.01},  // the doubles lie below the halves
        {2.344, 2, 1, 2.35}, {2.349, 2, -1, 2.34}, {-2.344, 2, 7, -2.35}, {1.0001, 2, 1, 1}, {1e300, 2, 0, 1e300},
        {0.4498, 1, 0, 0.4},  // digits behind the first dropped one do not carry
        {1250, -2, 0, 1300}, {1250, -2, -1, 1200}, {-1201, -2, 1, -1300}, {7, -1, 5, 70}, {5e20, -21, 0, 1e21},
        {5, -400, 0, 0}, {5, -400, 5, kInfinity}, {0, -400, 5, 0}, {1.25, 400, 0, 1.25}, {0, 400, 0, 0},
        {1.25, kMost, 0, 1.25}, {1.25, kLeast, 1, 0}, {-kInfinity, -2, 0, -kInfinity}};
    // clang-format on
    for (const auto& [x, digits, mode, expected] : cases) {
        EXPECT_DOUBLE_EQ(CQVariant::fround(x, digits, mode), expected) << x << ", " << digits << ", " << mode;
    }
    EXPECT_TRUE(std::isnan(CQVariant::fround(kNaN, 2, 0)) && std::signbit(CQVariant::fround(-0.001, 2, 0)));
}

TEST(QVariantNumber, DoubleToStrShowsAllPlaces) {
    // clang-format off
    const Cases<double, int, int, const char*> cases = {
        {0.125, 2, 0, "0.13"}, {2.5, 0, 0, "3"}, {-2.5, 0, 0, "-3"}, {100, 3, 0, "100.000"}, {-0.001, 2, 0, "-0.00"},
        {-0.0, 2, 0, "0.00"}, {0, 0, 0, "0"}, {1e-5, 5, 0, "0.00001"}, {1250, -2, 0, "1300"}, {kNaN, 1, 0, "nan"},
        {3e9, 0, 0, "-2147483648"}, {kNaN, 0, 0, "-2147483648"}, {-kInfinity, 1, 0, "-inf"},
        {22517998136852.47, 2, 0, "22517998136852.47"}, {1e22, 1, 0, "10000000000000000000000.0"}};
    // clang-format on
    for (const auto& [x, digits, mode, expected] : cases) {
        EXPECT_STREQ(CQVariant::DoubleToStr(x, digits, mode), expected) << x << ", " << digits << ", " << mode;
    }
    EXPECT_EQ(CQVariant::DoubleToStr(1, kMost, 0).GetLength(), 2 + 512);
}

TEST(QVariantNumber, ReadsNumbersAsTheRuntimeDoes) {
    // clang-format off
    const Cases<const char*, int> integers = {
        {"", 0}, {" \t12abc", 12}, {"+5", 5}, {" -5", -5}, {"-+5", -5}, {"--5", 5}, {"- 5", -5}, {"0x10", 0},
        {"\x82\x50", 0}, {"2147483648", kMost}, {"-2147483648", kLeast}, {"--9999999999999999999999", kMost},
        {"-99999999999999999999", kLeast}};
    const Cases<const char*, double> numbers = {
        {"12", 12}, {"-+2.5", -2.5}, {".5", 0.5}, {"1e5", 1e5}, {"-1d2x", -100}, {"0.0e2", 0}, {"", 0}, {".", 0},
        {"1.5e2", kInfinity}, {"-1.5D2", -kInfinity}, {"1.5E-3", 0},  // the appended zeros lengthen the exponent
        {"1e", 1}, {"inf", 0}, {"nan", 0}, {"0x10", 0}, {"3,7", 3}, {"1e99999999999999999999", kInfinity}};
    // clang-format on
    for (const auto& [text, expected] : integers) EXPECT_EQ(CQVariant::StrToInt(text), expected) << text;
    for (const auto& [text, expected] : numbers) EXPECT_EQ(CQVariant::StrToDouble(text), expected) << text;
    EXPECT_TRUE(std::signbit(CQVariant::StrToDouble("-")));
    for (const auto& [n, expected] : {std::pair{2, 12}, {-1, 0}, {99, 1234}}) {
        EXPECT_EQ(CQVariant::StrToInt("1234", n), expected);
    }
    EXPECT_EQ(CQVariant::StrToDouble("12.75", 4), 12.7);
}

TEST(QVariantNumber, FixedFieldsHaveTheirWidth) {
    // clang-format off
    const Cases<double, int, int, const char*> cases = {
        {1.25, 20, 2, " 1.25"}, {-0.125, 20, 2, "-0.13"}, {2.5, 20, 0, " 3"}, {-123.456, 4, 1, "-123"}, {5, -1, 2, ""},
        {7, 20, -3, " 7"}, {-0.0, 20, 1, " 0.0"}, {1e300, 6, 2, " 10000"}};
    // clang-format on
    for (const auto& [x, width, decimals, expected] : cases) {
        char out[24] = {};
        CQVariant::DoubleToStr(x, out, width, decimals);
        EXPECT_STREQ(out, expected) << x << ", " << width << ", " << decimals;
    }
    CQVariant::DoubleToStr(1.25, nullptr, 20, 2);
    EXPECT_STREQ(CQVariant::IntToStr(-5, 4) + CQVariant::IntToStr(12, -2) + CQVariant::IntToStr(-12345, 3), "  -5345");
    EXPECT_EQ(CQVariant::IntToStr(12, kMost).GetLength(), 512);
    EXPECT_STREQ(CQVariant::NoNumericStr(3, 2) + CQVariant::NoNumericStr(-2, 1), "---.--.-");
}

TEST(QVariantNumber, ExponentHasTwoDigitsWhereTheyDo) {
    // clang-format off
    const Cases<double, const char*> cases = {
        {1234.5, "  1.235E+03"}, {-1234.5, " -1.235E+03"}, {12345.5, "  1.235E+04"}, {1.2345e20, "  1.235E+20"},
        {12355e5, "  1.236E+09"}, {0, "  0.000E+00"}, {1.5e-7, "  1.500E-07"}, {9.9996, "  1.000E+01"},
        {1e100, "  1.000E+100"}, {-1e-300, " -1.000E-300"}, {kInfinity, "         inf"}, {-kNaN, "        -nan"}};
    // clang-format on
    for (const auto& [x, expected] : cases) EXPECT_STREQ(CQVariant::ExponentialDigit3to2(x), expected);
}

TEST(QVariantNumber, NoNumericToNullAcceptsTheFormOfANumber) {
    for (const char* text : {"", "1", "+1.5", "-.", "1.2.3", "."}) EXPECT_STREQ(CQVariant::NoNumericToNull(text), text);
    for (const char* text : {"-", "+", "1e5", " 1", "1-", "--1", "\x82\x50"}) {
        EXPECT_STREQ(CQVariant::NoNumericToNull(text), "NULL") << text;
    }
}

TEST(QVariantNumber, HexadecimalTextsKeepTheBytesOfAFloat) {
    char text[9] = {};
    CQVariant::float2asc(-1.5F, text);
    EXPECT_STREQ(text, "0000C0BF");  // lowest byte first
    EXPECT_EQ(CQVariant::asc2float("0000803F and more"), 1.0F);
    EXPECT_EQ(CQVariant::asc2float("000080"), 0x1p-126F);
    const std::vector<char> field(text, text + 8);  // without a terminator: the sanitizer sees a step outside it
    EXPECT_EQ(CQVariant::asc2float(field.data()), -1.5F);
    EXPECT_TRUE(CQVariant::hex2int(&field[6]) == 0xBF && CQVariant::hex2int("A") == 0xA0 &&
                CQVariant::hex2int("aG") == 0);
    CQVariant::float2asc(1.5F, nullptr);
}
