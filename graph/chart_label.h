#pragma once

#include <string>
#include <vector>

#include "qellib10/graph/chart_canvas.h"

namespace qel {

/// A text with its place.
struct PlacedLabel {
    std::string text;
    LabelStyle style;
    ChartBox box;
    ShapePoint start;  ///< of its baseline
};

/// Where the anchor is in the box of a text: 0 the left or upper edge, 0.5 the middle, 1 the right or lower edge.
struct LabelAnchor {
    double across = 0;
    double down = 0;
};

/// A text whose box has @p anchor at @p at.
PlacedLabel LabelAt(const ChartCanvas& canvas, std::string text, const LabelStyle& style, const ShapePoint& at,
                    const LabelAnchor& anchor);

/// The boxes of texts, which must not overlap.
class TakenBoxes {
public:
    bool IsFree(const ChartBox& box) const;
    void Take(const ChartBox& box) { m_aryBox.push_back(box); }

private:
    std::vector<ChartBox> m_aryBox;
};

/// Whether @p inner is in @p outer, edges included.
bool IsInside(const ChartBox& inner, const ChartBox& outer);

}  // namespace qel
