#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "qellib10/graph/graph_data.h"
#include "qellib10/platform/export.h"

namespace qel {

/// The points of a live curve: a thread that measures appends them while charts are drawn, and nobody waits for the
/// other. Points are never moved, copied or taken away, so that a curve may grow to some hundred million points without
/// a pause.
///
/// The store keeps what its points reach, of each 16, 256, 4096 ... of them. As long as x never falls, a chart is drawn
/// from that, in a time that hardly depends on the number of points. A point whose x or y is not a number is a gap.
/// Where x falls, or is infinite, all points are read for each drawing, as they are of a series without a store.
///
/// @code
/// const auto measured = std::make_shared<qel::PointStore>();
/// qel::Chart chart;
/// chart.series.push_back({.name = "Potential", .store = measured});
/// measured->Append(CGraphData(0.1, 212.4));  // from any thread, at any time
/// @endcode
///
/// A point takes 16 bytes, and what the store keeps of it 1.6.
class QELLIB10_API PointStore {
public:
    PointStore();
    ~PointStore();
    PointStore(const PointStore&) = delete;
    PointStore& operator=(const PointStore&) = delete;

    /// Adds points after all others; several threads may do that, and those of one call remain together.
    /// @throws std::bad_alloc; the store has the points of before then, and takes no more
    void Append(std::span<const CGraphData> points);
    void Append(const CGraphData& point) { Append(std::span(&point, 1)); }

    /// How many points there are; all of them can be read.
    std::size_t Count() const noexcept;
    /// @param point below Count()
    CGraphData At(std::size_t point) const noexcept;
    /// Bytes of memory that are reserved, up to twice of what is used so far.
    std::size_t Reserved() const noexcept;

private:
    friend class PointView;
    class Parts;
    std::unique_ptr<Parts> m_pParts;
};

}  // namespace qel
