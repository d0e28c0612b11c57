#pragma once

#include <cmath>
#include <memory>
#include <span>

#include "qellib10/graph/point_store.h"
#include "qellib10/graph/point_summary.h"

namespace qel {

/// The points of a series as they were at one moment, wherever they are kept, and what is known of them. What is
/// appended to a store afterwards is not in the view. The points must exist as long as it does.
class PointView {
public:
    /// Points next to each other, which are summarized now.
    explicit PointView(std::span<const CGraphData> points);
    /// Points of which nothing is known: of no use where they are read more than once.
    static PointView Unread(std::span<const CGraphData> points);
    /// @param summary of these points, which the caller keeps
    PointView(std::span<const CGraphData> points, const PointSummary& summary);
    explicit PointView(const PointStore& store);

    std::size_t Count() const noexcept { return m_totals.count; }
    const CGraphData& operator[](std::size_t i) const noexcept {
        return m_pPoints != nullptr ? m_pPoints[i] : (*m_pStored)[i];
    }
    /// The points from @p i on that are next to each other, at most up to @p end, which is above i.
    std::span<const CGraphData> From(std::size_t i, std::size_t end) const noexcept {
        return m_pPoints != nullptr ? std::span(m_pPoints + i, end - i) : m_pStored->From(i, end);
    }

    const PointTotals& Totals() const noexcept { return m_totals; }
    /// The node of a level that starts with a point and is complete.
    /// @return null if there is none
    const PointNode* NodeAt(std::size_t level, std::size_t point) const noexcept {
        static_assert(PointSummary::kBlock == 1U << 4U);
        const std::size_t shift = 4 * (level + 1), node = point >> shift;
        const bool isThere = node << shift == point && (node + 1) << shift <= m_totals.count && m_totals.isRising &&
                             level < PointSummary::kLevels;
        return isThere ? &m_pSummary->Node(level, node) : nullptr;
    }

    /// How many points from one on are in a node that has only values above 0; 0 if none is known.
    std::size_t PositiveFrom(std::size_t point) const noexcept {
        std::size_t count = 0;
        for (std::size_t level = 0;; ++level) {
            const PointNode* const node = NodeAt(level, point);
            if (node == nullptr || !(node->low > 0)) return count;
            count = PointSummary::kBlock << (4 * level);
        }
    }

    /// Of points that rise: the number of the first one whose x is at least @p x, or above it; those that are not
    /// numbers count as the next one that is.
    std::size_t FirstFrom(double x) const noexcept;
    std::size_t FirstAbove(double x) const noexcept;
    /// The same of the first x for which @p isBefore does not hold; it holds for none after that.
    template <class IsBefore> std::size_t FirstNot(const IsBefore& isBefore) const noexcept;

private:
    PointView() = default;

    const CGraphData* m_pPoints = nullptr;
    const GrowingArray<CGraphData>* m_pStored = nullptr;
    std::shared_ptr<const PointSummary> m_pOwn;
    const PointSummary* m_pSummary = nullptr;
    PointTotals m_totals;
};

template <class IsBefore> std::size_t PointView::FirstNot(const IsBefore& isBefore) const noexcept {
    // The blocks that start before, by halves.
    std::size_t from = 0, to = m_totals.count / PointSummary::kBlock;
    const std::size_t blocks = to;
    while (from < to) {
        const std::size_t middle = from + (to - from) / 2;
        if (isBefore(m_pSummary->Node(0, middle).firstX)) {
            from = middle + 1;
        } else {
            to = middle;
        }
    }
    const std::size_t end = from < blocks ? from * PointSummary::kBlock : m_totals.count;
    std::size_t first = from > 0 ? (from - 1) * PointSummary::kBlock : 0;
    for (std::size_t i = first; i < end; ++i) {
        const double x = (*this)[i].GetXData();
        if (std::isnan(x)) continue;
        if (!isBefore(x)) break;
        first = i + 1;
    }
    return first;
}

}  // namespace qel
