#include "qellib10/platform/time/ole_date_time.h"

#include <chrono>
#include <cmath>
#include <optional>

#include "qellib10/platform/time/time.h"

namespace {

constexpr std::chrono::sys_days kDayZero = std::chrono::year(1899) / 12 / 30;
constexpr int kSecondsPerDay = 86400;
constexpr double kFirstDay = -657434;      // 0100-01-01
constexpr double kAfterLastDay = 2958466;  // 10000-01-01

constexpr bool Within(int value, int first, int last) { return value >= first && value <= last; }

struct Fields {
    std::chrono::year_month_day date;
    int second;  // of the day
};

std::optional<Fields> FieldsOf(const COleDateTime& time) {
    // Written so that NaN fails too. The first day's own fraction is below its number.
    if (time.m_status != COleDateTime::valid || !(time.m_dt > kFirstDay - 1 && time.m_dt < kAfterLastDay)) return {};
    const double day = std::trunc(time.m_dt);
    int number = static_cast<int>(day);
    int second = static_cast<int>(std::lround(std::fabs(time.m_dt - day) * kSecondsPerDay));
    if (second == kSecondsPerDay) {
        ++number;
        second = 0;
    }
    if (number >= static_cast<int>(kAfterLastDay)) return {};
    return Fields{kDayZero + std::chrono::days(number), second};
}

template <typename Field> int FieldOf(const COleDateTime& time, Field field) {
    const std::optional<Fields> fields = FieldsOf(time);
    return fields ? static_cast<int>(field(*fields)) : -1;
}

}  // namespace

COleDateTime::COleDateTime(int year, int month, int day, int hour, int minute, int second) noexcept {
    SetDateTime(year, month, day, hour, minute, second);
}

COleDateTime COleDateTime::GetCurrentTime() noexcept {
    const CTime now = CTime::GetCurrentTime();
    return {now.GetYear(), now.GetMonth(), now.GetDay(), now.GetHour(), now.GetMinute(), now.GetSecond()};
}

int COleDateTime::SetDateTime(int year, int month, int day, int hour, int minute, int second) noexcept {
    m_dt = 0;
    m_status = invalid;
    if (!Within(year, 100, 9999) || !Within(month, 1, 12) || !Within(day, 1, 31)) return 1;
    if (!Within(hour, 0, 23) || !Within(minute, 0, 59) || !Within(second, 0, 59)) return 1;
    const std::chrono::year_month_day date = std::chrono::year(year) / month / day;
    if (!date.ok()) return 1;
    const double whole = static_cast<double>((std::chrono::sys_days(date) - kDayZero).count());
    const double fraction = static_cast<double>(hour * 3600 + minute * 60 + second) / kSecondsPerDay;
    m_dt = whole < 0 ? whole - fraction : whole + fraction;
    m_status = valid;
    return 0;
}

int COleDateTime::GetYear() const noexcept {
    return FieldOf(*this, [](const Fields& f) { return static_cast<int>(f.date.year()); });
}
int COleDateTime::GetMonth() const noexcept {
    return FieldOf(*this, [](const Fields& f) { return static_cast<unsigned>(f.date.month()); });
}
int COleDateTime::GetDay() const noexcept {
    return FieldOf(*this, [](const Fields& f) { return static_cast<unsigned>(f.date.day()); });
}
int COleDateTime::GetHour() const noexcept {
    return FieldOf(*this, [](const Fields& f) { return f.second / 3600; });
}
int COleDateTime::GetMinute() const noexcept {
    return FieldOf(*this, [](const Fields& f) { return f.second / 60 % 60; });
}
int COleDateTime::GetSecond() const noexcept {
    return FieldOf(*this, [](const Fields& f) { return f.second % 60; });
}
