#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/time/ole_date_time.h"
#include "qellib10/platform/types.h"

/// Type codes of a COleVariant; databases may return others.
using VARTYPE = WORD;
inline constexpr VARTYPE VT_EMPTY = 0;  ///< no value yet
inline constexpr VARTYPE VT_NULL = 1;   ///< the database's "no value"
inline constexpr VARTYPE VT_I2 = 2;     ///< iVal
inline constexpr VARTYPE VT_I4 = 3;     ///< lVal
inline constexpr VARTYPE VT_R4 = 4;     ///< fltVal
inline constexpr VARTYPE VT_R8 = 5;     ///< dblVal
inline constexpr VARTYPE VT_CY = 6;     ///< cyVal
inline constexpr VARTYPE VT_DATE = 7;   ///< date
inline constexpr VARTYPE VT_BSTR = 8;   ///< bstrVal
inline constexpr VARTYPE VT_ERROR = 10;
inline constexpr VARTYPE VT_BOOL = 11;  ///< boolVal
inline constexpr VARTYPE VT_UI1 = 17;   ///< bVal

/// An amount of money in units of 1/10000.
struct CY {
    LONGLONG int64 = 0;
};

/// A value whose type is known only at run time, as databases return it. `vt` names the member in use; the others keep
/// their old values. An unsigned int, an unsigned long or a long long is ambiguous: convert it to the type you mean,
/// LONG or double.
class QELLIB10_API COleVariant {
public:
    COleVariant() = default;
    COleVariant(BYTE value) : vt(VT_UI1), bVal(value) {}
    /// @p type VT_I2, or VT_BOOL for a truth value, for which everything except 0 is true
    COleVariant(short value, VARTYPE type = VT_I2);
    COleVariant(LONG value) : vt(VT_I4), lVal(value) {}
    COleVariant(long value);  ///< VT_I4; outside the range of LONG (which is narrower here) VT_R8
    COleVariant(float value) : vt(VT_R4), fltVal(value) {}
    COleVariant(double value) : vt(VT_R8), dblVal(value) {}
    COleVariant(CY value) : vt(VT_CY), cyVal(value) {}
    COleVariant(const COleDateTime& value);  ///< VT_NULL for status null, VT_EMPTY for status invalid
    COleVariant(const CString& value) : vt(VT_BSTR), bstrVal(value) {}
    COleVariant(const char* value) : vt(VT_BSTR), bstrVal(value) {}

    /// Resets to VT_EMPTY.
    void Clear() { *this = COleVariant(); }

    VARTYPE vt = VT_EMPTY;
    BYTE bVal = 0;
    short iVal = 0;
    short boolVal = 0;  ///< 0 or -1
    LONG lVal = 0;
    float fltVal = 0;
    double dblVal = 0;
    double date = 0;  ///< day number of COleDateTime
    CY cyVal;
    CString bstrVal;  ///< in the process's code page
};

namespace qel {

// Conversions with fixed forms: nothing depends on the machine's settings. What has no value in the wanted type
// (VT_EMPTY, VT_NULL, unknown types, text that is not a number, a value out of range) gives the empty text or 0.

/// Numbers in decimal, float and double with 7 and 15 digits at most (0.1, 1E+15), true as -1, dates as
/// 2001/01/02 3:04:05, without the date on day 0, else without a time of 0:00:00.
QELLIB10_API CString VariantText(const COleVariant& value);

/// Text is converted only if all of it, except blanks at its ends, is a number.
QELLIB10_API double VariantNumber(const COleVariant& value);

/// The same, rounded to the nearest whole number, ties to even.
QELLIB10_API int VariantInteger(const COleVariant& value);

}  // namespace qel
