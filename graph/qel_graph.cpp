#include "qellib10/graph/qel_graph.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace {

// Margins and spaces by coordinate mode: pixels, or metric units.
struct LayoutDefaults {
    int leftMargin, otherMargins, labelSpace;
};
constexpr LayoutDefaults kPixels{5, 5, 3}, kMetric{20, 100, 30};
constexpr int kDivisions = 10;
constexpr double kMinRange = 0.0, kMaxRange = 100.0;

int Absolute(int length) { return std::abs(std::max(length, -std::numeric_limits<int>::max())); }

}  // namespace

CQelGraph::CQelGraph() : m_aryGraph(kSeries) { CQelGraph::InitializeParameter(-1); }

CQelGraph::~CQelGraph() = default;

int CQelGraph::InitializeParameter(int series) {
    if (series >= kSeries) return 0;
    if (series >= 0) {
        ResetSeries(m_aryGraph[static_cast<unsigned>(series)], kLabelBelow, kLabelLeft, kViewLine);
        return 1;
    }
    for (CGraphDataCtrl& each : m_aryGraph) ResetSeries(each, kLabelNone, kLabelNone, kViewHidden);
    ResetSeries(m_aryGraph.front(), kLabelBelow, kLabelLeft, kViewLine);
    const LayoutDefaults& defaults = m_nCoordinateMode == 1 ? kMetric : kPixels;
    m_nLeftMargin = defaults.leftMargin;
    m_nTopMargin = m_nRightMargin = m_nBottomMargin = defaults.otherMargins;
    m_nLabelSpaceX = m_nLabelSpaceY = defaults.labelSpace;
    m_nDrawSizeStyle = 0;
    m_nDivX = m_nDivY = kDivisions;
    m_nDrawWidth = m_nDrawHeight = 0;
    return 1;
}

void CQelGraph::ResetSeries(CGraphDataCtrl& series, int xLabel, int yLabel, int viewMode) {
    const auto reset = [](CAxisStyle& axis, int label) {
        axis.SetViewMode(label);
        axis.SetMinRange(kMinRange);
        axis.SetMaxRange(kMaxRange);
    };
    reset(series.GetXAxisStyle(), xLabel);
    reset(series.GetYAxisStyle(), yLabel);
    series.SetViewMode(viewMode);
}

int CQelGraph::InitializeData(int series) {
    if (series >= kSeries) return 0;
    if (series >= 0) {
        m_aryGraph[static_cast<unsigned>(series)].InitializeData();
    } else {
        for (CGraphDataCtrl& each : m_aryGraph) each.InitializeData();
    }
    return 1;
}

int CQelGraph::AddData(int series, double x, double y) {
    return Change(series, [&](CGraphDataCtrl& data) { data.AddData({x, y}); });
}

void CQelGraph::SetDrawSize(int width, int height) {
    m_nDrawWidth = Absolute(width);
    m_nDrawHeight = Absolute(height);
}

int CQelGraph::GraphDraw(CDC* dc, int x, int y) {
    FrameDraw(dc, x, y);
    int result = y;
    for (int series = 0; series < kSeries; ++series) {
        const CGraphDataCtrl& data = *Find(series);
        switch (data.GetViewMode()) {
            case kViewHidden:
                break;
            case kViewLine:
                result = data.GetPlotflg() == 1 ? PlotLineDraw(dc, series) : LineDraw(dc, series);
                break;
            case kViewBar:
                result = BarDraw(dc, series);
                break;
            case kViewRecorder:
                result = RecorderDrawX(dc, series, 0);
                break;
            case kViewRecorderFromRight:
                result = RecorderDrawX(dc, series, 1);
                break;
            default:
                result = 1;
                break;
        }
    }
    return result;
}

template <class Step> int CQelGraph::Change(int series, const Step& step) {
    CGraphDataCtrl* const data = Find(series);
    if (data == nullptr) return 0;
    step(*data);
    return 1;
}

