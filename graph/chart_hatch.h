#pragma once

#include <cstddef>

#include "qellib10/graph/chart_canvas.h"

namespace qel {

/// Lines over a bar, by which bars differ on paper without colours.
/// @param pattern 0: none; then to the right above, to the left above, both, upright; then again from 0
void DrawHatch(ChartCanvas& canvas, const ChartBox& box, std::size_t pattern, COLORREF color);

}  // namespace qel
