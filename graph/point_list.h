#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "qellib10/graph/graph_data.h"

namespace qel {

/// The points of a series side by side. It grows by half without a copy where the system can move its pages instead,
/// as with lists of some hundred kilobytes and more, so that adding one to millions does not hold up a live curve.
class PointList {
public:
    PointList() = default;
    PointList(const PointList& other);
    PointList& operator=(const PointList& other);
    ~PointList() = default;

    /// @throws std::bad_alloc; the points stay as they are then
    void Add(const CGraphData& point) {
        if (m_nCount == m_nCapacity) Grow();
        m_points.get()[m_nCount++] = point;
    }
    void Clear() noexcept;  ///< gives the memory back, too
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
