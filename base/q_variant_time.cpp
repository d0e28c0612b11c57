// Times to text, and the larger of two times.

#include <algorithm>
#include <cmath>
#include <optional>

#include "qellib10/base/q_variant.h"

namespace {

constexpr long long kSecondsPerDay = 86400;

std::optional<long long> WholeSeconds(double seconds) {
    constexpr double kTwoTo63 = 9223372036854775808.0;
    const double whole = std::floor(seconds);
    if (!(whole >= -kTwoTo63 && whole < kTwoTo63)) return std::nullopt;
    return static_cast<long long>(whole);
}

CString Clock(long long seconds, int hourDigits) {
    CString text;
    text.Format("%0*lld:%02lld:%02lld", hourDigits, seconds / 3600, seconds % 3600 / 60, seconds % 60);
    return text;
}

}  // namespace

CString CQVariant::DoubleToDatetimeStr(double seconds) {
    const std::optional<long long> whole = WholeSeconds(seconds);
    if (!whole) return {};
    CString days;
    if (*whole >= kSecondsPerDay) days.Format("%lld ", *whole / kSecondsPerDay);
    return days + Clock(*whole % kSecondsPerDay, 1);
}

CString CQVariant::DoubleToTimeStr(double seconds) {
    const std::optional<long long> whole = WholeSeconds(seconds);
    return whole ? Clock(*whole, 1) : CString();
}

CString CQVariant::DoubleToTimeH2Str(double seconds) {
    const std::optional<long long> whole = WholeSeconds(seconds);
    return whole ? Clock(*whole, 2) : CString();
}

CTime CQVariant::MaxCTime(const CTime& a, const CTime& b) {
    return CTime(std::max(a.GetYear(), b.GetYear()), std::max(a.GetMonth(), b.GetMonth()),
                 std::max(a.GetDay(), b.GetDay()), std::max(a.GetHour(), b.GetHour()),
                 std::max(a.GetMinute(), b.GetMinute()), std::max(a.GetSecond(), b.GetSecond()), -1);
}
