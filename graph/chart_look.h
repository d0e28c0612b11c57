#pragma once

#include <vector>

#include "qellib10/graph/chart.h"

namespace qel {

/// How a series looks: its own settings, and for the rest the theme's.
struct SeriesLook {
    COLORREF color = 0;
    double width = 1;            ///< points
    std::vector<double> dashes;  ///< points; empty: none
    ChartMark mark = ChartMark::kNone;
};

SeriesLook LookOf(const Chart& chart, std::size_t series);

}  // namespace qel
