#pragma once

#include <optional>
#include <vector>

#include "qellib10/graph/chart_curves.h"
#include "qellib10/graph/chart_label.h"

namespace qel {

/// The names of the series, each with a sample, then the points that are left out, by their reasons.
struct LegendLayout {
    struct Entry {
        std::optional<std::size_t> series;  ///< nothing: points that are left out
        PlacedLabel label;
        ChartBox sample;
    };

    ChartBox box;
    bool isInside = false;  ///< over the plot: it has a background
    std::vector<Entry> entries;
};

/// A legend with its corner at 0, 0.
/// @param width the entries are in rows of at most this width; one column if it is 0
/// @param longest of an entry with the padding around it, device units: longer names are shortened
/// @return nothing if no series has a name and no point is left out
std::optional<LegendLayout> LayLegend(const Chart& chart, const ChartCanvas& canvas, double width, double longest);

void MoveLegend(LegendLayout& legend, double dx, double dy);

void DrawLegend(const Chart& chart, ChartCanvas& canvas, const LegendLayout& legend);

}  // namespace qel
