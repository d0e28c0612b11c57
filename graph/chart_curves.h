#pragma once

#include <span>
#include <vector>

#include "qellib10/graph/chart_bars.h"
#include "qellib10/graph/chart_line.h"

namespace qel {

/// The outlines of a series between breaks of its axes, in device units: lines with gaps (corners that are not
/// numbers), bars, filled areas.
class SeriesCurves {
public:
    SeriesCurves(const ChartSnapshot& data, std::size_t series, const AxisPart& x, const AxisPart& y);

    std::size_t Count() const { return m_points.Count(); }
    /// Of one point; not a number for a gap.
    ShapePoint At(std::size_t point) const;
    /// With corners of steps, reduced to what can be seen: of many points in a sixteenth of a device unit the first,
    /// the last, the lowest and the highest.
    /// @param beside device units beside the plot that the pen reaches into it from
    std::vector<ShapePoint> Line(double beside) const;
    /// The same in columns that are @p columnsPerUnit of a device unit wide: a rough line.
    std::vector<ShapePoint> RoughLine(double columnsPerUnit) const;
    /// Where the points are that are left out; those outside the axes' numbers are missing. No other outline has them.
    std::vector<ShapePoint> LeftOut() const;
    bool Counts(std::size_t point) const;  ///< whether it is not left out
    /// Closed outlines between the line and the base or the band's other edge, one per piece without gaps. Of a lone
    /// point there are only the two ends.
    std::vector<std::vector<ShapePoint>> Areas(double columnsPerUnit = PointLine::kFine) const;
    /// Of the y errors, as band.
    std::vector<std::vector<ShapePoint>> ErrorAreas(double columnsPerUnit = PointLine::kFine) const;
    std::vector<ChartBox> Bars() const;
    /// From the lower to the upper end of the errors of each point that has any.
    struct ErrorBar {
        ShapePoint from, to;
        bool isVertical;
    };
    std::vector<ErrorBar> ErrorBars() const;
    double Base() const;  ///< y of the base

private:
    struct Points {
        std::size_t begin, end;
    };
    Points VisiblePoints(double beside) const;
    std::vector<ShapePoint> LineOf(std::span<const double> heights, double columnsPerUnit, double beside) const;
    std::vector<std::vector<ShapePoint>> Between(const std::vector<double>& upper, const std::vector<double>& lower,
                                                 double columnsPerUnit) const;

    const ChartSnapshot& m_data;
    const std::size_t m_index;
    const ChartSeries& m_series;
    const PointView& m_points;
    const AxisPart& m_x;
    const AxisPart& m_y;
    std::vector<std::size_t> m_leftOut;
};

}  // namespace qel
