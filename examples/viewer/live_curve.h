#pragma once

#include <optional>
#include <span>

#include <qellib10/qellib10.h>

namespace viewer {

/// A curve over time that grows. Its axes follow the points, in round numbers.
class LiveCurve : public CQelGraph {
public:
    /// For a screen.
    LiveCurve();

    /// Texts, lines and margins as large as on a screen, for a surface of this resolution.
    void SetResolution(int dotsPerInch);
    /// Shows all points (the time axis grows), or the last minute (it moves).
    void ShowAll(bool isAll) { m_isAll = isAll; }
    /// Adds a point that was measured later than those before.
    void Add(const CGraphData& point) { AddData(0, point.GetXData(), point.GetYData()); }
    /// Extends the axes to what is to be shown. Call it after adding points, before drawing.
    void FitAxes();

    /// The point whose time is nearest to a position in the last drawing.
    /// @return nothing outside the draw area and without points
    std::optional<CGraphData> Nearest(const CPoint& place) const;
    /// The point whose time is the nearest. @return nothing without points
    std::optional<CGraphData> Nearest(double second) const;

private:
    std::span<const CGraphData> Points() const { return m_aryGraph[0].GetData(); }

    bool m_isAll = false;
};

}  // namespace viewer
