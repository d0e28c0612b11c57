#pragma once

#include <charconv>
#include <concepts>
#include <optional>
#include <string_view>
#include <system_error>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

// Numbers from instruments and tables. CQVariant::StrToDouble returns 0 for text that is not a number, and does not
// read an exponent after a point. With these functions an unreadable value is never mistaken for a measured 0.
namespace qel {

/// A number that is the whole of @p text: at most one sign, digits with at most one point or comma as the decimal sign,
/// then optionally an exponent after e or E: "-12.5", "+0,350", "1.5E-3". Blanks (09-0D, 20) around it are ignored.
/// Independent of the locale. There is no thousands separator: "1,234" is 1.234.
/// @return nothing if the text contains anything else ("7.01 pH", "1.2.3", "inf", "0x10", "- 5"), if it has no digits,
/// and if no double can hold the number ("1E400", "1E-400")
QELLIB10_API std::optional<double> ReadNumber(std::string_view text);
/// The same for a text with a terminating zero; null means empty.
QELLIB10_API std::optional<double> ReadNumber(const char* text);
inline std::optional<double> ReadNumber(const CString& text) { return ReadNumber(text.View()); }

/// A whole number that is the whole of @p text: digits, before them a "-" if @p Number has a sign. No blanks, no "+".
/// @return nothing if the text contains anything else, and if the number does not fit
template <std::integral Number> std::optional<Number> ReadWholeNumber(std::string_view text) {
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

/// A number in the reply of an instrument that uses SCPI, which sends 9.9E37 and -9.9E37 for the infinities and 9.91E37
/// for "not a number". They are returned as infinities and NaN, however many digits they have; everything else is read
/// like ReadNumber. In SCPI a comma separates values, so a text with a comma is not a number: split the reply first.
QELLIB10_API std::optional<double> ReadScpiNumber(std::string_view text);
QELLIB10_API std::optional<double> ReadScpiNumber(const char* text);
inline std::optional<double> ReadScpiNumber(const CString& text) { return ReadScpiNumber(text.View()); }

/// The text with the fewest digits that ReadNumber reads as the same double: "0.1", "100000"; below 0.0001 and from
/// 1E15 on with an exponent: "1e+23". Not for results, which have the places of CQVariant::DoubleToStr. Infinities and
/// NaN are "inf" and "nan", after a "-" if the sign bit is set; ReadNumber refuses them.
QELLIB10_API CString NumberText(double value);

}  // namespace qel
