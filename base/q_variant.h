#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/time/ole_date_time.h"
#include "qellib10/platform/time/time.h"
#include "qellib10/platform/types.h"
#include "qellib10/platform/variant/ole_variant.h"

namespace qel {

/// Powers of ten that are exact as doubles, and the doubles nearest to 1, 0.1, 0.01 and so on.
inline constexpr std::array<double, 23> kPowersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
inline constexpr std::array<double, 23> kUnits = {1e-0,  1e-1,  1e-2,  1e-3,  1e-4,  1e-5,  1e-6,  1e-7,
                                                  1e-8,  1e-9,  1e-10, 1e-11, 1e-12, 1e-13, 1e-14, 1e-15,
                                                  1e-16, 1e-17, 1e-18, 1e-19, 1e-20, 1e-21, 1e-22};
/// One digit more than these is used.
inline constexpr int kMaxExactDigits = static_cast<int>(kPowersOfTen.size()) - 2;

/// From this many tenths of a unit on, numbers are not rounded: they exceed 64-bit integers.
inline constexpr double kTooLargeTenths = 0x1p63;

/// The rule of CQVariant::fround step by step; fround itself reaches the same doubles faster where it can.
QELLIB10_API double RoundByRule(double x, int digits, int mode);

}  // namespace qel

/// The one way from numbers and times to text and back. Displays, reports, telegrams, CSV files and queries call it, so
/// a result looks the same everywhere. It prevents two rules of rounding in one program: printf shows 0.125 with two
/// decimals as 0.12, and the report has 0.13.
///
/// @code
/// const double stored = CQVariant::fround(0.125, 2, 0);            // 0.13
/// const CString shown = CQVariant::DoubleToStr(0.125, 2, 0);       // "0.13", by the same rule
/// const CString table = "pH " + CQVariant::DoubleToStr(7.0, 2, 0);  // "pH 7.00", whatever the locale
/// @endcode
///
/// An object holds one value of six types; everything else is static, keeps no state and may be called from any thread.
/// Texts are in the code page of the process and never cut inside a double-byte character. A null text counts as the
/// empty one; nothing is written to a null target. Widths and numbers of digits are taken within 0 to 512, except for
/// the size of a target, which the caller knows. Nothing is thrown but std::bad_alloc.
///
/// Kept: fround is not the rounding taught at school in all cases, since its results are in files (see there;
/// CBCD::Round is). Nor do StrToInt and StrToDouble report a text that is not a number: what an instrument sends is for
/// qel::ReadNumber.
///
/// Rounding is here; the object's own members are in q_variant.cpp, numbers in q_variant_number.cpp, texts, versions
/// and values of databases in q_variant_text.cpp, times in q_variant_time.cpp.
class QELLIB10_API CQVariant {
public:
    // --- Rounding, numbers to text ---

    /// Rounds to @p digits places. Every displayed and stored result is rounded by this rule, so it must not change:
    ///
    /// From 0 digits on, |x| * 10^(digits + 1) + 0.01 is cut to a whole number. Only its last digit decides: @p mode 0
    /// rounds up from 5 on, a mode below 0 never rounds up (toward zero), a mode above 0 rounds up for every digit
    /// except 0 (away from zero). The 0.01 corrects the error of doubles: 1.005 rounds to 1.01. It also treats values
    /// up to a thousandth of a unit below a half as a half, so 2.34999 with 1 digit is 2.4; by hand, and by
    /// CBCD::Round, it is 2.3. Later digits are ignored, also with mode above 0: 1.0001 with 2 digits stays 1. A
    /// negative number that rounds to zero gives -0. From 2^53 tenths of the last kept digit on, the product is not
    /// exact and the last digits may be wrong; kept, because results are stored in files. Numbers from 2^63 tenths on,
    /// infinities and NaN are returned unchanged.
    ///
    /// Below 0 digits (-2: hundreds) the modes are -1, 0 and 1; any other mode gives |x| * 10^-digits with the sign of
    /// x.
    static double fround(double x, int digits, int mode) {
        if (digits < 0 || digits > qel::kMaxExactDigits) return qel::RoundByRule(x, digits, mode);
        const auto place = static_cast<std::size_t>(digits);
        // The absolute value is taken in between, so that no compiler fuses product and sum, which would round only
        // once.
        const double tenths = std::fabs(x * qel::kPowersOfTen[place + 1]) + 0.01;
        if (!(tenths < qel::kTooLargeTenths)) return qel::RoundByRule(x, digits, mode);
        // Adds what carries into the last kept digit: for 5 to 9 tenths of it, for none, or for 1 to 9 of them.
        const auto carried = static_cast<std::uint64_t>(static_cast<std::int64_t>(tenths)) + (mode == 0  ? 5U
                                                                                              : mode < 0 ? 0U
                                                                                                         : 9U);
        const double size = static_cast<double>(static_cast<std::int64_t>(carried / 10)) * qel::kUnits[place];
        return x < 0 ? -size : size;
    }