int CQelGraph::SetXMinRange(int series, double range) {
    return Change(series, [&](CGraphDataCtrl& data) { data.GetXAxisStyle().SetMinRange(range); });
}

int CQelGraph::SetXMaxRange(int series, double range) {
    return Change(series, [&](CGraphDataCtrl& data) { data.GetXAxisStyle().SetMaxRange(range); });
}

int CQelGraph::SetYMinRange(int series, double range) {
    return Change(series, [&](CGraphDataCtrl& data) { data.GetYAxisStyle().SetMinRange(range); });
}

int CQelGraph::SetYMaxRange(int series, double range) {
    return Change(series, [&](CGraphDataCtrl& data) { data.GetYAxisStyle().SetMaxRange(range); });
}

int CQelGraph::SetXDimStr(int series, const CString& text) {
    return Change(series, [&](CGraphDataCtrl& data) { data.GetXAxisStyle().SetDimStr(text); });
}

int CQelGraph::SetYDimStr(int series, const CString& text) {
    return Change(series, [&](CGraphDataCtrl& data) { data.GetYAxisStyle().SetDimStr(text); });
}

int CQelGraph::SetXLabelViewMode(int series, int viewMode) {
    return Change(series, [&](CGraphDataCtrl& data) { data.GetXAxisStyle().SetViewMode(viewMode); });
}

int CQelGraph::SetYLabelViewMode(int series, int viewMode) {
    return Change(series, [&](CGraphDataCtrl& data) { data.GetYAxisStyle().SetViewMode(viewMode); });
}

int CQelGraph::SetXRangeStyle(int series, const CAxisStyle& style) {
    return Change(series, [&](CGraphDataCtrl& data) { data.GetXAxisStyle() = style; });
}

int CQelGraph::SetYRangeStyle(int series, const CAxisStyle& style) {
    return Change(series, [&](CGraphDataCtrl& data) { data.GetYAxisStyle() = style; });
}

int CQelGraph::GetXRangeStyle(int series, CAxisStyle* style) const {
    const CGraphDataCtrl* const data = Find(series);
    if (data == nullptr || style == nullptr) return -1;
    *style = data->GetXAxisStyle();
    return 1;
}

int CQelGraph::GetYRangeStyle(int series, CAxisStyle* style) const {
    const CGraphDataCtrl* const data = Find(series);
    if (data == nullptr || style == nullptr) return -1;
    *style = data->GetYAxisStyle();
    return 1;
}

int CQelGraph::SetGraphViewMode(int series, int viewMode) {
    return Change(series, [&](CGraphDataCtrl& data) { data.SetViewMode(viewMode); });
}

int CQelGraph::GetGraphViewMode(int series) const {
    const CGraphDataCtrl* const data = Find(series);
    return data != nullptr ? data->GetViewMode() : -1;
}

int CQelGraph::SetGraphPlotflg(int series, int plotflg) {
    return Change(series, [&](CGraphDataCtrl& data) { data.SetPlotflg(plotflg); });
}

int CQelGraph::GetGraphPlotflg(int series) const {
    const CGraphDataCtrl* const data = Find(series);
    return data != nullptr ? data->GetPlotflg() : -1;
}

int CQelGraph::SetLineGraphStyle(int series, const CLineGraphStyle& style) {
    return Change(series, [&](CGraphDataCtrl& data) { data.SetLineStyle(style); });
}

CLineGraphStyle CQelGraph::GetLineGraphStyle(int series) const {
    const CGraphDataCtrl* const data = Find(series);
    return data != nullptr ? data->GetLineStyle() : CLineGraphStyle();
}

int CQelGraph::SetBarGraphStyle(int series, const CBarGraphStyle& style) {
    return Change(series, [&](CGraphDataCtrl& data) { data.SetBarStyle(style); });
}

CBarGraphStyle CQelGraph::GetBarGraphStyle(int series) const {
    const CGraphDataCtrl* const data = Find(series);
    return data != nullptr ? data->GetBarStyle() : CBarGraphStyle();
}
