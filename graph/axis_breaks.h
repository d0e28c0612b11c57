#pragma once

#include <span>
#include <string>
#include <vector>

#include "qellib10/graph/axis_places.h"
#include "qellib10/graph/chart_data.h"

namespace qel {

/// The ranges that an axis shows, ascending, at least one.
using AxisParts = std::vector<AxisRange>;

/// Whether an axis of this kind can leave out ranges.
inline bool CanBreak(ChartScale scale) { return scale == ChartScale::kLinear || scale == ChartScale::kTime; }

/// What the breaks leave of a range; all of it if that is nothing. A break at an end moves the end.
AxisParts PartsOf(std::span<const ChartBreak> breaks, const AxisRange& range);

/// The length that the breaks leave out between two values; 0 where that is no number.
double LeftOutBetween(std::span<const ChartBreak> breaks, double low, double high);

/// All parts from one place to the other, with gaps of @p gap device units, or less where they would take more than a
/// quarter of it.
AxisPlaces PlacesOf(const AxisParts& parts, bool isLogarithmic, double from, double to, double gap);

/// "12..30"
std::string TextOf(const ChartBreak& left);

}  // namespace qel
