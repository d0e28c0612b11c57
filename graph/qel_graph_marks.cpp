// Drawing over a series: marks, fitted and straight lines, the cross.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "qellib10/graph/pen_in_area.h"
#include "qellib10/graph/trail.h"
#include "qellib10/platform/drawing/screen.h"
#include "qellib10/print/queue_data.h"

namespace {

constexpr int kSquare = 2;
constexpr int kMetricCross = 10;  // units of the bands of a cross
constexpr int kMetricUnitsPerInch = 1440;

}  // namespace

CRect CQelGraph::MarkBox(const POINT& center, int halfSize) const {
    const int left = center.x - halfSize, top = center.y - halfSize;
    return {left, top, left + 2 * halfSize, top + 2 * halfSize};
}

int CQelGraph::HalfSizeOnSurface(int size) const {
    LONGLONG halfSize = size;
    if (m_pPrintJob != nullptr && IsOfData()) {
        const int unitsPerInch = m_nCoordinateMode == 0 ? qel::kScreenDotsPerInch : kMetricUnitsPerInch;
        halfSize = halfSize * m_pPrintJob->GetPageStyle().GetDpi() / unitsPerInch;
    }
    return static_cast<int>(std::clamp<LONGLONG>(halfSize, -qel::kFarthest, qel::kFarthest));
}

void CQelGraph::MarkShapeDraw(CDC* dc, const CRect& box, int shape) {
    if (shape == kSquare) {
        DCRectangle(dc, box.left, box.top, box.right, box.bottom);
    } else {
        DCArc(dc, box.left, box.top, box.right, box.bottom, 0, 0, 0, 0);
    }
}

int CQelGraph::MarkDraw(CDC* dc, int series, double x, double y, int shape, unsigned long color, int size,
                        CRect* rect) {
    const CGraphDataCtrl* const data = Find(series);
    if (data == nullptr || dc == nullptr) return 0;
    const PenInArea pen(*this, dc, {color, PS_SOLID, 1});
    POINT center;
    const bool isPlaced = ScaleOf(*data).Map({x, y}, center);
    const CRect box = MarkBox(center, HalfSizeOnSurface(size));
    if (isPlaced) MarkShapeDraw(dc, box, shape);
    if (rect != nullptr) {
        // The larger y is the top, as existing callers expect.
        *rect = {std::min(box.left, box.right), std::max(box.top, box.bottom), std::max(box.left, box.right),
                 std::min(box.top, box.bottom)};
    }
    return 1;
}

int CQelGraph::FitLineDraw(CDC* dc, int series, double xFrom, double xTo, double c0, double c1, double c2, double c3,
                           double c4, double c5, unsigned long color, int width) {
    const CGraphDataCtrl* const data = Find(series);
    if (data == nullptr || dc == nullptr) return 0;
    PenInArea pen(*this, dc, {color, PS_SOLID, width});
    const qel::DataScale scale = ScaleOf(*data);
    constexpr auto kX = qel::DataScale::kX;
    const double from = scale.Distance(kX, std::min(xFrom, xTo)), to = scale.Distance(kX, std::max(xFrom, xTo));
    if (!IsOfData() || std::isnan(from + to) || m_rectDrawArea.Width() <= 0) return 1;

    qel::Trail<PenInArea> trail(scale, false, pen);
    const auto add = [&](double x) { trail.Add({x, c0 + x * (c1 + x * (c2 + x * (c3 + x * (c4 + x * c5))))}); };
    const int last = std::min(m_rectDrawArea.Width(), qel::kFarthest);
    if (from >= 0) add(std::min(xFrom, xTo));
    // In the middle of each unit in between, whose points are cut to that unit, and of the next one past the area.
    const int end = std::min(last + 2, qel::Pixels(to));
    for (int unit = from >= 0 ? qel::Pixels(from) + 1 : 0; unit < end; ++unit) {
        add(scale.origin[kX] + (unit + 0.5) * scale.divisor[kX] / scale.length[kX]);
    }
    if (to >= 0 && to <= last) add(std::max(xFrom, xTo));
    return 1;
}

int CQelGraph::FreeLineDraw(CDC* dc, int series, double x1, double y1, double x2, double y2, unsigned long color,
                            int width) {
    const CGraphDataCtrl* const data = Find(series);
    if (data == nullptr || dc == nullptr) return 0;
    PenInArea pen(*this, dc, {color, PS_SOLID, width});
    if (!IsOfData()) return 1;
    qel::Trail<PenInArea> trail(ScaleOf(*data), false, pen);
    trail.Add({x1, y1});
    trail.Add({x2, y2});
    return 1;
}

int CQelGraph::DrawCrossPoint(CDC* dc, int series, double x, double y) {
    const CGraphDataCtrl* const data = Find(series);
    if (data == nullptr || dc == nullptr || !IsOfData()) return 0;
    POINT at;
    if (!ScaleOf(*data).Map({x, y}, at)) return 0;
    const CRect& area = m_rectDrawArea;
    const int width = m_nCoordinateMode == 0 ? 1 : kMetricCross;
    CRgn region;
    DCClipDrawArea(dc, &region);
    const CRect across(area.left, at.y - width, area.right, at.y), down(at.x, area.top, at.x + width, area.bottom);
    dc->InvertRect(&across);
    dc->InvertRect(&down);
    DCClipDrawArea(dc, nullptr);
    return 0;
}
