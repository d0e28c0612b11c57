#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// CQVariant::DoubleToStr for @p digits above 0 by its rule: round, then print the double.
QELLIB10_API CString RoundedTextByRule(double x, int digits, int mode);

/// The same text without printing a double, where that is possible: the rounded number is a whole number of units, and
/// below 2^51 of them the double's digits are exactly those of that number. (Twice half a unit in the last of 53 bits,
/// from the power of ten and from the product, stay below half a unit up to there.)
QELLIB10_API CString RoundedText(double x, int digits, int mode);

}  // namespace qel
