#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <span>

#include "qellib10/graph/graph_data.h"
#include "qellib10/graph/growing_array.h"

namespace qel {

/// What finite values reach; low is above high if there are none.
struct ValueRange {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
    double lowestAboveZero = std::numeric_limits<double>::infinity();  ///< where a logarithmic axis may start
};

/// Of all points of a series.
struct PointTotals {
    std::size_t count = 0;
    /// Every x is finite or not a number, and those that are numbers never fall: an x can be searched for.
    bool isRising = true;
    double lastX = -std::numeric_limits<double>::infinity();  ///< the last one that is a number
    ValueRange x, y;
};

/// Of 16 points, or 16 nodes of the level below.
struct PointNode {
    double firstX;     ///< the first number, or if there is none the last one before
    double low, high;  ///< of y; not numbers if an x or y is none: the points themselves must be looked at then
};

/// What the points of a growing series reach, of each 16, 256, 4096 ... of them and of all: so that a curve of millions
/// of points is drawn without reading them. Nodes are of complete blocks only, and never change. Once x falls, there
/// are no more nodes.
///
/// One thread adds points; others may read nodes of the points that they know of.
class PointSummary {
public:
    static constexpr std::size_t kBlock = 16;
    static constexpr std::size_t kLevels = 10;  ///< the highest one has nodes of 16^10 points

    /// Takes the next points. Those before them in their block of 16 must be before them in memory.
    /// @throws std::bad_alloc; the summary cannot be used any more then
    void Add(std::span<const CGraphData> next);

    const PointTotals& Totals() const noexcept { return m_totals; }

    /// @param level 0 for nodes of 16 points
    const PointNode& Node(std::size_t level, std::size_t i) const noexcept { return m_levels[level][i]; }

    /// Of memory that is reserved for the nodes.
    std::size_t Reserved() const noexcept;

private:
    void AddOne(const CGraphData& point);
    bool AddWhole(const CGraphData* points);
    void AddBlock(PointNode node, bool areNumbers);

    PointTotals m_totals;
    double m_firstX = m_totals.lastX;  // of the block that is not complete yet
    std::array<GrowingArray<PointNode>, kLevels> m_levels;
};

}  // namespace qel
