#pragma once

#include <optional>

#include "qellib10/graph/chart_range.h"
#include "qellib10/platform/export.h"

namespace qel {

/// Two vertical markers that a user moves over a chart: what a series has between them is measured (LinesOfRange). Like
/// ChartNavigator it knows no toolkit. One of the markers is the one that moves.
class QELLIB10_API ChartMarkers {
public:
    /// Between them, from <= to; nothing while they are hidden.
    const std::optional<ChartRange>& Range() const noexcept { return m_range; }
    /// Shows them at these values, in any order, or hides them. Ends that are not finite hide them.
    void Set(const std::optional<ChartRange>& range);
    /// Shows them at a quarter and three quarters of the plot, on the first series that can be measured, or hides them.
    /// @return whether something changed
    bool Toggle(const Chart& chart, const ChartNavigator& navigator);

    /// Where the markers are drawn, device units across; nothing while they are hidden.
    struct Places {
        double from, to;
    };
    std::optional<Places> PlacesIn(const Chart& chart, const ChartNavigator& navigator) const;

    /// Makes the marker at a place the one that moves. @return false if none is within @p reach device units
    bool Grab(const Chart& chart, const ChartNavigator& navigator, double x, double reach);
    bool IsSecondMoving() const noexcept { return m_isSecond; }
    void Swap() noexcept { m_isSecond = !m_isSecond; }  ///< the other marker moves from now on
    /// Moves it, within the plot. A marker that is moved past the other one becomes the other end of the range.
    /// @return whether something changed
    bool MoveTo(const Chart& chart, const ChartNavigator& navigator, double x);
    bool MoveBy(const Chart& chart, const ChartNavigator& navigator, double dx);
    /// Measures the next series that can be measured, after the last one the first.
    bool NextSeries(const Chart& chart, const ChartNavigator& navigator);

private:
    const AxisPlaces* PlacesAcross(const Chart& chart, const ChartNavigator& navigator) const;

    std::optional<ChartRange> m_range;
    bool m_isSecond = true;
};

}  // namespace qel
