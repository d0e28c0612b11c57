#include "qellib10/platform/time/time.h"

#include <time.h>
#include <cmath>
#include <limits>

#include "../support/test.h"
#include "qellib10/platform/time/ole_date_time.h"

TEST(Time, FieldsAreThoseOfTheLocalTimeZone) {
    const EnvironmentScope zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    ::tzset();
    const CTime summer(2026, 7, 14, 9, 5, 7);
    EXPECT_EQ(summer.GetTime(), 1784012707);
    EXPECT_EQ(Line({summer.GetYear(), summer.GetMonth(), summer.GetDay()}), "2026 7 14");
    EXPECT_EQ(Line({summer.GetHour(), summer.GetMinute(), summer.GetSecond()}), "9 5 7");
    EXPECT_STREQ(summer.Format("[%Y/%m/%d %H:%M:%S],"), "[2026/07/14 09:05:07],");
    EXPECT_STREQ(summer.Format("%b %p"), "Jul AM") << "names are not those of the locale";
    EXPECT_GT(summer, CTime(1969, 12, 31, 23, 59, 59));
    EXPECT_EQ(CTime(1970, 1, 1, 0, 59, 59).GetTime(), -1) << "the second before 1970 is a time like any other";
    EXPECT_EQ(CTime(2026, 7, 14, 9, 5, 7, 0).GetHour(), 10) << "a standard time in summer";
}

TEST(Time, ImpossibleOnesHaveFields0AndEmptyTexts) {
    using Int = std::numeric_limits<int>;
    for (const CTime& time : {CTime(std::numeric_limits<std::int64_t>::max()), CTime(Int::min(), 1, 1, 0, 0, 0),
                              CTime(Int::max(), Int::max(), Int::max(), 0, 0, 0), CTime(2026, Int::min(), 1, 0, 0, 0)})
        EXPECT_EQ(Line({time.GetYear(), time.Format("%Y")}), "0 ");
    EXPECT_STREQ(CTime().Format(nullptr), "");
    EXPECT_STREQ(CTime().Format("%099999999Y"), "") << "no text without bound";
    EXPECT_EQ(CTime().Format(std::string(1000, 'x').c_str()).GetLength(), 1000);
}

TEST(OleDateTime, DaysAreCountedFromTheEndOf1899) {
    for (const auto& [number, year, month, day] : Cases<double, int, int, int>{
             {0, 1899, 12, 30},
             {36585, 2000, 2, 29},
             {-1, 1899, 12, 29},
             {-657434, 100, 1, 1},
             {2958465, 9999, 12, 31},
         }) {
        const COleDateTime date(year, month, day, 0, 0, 0);
        EXPECT_EQ(date.m_dt, number);
        EXPECT_EQ(Line({date.GetYear(), date.GetMonth(), date.GetDay()}), Line({year, month, day}));
    }
    const COleDateTime before(1899, 12, 29, 6, 0, 0);
    EXPECT_EQ(before.m_dt, -1.25);
    EXPECT_EQ(Line({before.GetDay(), before.GetHour()}), "29 6");
    const COleDateTime almost(2.0 - 1e-9);  // less than half a second before the next day
    EXPECT_EQ(Line({almost.GetMonth(), almost.GetDay(), almost.GetHour()}), "1 1 0");
}

TEST(OleDateTime, ImpossibleDatesAreInvalid) {
    for (const auto& [year, month, day, hour, minute, second] : Cases<int, int, int, int, int, int>{
             {99, 1, 1, 0, 0, 0},
             {10000, 1, 1, 0, 0, 0},
             {2001, 2, 29, 0, 0, 0},
             {2001, 13, 1, 0, 0, 0},
             {2001, 1, 0, 0, 0, 0},
             {2001, 1, 1, 24, 0, 0},
             {2001, 1, 1, 0, 60, 0},
             {2001, 1, 1, 0, 0, -1},
         }) {
        COleDateTime date(5.5);
        EXPECT_EQ(date.SetDateTime(year, month, day, hour, minute, second), 1);
        EXPECT_EQ(Line({date.m_dt, date.GetYear()}), "0 -1");
        EXPECT_EQ(date.GetStatus(), COleDateTime::invalid);
    }
    for (const double day : {HUGE_VAL, -HUGE_VAL, std::nan(""), 2958466.0, 2958466.0 - 1e-9, -657435.0})
        EXPECT_EQ(COleDateTime(day).GetSecond(), -1) << day;
    EXPECT_TRUE(COleDateTime(std::nan("")) == COleDateTime(std::nan("")));
}
