#pragma once

#include <optional>
#include <vector>

#include "qellib10/graph/chart_label.h"
#include "qellib10/graph/chart_scale.h"

namespace qel {

/// An axis with its ticks and texts in place.
struct AxisLayout {
    std::size_t index = 0;  ///< in Chart::axes
    AxisPlaces places;
    AxisTicks ticks;
    double line = 0;        ///< where the axis is: x of a vertical one, y of a horizontal one
    bool isTurned = false;  ///< its labels, names that are too long side by side
    std::vector<PlacedLabel> labels;
    std::optional<PlacedLabel> title;
};

/// Which texts of axes there is space for.
struct AxisTexts {
    bool hasValues = true;
    bool hasTitles = true;
    /// Of names beside a vertical axis, and of names that are turned, device units.
    double widestName = 0, highestName = 0;
};

/// The space at a side of the plot.
struct AxisSpaces {
    double left = 0, top = 0, right = 0, bottom = 0;
};

/// How its numbers are shortened: with a prefix only where the unit takes one, else by a power of ten.
ChartExponent ExponentOf(const ChartAxis& axis);

/// The axes around @p plot, whose boxes touch each other at most.
std::vector<AxisLayout> LayAxes(const Chart& chart, const ChartCanvas& canvas, const std::vector<AxisParts>& parts,
                                const ChartBox& plot, const AxisTexts& texts);

/// What the axes need around the plot, values at its corners included.
AxisSpaces SpacesOf(const Chart& chart, const ChartCanvas& canvas, const std::vector<AxisLayout>& axes,
                    const ChartBox& plot);

}  // namespace qel
