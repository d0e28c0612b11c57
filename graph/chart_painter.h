#pragma once

#include "qellib10/graph/chart_layout.h"

namespace qel {

/// Draws everything in its place.
void PaintChart(const Chart& chart, ChartCanvas& canvas, const ChartLayout& layout);

}  // namespace qel
