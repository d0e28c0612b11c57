#include "qellib10/base/q_variant.h"

#include <cmath>
#include <limits>

#include "qellib10/resource/string_ids.h"

#include "../support/test.h"

namespace {

using V = CQVariant;

constexpr double kInfinity = std::numeric_limits<double>::infinity(), kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int kMost = std::numeric_limits<int>::max(), kLeast = std::numeric_limits<int>::min();

template <typename T> CQVariant Holding(const T& value) {
    CQVariant holder;
    holder = value;
    return holder;
}

}  // namespace

TEST(QVariant, KeepsTypeAndValueAndEqualsOnlyTheSameType) {
    const COleDateTime date(2026, 7, 14, 0, 0, 0);
    COleDateTime invalid;
    invalid.SetStatus(COleDateTime::invalid);
    int type = 0;
    for (const CQVariant& holder : {CQVariant(), Holding(true), Holding(1), Holding(1.0F), Holding(1.0),
                                    Holding("a text is not a truth value"), Holding(date)})
        EXPECT_EQ(holder.GetType(), type++);
    CQVariant copy = Holding(CString("text"));
    EXPECT_EQ(copy, "text");
    EXPECT_EQ(Holding(kNaN), kNaN);
    EXPECT_NE(Holding("a"), Holding("A"));
    copy = Holding(date);
    EXPECT_EQ(copy, date);
    EXPECT_EQ(copy.ChangeType(5), 0);
    EXPECT_FALSE(copy == COleDateTime(2026, 7, 15, 0, 0, 0));
    EXPECT_FALSE(Holding(COleDateTime()) == invalid);
    EXPECT_EQ(Line({Holding(1) == 1.0, Holding(1) == true, Holding(1.0F) == 1.0}), "0 0 0");
    EXPECT_FALSE(CQVariant() == CQVariant()) << "no value equals no value";
}

TEST(QVariant, TimesShowAsClocks) {
    for (const auto& [x, expected] : Cases<double, const char*>{
             // with days, without, with hours of two digits
             {90061, "1 1:01:01 25:01:01 25:01:01"},
             {59.99, "0:00:59 0:00:59 00:00:59"},
             {1e300, "  "},
             {kNaN, "  "},
             {3661, "1:01:01 1:01:01 01:01:01"},
             {86400, "1 0:00:00 24:00:00 24:00:00"},
             {-0.5, "0:00:-1 0:00:-1 00:00:-1"},
         })
        EXPECT_EQ(Line({V::DoubleToDatetimeStr(x), V::DoubleToTimeStr(x), V::DoubleToTimeH2Str(x)}), expected);
}

TEST(QVariant, RoundsToTensAndBeyondTheRangeOfDoubles) {
    for (const auto& [x, digits, mode, expected] : Cases<double, int, int, double>{
             {1.005, 2, 0, 1.01},
             {-1.005, 2, 0, -1.01},  // the doubles lie below the halves
             {2.34999, 1, 0, 2.4},
             {1250, -2, 0, 1300},
             {1250, -2, -1, 1200},
             {-1201, -2, 1, -1300},
             {5, -400, 0, 0},
             {5, -400, 5, kInfinity},
             {0, -400, 5, 0},
             {1.25, 400, 0, 1.25},
             {0, 400, 0, 0},
             {1.25, kMost, 0, 1.25},
             {1.25, kLeast, 1, 0},
             {-kInfinity, -2, 0, -kInfinity},
         })
        EXPECT_DOUBLE_EQ(V::fround(x, digits, mode), expected) << x << ", " << digits << ", " << mode;
    EXPECT_EQ(Line({std::isnan(V::fround(kNaN, 2, 0)), std::signbit(V::fround(-0.001, 2, 0))}), "1 1");
}

TEST(QVariant, ShowsNumbersInTheirForms) {
    const Cases<CString, const char*> cases = {
        {V::DoubleToStr(2.5, 0, 0), "3"},
        {V::DoubleToStr(-0.001, 2, 0), "-0.00"},
        {V::DoubleToStr(-0.0, 2, 0), "0.00"},
        {V::DoubleToStr(0, 0, 0), "0"},
        {V::DoubleToStr(1250, -2, 0), "1300"},
        {V::DoubleToStr(kNaN, 1, 0), "nan"},
        {V::DoubleToStr(3e9, 0, 0), "-2147483648"},
        {V::DoubleToStr(kNaN, 0, 0), "-2147483648"},
        {V::DoubleToStr(-kInfinity, 1, 0), "-inf"},
        {V::DoubleToStr(1, kMost, 0).Mid(513), "0"},
        // Exponents of two digits, where they do.
        {V::ExponentialDigit3to2(1234.5), "  1.235E+03"},
        {V::ExponentialDigit3to2(12345.5), "  1.235E+04"},
        {V::ExponentialDigit3to2(0), "  0.000E+00"},
        {V::ExponentialDigit3to2(1.5e-7), "  1.500E-07"},
        {V::ExponentialDigit3to2(9.9996), "  1.000E+01"},
        {V::ExponentialDigit3to2(1e100), "  1.000E+100"},
        {V::ExponentialDigit3to2(-1e-300), " -1.000E-300"},
        {V::ExponentialDigit3to2(kInfinity), "         inf"},
        {V::ExponentialDigit3to2(-kNaN), "        -nan"},
        // Fields of a width.
        {V::IntToStr(-5, 4), "  -5"},
        {V::IntToStr(12, -2), ""},
        {V::IntToStr(-12345, 3), "345"},
        {V::IntToStr(12, kMost).Mid(510), "12"},
        {V::NoNumericStr(3, 2), "---.--"},
        {V::NoNumericStr(-2, 1), ".-"},
        {V::MaxCTime(CTime(2001, 1, 31, 5, 0, 59), CTime(2001, 2, 1, 4, 30, 0)).Format("%Y/%m/%d %H:%M:%S"),
         "2001/03/03 05:30:59"},
    };  // the larger of each field
    for (const auto& [text, expected] : cases) EXPECT_STREQ(text, expected);
}

