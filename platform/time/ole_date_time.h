#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

/// A local date and time as a day number with a status. The status says whether the date exists. Six plain numbers
/// take 30 February without a word, and a report then shows it.
///
/// @code
/// COleDateTime measured;
/// if (measured.SetDateTime(2026, 2, 28, 9, 5, 0) != 0) return;  // no such date
/// std::printf("%04d-%02d-%02d\n", measured.GetYear(), measured.GetMonth(), measured.GetDay());
/// @endcode
///
/// Nothing is thrown. One thread at a time; GetCurrentTime from any.
///
/// Day 0 is 1899-12-30, the fraction is the time of day. Before day 0 the whole part is negative and the fraction still
/// counts forward: -1.25 is 1899-12-29 06:00. Archives store the status as 4 bytes, then the day number as 8.
class QELLIB10_API COleDateTime {
public:
    /// Other values may be read from an archive and are kept.
    enum DateTimeStatus : int { valid = 0, invalid = 1, null = 2 };

    constexpr COleDateTime() noexcept = default;
    constexpr explicit COleDateTime(double day) noexcept : m_dt(day) {}
    COleDateTime(int year, int month, int day, int hour, int minute, int second) noexcept;

    /// The local time now, in whole seconds.
    static COleDateTime GetCurrentTime() noexcept;

    /// Years 100 to 9999, the real days of each month, hours 0 to 23, minutes and seconds 0 to 59.
    /// @return 0; 1 for any other date, which sets day 0 and status invalid
    int SetDateTime(int year, int month, int day, int hour, int minute, int second) noexcept;

    DateTimeStatus GetStatus() const noexcept { return m_status; }
    void SetStatus(DateTimeStatus status) noexcept { m_status = status; }

    /// The fields, rounded to the nearest second; -1 if the status is not valid or the year is not within 100 to 9999.
    int GetYear() const noexcept;
    int GetMonth() const noexcept;
    int GetDay() const noexcept;
    int GetHour() const noexcept;
    int GetMinute() const noexcept;
    int GetSecond() const noexcept;

    /// Same status, and neither day number below the other; so two NaN are equal.
    friend bool operator==(const COleDateTime& a, const COleDateTime& b) noexcept {
        return a.m_status == b.m_status && !(a.m_dt < b.m_dt) && !(a.m_dt > b.m_dt);
    }

    double m_dt = 0;
    DateTimeStatus m_status = valid;
};
