#include "qellib10/calc/bcd.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "qellib10/base/q_variant.h"
#include "qellib10/platform/text/c_locale.h"

namespace {

// The exponents of decimal64 with 15 digits, half-up, no traps.
constexpr decContext kContext = {DECNUMDIGITS, 384, -383, DEC_ROUND_HALF_UP, 0, 0, 1};

constexpr int kTextWidth = 64;
constexpr int kMaxTries = 5;

// For longer texts decNumber's 32-bit counters would wrap.
constexpr std::size_t kLongestText = 100'000'000;

// Digits, sign, point and exponent of a number as decNumber writes it, and the terminating zero.
using NumberText = std::array<char, DECNUMDIGITS + 14>;

constexpr decNumber kZero = {1, 0, 0, {}};
constexpr decNumber kNan = {1, 0, DECNAN, {}};

bool HasSoundCoefficient(const decNumber& number) {
    constexpr int kPowers[] = {1, 10, 100, 1000};
    if (number.digits < 1 || number.digits > DECNUMDIGITS) return false;
    const int last = (number.digits - 1) / DECDPUN;
    const int lastDigits = number.digits - last * DECDPUN;
    for (int i = 0; i < last; ++i) {
        if (number.lsu[i] >= kPowers[DECDPUN]) return false;
    }
    if (number.lsu[last] >= kPowers[lastDigits]) return false;
    return number.digits == 1 || number.lsu[last] >= kPowers[lastDigits - 1];
}

// Whether decNumber could have created the number in some context: it relies on digits, units and exponent everywhere.
bool IsSound(const decNumber& number) {
    if (!HasSoundCoefficient(number)) return false;
    switch (number.bits & ~DECNEG) {
        case 0:
            return number.exponent <= DEC_MAX_EMAX && number.exponent >= DEC_MIN_EMIN - (DECNUMDIGITS - 1);
        case DECINF:
            return number.exponent == 0 && number.digits == 1 && number.lsu[0] == 0;
        case DECNAN:
        case DECSNAN:
            return number.exponent == 0;
        default:
            return false;
    }
}

bool SameFields(const decNumber& a, const decNumber& b) {
    const int units = (a.digits + DECDPUN - 1) / DECDPUN;
    return a.digits == b.digits && a.exponent == b.exponent && a.bits == b.bits &&
           std::equal(a.lsu, a.lsu + units, b.lsu);
}

// The digits of @p value from the first one down to the place of 10^-decimals.
std::int64_t DigitsDownTo(const decNumber& value, int decimals) {
    return std::int64_t{value.digits} + value.exponent + decimals;
}

// @p value rounded to @p precision digits, trailing zeros removed.
//
// Reduce does both at once in a context of that precision, but not always within 15 digits. The context clamps: a large
// exponent is lowered by adding zeros to the coefficient up to the full precision, and a small one loses digits,
// because the least exponent rises as the precision falls. Precisions below 1 do not exist. So Quantize rounds instead,
// which names the last place; a number with no more digits than the precision is not rounded.
decNumber Reduced(const decNumber& value, std::int64_t precision, rounding mode) {
    decContext context = kContext;
    context.round = mode;
    context.clamp = 0;
    decNumber result = value;
    if (precision < value.digits && !decNumberIsSpecial(&value)) {
        decContext unbounded = context;
        unbounded.emax = DEC_MAX_EMAX;
        unbounded.emin = DEC_MIN_EMIN;
        decNumber place = kZero;
        place.exponent =
            static_cast<std::int32_t>(std::min<std::int64_t>(value.exponent + value.digits - precision, DEC_MAX_EMAX));
        decNumberQuantize(&result, &value, &place, &unbounded);
    }
    decNumberReduce(&result, &result, &context);
    return result;
}

// Right-aligns number, point and zeros in exactly @p width characters, and cuts off what is longer.
void Place(char* buffer, int width, std::string_view number, bool point, std::int64_t zeros) {
    char* const end = buffer + width;
    const std::int64_t length = static_cast<std::int64_t>(number.size()) + point + zeros;
    char* at = std::fill_n(buffer, std::max<std::int64_t>(width - length, 0), ' ');
    at = std::copy_n(number.data(), std::min<std::int64_t>(number.size(), end - at), at);
    if (point && at < end) *at++ = '.';
    at = std::fill_n(at, std::min<std::int64_t>(zeros, end - at), '0');
    *at = '\0';
}

double ReadDouble(const CString& text) { return strtod_l(text, nullptr, qel::CLocale()); }

}  // namespace

CBCD::CBCD() : m_value(kZero), m_context(kContext) {}

CBCD::CBCD(const decNumber& value) : m_value(IsSound(value) ? value : kNan), m_context(kContext) {}