TEST(QVariant, ReadsNumbersAsTheRuntimeDoes) {
    const Cases<const char*, int> integers = {
        {"", 0},
        {" \t12abc", 12},
        {"-+5", -5},
        {"--5", 5},
        {"- 5", -5},
        {"0x10", 0},
        {"2147483648", kMost},
        {"-2147483648", kLeast},
        {"-99999999999999999999", kLeast},
        {"--9999999999999999999999", kMost},
    };
    // clang-format off
    const Cases<const char*, double> numbers = {
        {"-+2.5", -2.5},
        {".5", 0.5},
        {"-1d2x", -100},
        {"0.0e2", 0},
        {"", 0},
        {".", 0},
        {"1.5e2", kInfinity},
        {"-1.5D2", -kInfinity},
        {"1.5E-3", 0},  // the appended zeros lengthen the exponent
        {"1e", 1},
        {"inf", 0},
        {"0x10", 0},
        {"1e99999999999999999999", kInfinity},
    };
    // clang-format on
    for (const auto& [text, expected] : integers) EXPECT_EQ(V::StrToInt(text), expected) << text;
    for (const auto& [text, expected] : numbers) EXPECT_EQ(V::StrToDouble(text), expected) << text;
    EXPECT_TRUE(std::signbit(V::StrToDouble("-")));
    EXPECT_EQ(Line({V::StrToInt("1234", 2), V::StrToInt("1234", -1)}), "12 0");
    EXPECT_EQ(V::StrToInt("1234", 99), 1234);
    EXPECT_EQ(V::StrToDouble("12.75", 4), 12.7);
}

TEST(QVariant, FixedFieldsStartWithTheirSignAndAreCutToTheirWidth) {
    for (const auto& [x, width, decimals, expected] : Cases<double, int, int, const char*>{
             {1.25, 20, 2, " 1.25"},
             {-123.456, 4, 1, "-123"},
             {5, -1, 2, ""},
             {7, 20, -3, " 7"},
             {-0.0, 20, 1, " 0.0"},
             {1e300, 6, 2, " 10000"},
             {75223483557905.375, 20, 2, " 75223483557905.38"},
         }) {
        char out[24] = {};
        V::DoubleToStr(x, out, width, decimals);
        EXPECT_STREQ(out, expected) << x << ", " << width << ", " << decimals;
    }
    V::DoubleToStr(1.25, nullptr, 20, 2);
}

TEST(QVariant, HexadecimalTextsKeepTheBytesOfAFloat) {
    char text[9] = {};
    V::float2asc(-1.5F, text);
    EXPECT_STREQ(text, "0000C0BF");  // lowest byte first
    EXPECT_EQ(V::asc2float("0000803F more"), 1.0F);
    EXPECT_EQ(V::asc2float("000080"), 0x1p-126F);
    const std::vector<char> field(text, text + 8);  // without a terminator: the sanitizer sees a step outside it
    EXPECT_EQ(V::asc2float(field.data()), -1.5F);
    EXPECT_EQ(Line({V::hex2int(&field[6]), V::hex2int("A"), V::hex2int("aG")}), Line({0xBF, 0xA0, 0}));
    V::float2asc(1.5F, nullptr);
}

// Double-byte texts whose trail bytes are letters, digits' neighbours or separators: 83 5C, 95 5C (a backslash), 83 41
// (A), 83 7C (a bar).

TEST(QVariant, LeadBytesAreThoseOfTheJapanesePage) {
    EXPECT_EQ(Line({V::Check2Byte1('\x83'), V::Check2Byte1('\xA0')}), "-1 0");
    const CodePageScope page(1252);
    EXPECT_EQ(V::Check2Byte1('\x83'), 0);
    EXPECT_EQ(V::StrCmp("\xB1", "\x82\x60"), 1);
}

