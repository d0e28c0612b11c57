#include "qellib10/platform/decimal/decimal.h"

#include <mpfr.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "../support/test.h"
#include "decimal_words.h"
#include "qellib10/platform/decimal/decimal_functions.h"

namespace {

using qel::Decimal;
using qel::DecimalFlags;

// 160 digits decide about 34 in all of these cases.
constexpr mpfr_prec_t kBits = 550;

struct Precise {
    explicit Precise(const Decimal& value) {
        mpfr_init2(number, kBits);
        mpfr_set_str(number, value.Text().c_str(), 10, MPFR_RNDN);
    }
    Precise(const Precise&) = delete;
    Precise& operator=(const Precise&) = delete;
    ~Precise() { mpfr_clear(number); }

    // Rounded once to 34 digits: MPFR converts exactly, half to even.
    std::string Text() const {
        std::array<char, 80> text;
        mpfr_snprintf(text.data(), text.size(), "%.33Re", number);
        std::ranges::replace(text, ',', '.');  // of the locale
        return DecimalOf(text.data()).Reduced().Text();
    }
    mpfr_t number;
};

Decimal RandomDecimal(std::mt19937_64& random, int leastExponent, int mostExponent) {
    std::string text;
    const int digits = 1 + static_cast<int>(random() % 34);
    for (int i = 0; i < digits; ++i) text += static_cast<char>('0' + random() % 10);
    const int span = mostExponent - leastExponent + 1;
    const int exponent = leastExponent + static_cast<int>(random() % static_cast<unsigned>(span)) - digits;
    return DecimalOf(text + "e" + std::to_string(exponent));
}

}  // namespace

TEST(Decimal, OperationsAreExactOrSaySo) {
    using Operation = Decimal (*)(const Decimal&, const Decimal&, DecimalFlags&);
    for (const auto& [operation, a, b, expected] : Cases<Operation, const char*, const char*, const char*>{
             {qel::Add, "0.1", "0.2", "0.3"},
             {qel::Add, "1.20", "0.1", "1.30"},
             {qel::Add, "1e34", "0.5", "1.000000000000000000000000000000000E+34 inexact"},
             {qel::Add, "9999999999999999999999999999999999", "1", "1.000000000000000000000000000000000E+34"},
             {qel::Add, "Infinity", "-Infinity", "NaN invalid"},
             {qel::Subtract, "1", "1.000", "0.000"},
             {qel::Multiply, "1.10", "-3", "-3.30"},
             {qel::Multiply, "9e6144", "10", "Infinity inexact large"},
             {qel::Multiply, "1e-6176", "0.1", "0E-6176 inexact small"},
             {qel::Divide, "1", "3", "0.3333333333333333333333333333333333 inexact"},
             {qel::Divide, "1", "8", "0.125"},
             {qel::Divide, "-1", "0", "-Infinity by zero"},
             {qel::Divide, "0", "0", "NaN invalid"},
             {qel::Remainder, "-7.5", "2", "-1.5"},
             {qel::Remainder, "1e40", "3", "NaN invalid"},
         }) {
        DecimalFlags flags;
        const std::string text = operation(DecimalOf(a), DecimalOf(b), flags).Text();
        EXPECT_EQ(text + Words(flags), expected) << a << " " << b;
    }
}

TEST(Decimal, TextsAreReadAndWrittenWithAllDigits) {
    for (const auto& [text, expected, plain] : Cases<const char*, const char*, const char*>{
             {"-12.50", "-12.50", "-12.50"},
             {"1e-3", "0.001", "0.001"},
             {"1.20e-9", "1.20E-9", "0.00000000120"},
             {"12e3", "1.2E+4", "12000"},
             {"0e3", "0E+3", "0"},
             {"-0", "-0", "-0"},
             {".5", "0.5", "0.5"},
             {"12345678901234567890123456789012345", "1.234567890123456789012345678901234E+34 inexact",
              "12345678901234567890123456789012340"},
             {"1,5", "NaN invalid", "NaN"},
             {" 1", "NaN invalid", "NaN"},
             {"", "NaN invalid", "NaN"},
             {"1e99999999999", "Infinity inexact large", "Infinity"},
         }) {
        DecimalFlags flags;
        const Decimal value = Decimal::OfText(text, flags);
        EXPECT_EQ(value.Text() + Words(flags), expected) << text;
        EXPECT_EQ(value.PlainText(), plain) << text;
    }
}

