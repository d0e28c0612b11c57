#pragma once

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

private:
    bool Contains(const CGraphData& point) const noexcept {
        return point.GetXData() >= m_low.GetXData() && point.GetXData() <= m_high.GetXData() &&
               point.GetYData() >= m_low.GetYData() && point.GetYData() <= m_high.GetYData();
    }
    const CGraphData* PassBlocks(const CGraphData* at, const CGraphData* end, double& low, double& high) const noexcept;

    CGraphData m_low, m_high;  // corners of the window; the higher one is not above the lower when it is empty
};

}  // namespace qel
