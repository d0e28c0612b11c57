#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "qellib10/base/q_variant.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

}  // namespace

TEST(QVariantNumber, RoundsByTheFirstDroppedDigit) {
    struct Case {
        double x;
        int digits, mode;
        double expected;
    };
    for (const Case& c : {Case{1.005, 2, 0, 1.01},
                          Case{-1.005, 2, 0, -1.01},  // the doubles lie below the halves
                          Case{2.344, 2, 1, 2.35},
                          Case{2.349, 2, -1, 2.34},
                          Case{-2.344, 2, 7, -2.35},
                          Case{1.0001, 2, 1, 1},
                          Case{2.5, 0, 0, 3},
                          Case{-2.5, 0, 0, -3},
                          Case{0.4498, 1, 0, 0.4},  // digits behind the first dropped one do not carry
                          Case{1250, -2, 0, 1300},
                          Case{1250, -2, -1, 1200},
                          Case{-1201, -2, 1, -1300},
                          Case{7, -1, 5, 70},
                          Case{5e20, -21, 0, 1e21},
                          Case{5, -400, 0, 0},
                          Case{5, -400, 5, kInfinity},
                          Case{1e300, 2, 0, 1e300},
                          Case{1.25, 400, 0, 1.25},
                          Case{0, 400, 0, 0},
                          Case{1.25, std::numeric_limits<int>::max(), 0, 1.25},
                          Case{1.25, std::numeric_limits<int>::min(), 1, 0},
                          Case{-kInfinity, -2, 0, -kInfinity}}) {
        SCOPED_TRACE(testing::Message() << c.x << ", " << c.digits << ", " << c.mode);
        EXPECT_DOUBLE_EQ(CQVariant::fround(c.x, c.digits, c.mode), c.expected);
    }
    EXPECT_TRUE(std::isnan(CQVariant::fround(kNaN, 2, 0)));
    EXPECT_TRUE(std::signbit(CQVariant::fround(-0.001, 2, 0)));
}

TEST(QVariantNumber, DoubleToStrShowsAllPlaces) {
    struct Case {
        double x;
        int digits, mode;
        const char* expected;
    };
    for (const Case& c :
         {Case{0.125, 2, 0, "0.13"}, Case{2.5, 0, 0, "3"}, Case{-2.5, 0, 0, "-3"}, Case{100, 3, 0, "100.000"},
          Case{-0.001, 2, 0, "-0.00"}, Case{-0.0, 2, 0, "0.00"}, Case{0, 0, 0, "0"}, Case{1e-5, 5, 0, "0.00001"},
          Case{1250, -2, 0, "1300"}, Case{3e9, 0, 0, "-2147483648"}, Case{kNaN, 0, 0, "-2147483648"},
          Case{22517998136852.47, 2, 0, "22517998136852.47"}, Case{1e22, 1, 0, "10000000000000000000000.0"},
          Case{kNaN, 1, 0, "nan"}, Case{kInfinity, 1, 0, "inf"}}) {
        SCOPED_TRACE(testing::Message() << c.x << ", " << c.digits << ", " << c.mode);
        EXPECT_STREQ(CQVariant::DoubleToStr(c.x, c.digits, c.mode), c.expected);
    }
    EXPECT_EQ(CQVariant::DoubleToStr(1, 100000, 0).GetLength(), 2 + 512);
}

