#pragma once

#include "qellib10/graph/chart_scale.h"

namespace qel {

/// The bars of a series relative to their places on the axis, device units.
struct BarPlaces {
    double first = 0;  ///< the left edge
    double width = 0;

    double Middle() const noexcept { return first + width / 2; }
};

/// Bars of several series at one place are side by side, and all stacked ones on each other.
BarPlaces PlacesOfBars(const ChartSnapshot& data, std::size_t index, const AxisPart& xPlaces);

}  // namespace qel
