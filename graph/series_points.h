#pragma once

#include <cstddef>
#include <span>

#include "qellib10/graph/chart_data.h"

namespace qel {

/// The points of a series, wherever it keeps them, one by one.
class SeriesPoints {
public:
    explicit SeriesPoints(const ChartSeries& series) noexcept : m_points(series.points) {}

    std::size_t Count() const noexcept { return m_points.size(); }
    const CGraphData& operator[](std::size_t point) const noexcept { return m_points[point]; }

private:
    std::span<const CGraphData> m_points;
};

}  // namespace qel
