#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "qellib10/graph/graph_data.h"

namespace qel {

/// The points of a series, next to each other. It grows by half, without a copy if the system can move its pages (for
/// lists of some hundred kilobytes and more), so that adding one point to millions does not delay a live curve.
class PointList {
public:
    PointList() = default;
    PointList(const PointList& other);
    PointList& operator=(const PointList& other);
    ~PointList() = default;

    /// @throws std::bad_alloc; the points do not change then
    void Add(const CGraphData& point) {
        if (m_nCount == m_nCapacity) Grow();
        m_points.get()[m_nCount++] = point;
    }
    void Clear() noexcept;  ///< frees the memory too
    std::span<const CGraphData> Points() const noexcept { return {m_points.get(), m_nCount}; }

private:
    struct Free {
        void operator()(CGraphData* points) const noexcept;
    };

    void Grow();

    std::unique_ptr<CGraphData, Free> m_points;
    std::size_t m_nCount = 0;
    std::size_t m_nCapacity = 0;
};

}  // namespace qel
