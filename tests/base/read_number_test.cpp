#include "qellib10/base/read_number.h"

#include <cmath>
#include <limits>

#include "qellib10/base/measured_value.h"
#include "qellib10/base/q_variant.h"

#include "../support/test.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace

TEST(ReadNumber, ReadsWhatInstrumentsSendAndNothingElse) {
    // clang-format off
    for (const auto& [text, expected] : Cases<const char*, std::optional<double>>{
             {"7.005", 7.005},
             {" \t-12.50\r\n", -12.5},
             {"+0,350", 0.35},
             {".5", 0.5},
             {"5.", 5},
             {"-0", 0},
             {"1.5E-3", 0.0015},
             {"1,006E+00", 1.006},
             {"0e999", 0},
             {"5e-324", 5e-324},
             {"", {}},
             {"-", {}},
             {".", {}},
             {"e5", {}},
             {"1e", {}},
             {"1,2,3", {}},
             {"1.234,5", {}},
             {"+-5", {}},
             {"1 000", {}},
             {"7.01 pH", {}},
             {"inf", {}},
             {"0x10", {}},
             {"1d2", {}},
             {"\x82\x50", {}},
             {"1e400", {}},
             {"1e-400", {}},
         })
        EXPECT_EQ(qel::ReadNumber(text), expected) << text;
    // clang-format on
    EXPECT_EQ(qel::ReadNumber(std::string_view("7.005", 3)), 7);
    EXPECT_EQ(qel::ReadNumber(std::string_view("7\0", 2)), std::nullopt);
    EXPECT_EQ(qel::ReadNumber(CString("7\0", 2)), std::nullopt);
    EXPECT_EQ(qel::ReadNumber(nullptr), std::nullopt);
    EXPECT_EQ(qel::ReadNumber(std::string("-7.5")), -7.5);
    EXPECT_EQ(qel::ReadNumber(qel::NumberText(1e23)), 1e23);
    EXPECT_EQ(qel::ReadNumber(CQVariant::ExponentialDigit3to2(1234.5)), 1235);
}

TEST(ReadNumber, ScpiNamesInfinitiesByNumbers) {
    const Cases<const char*, std::optional<double>> cases = {
        {"9.9E37", kInfinity},
        {"+9.90000000E+37\n", kInfinity},
        {"-9.9e37", -kInfinity},
        {"9.8E37", 9.8e37},
        {"-9.91E37", -9.91e37},
        {"1,5", {}},
        {"", {}},
        {"INF", {}},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(qel::ReadScpiNumber(text), expected) << text;
    EXPECT_TRUE(std::isnan(qel::ReadScpiNumber("9.910000E+37").value_or(0)));
    EXPECT_EQ(qel::ReadScpiNumber(CString("9.9E37")), kInfinity);
    EXPECT_EQ(qel::ReadScpiNumber(nullptr), std::nullopt);
    EXPECT_EQ(qel::NumberText(-std::numeric_limits<double>::quiet_NaN()), "-nan");
}

TEST(MeasuredValue, IsReadAsItIsWritten) {
    for (const auto& [text, expected, unit] : Cases<const char*, double, const char*>{
             {"\u221212.5", -12.5, ""},
             {"\u201312.5", -12.5, ""},
             {"3.14 mL", 3.14, "mL"},
             {"3,14mL", 3.14, "mL"},
             {"1.5e-3 mol/L", 0.0015, "mol/L"},
             {"25\u00A0\u00B0C", 25, "\u00B0C"},
             {"1,234", 1.234, ""},
             {"1,234.5", 1234.5, ""},
             {"1.234,5", 1234.5, ""},
             {"-1,234,567", -1234567, ""},
             {"1\u00A0234,5", 1234.5, ""},
             {"12\u202F345.75 mV", 12345.75, "mV"},
             {"1'234.5", 1234.5, ""},
         }) {
        const auto found = qel::ReadMeasuredValue(text);
        ASSERT_TRUE(found) << text;
        EXPECT_EQ(found->value, expected) << text;
        EXPECT_EQ(found->unit, unit) << text;
    }
    for (const char* const text :
         {"",      "-",    "---.-", "mL",     "1 2",     "1,23,4",           "12,34.5",        "1234,567.8",
          "1.2.3", "7.1*", "7.2?",  "1.5E",   "1.5E-",   "2.00 mL in 50 mL", "12:30",          "2026-01-02",
          "nan",   "inf",  "1e999", "9.9E37", "-9.9E37", "9.91E37",          "5 of these days"})
        EXPECT_FALSE(qel::ReadMeasuredValue(text)) << text;
}
