#pragma once

#include <cstdint>
#include <span>

namespace qel {

/// The alternating lengths of line and gap of a dashed pen style (1 to 4), in pixels of a screen.
std::span<const int> DashLengths(int penStyle) noexcept;

/// The number of steps after which a dashed pen style repeats, at most 24; 0 for other styles.
int DashPeriod(int penStyle) noexcept;

/// Whether the step with this number (not negative), counted from the start of a polyline, belongs to a dash.
bool IsDash(int penStyle, std::int64_t step) noexcept;

}  // namespace qel
