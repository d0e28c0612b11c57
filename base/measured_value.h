#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

// Numbers of tables that people look at, beyond the plain ones of qel::ReadNumber.
namespace qel {

struct MeasuredValue {
    double value = 0;
    std::string unit;  // as it is written, with plain characters; empty: none
};

/// A measured value as instruments, their programs and spreadsheets write it, in UTF-8: a number as ReadNumber reads
/// it, and beyond that
///
///     −12.5          with the minus sign U+2212, or with the en dash that spreadsheets put in its place
///     3.14 mL        with a unit after it: a letter, a degree or per cent sign, then up to 8 bytes without a digit;
///                    marks as in "7.2?" and a cut exponent as in "1.5E" are not units
///     1,234.5        with thousands set apart by the other sign, by an apostrophe or by blanks, no-break ones too;
///     1 234,5        a single sign alone is the decimal sign: "1,234" is 1.234
///
/// @return nothing when the text is anything else, so that no other value is read in its place; also for 9.9E37,
/// -9.9E37 and 9.91E37, which instruments send in place of a reading. A caller who reads a column compares the units:
/// "999 µL" and "1.000 mL" are not in order.
QELLIB10_API std::optional<MeasuredValue> ReadMeasuredValue(std::string_view utf8);

/// @p utf8 with plain characters in place of those that look the same: no-break and narrow blanks, U+2212 and U+2013,
/// the typographic apostrophe, and the Greek mu of units. For comparing names of columns.
QELLIB10_API std::string WithPlainCharacters(std::string_view utf8);

}  // namespace qel