TEST(QVariantNumber, ReadsNumbersAsTheRuntimeDoes) {
    struct Integer {
        const char* text;
        int expected;
    };
    for (const Integer& c :
         {Integer{"", 0}, Integer{" \t12abc", 12}, Integer{"+5", 5}, Integer{" -5", -5}, Integer{"-+5", -5},
          Integer{"--5", 5}, Integer{"- 5", -5}, Integer{"0x10", 0}, Integer{"\x82\x50", 0},
          Integer{"2147483648", 2147483647}, Integer{"-2147483648", -2147483647 - 1},
          Integer{"--9999999999999999999999", 2147483647}, Integer{"-99999999999999999999", -2147483647 - 1}}) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(CQVariant::StrToInt(c.text), c.expected);
    }
    struct Number {
        const char* text;
        double expected;
    };
    for (const Number& c :
         {Number{"12", 12}, Number{"-+2.5", -2.5}, Number{".5", 0.5}, Number{"1e5", 1e5}, Number{"-1d2x", -100},
          Number{"1.5e2", kInfinity}, Number{"-1.5D2", -kInfinity}, Number{"1.5E-3", 0},  // longer exponents
          Number{"0.0e2", 0}, Number{"", 0}, Number{".", 0}, Number{"1e", 1}, Number{"inf", 0}, Number{"nan", 0},
          Number{"0x10", 0}, Number{"3,7", 3}, Number{"1e99999999999999999999", kInfinity}}) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(CQVariant::StrToDouble(c.text), c.expected);
    }
    EXPECT_TRUE(std::signbit(CQVariant::StrToDouble("-")));
    EXPECT_EQ(CQVariant::StrToInt("1234", 2), 12);
    EXPECT_EQ(CQVariant::StrToInt("1234", -1), 0);
    EXPECT_EQ(CQVariant::StrToInt("1234", 99), 1234);
    EXPECT_EQ(CQVariant::StrToDouble("12.75", 4), 12.7);
}

TEST(QVariantNumber, FixedFieldsHaveTheirWidth) {
    struct Case {
        double x;
        int width, decimals;
        const char* expected;
    };
    for (const Case& c : {Case{1.25, 20, 2, " 1.25"}, Case{-0.125, 20, 2, "-0.13"}, Case{2.5, 20, 0, " 3"},
                          Case{-123.456, 4, 1, "-123"}, Case{5, -1, 2, ""}, Case{7, 20, -3, " 7"},
                          Case{-0.0, 20, 1, " 0.0"}, Case{1e300, 6, 2, " 10000"}}) {
        SCOPED_TRACE(testing::Message() << c.x << ", " << c.width << ", " << c.decimals);
        char out[24] = {};
        CQVariant::DoubleToStr(c.x, out, c.width, c.decimals);
        EXPECT_STREQ(out, c.expected);
    }
    EXPECT_STREQ(CQVariant::IntToStr(-5, 4), "  -5");
    EXPECT_STREQ(CQVariant::IntToStr(-12345, 3), "345");
    EXPECT_STREQ(CQVariant::IntToStr(12, -2), "");
    EXPECT_EQ(CQVariant::IntToStr(12, 2000000000).GetLength(), 512);
    EXPECT_STREQ(CQVariant::NoNumericStr(3, 2), "---.--");
    EXPECT_STREQ(CQVariant::NoNumericStr(2, 0), "--");
    EXPECT_STREQ(CQVariant::NoNumericStr(-2, 1), ".-");
}

TEST(QVariantNumber, ExponentHasTwoDigitsWhereTheyDo) {
    struct Case {
        double x;
        const char* expected;
    };
    for (const Case& c :
         {Case{1234.5, "  1.235E+03"}, Case{-1234.5, " -1.235E+03"}, Case{12345.5, "  1.235E+04"},
          Case{1.2345e20, "  1.235E+20"}, Case{12355e5, "  1.236E+09"},  // ties away from zero, all sizes
          Case{0, "  0.000E+00"}, Case{1.5e-7, "  1.500E-07"}, Case{9.9996, "  1.000E+01"}, Case{1e100, "  1.000E+100"},
          Case{-1e-300, " -1.000E-300"}, Case{kInfinity, "         inf"}}) {
        SCOPED_TRACE(c.x);
        EXPECT_STREQ(CQVariant::ExponentialDigit3to2(c.x), c.expected);
    }
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
    EXPECT_EQ(CQVariant::asc2float(text), -1.5F);
    EXPECT_EQ(CQVariant::asc2float("0000803F and more"), 1.0F);
    EXPECT_EQ(CQVariant::asc2float("0"), 0.0F);
    EXPECT_EQ(CQVariant::hex2int("A5"), 0xA5);
    EXPECT_EQ(CQVariant::hex2int("aG"), 0);
    EXPECT_EQ(CQVariant::hex2int("F"), 0xF0);
    EXPECT_EQ(CQVariant::hex2int(nullptr), 0);
}
