#pragma once

#include <memory>
#include <span>

#include "qellib10/graph/axis_style.h"
#include "qellib10/graph/bar_graph_style.h"
#include "qellib10/graph/graph_data.h"
#include "qellib10/graph/line_graph_style.h"
#include "qellib10/platform/export.h"

namespace qel {
class PointList;
}

/// One series of a graph: its points in the order in which they were added, its axes, and how it is drawn. All of it is
/// one object. Where points and axes are kept apart, a curve is soon drawn on the axes of another one, and people read
/// wrong values from it.
///
/// @code
/// CGraphDataCtrl series;
/// series.GetXAxisStyle().SetDimStr("mL");
/// series.SetViewMode(1);  // a line
/// series.AddData(CGraphData(0.5, 61.2));
/// for (const CGraphData& point : series.GetData()) std::printf("%g mL: %g mV\n", point.GetXData(), point.GetYData());
/// @endcode
///
/// A copy has its own points. Nothing is checked here, and nothing is thrown but std::bad_alloc; the points do not
/// change then. One thread at a time.
class QELLIB10_API CGraphDataCtrl {
public:
    CGraphDataCtrl();
    CGraphDataCtrl(const CGraphDataCtrl& other);
    CGraphDataCtrl& operator=(const CGraphDataCtrl& other);
    virtual ~CGraphDataCtrl();

    const CAxisStyle& GetXAxisStyle() const { return m_xAxis; }
    CAxisStyle& GetXAxisStyle() { return m_xAxis; }
    const CAxisStyle& GetYAxisStyle() const { return m_yAxis; }
    CAxisStyle& GetYAxisStyle() { return m_yAxis; }

    /// 0 hidden, 1 line, 2 bars, 3 and 4 recorder; see CQelGraph.
    const int& GetViewMode() const { return m_nViewMode; }
    void SetViewMode(const int& viewMode) { m_nViewMode = viewMode; }
    const CLineGraphStyle& GetLineStyle() const { return m_lineStyle; }
    void SetLineStyle(const CLineGraphStyle& style) { m_lineStyle = style; }
    const CBarGraphStyle& GetBarStyle() const { return m_barStyle; }
    void SetBarStyle(const CBarGraphStyle& style) { m_barStyle = style; }
    /// 1: a line has a mark at each point.
    const int& GetPlotflg() const { return m_nPlotflg; }
    void SetPlotflg(const int& plotflg) { m_nPlotflg = plotflg; }

    /// Appends at the end.
    void AddData(const CGraphData& data);
    void InitializeData();  ///< removes all points and frees their memory
    int GetDataCount() const { return static_cast<int>(GetData().size()); }
    /// All points; valid until one is added or removed.
    std::span<const CGraphData> GetData() const;

private:
    CAxisStyle m_xAxis;
    CAxisStyle m_yAxis;
    int m_nViewMode = 0;
    CLineGraphStyle m_lineStyle;
    CBarGraphStyle m_barStyle;
    std::unique_ptr<qel::PointList> m_aryData;  // never null
    int m_nPlotflg = 0;
};
