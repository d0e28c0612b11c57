#include "qellib10/graph/chart_label.h"

#include <algorithm>

namespace qel {

PlacedLabel LabelAt(const ChartCanvas& canvas, std::string text, const LabelStyle& style, const ShapePoint& at,
                    const LabelAnchor& anchor) {
    const LabelSize size = canvas.Measure(text, style);
    const bool isUpright = style.quarterTurns == 1;
    const double width = isUpright ? size.Height() : size.width, height = isUpright ? size.width : size.Height();
    const double left = at.x - anchor.across * width, top = at.y - anchor.down * height;
    const ShapePoint start =
        isUpright ? ShapePoint{left + size.ascent, top + height} : ShapePoint{left, top + size.ascent};
    return {std::move(text), style, {left, top, left + width, top + height}, start};
}

bool TakenBoxes::IsFree(const ChartBox& box) const {
    return std::ranges::none_of(m_aryBox, [&](const ChartBox& taken) { return taken.Overlaps(box); });
}

bool IsInside(const ChartBox& inner, const ChartBox& outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

}  // namespace qel
