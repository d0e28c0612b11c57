#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// The conditions of IEEE 754 that arose. An operation adds to the object that it is given and clears nothing, so one
/// object collects those of a whole computation.
struct DecimalFlags {
    bool isInexact = false;        ///< digits other than 0 were lost
    bool isInvalid = false;        ///< no result is defined, or a text is not a number; the result is NaN
    bool isDividedByZero = false;  ///< the exact result is infinite
    bool isTooLarge = false;       ///< an overflow; the result is infinite or the largest number
    bool isTooSmall = false;       ///< an underflow; digits were lost near 0

    void Join(const DecimalFlags& other) noexcept {
        isInexact |= other.isInexact;
        isInvalid |= other.isInvalid;
        isDividedByZero |= other.isDividedByZero;
        isTooLarge |= other.isTooLarge;
        isTooSmall |= other.isTooSmall;
    }
    friend bool operator==(const DecimalFlags&, const DecimalFlags&) = default;
};

/// How a result with more digits than fit is rounded.
enum class DecimalRounding {
    kHalfEven,
    kHalfAwayFromZero,
    kTowardZero,
    kAwayFromZero,
};

/// A decimal floating-point number with the values of decimal128 (IEEE 754-2008): up to 34 significant digits,
/// exponents from -6176 to 6111, infinities and NaN. It prevents the error of binary numbers, in which 0.1 does not
/// exist. Digits at the end are kept as they come: 1.20 and 1.2 are equal, and are written differently.
///
/// Results are the exact ones rounded once, half to even. Nothing is thrown; what happened is in DecimalFlags. A value
/// is 24 bytes without memory of its own.
class QELLIB10_API Decimal {
public:
    static constexpr int kDigits = 34;

    Decimal() noexcept = default;  ///< 0
    explicit Decimal(std::int64_t value) noexcept;

    /// A number as in "-12.50", "1e-3", "Infinity" or "NaN", in ASCII, without blanks. What has more than 34 digits is
    /// rounded, and inexact. Any other text is NaN, and invalid.
    static Decimal OfText(std::string_view text, DecimalFlags& flags);
    /// The shortest decimal number that reads back as the same double.
    static Decimal OfDouble(double value) noexcept;
    static Decimal NotANumber() noexcept;
    /// @p coefficient times 10 to the power @p exponent
    static Decimal Scaled(std::int64_t coefficient, int exponent, DecimalFlags& flags) noexcept;

    /// All digits, with an exponent where the number has one below -6 or zeros before its point that are not kept
    /// (to-scientific-string of the General Decimal Arithmetic, as Python's str()).
    std::string Text() const;
    /// All digits without an exponent: "0.000000120", "1200". At most about 6,200 characters.
    std::string PlainText() const;
    /// The nearest double.
    double ToDouble() const noexcept;

    bool IsNan() const noexcept { return (m_bits & kNan) != 0; }
    bool IsInfinite() const noexcept { return (m_bits & kInfinite) != 0; }
    bool IsFinite() const noexcept { return (m_bits & (kNan | kInfinite)) == 0; }
    bool IsZero() const noexcept { return (m_low | m_high) == 0 && IsFinite(); }
    bool IsNegative() const noexcept { return (m_bits & kNegative) != 0; }  ///< also -0
    /// Whether it is a whole number, however it is written.
    bool IsInteger() const noexcept;
    /// Significant digits that are kept, 1 to 34.
    int Digits() const noexcept;
    /// The power of ten of the last digit that is kept.
    int Exponent() const noexcept { return m_exponent; }
    /// The power of ten of the first digit; 0 for zero.
    int Magnitude() const noexcept { return IsZero() ? 0 : Exponent() + Digits() - 1; }

    Decimal operator-() const noexcept;
    Decimal Absolute() const noexcept;
    /// Without zeros at the end: 1.20 as 1.2, 1200 as 1.2E+3.
    Decimal Reduced() const noexcept;

    friend QELLIB10_API Decimal Add(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept;
    friend QELLIB10_API Decimal Subtract(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept;
    friend QELLIB10_API Decimal Multiply(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept;
    /// A division by 0 is infinite and says so; 0 by 0 is invalid.
    friend QELLIB10_API Decimal Divide(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept;
    /// What is left of @p a after the whole times that @p b fits: exact, with the sign of @p a.
    /// Invalid where that number of times has more than 34 digits, or @p b is 0.
    friend QELLIB10_API Decimal Remainder(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept;
    friend QELLIB10_API Decimal SquareRoot(const Decimal& a, DecimalFlags& flags) noexcept;
    /// @p a with its last digit at 10 to the power @p exponent. Invalid where that needs more than 34 digits.
    friend QELLIB10_API Decimal RoundTo(const Decimal& a, int exponent, DecimalRounding rounding,
                                        DecimalFlags& flags) noexcept;

    /// By value: 1.20 equals 1.2. NaN is unordered.
    friend QELLIB10_API std::partial_ordering operator<=>(const Decimal& a, const Decimal& b) noexcept;
    friend QELLIB10_API bool operator==(const Decimal& a, const Decimal& b) noexcept;

private:
    friend struct DecimalAccess;
    // As in decNumber; the two of NaN are a quiet and a signalling one.
    static constexpr std::uint8_t kNegative = 0x80, kInfinite = 0x40, kNan = 0x30;

    std::uint64_t m_low = 0, m_high = 0;  // the coefficient, below 10 to the power 34; of NaN its payload
    std::int32_t m_exponent = 0;
    std::uint8_t m_bits = 0;
};

QELLIB10_API Decimal Add(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept;
QELLIB10_API Decimal Subtract(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept;
QELLIB10_API Decimal Multiply(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept;
QELLIB10_API Decimal Divide(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept;
QELLIB10_API Decimal Remainder(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept;
QELLIB10_API Decimal SquareRoot(const Decimal& a, DecimalFlags& flags) noexcept;
QELLIB10_API Decimal RoundTo(const Decimal& a, int exponent, DecimalRounding rounding, DecimalFlags& flags) noexcept;

}  // namespace qel