    /// @p x rounded by fround, with exactly @p digits places. For 0 and fewer places the rounded number as an int,
    /// -2147483648 if it is outside the range of int (as infinities and NaN are). With places these give inf and nan,
    /// after a "-" if the sign bit is set. All digits of fround's double are printed; exactly between two texts the one
    /// further from zero is used. With places and @p mode 0, from 2^53 units of the last one on (|x| * 10^(digits + 1),
    /// as fround computes it, is 2^53 * 10 or more), the digits are those of @p x itself, because fround's would be
    /// wrong.
    static CString DoubleToStr(double x, int digits, int mode);

    /// A sign ("-" or a blank) and |x| with @p decimals places, not by fround: a tie is rounded away from zero. At most
    /// @p width bytes of it are written to @p out, which has width + 1 bytes; the rest, at least the last byte, is
    /// filled with zeros. A width below 0 means 0.
    static void DoubleToStr(double x, char* out, int width, int decimals);

    /// Four digits and an exponent of two, the width for columns of results: 1234.5 gives "  1.235E+03". An exponent
    /// that needs three digits keeps them, in 12 columns: "  1.000E+100". The same for inf and nan, after a "-" if the
    /// sign bit is set.
    static CString ExponentialDigit3to2(double x);

    static CString IntToStr(int n);
    /// Right-aligned in @p width columns; what does not fit is cut off on the left.
    static CString IntToStr(int n, int width);

    /// The text for a missing number: 3 and 2 give ---.--
    static CString NoNumericStr(int intDigits, int decDigits);

    // --- Text to numbers ---

    /// The whole number at the start of the first @p n bytes of @p s, like atoi; outside the range of int its limit. A
    /// first "-" is removed and the rest negated, so "--5" is 5 and "- 5" is -5. No number gives 0. An @p n below 0
    /// means 0, and a terminator ends the bytes earlier.
    static int StrToInt(const char* s, int n);
    static int StrToInt(const CString& s);

    /// The number at the start of the first @p n bytes of @p s, like the platform's atof: digits with a point, an
    /// exponent after e, E, d or D; no hexadecimal digits ("0x10" is 0), no names of infinities, no comma. @p n and a
    /// first "-" are handled as in StrToInt. Before reading, ".000" is appended to a text without a point and "000" to
    /// one with a point, which lengthens an exponent after a point: "1.5e2" is infinite and "1.5E-3" is 0. Kept: texts
    /// without an exponent are read correctly, and stored ones have none. Texts of ExponentialDigit3to2 have one. Read
    /// these, and what an instrument sends, with qel::ReadNumber, which also reports that a text is not a number; here
    /// that is 0.
    static double StrToDouble(const char* s, int n);
    static double StrToDouble(const CString& s);

    /// @p s if it has the form of a number: digits and any number of points, with a sign before it if anything follows;
    /// or if it is empty. Else "NULL", as written in queries.
    static CString NoNumericToNull(const char* s);

    // --- Hexadecimal transfer texts ---

    /// 0-9 and A-F; every other character, including a-f, is 0.
    static int hex1int(char c);
    /// Two digits, the higher first. A missing one is 0. No byte after the second is read, and none after a terminator.
    static int hex2int(const char* s);
    /// The four bytes of @p f, the least significant first, as eight hexadecimal digits and a zero (9 bytes).
    static void float2asc(float f, char* out);
    /// The float for eight digits as float2asc writes them, read as four pairs by the rule of hex2int.
    static float asc2float(const char* s);

    // --- Times ---

    /// Seconds, cut to whole ones, as days (if any), hours, minutes, seconds: 90061 is "1 1:01:01", 59 is "0:00:59".
    /// Below 0 each part has its own sign. NaN and numbers beyond 64 bits give the empty text.
    static CString DoubleToDatetimeStr(double seconds);
    /// The same without days: 90061 is "25:01:01".
    static CString DoubleToTimeStr(double seconds);
    /// The same with at least two digits for the hours: 3661 is "01:01:01".
    static CString DoubleToTimeH2Str(double seconds);

