#include "qellib10/platform/time/time.h"

#include <time.h>

#include <array>
#include <limits>
#include <string>

#include "qellib10/platform/text/c_locale.h"

namespace {

using Int = std::numeric_limits<int>;

// A time that mktime cannot convert; so far away that localtime_r refuses it too.
constexpr std::int64_t kNoTime = std::numeric_limits<std::int64_t>::min();

constexpr std::size_t kLongestFormat = 64 * 1024;

// Sets all fields to 0, in calendar terms, if the time has none.
bool LocalFields(std::int64_t seconds, tm& fields) noexcept {
    const time_t time = seconds;
    return localtime_r(&time, &fields) != nullptr;
}

template <typename Field> int LocalField(const CTime& time, Field field) noexcept {
    tm fields{};
    return LocalFields(time.GetTime(), fields) ? field(fields) : 0;
}

std::int64_t FromLocal(tm fields) noexcept {
    fields.tm_wday = -1;  // mktime sets it only on success; its result -1 is also a valid time
    const time_t time = mktime(&fields);
    return fields.tm_wday < 0 ? kNoTime : time;
}

}  // namespace

CTime::CTime(int year, int month, int day, int hour, int minute, int second, int daylightSaving) : m_time(kNoTime) {
    if (year < Int::min() + 1900 || month == Int::min()) return;
    tm fields{};
    fields.tm_year = year - 1900;
    fields.tm_mon = month - 1;
    fields.tm_mday = day;
    fields.tm_hour = hour;
    fields.tm_min = minute;
    fields.tm_sec = second;
    fields.tm_isdst = daylightSaving;
    m_time = FromLocal(fields);
}

CTime CTime::GetCurrentTime() noexcept { return CTime(time(nullptr)); }

int CTime::GetYear() const noexcept {
    // The last years that localtime_r knows do not fit in an int when counted from year 0.
    return LocalField(*this, [](const tm& f) { return f.tm_year > Int::max() - 1900 ? 0 : f.tm_year + 1900; });
}
int CTime::GetMonth() const noexcept {
    return LocalField(*this, [](const tm& f) { return f.tm_mon + 1; });
}
int CTime::GetDay() const noexcept {
    return LocalField(*this, [](const tm& f) { return f.tm_mday; });
}
int CTime::GetHour() const noexcept {
    return LocalField(*this, [](const tm& f) { return f.tm_hour; });
}
int CTime::GetMinute() const noexcept {
    return LocalField(*this, [](const tm& f) { return f.tm_min; });
}
int CTime::GetSecond() const noexcept {
    return LocalField(*this, [](const tm& f) { return f.tm_sec; });
}

CString CTime::Format(const char* format) const {
    tm fields{};
    if (format == nullptr || *format == '\0' || !LocalFields(m_time, fields)) return {};
    std::array<char, 128> usual;
    if (const std::size_t size = strftime_l(usual.data(), usual.size(), format, &fields, qel::CLocale())) {
        return CString(std::string_view(usual.data(), size));
    }
    for (std::size_t size = 2 * usual.size(); size <= kLongestFormat; size *= 2) {
        std::string text(size, '\0');
        text.resize(strftime_l(text.data(), text.size(), format, &fields, qel::CLocale()));
        if (!text.empty()) return CString(std::string_view(text));
    }
    return {};  // too long, or a conversion without text, such as %p in some locales
}
