#pragma once

#include "qellib10/platform/text/string.h"

namespace qel {

/// CQVariant::DoubleToStr for @p digits above 0 by its rule: round, then print the double; with @p mode 0 the number
/// itself where no digit of the rounded one is right any more.
CString RoundedTextByRule(double x, int digits, int mode);

/// The same text without printing a double where that is possible, which is for up to 8 digits before and behind the
/// point: the rounded number is a whole number of units, and below 2^51 of them the double's digits are exactly those
/// of that number. (The power of ten and the product are off by at most half a unit in the last of 53 bits each; up to
/// there both together stay below half a unit.) @p digits is above 0.
CString RoundedText(double x, int digits, int mode);

/// Room for a text by the quick way, and for what is written behind it on the way.
inline constexpr int kQuickTextSize = 32;

/// The quick way alone, for texts that are built in place.
/// @param at kQuickTextSize bytes
/// @return length, or 0 when it is not possible
int WriteQuickRoundedText(double x, int digits, int mode, char* at);

}  // namespace qel