    /// The time whose year, month, day, hour, minute and second are each the larger of the two local ones. Kept on
    /// purpose: it can be later than both; for January 31 and February 1 it is March 3 (or 2).
    static CTime MaxCTime(const CTime& a, const CTime& b);

    // --- Texts ---

    /// -1 for the lead byte of a double-byte character, else 0; always 0 in a code page other than 932.
    static int Check2Byte1(char c);

    /// Copies at most @p n bytes in whole characters and fills the rest with zeros; @p dst has n + 1 bytes and ends
    /// with a zero.
    static void strncopy(char* dst, const char* src, int n);

    /// At most @p n bytes of @p s, in whole characters.
    static CString MBLeft(const char* s, int n);

    /// Removes blanks (09-0D and 20) from both ends.
    static void Trim(CString& s);

    /// Removes the part before the first @p sep, and @p sep itself, from @p s and returns that part; all of @p s if
    /// there is none. Repeated calls go through a list.
    static CString Split(CString& s, char sep);

    /// Removes the digits at the end.
    static CString CutLastValue(const char* s);

    /// Order in which Sample9 comes before Sample10: first by the texts without the digits at their ends, then by those
    /// numbers (StrToInt; none is 0). @return 1, 0 or -1. Different texts may be equal: a01 and a1.
    static int StrCmp(const char* a, const char* b);
    /// The same, ignoring the case of Latin letters.
    static int StrCmpi(const char* a, const char* b);

    /// @p s as a CSV field: in quotation marks, with inner ones doubled, if it contains a comma, a quotation mark, * or
    /// /.
    static CString STRtoCSV(const char* s);

    /// @p s as a text in a query: in apostrophes, with inner ones doubled; the empty text stays empty. The second
    /// argument is not used.
    static CString GetDAOSQLQuate(const char* s, int);

    /// "NULL" for the empty text, else @p s.
    static CString EmptyToNull(const char* s);

    /// Compares versions by their numbers, which are separated by points or commas; a missing one is 0.
    /// @return 1 if @p a is higher, -1 if @p b is, 0 if they are equal (1.2 and 1.2.0)
    static int VersionCmp(const char* a, const char* b);

    /// Sets @p value to @p fallback if it is below @p low, then if it is above @p high. Only the second step checks the
    /// fallback itself.
    static void Limit(int& value, int low, int high, int fallback);

    /// The text of a string table, empty for an unknown id.
    static CString LoadStringA(UINT id);

    // --- Values of databases; qel::VariantText and its siblings describe the forms ---

    static CString VarToStr(COleVariant v);
    static std::u16string VarToBStr(COleVariant v);
    static int VarToInt(COleVariant v);
    static double VarToDouble(COleVariant v);

    // --- The value holder ---

    /// No value yet, type 0.
    CQVariant() = default;
    CQVariant(const CQVariant&) = default;
    CQVariant(CQVariant&&) = default;
    virtual ~CQVariant();

    CQVariant& operator=(const CQVariant&) = default;
    CQVariant& operator=(CQVariant&&) = default;
    CQVariant& operator=(bool value);
    CQVariant& operator=(int value);
    CQVariant& operator=(float value);
    CQVariant& operator=(double value);
    CQVariant& operator=(const CString& value);
    CQVariant& operator=(const char* value);  ///< stores a CString
    CQVariant& operator=(const COleDateTime& value);

    /// 0 none, 1 bool, 2 int, 3 float, 4 double, 5 CString, 6 COleDateTime
    int GetType() const noexcept { return static_cast<int>(m_value.index()); }

    /// Converts to another type: not possible, always 0. So values of different types are never equal, not even 1 and
    /// 1.0.
    int ChangeType(int type);

    /// Same type and same value; two without a value are not equal. NaN equals NaN, because neither is smaller. Texts
    /// are compared by characters up to the first zero byte.
    bool operator==(const CQVariant& other) const;
    bool operator==(bool value) const;
    bool operator==(int value) const;
    bool operator==(float value) const;
    bool operator==(double value) const;
    bool operator==(const CString& value) const;
    bool operator==(const char* value) const;
    bool operator==(const COleDateTime& value) const;

private:
    std::variant<std::monostate, bool, int, float, double, CString, COleDateTime> m_value;  // index = type
};
