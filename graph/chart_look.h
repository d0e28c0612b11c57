#pragma once

#include <optional>
#include <vector>

#include "qellib10/graph/chart.h"

namespace qel {

/// How a series looks: its own settings, and for the rest the theme's.
struct SeriesLook {
    COLORREF color = 0;
    double width = 1;            ///< points
    std::vector<double> dashes;  ///< points; empty: none
    ChartMark mark = ChartMark::kNone;
    double markDistance = 0;  ///< points along a line between its marks; 0: a mark at each point
    std::size_t hatch = 0;    ///< of bars; see DrawHatch
};

SeriesLook LookOf(const Chart& chart, std::size_t series);

/// The least contrast of texts and of lines, by WCAG 2.1, 1.4.3 and 1.4.11.
constexpr double kTextContrast = 4.5, kLineContrast = 3;

/// @p color, mixed with as much of @p text as gives it the contrast to the colour below it.
COLORREF Readable(COLORREF color, COLORREF on, COLORREF text, double contrast);

/// Of an axis that has the colour of its first series.
std::optional<COLORREF> SeriesColorOf(const Chart& chart, std::size_t axis);

}  // namespace qel
