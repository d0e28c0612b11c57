#pragma once

#include "qellib10/calc/dec_number.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/fractional.h"
#include "qellib10/platform/text/string.h"

/// A decimal number of 15 significant digits and exponents from -383 to 384. It prevents the rounding errors of doubles
/// in results that people check by hand: in doubles 0.1 + 0.2 is 0.30000000000000004, and 1.005 rounds to 1.00.
///
/// @code
/// CBCD sum = CBCD("0.1") + "0.2";
/// const CString text = sum.GetString(2, DEC_ROUND_HALF_UP);  // "0.30"
/// CBCD measured(qel::NumberText(1.005));                      // a double: by its shortest text
/// const CString rounded = measured.GetString(2, DEC_ROUND_HALF_UP);  // "1.01"
/// @endcode
///
/// A thin value over decNumber: one number and one context, nothing on the heap, copied as plain memory.
///
/// Nothing here fails. Text that is not a number and impossible operations give NaN, a division by zero or an exponent
/// above 384 gives Infinity, less than 1E-397 rounds to that or to 0; a caller who needs to know asks the value.
///
/// Each number has a rounding mode of its own for the operations in which it is the left operand: half-up at first,
/// then the one last given to Round, GetString or GetDouble. Modes are those of the library: 0 ceiling, 1 up (away from
/// zero), 2 half-up, 3 half-even, 4 half-down, 5 down (toward zero), 6 floor, 7 up after a last digit of 0 or 5 and
/// otherwise down. With any other mode an operation that has to round gives NaN.
///
/// An operand is a CBCD, a decNumber, a text in decNumber's syntax (12, -1.5, 2.5E-3, Infinity, NaN) or an int; other
/// integer types convert to int first. A floating-point operand does not compile, since as an int it would lose its
/// decimals: give the text that is meant. For a measured value that is the one of qel::NumberText, with all digits that
/// the double needs, of which 15 are kept here; Round then rounds as by hand. (CQVariant::DoubleToStr has rounded
/// already, by its own rule, which makes 2.4 of 2.34999.)
///
/// Kept: GetString writes 100 with two decimals as 1E+2.00, and GetDouble reads it as 100; see both.
class QELLIB10_API CBCD {
public:
    /// 0, half-up.
    CBCD();
    /// A copy of @p value; NaN if its fields contradict each other or claim more than 15 digits.
    CBCD(const decNumber& value);
    /// The number in @p text, rounded half-up to 15 digits. NaN for a null pointer, if the whole text is not a number
    /// (blanks included), and for more than 100 million characters. decNumber uses heap memory only to read more than
    /// 45 digits, and frees it.
    CBCD(const char* text);
    CBCD(int value);
    template <qel::Fractional T> CBCD(T value) = delete;

    /// Copies value, rounding mode and status of @p other.
    CBCD(const CBCD& other) = default;
    CBCD& operator=(const CBCD& other) = default;
    /// Sets the value; the rounding mode is half-up again.
    /// @return a copy
    CBCD operator=(const decNumber& value) { return *this = CBCD(value); }
    CBCD operator=(const char* text) { return *this = CBCD(text); }
    CBCD operator=(int value) { return *this = CBCD(value); }
    template <qel::Fractional T> CBCD operator=(T value) = delete;

    /// The result, rounded to 15 digits by this number's mode; its own mode is half-up. Not const: what happened is
    /// added to this number's status.
    CBCD operator+(const CBCD& right);
    CBCD operator+(const decNumber& right) { return *this + CBCD(right); }
    CBCD operator+(const char* right) { return *this + CBCD(right); }
    CBCD operator+(int right) { return *this + CBCD(right); }
    template <qel::Fractional T> CBCD operator+(T right) = delete;
    CBCD operator-(const CBCD& right);
    CBCD operator-(const decNumber& right) { return *this - CBCD(right); }
    CBCD operator-(const char* right) { return *this - CBCD(right); }
    CBCD operator-(int right) { return *this - CBCD(right); }
    template <qel::Fractional T> CBCD operator-(T right) = delete;
    CBCD operator*(const CBCD& right);
    CBCD operator*(const decNumber& right) { return *this * CBCD(right); }
    CBCD operator*(const char* right) { return *this * CBCD(right); }
    CBCD operator*(int right) { return *this * CBCD(right); }
    template <qel::Fractional T> CBCD operator*(T right) = delete;
    CBCD operator/(const CBCD& right);
    CBCD operator/(const decNumber& right) { return *this / CBCD(right); }
    CBCD operator/(const char* right) { return *this / CBCD(right); }
    CBCD operator/(int right) { return *this / CBCD(right); }
    template <qel::Fractional T> CBCD operator/(T right) = delete;

    /// Replaces this number by the result, rounded by this number's mode; the mode is then half-up again.
    /// @return a copy
    CBCD operator+=(const CBCD& right) { return *this = *this + right; }
    CBCD operator+=(const decNumber& right) { return *this = *this + right; }
    CBCD operator+=(const char* right) { return *this = *this + right; }
    CBCD operator+=(int right) { return *this = *this + right; }
    template <qel::Fractional T> CBCD operator+=(T right) = delete;
    CBCD operator-=(const CBCD& right) { return *this = *this - right; }
    CBCD operator-=(const decNumber& right) { return *this = *this - right; }
    CBCD operator-=(const char* right) { return *this = *this - right; }
    CBCD operator-=(int right) { return *this = *this - right; }
    template <qel::Fractional T> CBCD operator-=(T right) = delete;
    CBCD operator*=(const CBCD& right) { return *this = *this * right; }
    CBCD operator*=(const decNumber& right) { return *this = *this * right; }
    CBCD operator*=(const char* right) { return *this = *this * right; }
    CBCD operator*=(int right) { return *this = *this * right; }
    template <qel::Fractional T> CBCD operator*=(T right) = delete;
    CBCD operator/=(const CBCD& right) { return *this = *this / right; }
    CBCD operator/=(const decNumber& right) { return *this = *this / right; }
    CBCD operator/=(const char* right) { return *this = *this / right; }
    CBCD operator/=(int right) { return *this = *this / right; }
    template <qel::Fractional T> CBCD operator/=(T right) = delete;

