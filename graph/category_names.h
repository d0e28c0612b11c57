#pragma once

#include <span>
#include <string>

#include "qellib10/graph/axis_ticks.h"
#include "qellib10/graph/chart_canvas.h"

namespace qel {

/// The names that an axis shows.
struct CategoryNames {
    AxisTicks ticks;
    bool isTurned = false;  ///< by 90 degrees
};

struct NameSpace {
    AxisSpace along;  ///< with the usual distances
    bool isHorizontal;
    double longest;  ///< of a name across the axis: beside a vertical one, or turned
};

/// All names, if that can be: side by side, closer than numbers are, shortened where at least six characters fit and no
/// two become the same, or else turned. Otherwise each second, third ... is shown. What is shortened ends with "…", or
/// has it in the middle if only that tells the names apart.
CategoryNames FitCategoryNames(std::span<const std::string> names, const AxisRange& range, const ChartCanvas& canvas,
                               const LabelStyle& style, const NameSpace& space);

/// How many names between the ends of the axis are not shown.
std::size_t NamesNotShown(std::span<const std::string> names, const AxisRange& range, const AxisTicks& ticks);

}  // namespace qel
