// The series: lines, bars, recorders.

#include <algorithm>
#include <cstdint>

#include "qellib10/graph/data_scale.h"
#include "qellib10/graph/pen_in_area.h"
#include "qellib10/graph/solid_curve.h"
#include "qellib10/graph/trail.h"
#include "qellib10/platform/drawing/device_context.h"
#include "qellib10/print/queue_data.h"

namespace {

// Half-size of the circles on a line.
constexpr int kCircle = 3, kMetricCircle = 30;

// Only thin pens show dashes.
bool IsSolid(const CLineGraphStyle& style) {
    const bool isDashed = style.GetStyle() >= PS_DASH && style.GetStyle() <= PS_DASHDOTDOT;
    return !isDashed || style.GetWidth() < -1 || style.GetWidth() > 1;
}

// A preview has two contexts and scales from one to the other.
bool IsUnitOnePixel(const CDC& dc) { return dc.m_hDC == dc.m_hAttribDC && dc.GetMapMode() == MM_TEXT; }

bool IsPicture(const CDC& dc) {
    const auto context = qel::FindDeviceContext(dc.m_hDC);
    return context && context->IsPicture();
}

// Where edges of wide lines are smoothed, the points in between would give other shades.
bool IsReduced(const CDC& dc, const CLineGraphStyle& style) {
    const bool isThin = style.GetWidth() >= -1 && style.GetWidth() <= 1;
    return IsSolid(style) && IsUnitOnePixel(dc) && (isThin || IsPicture(dc));
}

}  // namespace

int CQelGraph::LineDraw(CDC* dc, int series) {
    const CGraphDataCtrl* const data = Find(series);
    return data != nullptr ? CurveDraw(dc, *data, Trace::kLine) : 0;
}

int CQelGraph::RecorderDrawX(CDC* dc, int series, int variant) {
    const CGraphDataCtrl* const data = Find(series);
    return data != nullptr ? CurveDraw(dc, *data, variant == 0 ? Trace::kSteps : Trace::kStepsFromRight) : 0;
}

int CQelGraph::PlotLineDraw(CDC* dc, int series) {
    if (LineDraw(dc, series) == 0) return 0;
    const CGraphDataCtrl& data = *Find(series);
    if (data.GetDataCount() == 0 || !IsOfData()) return 1;
    // As thick on paper as on the screen, like the circles themselves.
    PenInArea pen(*this, dc, {data.GetLineStyle().GetColor(), PS_SOLID, std::max(1, HalfSizeOnSurface(1))});
    const qel::DataScale scale = ScaleOf(data);
    const int circle = m_nCoordinateMode == 1 ? kMetricCircle : kCircle;
    // In a job without a resolution they are as large as on the surface; in a coarse one they do not disappear.
    const bool isScaled = m_pPrintJob != nullptr && m_pPrintJob->GetPageStyle().GetDpi() >= 1;
    const int halfSize = isScaled ? std::max(1, HalfSizeOnSurface(circle)) : circle;
    for (const CGraphData& point : data.GetData()) {
        POINT at;
        if (scale.Map(point, at)) MarkShapeDraw(dc, MarkBox(at, halfSize), 0);
    }
    return 1;
}

int CQelGraph::CurveDraw(CDC* dc, const CGraphDataCtrl& series, Trace trace) {
    if (dc == nullptr) return 0;
    if (series.GetDataCount() < 2) return 1;
    PenInArea pen(*this, dc, series.GetLineStyle());
    const qel::DataScale scale = ScaleOf(series, trace == Trace::kStepsFromRight);
    const bool isSteps = trace != Trace::kLine;
    if (!IsOfData()) {
        POINT first;
        scale.Map(series.GetData().front(), first);
        pen.MoveTo(first);
    } else if (m_pPrintJob == nullptr && IsReduced(*dc, series.GetLineStyle())) {
        qel::SolidCurve<PenInArea>(scale, isSteps, pen).Draw(series.GetData());
    } else {
        qel::Trail<PenInArea>(scale, isSteps, pen).Draw(series.GetData());
    }
    return 1;
}

int CQelGraph::BarDraw(CDC* dc, int series) {
    const CGraphDataCtrl* const data = Find(series);
    if (data == nullptr || dc == nullptr) return 0;
    if (data->GetDataCount() == 0) return 1;
    const CBarGraphStyle& style = data->GetBarStyle();
    const PenInArea pen(*this, dc, {style.GetLineColor(), style.GetLineStyle(), style.GetLineWidth()});
    CBrush brush;
    brush.CreateBrushIndirect(&style.GetBarBrush());
    CBrush* const before = dc->SelectObject(&brush);
    const int width = style.GetBarWidth();
    if (IsOfData()) {
        const qel::DataScale scale = ScaleOf(*data);
        for (const CGraphData& point : data->GetData()) {
            POINT at;
            if (!scale.Map(point, at)) continue;
            const std::int64_t left = std::int64_t{at.x} - width / 2;
            DCRectangle(dc, static_cast<int>(left), at.y, static_cast<int>(left + width), m_rectDrawArea.bottom);
        }
    }
    dc->SelectObject(before);
    return 0;
}