TEST(QVariant, CutsBetweenCharacters) {
    const char* const text = "a\x83\x5C\x95\x5C";
    const char* const expected[] = {"", "a", "a", "a\x83\x5C", "a\x83\x5C", text, text};
    for (std::size_t n = 0; n < 7; ++n) {
        EXPECT_STREQ(V::MBLeft(text, static_cast<int>(n)), expected[n]) << n;
        std::string copy(8, 'x');
        V::strncopy(copy.data(), text, static_cast<int>(n));
        EXPECT_STREQ(copy.c_str(), expected[n]);
        EXPECT_EQ(copy.substr(n), std::string(1, '\0').append(7 - n, 'x'));
    }
    EXPECT_EQ(Line({V::MBLeft(text, -1), V::MBLeft("x\x88", 9)}), " x\x88");
    std::string half(6, '#');
    V::strncopy(half.data(), "a\x88", 4);  // the second half is missing
    EXPECT_EQ(half, std::string("a\0\0\0\0#", 6));
    V::strncopy(nullptr, text, 3);
}

TEST(QVariant, SplitTakesOneItemAfterTheOther) {
    CString list("a,\x83\x7C,,b");
    std::vector<CString> parts;
    for (int i = 0; i < 5; ++i) parts.push_back(V::Split(list, ','));
    EXPECT_EQ(parts, (std::vector<CString>{"a", "\x83\x7C", "", "b", ""}));
    CString bars("\x83\x7C|x"), blanks(" \t\x81\x40x\r\n");
    EXPECT_STREQ(V::Split(bars, '|'), "\x83\x7C");
    V::Trim(blanks);
    EXPECT_STREQ(blanks, "\x81\x40x") << "the full-width blank stays";
}

TEST(QVariant, NamesWithNumbersSortByTheNumber) {
    for (const auto& [a, b, order, foldedOrder] : Cases<const char*, const char*, int, int>{
             // as they are, and without regard to case
             {"Sample9", "Sample10", -1, -1},
             {"Sample", "Sample0", 0, 0},
             {"a01", "a1", 0, 0},
             {"A2", "a1", -1, 1},
             {"A", "a", -1, 0},
             {"ab", "abc", -1, -1},
             {"abC", "ABc", 1, 0},
             {"_", "B", 1, -1},  // folding is to lower case
             {"\x83\x9F", "\x83\xBF", -1, -1},
             {"a\x83", "a", 0, 0},                      // Greek stays; a lone lead byte ends its text
             {"\xB1\x32", "\x83\x41\x31", -1, -1},      // single bytes sort before double ones
             {"\x82\x60\x31", "\x82\x81\x31", -1, 0},   // full-width A and a
             {"\x83\x41\x33", "\x83\x61\x32", -1, -1},  // the trail bytes are not letters
         }) {
        EXPECT_EQ(Line({V::StrCmp(a, b), V::StrCmp(b, a)}), Line({order, -order})) << a << ", " << b;
        EXPECT_EQ(V::StrCmpi(a, b), foldedOrder) << a << ", " << b;
    }
    EXPECT_STREQ(V::CutLastValue("a1b23"), "a1b");
}

TEST(QVariant, VersionsCompareByNumber) {
    for (const auto& [a, b, order] : Cases<const char*, const char*, int>{
             {"1.2", "1.2.0", 0},
             {"1.10", "1.9", 1},
             {"1,2", "1.2", 0},
             {" 1 . 2", "1.2", 0},
             {"", "0.0", 0},
             {"", "0.0.1", -1},
             {"2", "1.9.9", 1},
         })
        EXPECT_EQ(Line({V::VersionCmp(a, b), V::VersionCmp(b, a)}), Line({order, -order})) << a << ", " << b;
}

TEST(QVariant, FilesAndQueriesGetTheirQuotes) {
    const Cases<CString, const char*> cases = {
        {V::STRtoCSV("5/2"), "\"5/2\""},
        {V::STRtoCSV("a\"b"), "\"a\"\"b\""},
        {V::STRtoCSV("a,b"), "\"a,b\""},
        {V::STRtoCSV("a*b"), "\"a*b\""},
        {V::STRtoCSV("a b"), "a b"},
        {V::GetDAOSQLQuate("O'x", 0), "'O''x'"},
        {V::GetDAOSQLQuate("", 0), ""},
        {V::EmptyToNull(nullptr), "NULL"},
        {V::EmptyToNull("0"), "0"},
        {V::LoadStringA(1), ""},
        {V::LoadStringA(qel::kCsvDelimiterId), ","},
        {V::VarToStr("\x83\x5C"), "\x83\x5C"},
        {V::VarToStr(2.5), "2.5"},
    };
    for (const auto& [text, expected] : cases) EXPECT_STREQ(text, expected);
    for (const char* text : {"", "1", "+1.5", "-.", "1.2.3", "."}) EXPECT_STREQ(V::NoNumericToNull(text), text);
    for (const char* text : {"-", "+", "1e5", " 1", "1-", "--1", "\x82\x50"})
        EXPECT_STREQ(V::NoNumericToNull(text), "NULL") << text;
    EXPECT_EQ(V::VarToBStr("\x83\x5C"), u"\u30BD");
    EXPECT_EQ(Line({V::VarToInt(2.5), V::VarToDouble(2.5)}), "2 2.5");
    int values[] = {5, -5, 2};
    for (int& value : values) V::Limit(value, 0, 3, 10);  // the fallback is not checked
    EXPECT_EQ(Line({values[0], values[1], values[2]}), "10 10 2");
}
