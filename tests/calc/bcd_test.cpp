#include "qellib10/calc/bcd.h"

#include <atomic>
#include <cmath>
#include <functional>
#include <limits>

#include "../support/test.h"
#include "qellib10/platform/types.h"

static_assert(std::is_trivially_copyable_v<CBCD>);

// How many of the 17 operations compile with an operand of type T.
// clang-format off
template <typename T, typename... Operators> constexpr int kWith = (std::is_invocable_v<Operators, CBCD&, T> + ...);
template <typename T> constexpr int kForms =
    std::is_constructible_v<CBCD, T> + std::is_assignable_v<CBCD&, T> +
    kWith<T, std::plus<>, std::minus<>, std::multiplies<>, std::divides<>, std::bit_xor<>> +
    kWith<T, std::equal_to<>, std::not_equal_to<>, std::less<>, std::less_equal<>, std::greater<>, std::greater_equal<>> +
    requires(CBCD x, T y) { x += y; } + requires(CBCD x, T y) { x -= y; } + requires(CBCD x, T y) { x *= y; } +
    requires(CBCD x, T y) { x /= y; };
// clang-format on
static_assert(kForms<int> == 17 && kForms<unsigned> == 17 && kForms<long> == 17 && kForms<DWORD> == 17);
static_assert(kForms<short> == 17 && kForms<bool> == 17 && kForms<const char*> == 16);
// As an int it would lose its decimals without a word.
static_assert(kForms<float> == 0 && kForms<double> == 0 && kForms<long double> == 0 && kForms<const double&> == 0);
static_assert(kForms<std::atomic<double>&> == 0 && kForms<std::atomic<int>&> == 17);

namespace {

constexpr rounding kUp = DEC_ROUND_UP;
constexpr int kMost = std::numeric_limits<int>::max(), kLeast = std::numeric_limits<int>::min();

std::string Text(const CBCD& number) {
    const decNumber value = number.GetBCDValue();
    char text[64];
    return decNumberToString(&value, text);
}

CBCD Rounded(const char* text, int decimals, rounding mode) {
    CBCD number(text);
    number.Round(decimals, mode);
    return number;
}

}  // namespace

TEST(Bcd, OperationsAndRoundTakeTheMode) {
    const CBCD right("3.00000000000007");
    // The last digits of sum, difference, product and quotient, then of 2.25 and -2.05 with one place.
    for (const auto& [mode, digits] : Cases<rounding, const char*>{
             {DEC_ROUND_CEILING, "456332"},
             {DEC_ROUND_UP, "567431"},
             {DEC_ROUND_HALF_UP, "556431"},
             {DEC_ROUND_HALF_EVEN, "556422"},
             {DEC_ROUND_HALF_DOWN, "556422"},
             {DEC_ROUND_DOWN, "456322"},
             {DEC_ROUND_FLOOR, "567421"},
             {DEC_ROUND_05UP, "466321"},
         }) {
        CBCD left = Rounded("-98765.4321098765", 10, mode), a = Rounded("2.25", 1, mode), b = Rounded("-2.05", 1, mode);
        std::string last;
        for (const CBCD& x : {left + right, left - right, left * right, left / right, a, b}) last += Text(x).back();
        EXPECT_EQ(last, digits);
    }
}

TEST(Bcd, RoundDropsZerosAndTheImpossibleBecomesASpecialValue) {
    const Cases<CBCD, const char*> cases = {
        {Rounded("2.500", 2, kUp), "2.5"},
        {Rounded("2.34999", 1, DEC_ROUND_HALF_UP), "2.3"},
        {Rounded("99.99", 1, kUp), "1E+2"},
        {Rounded("0.0004", 2, kUp), "0.01"},
        {Rounded("-4E-9", 2, DEC_ROUND_DOWN), "-0"},
        {Rounded("1234.5", -3, kUp), "1235"},
        {Rounded("1.5E-390", 390, kUp), "2E-390"},
        {Rounded("9.99999999999999E+384", 0, kUp), "9.99999999999999E+384"},
        {Rounded("-Infinity", 1, kUp), "-Infinity"},
        {Rounded("2.5", 0, DEC_ROUND_MAX), "NaN"},
        {kLeast, "-2147483648"},
        {" 1", "NaN"},
        {static_cast<const char*>(nullptr), "NaN"},
        {"1E-99999999999", "0E-397"},
        {CBCD(1) / 0, "Infinity"},
        {CBCD::SquareRoot(2), "1.41421356237310"},
        {CBCD::SquareRoot(-1), "NaN"},
        {CBCD("1.1") ^ 2, "1.210"},
        {CBCD("-NaN12").GetBCDValue(), "-NaN12"},
        {CBCD("-1") ^ 4294967295, "-1.0"},
        {CBCD("-Infinity") ^ 4000000000, "Infinity"},
    };
    for (const auto& [number, expected] : cases) EXPECT_EQ(Text(number), expected);
}

