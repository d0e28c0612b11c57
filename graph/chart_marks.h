#pragma once

#include "qellib10/graph/chart_canvas.h"

namespace qel {

/// Draws a mark of @p size device units around @p at.
/// @param inside of open marks
void DrawMark(ChartCanvas& canvas, ChartMark mark, const ShapePoint& at, double size, COLORREF color, COLORREF inside,
              bool isSmooth);

}  // namespace qel
