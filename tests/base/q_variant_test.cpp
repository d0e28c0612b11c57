#include "qellib10/base/q_variant.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "qellib10/tests/support/cases.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

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
    const Cases<double, const char*, const char*, const char*> cases = {
        {90061, "1 1:01:01", "25:01:01", "25:01:01"}, {59.99, "0:00:59", "0:00:59", "00:00:59"},
        {3661, "1:01:01", "1:01:01", "01:01:01"}, {86400, "1 0:00:00", "24:00:00", "24:00:00"},
        {-0.5, "0:00:-1", "0:00:-1", "00:00:-1"}, {1e300, "", "", ""}, {kNaN, "", "", ""}};
    // clang-format on
    for (const auto& [seconds, dateTime, time, timeH2] : cases) {
        EXPECT_STREQ(CQVariant::DoubleToDatetimeStr(seconds), dateTime);
        EXPECT_STREQ(CQVariant::DoubleToTimeStr(seconds), time);
        EXPECT_STREQ(CQVariant::DoubleToTimeH2Str(seconds), timeH2);
    }
}

TEST(QVariant, MaxCTimeTakesTheLargerOfEachField) {
    const CTime later = CQVariant::MaxCTime(CTime(2001, 1, 31, 5, 0, 59), CTime(2001, 2, 1, 4, 30, 0));
    EXPECT_STREQ(later.Format("%Y/%m/%d %H:%M:%S"), "2001/03/03 05:30:59");
}

TEST(QVariant, DatabaseValuesConvert) {
    COleVariant null;
    null.vt = VT_NULL;
    COleVariant unknown;
    unknown.vt = 0x2000;
    // clang-format off
    const Cases<COleVariant, const char*, int, double> cases = {
        {{}, "", 0, 0}, {null, "", 0, 0}, {unknown, "", 0, 0}, {BYTE{200}, "200", 200, 200}, {short{-7}, "-7", -7, -7},
        {COleVariant(5, VT_BOOL), "-1", -1, -1}, {LONG{1 << 30}, "1073741824", 1 << 30, 1 << 30},
        {0.1F, "0.1", 0, 0.1F}, {1e15, "1E+15", 0, 1e15}, {1e-5, "1E-05", 0, 1e-5}, {CY{70000}, "7", 7, 7},
        {2.5, "2.5", 2, 2.5}, {3.5, "3.5", 4, 3.5}, {-2.5, "-2.5", -2, -2.5}, {kNaN, "nan", 0, kNaN},
        {CY{-125000}, "-12.5", -12, -12.5}, {CY{1}, "0.0001", 0, 0.0001},
        {COleDateTime(2001, 1, 2, 3, 4, 5), "2001/01/02 3:04:05", 36893, 36893 + 11045.0 / 86400},
        {COleDateTime(2001, 1, 2, 0, 0, 0), "2001/01/02", 36893, 36893}, {COleDateTime(0.5), "12:00:00", 0, 0.5},
        {COleDateTime(0.0), "0:00:00", 0, 0}, {COleDateTime(1e9), "", 1000000000, 1e9},
        {" 12.5 ", " 12.5 ", 12, 12.5}, {"12x", "12x", 0, 0}, {"", "", 0, 0}};
    // clang-format on
    for (const auto& [value, text, integer, number] : cases) {
        EXPECT_STREQ(CQVariant::VarToStr(value), text);
        EXPECT_EQ(CQVariant::VarToInt(value), integer) << text;
        EXPECT_EQ(CQVariant::VarToDouble(value) == number, !std::isnan(number)) << text;
    }
    EXPECT_EQ(CQVariant::VarToBStr("\x83\x5C"), u"\u30BD");
}
