#pragma once

#include <cmath>
#include <limits>
#include <span>
#include <vector>

#include "qellib10/graph/chart.h"
#include "qellib10/graph/point_line.h"

namespace qel {

/// Collects a line, reduced to what can be seen: of its points in a column of a sixteenth of a device unit the first,
/// the last, the lowest and the highest.
class LineReducer {
public:
    /// @param columnsPerUnit narrow ones lose nothing that can be seen
    explicit LineReducer(double columnsPerUnit) : m_columnsPerUnit(columnsPerUnit) {}

    /// @param value that the place is computed from: it decides which point is the lowest, even where places are equal
    void Add(const ShapePoint& place, double value) {
        if (!(place.x * m_columnsPerUnit >= m_column && place.x * m_columnsPerUnit < m_column + 1))
            return Start(place, value);
        if (std::isnan(place.y)) return Start(place, value);
        m_last = place;
        if (value < m_lowValue) {
            m_low = place;
            m_lowValue = value;
            m_isLowLater = true;
        } else if (value > m_highValue) {
            m_high = place;
            m_highValue = value;
            m_isLowLater = false;
        }
    }
    std::vector<ShapePoint> Take();

private:
    static constexpr double kNone = std::numeric_limits<double>::infinity();

    void Start(const ShapePoint& place, double value);
    void End();

    const double m_columnsPerUnit;
    ReducedLine m_line;
    double m_column = kNone;  // the number of the column that is being added
    ShapePoint m_first, m_last, m_low, m_high;
    double m_lowValue = 0, m_highValue = 0;
    bool m_isLowLater = false;
};

/// Keeps a line within coordinates that can be drawn: its parts far outside @p area are cut off.
std::vector<ShapePoint> CutToArea(std::span<const ShapePoint> line, const ChartBox& area);
std::vector<ShapePoint> CutToArea(std::vector<ShapePoint>&& line, const ChartBox& area);

/// Points between two gaps, which no line shows.
std::vector<ShapePoint> LonePlaces(std::span<const ShapePoint> line);

/// Corners of a line that are at least so far from each other, and all lone points.
std::vector<ShapePoint> PlacesAlong(std::span<const ShapePoint> line, double distance);

}  // namespace qel
