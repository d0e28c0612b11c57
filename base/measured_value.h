#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

// Numbers of tables that people look at, beyond the plain ones of qel::ReadNumber.
namespace qel {

/// A measured value as instruments, their programs and spreadsheets write it, in UTF-8: a number as ReadNumber reads
/// it, and beyond that
///
///     −12.5          with the minus sign U+2212
///     3.14 mL        with a unit after it: up to 8 bytes without a digit
///     1,234.5        with thousands set apart by the other sign, by an apostrophe or by blanks, no-break ones too;
///     1 234,5        a single sign alone is the decimal sign: "1,234" is 1.234
///
/// @return nothing when the text is anything else, so that no other value is read in its place; also for 9.9E37,
/// -9.9E37 and 9.91E37, which instruments send in place of a reading
QELLIB10_API std::optional<double> ReadMeasuredValue(std::string_view utf8);

/// @p utf8 with plain characters in place of those that look the same: no-break and narrow blanks, U+2212, the
/// typographic apostrophe, and the Greek mu of units. For comparing names of columns.
QELLIB10_API std::string WithPlainCharacters(std::string_view utf8);

}  // namespace qel