TEST(Bcd, GetStringRoundsDropsZerosAndFillsItsField) {
    for (const auto& [value, width, decimals, mode, expected] : Cases<const char*, int, int, rounding, const char*>{
             {"-3.14159", 8, 3, DEC_ROUND_DOWN, "  -3.141"},
             {"100", 8, 2, DEC_ROUND_HALF_UP, " 1E+2.00"},
             {"1E-7", 10, 9, DEC_ROUND_HALF_UP, "    1E-700"},
             {"-0.04", 4, 1, DEC_ROUND_HALF_UP, "-0.0"},
             {"123456.789", 8, 2, DEC_ROUND_HALF_UP, "123456.8"},    // a digit less when they fill the field
             {"-123456.789", 8, 2, DEC_ROUND_HALF_UP, "-123457."},   // 6 digits: width - 1, then one less
             {"-123456789", 8, 2, DEC_ROUND_HALF_UP, "-1.23456"},    // 7 digits, no decimals to shorten
             {"1.5E+384", 11, 2, DEC_ROUND_HALF_UP, "1.5E+384.00"},  // kept with 15 digits, exponents being clamped
             {"1.23456789E-389", 10, 392, DEC_ROUND_UP, "1.235E-389"},
             {"7", 10, kLeast, DEC_ROUND_UP, " Infinity."},
             {"9.87654321098765E+384", 22, kMost, DEC_ROUND_UP, "9.87654321098765E+384."},
             {"2.5", 3, 0, DEC_ROUND_MAX, "NaN"},
             {"1", 0, 2, DEC_ROUND_HALF_UP, ""},
         }) {
        std::vector<char> field(width + 2, '?');
        CBCD(value).GetString(&field.back(), -1, decimals, mode);
        CBCD(value).GetString(nullptr, width, decimals, mode);
        CBCD(value).GetString(field.data(), width, decimals, mode);
        EXPECT_STREQ(field.data(), expected) << value;
        EXPECT_EQ(field.back(), '?');
    }
    EXPECT_EQ(CBCD("0.5").GetString(kMost, DEC_ROUND_DOWN), CString("0.5") + CString('0', 61));
}

TEST(Bcd, GetDoublePrintsAsTheDecimalDoes) {
    EXPECT_EQ(CBCD("2.5").GetDouble(0, DEC_ROUND_HALF_EVEN), 2);
    EXPECT_EQ(CBCD("0.125").GetDouble(2, DEC_ROUND_HALF_UP), 0.13);
    EXPECT_EQ(CBCD("1E+384").GetDouble(kMost, DEC_ROUND_HALF_UP), HUGE_VAL);
    EXPECT_EQ(Line({CBCD("-1250").GetDouble(-2, DEC_ROUND_HALF_UP), CBCD("0.5").GetDouble(kLeast, DEC_ROUND_DOWN)}),
              "-1300 0");
    EXPECT_TRUE(std::isnan(CBCD("abc").GetDouble(2, DEC_ROUND_HALF_UP)));
}

TEST(Bcd, EveryTwoNumbersHaveOneOrder) {
    const char* const ascending[] = {"-NaN", "-Infinity", "-1E+384", "-1E-397", "0", "0.5", "2", "Infinity", "NaN"};
    for (const auto& a : ascending) {
        for (const auto& b : ascending) {
            const CBCD left(a);
            EXPECT_EQ(Line({left<b, left <= b, left> b, left >= b, left == b, left != b}),
                      Line({&a<&b, &a <= &b, &a> & b, &a >= &b, &a == &b, &a != &b}));
        }
    }
    EXPECT_EQ(Line({CBCD("1.0") == "1.00", CBCD("-0") == 0, CBCD(2) < "2.5", CBCD("2.5") > 2}), "1 1 1 1");
}

TEST(Bcd, TheModeOfTheLastRoundingStaysUntilAnAssignment) {
    for (const auto& [set, expected] : Cases<void (*)(CBCD&), char>{
             // the last digit, rounded up or by half
             {[](CBCD& x) { x.Round(20, kUp); }, '6'},
             {[](CBCD& x) { x.GetString(2, kUp); }, '6'},
             {[](CBCD& x) { x.GetDouble(0, kUp); }, '6'},
             {[](CBCD& x) { x.GetString(nullptr, 0, 0, kUp); }, '6'},
             {[](CBCD& x) { x.Round(0, kUp), x = 1; }, '0'},
             {[](CBCD& x) { x.Round(0, kUp), x = "1"; }, '0'},
             {[](CBCD& x) { x.Round(20, kUp), x = x.GetBCDValue(); }, '5'},
             {[](CBCD& x) { x.Round(20, kUp), x = CBCD("0") + x; }, '5'},  // the left operand's
             {[](CBCD& x) { x.Round(20, kUp), x += "4E-15"; }, '6'},
             {[](CBCD& x) { x.Round(20, kUp), x = ((x *= 0) += 9) /= CBCD(3).GetBCDValue(); }, '0'},
         }) {
        CBCD number("1.23456789012345");
        set(number);
        EXPECT_EQ(Text(number + "4E-15").back(), expected) << Text(number);
    }
}

TEST(Bcd, ADamagedNumberIsNan) {
    for (const auto& [text, damage] : Cases<const char*, void (*)(decNumber&)>{
             {"1", [](decNumber& x) { x.digits = 0; }},
             {"123456789012345", [](decNumber& x) { x.digits = 16; }},
             {"1", [](decNumber& x) { x.digits = 2; }},
             {"12", [](decNumber& x) { x.digits = 1; }},
             {"1234567", [](decNumber& x) { x.lsu[1] = 1000; }},
             {"1", [](decNumber& x) { x.exponent = kMost; }},
             {"1", [](decNumber& x) { x.exponent = kLeast; }},
             {"1", [](decNumber& x) { x.bits = 1; }},
             {"1", [](decNumber& x) { x.bits = DECINF | DECNAN; }},
             {"1", [](decNumber& x) { x.bits = DECINF; }},
             {"12", [](decNumber& x) { x.lsu[0] = 0, x.bits = DECINF; }},
             {"1E2", [](decNumber& x) { x.lsu[0] = 0, x.bits = DECINF; }},
             {"1E2", [](decNumber& x) { x.bits = DECSNAN; }},
         }) {
        decNumber number = CBCD(text).GetBCDValue();
        damage(number);
        EXPECT_EQ(Text(CBCD(number)), "NaN") << text << ", " << int{number.bits};
    }
}
