// Where the draw area is, and where values are in it.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "qellib10/graph/data_scale.h"
#include "qellib10/graph/label_font.h"
#include "qellib10/graph/qel_graph.h"

namespace {

// Edges of the area are limited to this, so that sums with distances on the surface fit in 32 bits.
constexpr std::int64_t kFarthestEdge = (std::int64_t{1} << 30) - 1;

LONG Edge(std::int64_t at) { return static_cast<LONG>(std::clamp(at, -kFarthestEdge, kFarthestEdge)); }

CSize Larger(const CSize& a, const CSize& b) { return {std::max(a.cx, b.cx), std::max(a.cy, b.cy)}; }

// Moves the longer pair of edges together to the length of the other, whichever of its edges is the larger number.
void MakeSquare(CRect& area) {
    const int width = area.right - area.left, height = area.bottom - area.top;
    const int shorter = std::min(std::abs(width), std::abs(height));
    const auto shrink = [shorter](LONG& from, LONG& to) {
        const int length = to - from, direction = length < 0 ? -1 : 1;
        from += direction * ((std::abs(length) - shorter) / 2);
        to = from + direction * shorter;
    };
    if (std::abs(width) >= std::abs(height)) {
        shrink(area.left, area.right);
    } else {
        shrink(area.top, area.bottom);
    }
}

}  // namespace

qel::DataScale CQelGraph::ScaleOf(const CGraphDataCtrl& series, bool isFromRight) const {
    if (!IsOfData()) return {.edge = {m_rectDrawArea.left, m_rectDrawArea.top}};
    const CAxisStyle &xAxis = series.GetXAxisStyle(), &yAxis = series.GetYAxisStyle();
    const double width = m_rectDrawArea.Width(), height = m_rectDrawArea.Height();
    const bool isDownward = m_nCoordinateMode == 0;
    qel::DataScale scale;
    // Downward it is height * (maximum - y) with both signs swapped, which changes no bit of the result.
    scale.origin = {xAxis.GetMinRange(), isDownward ? yAxis.GetMaxRange() : yAxis.GetMinRange()};
    scale.length = {isFromRight ? -width : width, isDownward ? -height : std::abs(height)};
    scale.divisor = {qel::Divisor(xAxis.GetAbsRange()), qel::Divisor(yAxis.GetAbsRange())};
    scale.edge = {isFromRight ? m_rectDrawArea.right : m_rectDrawArea.left,
                  isDownward ? m_rectDrawArea.top : m_rectDrawArea.bottom};
    return scale;
}

int CQelGraph::DataToXPixel(double x, int series) const {
    const CGraphDataCtrl* const data = Find(series);
    return data != nullptr ? qel::Pixels(ScaleOf(*data).Distance(qel::DataScale::kX, x)) : 0;
}

int CQelGraph::DataToYPixel(double y, int series) const {
    const CGraphDataCtrl* const data = Find(series);
    return data != nullptr ? qel::Pixels(ScaleOf(*data).Distance(qel::DataScale::kY, y)) : 0;
}

int CQelGraph::GetValueFromPos(int series, int px, int py, double* x, double* y) const {
    const CGraphDataCtrl* const data = Find(series);
    const CRect& area = m_rectDrawArea;
    if (data == nullptr || px < area.left || px >= area.right) return 0;
    if (!IsOfData()) return 1;
    const bool isInside =
        m_nCoordinateMode == 0 ? py >= area.top && py < area.bottom : py > area.bottom && py <= area.top;
    if (!isInside) return 0;
    const CAxisStyle &xAxis = data->GetXAxisStyle(), &yAxis = data->GetYAxisStyle();
    if (x != nullptr) {
        *x = (xAxis.GetMaxRange() - xAxis.GetMinRange()) * (px - area.left) / area.Width() + xAxis.GetMinRange();
    }
    if (y != nullptr) {
        *y = (yAxis.GetMaxRange() - yAxis.GetMinRange()) * (area.bottom - py) / area.Height() + yAxis.GetMinRange();
    }
    return 1;
}

void CQelGraph::GetDrawArea(CDC* dc, int x, int y) {
    CRect space;  // needed for texts on each side
    for (const CGraphDataCtrl& series : m_aryGraph) {
        for (const CAxisStyle* const axis : {&series.GetXAxisStyle(), &series.GetYAxisStyle()}) {
            if (axis->GetViewMode() == kLabelNone) continue;
            GetDrawAreaSub(axis->GetViewMode(), GetAxisViewSizeMax(dc, *axis), space);
        }
    }
    const std::int64_t above = std::int64_t{m_nTopMargin} + m_nLabelSpaceX + space.top;
    const std::int64_t below = std::int64_t{m_nBottomMargin} + m_nLabelSpaceX + space.bottom;
    std::int64_t top = 0, bottom = 0, left = 0, right = 0;
    if (IsOfData()) {
        top = m_nCoordinateMode == 0 ? above : -above;
        bottom = m_nCoordinateMode == 0 ? m_nDrawHeight - below : below - m_nDrawHeight;
        left = std::int64_t{m_nLeftMargin} + m_nLabelSpaceY + space.left;
        right = std::int64_t{m_nDrawWidth} - m_nRightMargin - m_nLabelSpaceY - space.right;
    }
    m_rectDrawArea = {Edge(left + x), Edge(top + y), Edge(right + x), Edge(bottom + y)};
    if (m_nDrawSizeStyle == 1) MakeSquare(m_rectDrawArea);
}

void CQelGraph::GetDrawAreaSub(int viewMode, const CSize& size, CRect& space) const {
    if (!IsOfData()) return;
    const auto widen = [](LONG& side, LONG by) { side = std::max(side, by); };
    switch (viewMode) {
        case kLabelAbove:
            widen(space.top, size.cy);
            break;
        case kLabelBelow:
            widen(space.bottom, size.cy);
            break;
        case kLabelLeft:
            widen(space.left, size.cx);
            break;
        case kLabelRight:
            widen(space.right, size.cx);
            break;
        default:
            break;
    }
}

CSize CQelGraph::GetAxisViewSizeMax(CDC* dc, const CAxisStyle& axis) const {
    return Larger(GetAxisLabelViewSize(dc, axis), GetAxisDimViewSize(dc, axis));
}

CSize CQelGraph::GetAxisLabelViewSize(CDC* dc, const CAxisStyle& axis) const {
    const qel::LabelFont font(dc, axis.GetLabelFont());
    return Larger(font.Size(axis.GetFormattedMinValue(-1)), font.Size(axis.GetFormattedMaxValue(-1)));
}

CSize CQelGraph::GetAxisDimViewSize(CDC* dc, const CAxisStyle& axis) const {
    return qel::LabelFont(dc, axis.GetDimFont()).Size(axis.GetDimStr());
}
