#pragma once

#include <array>
#include <optional>
#include <vector>

#include "qellib10/graph/chart_axis_layout.h"
#include "qellib10/graph/curve_field.h"

namespace qel {

/// The label of a limit with its place.
struct LimitLabel {
    std::size_t limit;  ///< in Chart::limits
    PlacedLabel label;
    bool isOutside = false;  ///< beside the plot
    /// From the end of the limit's line to a label outside that is not next to it.
    std::optional<std::array<ShapePoint, 2>> leader = {};
};

/// What is to be seen of a limit along its axis, device units; both ends are the same for a line.
struct LimitSpan {
    double low, high;
};
std::optional<LimitSpan> SpanOf(const ChartLimit& limit, const AxisPlaces& places);

LabelStyle StyleOf(const ChartLimit& limit, const ChartTheme& theme);

/// The limits that have a label and are to be seen.
std::vector<std::size_t> LimitsWithLabels(const Chart& chart, const std::vector<AxisLayout>& axes);

/// Places labels at their lines or within their bands, so that they overlap no other text and as few curves as
/// possible.
/// @param limits of them; those that have no place over the plot are left
/// @param mayHideLimits whether a label may lie on the line of another limit along it
std::vector<LimitLabel> PlaceLimitLabels(const Chart& chart, const ChartCanvas& canvas,
                                         const std::vector<AxisLayout>& axes, const ChartBox& plot,
                                         const CurveField& field, TakenBoxes& taken, std::vector<std::size_t>& limits,
                                         bool mayHideLimits);

}  // namespace qel
