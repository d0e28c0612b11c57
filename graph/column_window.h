#pragma once

#include <cstddef>
#include <span>

#include "qellib10/graph/data_scale.h"

namespace qel {

/// The values that are certainly in one column of pixels, so that most points of a long series need no division. The
/// position grows (or falls) with the value, however it is rounded, so everything between two values of a column is in
/// that column too. Values near its borders, and points without a position, may be outside the window.
class ColumnWindow {
public:
    /// @param column distance in pixels, as returned by Pixels
    ColumnWindow(const DataScale& scale, int column) noexcept;

    /// Skips the points at the start of @p data that are in the window, and extends @p low to @p high by their y
    /// values.
    /// @return the first point outside
    const CGraphData* Pass(std::span<const CGraphData> data, double& low, double& high) const noexcept;

    /// Computes the positions of the points at the start of @p data that are in the window, like the scale's Map.
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
    CGraphData m_low, m_high;  // corners of the window; if it is empty, the higher one is not above the lower
};

}  // namespace qel
