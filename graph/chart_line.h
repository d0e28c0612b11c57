#pragma once

#include <cmath>
#include <limits>
#include <span>
#include <vector>

#include "qellib10/graph/chart.h"
#include "qellib10/platform/drawing/shape.h"

namespace qel {

/// Where a line ends and the next one starts.
inline constexpr ShapePoint kLineGap = {std::numeric_limits<double>::quiet_NaN(),
                                        std::numeric_limits<double>::quiet_NaN()};
inline bool IsGap(const ShapePoint& place) { return std::isnan(place.x) || std::isnan(place.y); }

/// Collects a line, reduced to what can be seen: of its points in a column of a sixteenth of a device unit the first,
/// the last, the lowest and the highest.
class LineReducer {
public:
    /// @param columnsPerUnit narrow ones lose nothing that can be seen
    explicit LineReducer(double columnsPerUnit = kFine) : m_columnsPerUnit(columnsPerUnit) {}
    static constexpr double kFine = 16;

    void Add(const ShapePoint& place) {
        if (!(place.x * m_columnsPerUnit >= m_column && place.x * m_columnsPerUnit < m_column + 1)) return Start(place);
        if (std::isnan(place.y)) return Start(place);
        m_last = place;
        if (place.y < m_low.y) {
            m_low = place;
            m_isLowLater = true;
        } else if (place.y > m_high.y) {
            m_high = place;
            m_isLowLater = false;
        }
    }
    std::vector<ShapePoint> Take();

private:
    static constexpr double kNone = std::numeric_limits<double>::infinity();

    void Start(const ShapePoint& place);
    void End();

    const double m_columnsPerUnit;
    std::vector<ShapePoint> m_line;
    double m_column = kNone;  // the number of the column that is being added
    ShapePoint m_first, m_last, m_low, m_high;
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
