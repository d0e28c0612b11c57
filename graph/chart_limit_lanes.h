#pragma once

#include <vector>

#include "qellib10/graph/chart_limit_labels.h"

namespace qel {

/// Space outside the plot and the texts of its axes, device units: for labels of limits that have none over the plot.
struct LimitLanes {
    double left = 0, top = 0, right = 0, bottom = 0;

    bool IsEmpty() const noexcept { return left == 0 && top == 0 && right == 0 && bottom == 0; }
    /// What they leave of a box.
    ChartBox Inside(const ChartBox& box) const noexcept {
        return {box.left + left, box.top + top, box.right - right, box.bottom - bottom};
    }
};

/// The lanes that the labels of these limits need in @p box: where a line of a limit ends, at the right or above, or at
/// the other side if only that has no axis.
LimitLanes LanesFor(const Chart& chart, const ChartCanvas& canvas, const std::vector<std::size_t>& limits,
                    const ChartBox& box);

/// Places labels in the lanes, each at the end of its line, or as near to it as the others let it.
/// @param inner what the lanes leave for the plot and the texts of its axes
/// @param limits those that do not fit are left
/// @return those that fit, shortened where they have to be
std::vector<LimitLabel> PlaceInLanes(const Chart& chart, const ChartCanvas& canvas, const std::vector<AxisLayout>& axes,
                                     const ChartBox& plot, const ChartBox& inner, const LimitLanes& lanes,
                                     std::vector<std::size_t>& limits);

}  // namespace qel
