#include "qellib10/platform/variant/ole_variant.h"

#include <cmath>
#include <string>
#include <utility>

#include "qellib10/platform/text/number_scan.h"
#include "qellib10/platform/text/number_text.h"

namespace {

constexpr double kUnitsOfMoney = 10000;

CString MoneyText(LONGLONG units) {
    const auto amount = units < 0 ? 0 - static_cast<ULONGLONG>(units) : static_cast<ULONGLONG>(units);
    std::string text = std::to_string(amount / 10000);
    if (const ULONGLONG fraction = amount % 10000; fraction != 0) {
        text += '.';
        text += std::to_string(10000 + fraction).substr(1);
        text.resize(text.find_last_not_of('0') + 1);
    }
    return (units < 0 ? CString("-") : CString()) + text.c_str();
}

CString DateText(double day) {
    const COleDateTime time(day);
    if (time.GetYear() < 0) return {};
    const bool hasDate = time.GetYear() != 1899 || time.GetMonth() != 12 || time.GetDay() != 30;
    const bool hasTime = time.GetHour() != 0 || time.GetMinute() != 0 || time.GetSecond() != 0;
    CString date;
    CString clock;
    if (hasDate) date.Format("%d/%02d/%02d", time.GetYear(), time.GetMonth(), time.GetDay());
    if (hasTime || !hasDate) clock.Format("%d:%02d:%02d", time.GetHour(), time.GetMinute(), time.GetSecond());
    return date.IsEmpty() || clock.IsEmpty() ? date + clock : date + " " + clock;
}

double TextNumber(const CString& text) {
    CString trimmed = text;
    trimmed.TrimRight();
    const qel::ScannedNumber number = qel::ScanNumber(trimmed.View());
    const bool isWhole = number.length == trimmed.View().size();
    return isWhole && std::isfinite(number.value) ? number.value : 0;
}

}  // namespace

COleVariant::COleVariant(short value, VARTYPE type) : vt(type == VT_BOOL ? VT_BOOL : VT_I2) {
    if (vt == VT_BOOL) {
        boolVal = value != 0 ? -1 : 0;
    } else {
        iVal = value;
    }
}

COleVariant::COleVariant(long value) {
    if (std::in_range<LONG>(value)) {
        *this = static_cast<LONG>(value);
    } else {
        *this = static_cast<double>(value);
    }
}

COleVariant::COleVariant(const COleDateTime& value) {
    if (value.GetStatus() == COleDateTime::valid) {
        vt = VT_DATE;
        date = value.m_dt;
    } else if (value.GetStatus() == COleDateTime::null) {
        vt = VT_NULL;
    }
}

namespace qel {

CString VariantText(const COleVariant& value) {
    switch (value.vt) {
        case VT_I2:
            return CString(std::to_string(value.iVal));
        case VT_I4:
            return CString(std::to_string(value.lVal));
        case VT_UI1:
            return CString(std::to_string(value.bVal));
        case VT_BOOL:
            return value.boolVal != 0 ? "-1" : "0";
        case VT_R4:
            return CString(GeneralText(value.fltVal, 7));
        case VT_R8:
            return CString(GeneralText(value.dblVal, 15));
        case VT_CY:
            return MoneyText(value.cyVal.int64);
        case VT_DATE:
            return DateText(value.date);
        case VT_BSTR:
            return value.bstrVal;
        default:
            return {};
    }
}

double VariantNumber(const COleVariant& value) {
    switch (value.vt) {
        case VT_I2:
            return value.iVal;
        case VT_I4:
            return value.lVal;
        case VT_UI1:
            return value.bVal;
        case VT_BOOL:
            return value.boolVal != 0 ? -1 : 0;
        case VT_R4:
            return value.fltVal;
        case VT_R8:
            return value.dblVal;
        case VT_CY:
            return static_cast<double>(value.cyVal.int64) / kUnitsOfMoney;
        case VT_DATE:
            return value.date;
        case VT_BSTR:
            return TextNumber(value.bstrVal);
        default:
            return 0;
    }
}

int VariantInteger(const COleVariant& value) {
    const double number = VariantNumber(value);
    // Ties to even by our own code: the processor's rounding mode belongs to the application.
    const double below = std::floor(number);
    const double above = number - below;
    const double nearest = above < 0.5 || (above == 0.5 && std::fmod(below, 2) == 0) ? below : below + 1;
    return nearest >= -2147483648.0 && nearest <= 2147483647.0 ? static_cast<int>(nearest) : 0;
}

}  // namespace qel
