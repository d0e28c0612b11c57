#pragma once

#include "qellib10/platform/text/string.h"

namespace qel {

/// CQVariant::DoubleToStr for @p digits above 0 by its rule: round, then print the double; with @p mode 0 print the
/// number itself if no digit of the rounded one would be right.
CString RoundedTextByRule(double x, int digits, int mode);

/// The same text without printing a double, where possible: for up to 8 digits before and after the point. The rounded
/// number is a whole number of units, and below 2^51 of them the double's digits are exactly those of that number. (The
/// power of ten and the product are each wrong by at most half a unit in the last of 53 bits; up to there both together
/// stay below half a unit.) @p digits is above 0.
CString RoundedText(double x, int digits, int mode);

/// Size for a text written the quick way, including bytes written after it on the way.
inline constexpr int kQuickTextSize = 32;

/// Only the quick way, for texts that are built in place.
/// @param at kQuickTextSize bytes
/// @return length, or 0 if it is not possible
int WriteQuickRoundedText(double x, int digits, int mode, char* at);

}  // namespace qel
