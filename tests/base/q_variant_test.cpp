#include "qellib10/base/q_variant.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "qellib10/resource/string_ids.h"

#include "../support/cases.h"
#include "../support/code_page_scope.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity(), kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int kMost = std::numeric_limits<int>::max(), kLeast = std::numeric_limits<int>::min();

template <typename T> CQVariant Holding(const T& value) {
    CQVariant holder;
    holder = value;
    return holder;
}

}  // namespace

TEST(QVariant, KeepsTypeAndValue) {
    const COleDateTime date(2026, 7, 14, 0, 0, 0);
    int type = 0;
    for (const CQVariant& holder : {CQVariant(), Holding(true), Holding(1), Holding(1.0F), Holding(1.0),
                                    Holding("a text is no truth value"), Holding(date)}) {
        EXPECT_EQ(holder.GetType(), type++);
    }
    CQVariant copy = Holding(CString("text"));
    EXPECT_TRUE(copy == "text");
    copy = Holding(date);
    EXPECT_TRUE(copy == date && !(copy == COleDateTime(2026, 7, 15, 0, 0, 0)));
    EXPECT_EQ(copy.ChangeType(5), 0);
}

TEST(QVariant, EqualsOnlyTheSameType) {
    EXPECT_FALSE(Holding(1) == 1.0 || Holding(1) == true || Holding(1.0F) == 1.0);
    EXPECT_FALSE(CQVariant() == CQVariant()) << "no value equals no value";
    EXPECT_TRUE(Holding(kNaN) == kNaN && Holding("a") != Holding("A"));
    COleDateTime invalid;
    invalid.SetStatus(COleDateTime::invalid);
    EXPECT_FALSE(Holding(COleDateTime()) == invalid);
}

TEST(QVariant, TimesShowAsClocks) {
    // clang-format off
    const Cases<double, const char*> cases = {  // with days, without, with hours of two digits
        {90061, "1 1:01:01 25:01:01 25:01:01"}, {59.99, "0:00:59 0:00:59 00:00:59"}, {1e300, "  "}, {kNaN, "  "},
        {3661, "1:01:01 1:01:01 01:01:01"}, {86400, "1 0:00:00 24:00:00 24:00:00"},
        {-0.5, "0:00:-1 0:00:-1 00:00:-1"}};
    // clang-format on
    for (const auto& [x, expected] : cases) {
        EXPECT_STREQ(CQVariant::DoubleToDatetimeStr(x) + ' ' + CQVariant::DoubleToTimeStr(x) + ' ' +
                         CQVariant::DoubleToTimeH2Str(x),
                     expected);
    }
}

TEST(QVariant, MaxCTimeTakesTheLargerOfEachField) {
    const CTime later = CQVariant::MaxCTime(CTime(2001, 1, 31, 5, 0, 59), CTime(2001, 2, 1, 4, 30, 0));
    EXPECT_STREQ(later.Format("%Y/%m/%d %H:%M:%S"), "2001/03/03 05:30:59");
}

TEST(QVariant, DatabaseValuesConvert) {
    EXPECT_STREQ(CQVariant::VarToStr("\x83\x5C") + CQVariant::VarToStr(2.5),
                 "\x83\x5C"
                 "2.5");
    EXPECT_EQ(CQVariant::VarToBStr("\x83\x5C"), u"\u30BD");
    EXPECT_TRUE(CQVariant::VarToInt(2.5) == 2 && CQVariant::VarToDouble(2.5) == 2.5);
}

