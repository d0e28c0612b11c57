#pragma once

#include "chart_options.h"

namespace tool {

/// Draws columns of a table as a chart for readers, and reports what was drawn and what was not.
void DrawChart(const PlotOptions& options);

}  // namespace tool
