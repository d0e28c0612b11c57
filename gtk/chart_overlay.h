#pragma once

#include "qellib10/gtk/chart_scene.h"

namespace qel {

/// Draws what is over the chart: the markers with the values of their range, the box that is being dragged, and the
/// values at the pointer or at the cursor.
void PaintOverlay(CDC& screen, ChartScene& scene);

/// The texts of the values at the pointer or the cursor.
std::vector<ChartNavigator::Value> ValuesShown(const ChartScene& scene);

}  // namespace qel