CBCD::CBCD(const char* text) : m_context(kContext) {
    if (text == nullptr || strnlen(text, kLongestText + 1) > kLongestText) text = "NaN";
    decNumberFromString(&m_value, text, &m_context);
}

CBCD::CBCD(int value) : m_context(kContext) { decNumberFromInt32(&m_value, value); }

CBCD CBCD::operator+(const CBCD& right) {
    CBCD result;
    decNumberAdd(&result.m_value, &m_value, &right.m_value, &m_context);
    return result;
}

CBCD CBCD::operator-(const CBCD& right) {
    CBCD result;
    decNumberSubtract(&result.m_value, &m_value, &right.m_value, &m_context);
    return result;
}

CBCD CBCD::operator*(const CBCD& right) {
    CBCD result;
    decNumberMultiply(&result.m_value, &m_value, &right.m_value, &m_context);
    return result;
}

CBCD CBCD::operator/(const CBCD& right) {
    CBCD result;
    decNumberDivide(&result.m_value, &m_value, &right.m_value, &m_context);
    return result;
}

int CBCD::Compare(const CBCD& right) const {
    // The library's default context, but without its traps, which would raise a signal. No setting of it affects a
    // comparison.
    decContext context = {9, DEC_MAX_EMAX, DEC_MIN_EMIN, DEC_ROUND_HALF_UP, 0, 0, 0};
    decNumber order;
    if (((m_value.bits | right.m_value.bits) & (DECNAN | DECSNAN)) != 0) [[unlikely]] {
        decNumberCompareTotal(&order, &m_value, &right.m_value, &context);
    } else {
        decNumberCompare(&order, &m_value, &right.m_value, &context);
    }
    return decNumberIsNegative(&order) ? -1 : order.lsu[0];
}

CBCD CBCD::operator^(unsigned int n) const {
    CBCD result("1.0");
    decNumber before = result.m_value;
    for (; n != 0; --n) {
        decContext context = kContext;
        decNumber next;
        decNumberMultiply(&next, &result.m_value, &m_value, &context);
        // The value of one step ago: from here on it stays the same, or alternates (the sign of Infinity, or of 1).
        const bool repeats = SameFields(next, before);
        if (repeats && n % 2 == 0) return result;
        before = result.m_value;
        result.m_value = next;
        if (repeats) return result;
    }
    return result;
}

CBCD CBCD::SquareRoot(CBCD x) {
    CBCD result;
    decContext context = kContext;
    decNumberSquareRoot(&result.m_value, &x.m_value, &context);
    return result;
}

void CBCD::Round(int decimals, rounding mode) {
    m_context.round = mode;
    m_value = Reduced(m_value, DigitsDownTo(m_value, std::max(decimals, 0)), mode);
}

void CBCD::GetString(char* buffer, int width, int decimals, rounding mode) {
    m_context.round = mode;
    if (buffer == nullptr || width < 0) return;

    const bool negative = decNumberIsNegative(&m_value);
    const int limit = negative ? width - 1 : width;
    std::int64_t precision = DigitsDownTo(m_value, decimals);
    if (negative) precision = std::min<std::int64_t>(precision, limit);
    if (m_value.exponent < 0 && precision >= limit) --precision;

    const decNumber reduced = Reduced(m_value, precision, mode);
    NumberText text;
    decNumberToString(&reduced, text.data());
    const std::int64_t missing = std::int64_t{reduced.exponent} + decimals;
    const bool point = missing != 0 && reduced.exponent >= 0;
    Place(buffer, width, text.data(), point, std::max<std::int64_t>(point ? decimals : missing, 0));
}

CString CBCD::GetString(int decimals, rounding mode) {
    char buffer[kTextWidth + 1] = {};
    GetString(buffer, kTextWidth, decimals, mode);
    CString text(buffer);
    text.TrimRight(' ');
    text.TrimLeft(' ');
    return text;
}

double CBCD::GetDouble(int decimals, rounding mode) {
    const CString wanted = GetString(decimals, mode);
    // A double with more decimals than the length of the whole text never prints the same way, nor does one rounded
    // before the point, where the text has an exponent or ends with the point.
    if (decimals > 0 && decimals < kTextWidth) {
        const int printMode = mode == DEC_ROUND_UP ? 1 : mode == DEC_ROUND_DOWN ? -1 : 0;
        const CBCD step = CBCD("0.1") ^ (static_cast<unsigned int>(decimals) + 1);
        CBCD work = *this;
        for (int i = 0; i < kMaxTries; ++i) {
            const double x = ReadDouble(work.GetString(decimals, mode));
            if (CQVariant::DoubleToStr(x, decimals, printMode) == wanted) return x;
            work = work + step;
        }
    }
    return ReadDouble(wanted);
}
