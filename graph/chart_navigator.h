#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "qellib10/graph/chart.h"
#include "qellib10/platform/drawing/shape.h"

namespace qel {

enum class ChartDirection { kBoth, kX, kY };

/// What a window shows of a chart: the part that the user has zoomed to, and the values under the pointer. It knows no
/// toolkit, so that every window moves through a chart in the same way, and tests need no screen.
///
/// On an axis with breaks, values move by up to the width of a gap when one comes into the window or leaves it.
///
/// Places are those of the last drawing, which Take has to be told. Several operations may follow each other before the
/// next one. An operation that would show nothing, or less than numbers can tell apart, changes nothing and returns
/// false.
class QELLIB10_API ChartNavigator {
public:
    /// After each drawing of @p chart with Shown().
    void Take(const Chart& chart, const ChartReport& report);

    const ChartRanges& Shown() const noexcept { return m_shown; }
    bool IsZoomed() const noexcept { return !m_shown.empty(); }
    /// Shows everything again.
    void Reset() noexcept { m_shown.clear(); }

    /// Zooms so that the value at @p at stays where it is. @param factor above 1: nearer
    bool ZoomAt(const ShapePoint& at, double factor, ChartDirection direction = ChartDirection::kBoth);
    /// Shows what is in the box; one that is less than 4 device units wide or high zooms in the other direction only.
    bool ZoomTo(ChartBox box);
    /// Moves the chart with the pointer.
    bool PanBy(double dx, double dy);

    const ChartBox& Plot() const noexcept { return m_plot; }
    bool IsInPlot(const ShapePoint& at) const noexcept;
    /// The values of an axis; null before the first drawing, and for one that does not exist.
    const AxisPlaces* PlacesOf(std::size_t axis) const noexcept {
        return axis < m_axes.size() ? &m_axes[axis].places : nullptr;
    }

    /// A point of a series near the pointer.
    struct Value {
        std::size_t series;
        std::size_t point;
        ShapePoint at;     ///< where it is drawn
        std::string text;  ///< "Sample 1: 12.3 mL, 7.5", and why it is left out
    };
    /// Nothing for a point that does not exist or has no place on its axes.
    std::optional<Value> ValueOf(const Chart& chart, std::size_t series, std::size_t point) const;
    /// Of each series the point whose x is nearest to that place; series without points, and areas, are left out.
    std::vector<Value> ValuesAt(const Chart& chart, double x) const;
    /// The point that is drawn nearest to a place, at most @p reach device units away.
    std::optional<Value> PointNear(const Chart& chart, const ShapePoint& at, double reach) const;
    /// The points of a series in a box, in their order.
    std::vector<std::size_t> PointsIn(const Chart& chart, std::size_t series, ChartBox box) const;

private:
    struct Axis {
        AxisPlaces places;
        bool isHorizontal;
        std::vector<ChartBreak> breaks;
    };

    bool IsPlaced(const Chart& chart, const ChartSeries& series) const;
    bool Show(std::size_t axis, double from, double to);

    std::vector<Axis> m_axes;
    ChartBox m_plot;
    ChartRanges m_shown;
};

}  // namespace qel