TEST(Decimal, ADoubleEntersAsItsShortestTextAndComesBack) {
    for (const double value : {0.1, -2.5e-300, 1e22, 5e-324, 1.7976931348623157e308, 0.30000000000000004, 0.0})
        EXPECT_EQ(Decimal::OfDouble(value).ToDouble(), value);
    EXPECT_EQ(Decimal::OfDouble(0.1).Text(), "0.1");
    EXPECT_EQ(Decimal::OfDouble(INFINITY).Text(), "Infinity");
    EXPECT_TRUE(Decimal::OfDouble(NAN).IsNan());
    EXPECT_EQ(DecimalOf("1e400").ToDouble(), HUGE_VAL);
    EXPECT_EQ(DecimalOf("-1e-400").ToDouble(), 0.0);
}

TEST(Decimal, IsComparedByValue) {
    EXPECT_EQ(DecimalOf("1.20"), DecimalOf("1.2"));
    EXPECT_LT(DecimalOf("-Infinity"), DecimalOf("-1e6000"));
    EXPECT_FALSE(DecimalOf("NaN") == DecimalOf("NaN"));
    EXPECT_EQ(Line({DecimalOf("1e2").IsInteger(), DecimalOf("1.00").IsInteger(), DecimalOf("1.5").IsInteger(),
                    DecimalOf("NaN").IsInteger()}),
              "1 1 0 0");
}

TEST(DecimalFunctions, AreRoundedAsThoseOfMpfr) {
    std::mt19937_64 random(17);
    for (int i = 0; i < 150; ++i) {
        DecimalFlags ignored;
        const Decimal power = RandomDecimal(random, -4, 3), positive = RandomDecimal(random, -30, 30);
        // Next to 1, where most digits of a logarithm cancel.
        const Decimal nearOne = Add(Decimal(1), RandomDecimal(random, -25, -2), ignored);
        Precise exponent(power), argument(positive), near(nearOne), root(positive), both(positive);
        mpfr_exp(exponent.number, exponent.number, MPFR_RNDN);
        mpfr_log10(argument.number, argument.number, MPFR_RNDN);
        mpfr_log(near.number, near.number, MPFR_RNDN);
        mpfr_sqrt(root.number, root.number, MPFR_RNDN);
        const Decimal small = RandomDecimal(random, -3, 2);
        mpfr_pow(both.number, both.number, Precise(small).number, MPFR_RNDN);
        EXPECT_EQ(Exponential(power, ignored).Reduced().Text(), exponent.Text()) << power.Text();
        EXPECT_EQ(SquareRoot(positive, ignored).Reduced().Text(), root.Text()) << positive.Text();
        if (!positive.IsZero()) {
            EXPECT_EQ(DecimalLogarithm(positive, ignored).Reduced().Text(), argument.Text()) << positive.Text();
            EXPECT_EQ(Power(positive, small, ignored).Reduced().Text(), both.Text())
                << positive.Text() << "^" << small.Text();
        }
        EXPECT_EQ(NaturalLogarithm(nearOne, ignored).Reduced().Text(), near.Text()) << nearOne.Text();
    }
}

TEST(DecimalFunctions, AreExactWhereTheResultIs) {
    for (const auto& [base, exponent, expected] : Cases<const char*, const char*, const char*>{
             {"4", "0.5", "2"},
             {"0.001", "-0.25e1", "31622776.60168379331998893544432719 inexact"},
             {"1024", "0.1", "2"},
             {"-2", "3", "-8"},
             {"-1", "12345678901", "-1"},
             {"-2", "0.5", "NaN invalid"},
             {"0", "0", "NaN invalid"},
             {"10", "6144", "1.000000000000000000000000000000000E+6144"},
             {"1.5", "2", "2.25"},
             {"1.0", "0.3", "1"},
             {"1", "12345678901", "1"},
         }) {
        DecimalFlags flags;
        const std::string text = Power(DecimalOf(base), DecimalOf(exponent), flags).Reduced().Text();
        EXPECT_EQ(text + Words(flags), expected) << base << "^" << exponent;
    }
    using Function = Decimal (*)(const Decimal&, DecimalFlags&);
    for (const auto& [function, argument, expected] : Cases<Function, const char*, const char*>{
             {qel::DecimalLogarithm, "1000", "3"},
             {qel::NaturalLogarithm, "0", "-Infinity"},
             {qel::NaturalLogarithm, "1", "0"},
             {qel::NaturalLogarithm, "-1", "NaN invalid"},
             {qel::BinaryLogarithm, "1e-6176", "-20516.22791402434986044709279652647 inexact"},
             {qel::Exponential, "0", "1"},
             {qel::Exponential, "1e5", "Infinity inexact large"},
         }) {
        DecimalFlags flags;
        const std::string text = function(DecimalOf(argument), flags).Text();
        EXPECT_EQ(text + Words(flags), expected) << argument;
    }
}
