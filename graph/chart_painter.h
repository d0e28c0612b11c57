#pragma once

#include "qellib10/graph/chart_layout.h"

namespace qel {

/// Draws everything in its place.
void PaintChart(const ChartSnapshot& data, ChartCanvas& canvas, const ChartLayout& layout);

}  // namespace qel
