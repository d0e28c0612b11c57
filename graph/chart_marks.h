#pragma once

#include "qellib10/graph/chart_canvas.h"

namespace qel {

/// Draws a mark of @p size device units around @p at.
/// @param inside of open marks
void DrawMark(ChartCanvas& canvas, ChartMark mark, const ShapePoint& at, double size, COLORREF color, COLORREF inside,
              bool isSmooth);

/// Draws a point that is left out: a grey circle with a stroke through it, which no series has.
void DrawLeftOut(const Chart& chart, ChartCanvas& canvas, const ShapePoint& at);

}  // namespace qel