    /// Comparison by value: 1.0 equals 1.00, -0 equals 0. A NaN is ordered by the library's total order, which compares
    /// the stored fields: it comes after every number, even Infinity (-NaN before every number), and equals only a NaN
    /// with the same sign and payload. So exactly one of <, == and > is always true.
    int operator==(const CBCD& right) const { return Compare(right) == 0; }
    int operator==(const decNumber& right) const { return Compare(right) == 0; }
    int operator==(const char* right) const { return Compare(right) == 0; }
    int operator==(int right) const { return Compare(right) == 0; }
    template <qel::Fractional T> int operator==(T right) const = delete;
    int operator!=(const CBCD& right) const { return Compare(right) != 0; }
    int operator!=(const decNumber& right) const { return Compare(right) != 0; }
    int operator!=(const char* right) const { return Compare(right) != 0; }
    int operator!=(int right) const { return Compare(right) != 0; }
    template <qel::Fractional T> int operator!=(T right) const = delete;
    int operator<(const CBCD& right) const { return Compare(right) < 0; }
    int operator<(const decNumber& right) const { return Compare(right) < 0; }
    int operator<(const char* right) const { return Compare(right) < 0; }
    int operator<(int right) const { return Compare(right) < 0; }
    template <qel::Fractional T> int operator<(T right) const = delete;
    int operator>(const CBCD& right) const { return Compare(right) > 0; }
    int operator>(const decNumber& right) const { return Compare(right) > 0; }
    int operator>(const char* right) const { return Compare(right) > 0; }
    int operator>(int right) const { return Compare(right) > 0; }
    template <qel::Fractional T> int operator>(T right) const = delete;
    int operator<=(const CBCD& right) const { return Compare(right) <= 0; }
    int operator<=(const decNumber& right) const { return Compare(right) <= 0; }
    int operator<=(const char* right) const { return Compare(right) <= 0; }
    int operator<=(int right) const { return Compare(right) <= 0; }
    template <qel::Fractional T> int operator<=(T right) const = delete;
    int operator>=(const CBCD& right) const { return Compare(right) >= 0; }
    int operator>=(const decNumber& right) const { return Compare(right) >= 0; }
    int operator>=(const char* right) const { return Compare(right) >= 0; }
    int operator>=(int right) const { return Compare(right) >= 0; }
    template <qel::Fractional T> int operator>=(T right) const = delete;

    /// 1.0 multiplied @p n times by this number, each product rounded half-up to 15 digits; the power 0 is 1.0, also of
    /// NaN. Takes @p n multiplications, or fewer if the product stops changing.
    CBCD operator^(unsigned int n) const;
    template <qel::Fractional T> CBCD operator^(T n) const = delete;

    /// The square root, half-even; NaN below zero.
    static CBCD SquareRoot(CBCD x);

    /// Rounds to @p decimals places (below 0 means 0) and drops trailing zeros, also before the point: 2.500 with
    /// 2 places becomes 2.5, 100 becomes 1E+2. Less than a place becomes 0 or one unit of the last place, depending on
    /// the mode. NaN and Infinity stay. Sets the rounding mode.
    void Round(int decimals, rounding mode);

    /// The number with @p decimals places, right-aligned in @p width characters. Sets the rounding mode.
    ///
    /// The number is rounded and stripped of trailing zeros like Round; places below 0 round before the point, to
    /// Infinity if a unit of the last place would be above 1E+384. In a narrow field fewer digits are kept: at most
    /// width - 1 for a negative number, and one less than the places ask for if a number with decimals fills the field.
    /// Then zeros are added up to @p decimals places, and what is longer than @p width is cut at the end.
    ///
    /// Kept for texts already in the field: the zeros follow the number as decNumber writes it, with or without an
    /// exponent. So 100 with two places is written 1E+2.00 (GetDouble reads it as 100), 1E-7 with nine is 1E-700, NaN
    /// and Infinity with two are NaN.00 and Infinity.00.
    ///
    /// @param buffer  width + 1 bytes; a terminating zero follows the text. A null pointer or a negative width, which
    /// leaves no byte to write to, writes nothing.
    void GetString(char* buffer, int width, int decimals, rounding mode);

    /// The same text in a field of 64 characters, without blanks.
    CString GetString(int decimals, rounding mode);

    /// The double that CQVariant::DoubleToStr prints with @p decimals places in the same way as GetString. It is found
    /// by reading that text and, while the double prints differently, going up by tenths of the last place, at most
    /// four times. If that fails, and with 0 decimals or fewer (places before the point), it is the double nearest
    /// to GetString's text. Sets the rounding mode.
    double GetDouble(int decimals, rounding mode);

    /// A copy of the value, without the context.
    decNumber GetBCDValue() const { return m_value; }

private:
    int Compare(const CBCD& right) const;

    decNumber m_value;
    decContext m_context;
};
