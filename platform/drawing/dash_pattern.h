#pragma once

#include <cstdint>
#include <span>

namespace qel {

/// Lengths of line and gap of a dashed pen style (1 to 4), in turns, in pixels of a screen.
std::span<const int> DashLengths(int penStyle) noexcept;

/// Steps after which the pattern of a dashed pen style is the same again, at most 24; 0 for other styles.
int DashPeriod(int penStyle) noexcept;

/// Whether the step of that number, not negative, from the start of a polyline belongs to a dash.
bool IsDash(int penStyle, std::int64_t step) noexcept;

}  // namespace qel