TEST(QVariant, RoundsByTheFirstDroppedDigit) {
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

TEST(QVariant, DoubleToStrShowsAllPlaces) {
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

TEST(QVariant, ReadsNumbersAsTheRuntimeDoes) {
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
    EXPECT_TRUE(CQVariant::StrToInt("1234", 2) == 12 && CQVariant::StrToInt("1234", -1) == 0);
    EXPECT_EQ(CQVariant::StrToInt("1234", 99), 1234);
    EXPECT_EQ(CQVariant::StrToDouble("12.75", 4), 12.7);
}

TEST(QVariant, FixedFieldsHaveTheirWidth) {
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

TEST(QVariant, ExponentHasTwoDigitsWhereTheyDo) {
    // clang-format off
    const Cases<double, const char*> cases = {
        {1234.5, "  1.235E+03"}, {-1234.5, " -1.235E+03"}, {12345.5, "  1.235E+04"}, {1.2345e20, "  1.235E+20"},
        {12355e5, "  1.236E+09"}, {0, "  0.000E+00"}, {1.5e-7, "  1.500E-07"}, {9.9996, "  1.000E+01"},
        {1e100, "  1.000E+100"}, {-1e-300, " -1.000E-300"}, {kInfinity, "         inf"}, {-kNaN, "        -nan"}};
    // clang-format on
    for (const auto& [x, expected] : cases) EXPECT_STREQ(CQVariant::ExponentialDigit3to2(x), expected);
}

TEST(QVariant, NoNumericToNullAcceptsTheFormOfANumber) {
    for (const char* text : {"", "1", "+1.5", "-.", "1.2.3", "."}) EXPECT_STREQ(CQVariant::NoNumericToNull(text), text);
    for (const char* text : {"-", "+", "1e5", " 1", "1-", "--1", "\x82\x50"}) {
        EXPECT_STREQ(CQVariant::NoNumericToNull(text), "NULL") << text;
    }
}

TEST(QVariant, HexadecimalTextsKeepTheBytesOfAFloat) {
    char text[9] = {};
    CQVariant::float2asc(-1.5F, text);
    EXPECT_STREQ(text, "0000C0BF");  // lowest byte first
    EXPECT_TRUE(CQVariant::asc2float("0000803F more") == 1.0F && CQVariant::asc2float("000080") == 0x1p-126F);
    const std::vector<char> field(text, text + 8);  // without a terminator: the sanitizer sees a step outside it
    EXPECT_EQ(CQVariant::asc2float(field.data()), -1.5F);
    EXPECT_TRUE(CQVariant::hex2int(&field[6]) == 0xBF && CQVariant::hex2int("A") == 0xA0 &&
                CQVariant::hex2int("aG") == 0);
    CQVariant::float2asc(1.5F, nullptr);
}

// Double-byte texts whose trail bytes are letters, digits' neighbours or separators: 83 5C, 95 5C (a backslash), 83 41
// (A), 83 7C (a bar).

TEST(QVariant, LeadBytesAreThoseOfTheJapanesePage) {
    EXPECT_TRUE(CQVariant::Check2Byte1('\x83') == -1 && CQVariant::Check2Byte1('\xA0') == 0);
    const CodePageScope page(1252);
    EXPECT_EQ(CQVariant::Check2Byte1('\x83'), 0);
}

TEST(QVariant, CutsBetweenCharacters) {
    const char* const text = "a\x83\x5C\x95\x5C";
    const char* const expected[] = {"", "a", "a", "a\x83\x5C", "a\x83\x5C", text, text};
    for (std::size_t n = 0; n < 7; ++n) {
        EXPECT_STREQ(CQVariant::MBLeft(text, static_cast<int>(n)), expected[n]) << n;
        std::string copy(8, 'x');
        CQVariant::strncopy(copy.data(), text, static_cast<int>(n));
        EXPECT_STREQ(copy.c_str(), expected[n]);
        EXPECT_EQ(copy.substr(n), std::string(1, '\0').append(7 - n, 'x'));
    }
    EXPECT_STREQ(CQVariant::MBLeft(text, -1), "");
    CQVariant::strncopy(nullptr, text, 3);
}

TEST(QVariant, SplitWalksAList) {
    CString list("a,\x83\x7C,,b");
    std::vector<CString> parts;
    for (int i = 0; i < 5; ++i) parts.push_back(CQVariant::Split(list, ','));
    EXPECT_EQ(parts, (std::vector<CString>{"a", "\x83\x7C", "", "b", ""}));
    CString bars("\x83\x7C|x"), blanks(" \t\x81\x40x\r\n");
    EXPECT_STREQ(CQVariant::Split(bars, '|'), "\x83\x7C");
    CQVariant::Trim(blanks);
    EXPECT_STREQ(blanks, "\x81\x40x") << "the full-width blank stays";
}

TEST(QVariant, NamesWithNumbersSortByTheNumber) {
    // clang-format off
    const Cases<const char*, const char*, int, int> cases = {  // as they are, and without regard to case
        {"Sample9", "Sample10", -1, -1}, {"Sample", "Sample0", 0, 0}, {"a01", "a1", 0, 0}, {"7", "12", -1, -1},
        {"b1", "a2", 1, 1}, {"A2", "a1", -1, 1}, {"A", "a", -1, 0}, {"", "", 0, 0},
        {"\xB1" "2", "\x83\x41" "1", -1, -1},     // single bytes sort before double ones
        {"\x82\x60" "1", "\x82\x81" "1", -1, 0},  // full-width A and a
        {"\x83\x41" "3", "\x83\x61" "2", -1, -1}};  // the trail bytes are no letters
    // clang-format on
    for (const auto& [a, b, order, foldedOrder] : cases) {
        EXPECT_TRUE(CQVariant::StrCmp(a, b) == order && CQVariant::StrCmp(b, a) == -order) << a << ", " << b;
        EXPECT_EQ(CQVariant::StrCmpi(a, b), foldedOrder) << a << ", " << b;
    }
    EXPECT_STREQ(CQVariant::CutLastValue("a1b23"), "a1b");
}

TEST(QVariant, VersionsCompareByNumber) {
    // clang-format off
    const Cases<const char*, const char*, int> cases = {
        {"1.2", "1.2.0", 0}, {"1.10", "1.9", 1}, {"1,2", "1.2", 0}, {" 1 . 2", "1.2", 0}, {"", "0.0", 0},
        {"1.x", "1.0", 0}, {"", "0.0.1", -1}, {"2", "1.9.9", 1}};
    // clang-format on
    for (const auto& [a, b, order] : cases) {
        EXPECT_TRUE(CQVariant::VersionCmp(a, b) == order && CQVariant::VersionCmp(b, a) == -order) << a << ", " << b;
    }
}

TEST(QVariant, QuotesForFilesAndQueries) {
    // clang-format off
    const Cases<const char*, const char*> fields = {
        {"5/2", "\"5/2\""}, {"a\"b", "\"a\"\"b\""}, {"a,b", "\"a,b\""}, {"a*b", "\"a*b\""}, {"a b", "a b"}};
    // clang-format on
    for (const auto& [text, field] : fields) EXPECT_STREQ(CQVariant::STRtoCSV(text), field);
    EXPECT_STREQ(CQVariant::GetDAOSQLQuate("O'x", 0) + CQVariant::GetDAOSQLQuate("", 0), "'O''x'");
    EXPECT_STREQ(CQVariant::EmptyToNull(nullptr) + CQVariant::EmptyToNull("0"), "NULL0");
    EXPECT_STREQ(CQVariant::LoadStringA(1) + CQVariant::LoadStringA(qel::kCsvDelimiterId), ",");
}

TEST(QVariant, LimitDoesNotCheckTheFallback) {
    int values[] = {5, -5, 2};
    for (int& value : values) CQVariant::Limit(value, 0, 3, 10);
    EXPECT_EQ(values[0] * 10000 + values[1] * 100 + values[2], 101002);
}
