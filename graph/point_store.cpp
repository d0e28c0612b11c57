#include "qellib10/graph/point_store.h"

#include <atomic>
#include <mutex>
#include <new>

#include "qellib10/graph/point_view.h"

namespace qel {

class PointStore::Parts {
public:
    void Append(std::span<const CGraphData> added) {
        const std::scoped_lock writing(m_writing);
        if (m_isFull) throw std::bad_alloc();
        m_isFull = true;  // if the memory is not enough for all of them
        std::size_t count = m_summary.Totals().count;
        const std::size_t first = count;
        for (const CGraphData& point : added) m_points.Set(count++, point);
        for (std::size_t i = first; i < count;) {
            const std::span<const CGraphData> next = m_points.From(i, count);
            m_summary.Add(next);
            i += next.size();
        }
        m_isFull = false;
        const std::scoped_lock publishing(m_publishing);
        m_published = m_summary.Totals();
        m_nCount.store(count, std::memory_order_release);
    }

    std::size_t Count() const noexcept { return m_nCount.load(std::memory_order_acquire); }
    PointTotals Totals() const {
        const std::scoped_lock publishing(m_publishing);
        return m_published;
    }
    const GrowingArray<CGraphData>& Points() const noexcept { return m_points; }
    const PointSummary& Summary() const noexcept { return m_summary; }
    std::size_t Reserved() const {
        const std::scoped_lock writing(m_writing);
        return GrowingArray<CGraphData>::Reserved(m_summary.Totals().count) + m_summary.Reserved();
    }

private:
    mutable std::mutex m_writing;  // of what follows; readers use what was published
    GrowingArray<CGraphData> m_points;
    PointSummary m_summary;
    bool m_isFull = false;

    mutable std::mutex m_publishing;  // never for longer than a copy of the totals
    PointTotals m_published;
    std::atomic<std::size_t> m_nCount{0};
};

PointStore::PointStore() : m_pParts(std::make_unique<Parts>()) {}
PointStore::~PointStore() = default;

void PointStore::Append(std::span<const CGraphData> points) { m_pParts->Append(points); }
std::size_t PointStore::Count() const noexcept { return m_pParts->Count(); }
CGraphData PointStore::At(std::size_t point) const noexcept { return m_pParts->Points()[point]; }
std::size_t PointStore::Reserved() const noexcept { return m_pParts->Reserved(); }

PointView::PointView(const PointStore& store)
    : m_pStored(&store.m_pParts->Points()),
      m_pSummary(&store.m_pParts->Summary()),
      m_totals(store.m_pParts->Totals()) {}

}  // namespace qel
