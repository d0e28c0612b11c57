#include "qellib10/graph/chart_place.h"

#include <algorithm>
#include <cmath>

#include "qellib10/graph/chart_cells.h"

namespace qel {
namespace {

constexpr double kAroundText = 1.5, kAtTarget = 10;  // points, and of an arrow at the curve
constexpr double kCostOfFilled = 0.1;                // of a filled cell: better a longer way than a text on an area

}  // namespace

void BestPlace::Try(const std::string& text, const LabelStyle& style, const ShapePoint& at, const LabelAnchor& anchor,
                    double cost, const std::optional<ShapePoint>& target) {
    const PlacedLabel label = LabelAt(m_canvas, text, style, at, anchor);
    const ChartBox box = Grown(label.box, m_canvas.Units(kAroundText));
    if (!IsInside(box, m_plot) || !m_taken.IsFree(box)) return;
    const double all =
        cost + m_field.Hits(box) + kCostOfFilled * m_field.Filled(box) + (target ? ArrowHits(label.box, *target) : 0);
    if (all >= m_cost) return;
    m_cost = all;
    m_best = label;
}

// Of the arrow's part that is not yet at the curve where it leads to.
int BestPlace::ArrowHits(const ChartBox& box, const ShapePoint& target) const {
    const ShapePoint from{std::clamp(target.x, box.left, box.right), std::clamp(target.y, box.top, box.bottom)};
    const double length = std::hypot(target.x - from.x, target.y - from.y);
    const double share = 1 - m_canvas.Units(kAtTarget) / std::max(length, 1.0);
    if (share <= 0) return 0;
    return m_field.HitsAlong(from, {from.x + (target.x - from.x) * share, from.y + (target.y - from.y) * share});
}

}  // namespace qel
