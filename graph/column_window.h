#pragma once

#include <cstddef>
#include <span>

#include "qellib10/graph/data_scale.h"

namespace qel {

/// The values that lie in one column of pixels for sure, so that most points of a long series need no division: where a
/// value lies grows (or falls) with the value, whatever is rounded on the way, so what lies between two values of a
/// column is in that column too. Values near its borders, and those of points without a place, may lie outside the
/// window.
class ColumnWindow {
public:
    /// @param column distance in pixels, as Pixels gives it
    ColumnWindow(const DataScale& scale, int column) noexcept;

    /// Passes over the points in the window that @p data begins with, and widens @p low to @p high by their y values.
    /// @return the first point outside
    const CGraphData* Pass(std::span<const CGraphData> data, double& low, double& high) const noexcept;

    /// Places the points in the window that @p data begins with, as the scale's Map does.
    /// @param points as many as there are in @p data
    /// @return how many are in the window
    std::size_t Map(std::span<const CGraphData> data, POINT* points) const noexcept;

private:
    bool Contains(const CGraphData& point) const noexcept {
        return point.GetXData() >= m_low.GetXData() && point.GetXData() <= m_high.GetXData() &&
               point.GetYData() >= m_low.GetYData() && point.GetYData() <= m_high.GetYData();
    }
    const CGraphData* PassBlocks(const CGraphData* at, const CGraphData* end, double& low, double& high) const noexcept;
    std::size_t MapBlocks(std::span<const CGraphData> data, POINT* points) const noexcept;

    DataScale m_scale;
    int m_nX;                  // of the column on the surface
    CGraphData m_low, m_high;  // corners of the window; the higher one is not above the lower when it is empty
};

}  // namespace qel
