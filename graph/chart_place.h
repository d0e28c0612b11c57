#pragma once

#include <limits>
#include <optional>
#include <string>

#include "qellib10/graph/curve_field.h"

namespace qel {

/// Looks for the place of a text over the plot: among those that are free the one that costs least. What a text hides
/// of curves costs more than to be farther away.
class BestPlace {
public:
    BestPlace(const ChartCanvas& canvas, const ChartBox& plot, const CurveField& field, const TakenBoxes& taken)
        : m_canvas(canvas), m_plot(plot), m_field(field), m_taken(taken) {}

    /// @param target where an arrow leads to
    void Try(const std::string& text, const LabelStyle& style, const ShapePoint& at, const LabelAnchor& anchor,
             double cost, const std::optional<ShapePoint>& target = {});
    const std::optional<PlacedLabel>& Best() const { return m_best; }

private:
    int ArrowHits(const ChartBox& box, const ShapePoint& target) const;

    const ChartCanvas& m_canvas;
    const ChartBox& m_plot;
    const CurveField& m_field;
    const TakenBoxes& m_taken;
    std::optional<PlacedLabel> m_best;
    double m_cost = std::numeric_limits<double>::infinity();
};

}  // namespace qel
