#pragma once

#include <optional>
#include <string>
#include <vector>

#include "qellib10/graph/chart_legend.h"
#include "qellib10/graph/chart_limit_labels.h"
#include "qellib10/graph/chart_notes.h"

namespace qel {

/// All places of a chart. Computed once, then drawn.
struct ChartLayout {
    ChartBox box;
    ChartBox plot;
    ChartBox inner;  ///< of the plot and the texts of its axes
    std::vector<AxisLayout> axes;
    std::vector<PlacedLabel> titles;
    std::optional<LegendLayout> legend;
    std::vector<LimitLabel> limitLabels;
    std::vector<PlacedNote> notes;
    std::vector<std::string> leftOut;
    std::size_t valuesLeftOut = 0;  ///< of the axes, one by one
};

ChartLayout LayChart(const ChartSnapshot& data, const ChartCanvas& canvas, const ChartBox& box,
                     const ChartRanges& shown);

}  // namespace qel
