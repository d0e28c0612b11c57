#pragma once

#include <cstddef>
#include <optional>

#include "qellib10/graph/chart_navigator.h"
#include "qellib10/platform/export.h"

namespace qel {

/// A cursor that goes from point to point by keys, for those who have no mouse. It knows no toolkit.
class QELLIB10_API ChartCursor {
public:
    /// Where it is; nothing while it is hidden, and for a point that is gone.
    std::optional<ChartNavigator::Value> At(const Chart& chart, const ChartNavigator& navigator) const;
    void Hide() noexcept { m_isShown = false; }
    void Set(std::size_t series, std::size_t point) noexcept;

    /// Goes on by a point, or by as many as are drawn within a device unit: in a curve of millions each step is seen. A
    /// hidden cursor appears at the first point that is in the plot. Points without a place are passed over.
    /// @param isForward from the first to the last point
    /// @return false at the end, and without points
    bool Step(const Chart& chart, const ChartNavigator& navigator, bool isForward);
    /// Goes to the next series, to its point nearest across.
    bool NextSeries(const Chart& chart, const ChartNavigator& navigator);

private:
    bool Appear(const Chart& chart, const ChartNavigator& navigator);

    bool m_isShown = false;
    std::size_t m_series = 0;
    std::size_t m_point = 0;
};

}  // namespace qel
