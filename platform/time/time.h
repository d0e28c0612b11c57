#pragma once

#include <compare>
#include <cstdint>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

/// A point in time as whole seconds since 1970-01-01 00:00:00 UTC, also before it. The fields are local time: month 1
/// to 12, day 1 to 31. A time whose fields do not fit the system's calendar has fields 0 and the empty text.
class QELLIB10_API CTime {
public:
    constexpr CTime() noexcept = default;
    constexpr explicit CTime(std::int64_t seconds) noexcept : m_time(seconds) {}

    /// From local fields. A surplus is carried over: February 31 is March 3 (or 2). @p daylightSaving is 1, 0, or -1
    /// for the rule at that time.
    CTime(int year, int month, int day, int hour, int minute, int second, int daylightSaving = -1);

    static CTime GetCurrentTime() noexcept;

    constexpr std::int64_t GetTime() const noexcept { return m_time; }
    int GetYear() const noexcept;
    int GetMonth() const noexcept;
    int GetDay() const noexcept;
    int GetHour() const noexcept;
    int GetMinute() const noexcept;
    int GetSecond() const noexcept;

    /// The local time by the conversions of strftime in the C locale, for example "%Y/%m/%d %H:%M:%S". Empty if there
    /// is none or if it would be longer than 64 KiB.
    CString Format(const char* format) const;

    friend constexpr auto operator<=>(const CTime&, const CTime&) = default;

private:
    std::int64_t m_time = 0;
};
