#include "qellib10/graph/point_list.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <type_traits>
#include <utility>

namespace qel {
namespace {

constexpr std::size_t kFirstCapacity = 16;

static_assert(std::is_trivially_copyable_v<CGraphData>, "points are moved as bytes");

}  // namespace

void PointList::Free::operator()(CGraphData* points) const noexcept { std::free(points); }

PointList::PointList(const PointList& other) {
    if (other.m_nCount == 0) return;
    m_points.reset(static_cast<CGraphData*>(std::malloc(other.m_nCount * sizeof(CGraphData))));
    if (m_points == nullptr) throw std::bad_alloc();
    std::ranges::copy(other.Points(), m_points.get());
    m_nCount = m_nCapacity = other.m_nCount;
}

PointList& PointList::operator=(const PointList& other) {
    PointList copy(other);
    std::swap(m_points, copy.m_points);
    std::swap(m_nCount, copy.m_nCount);
    std::swap(m_nCapacity, copy.m_nCapacity);
    return *this;
}

void PointList::Clear() noexcept {
    m_points.reset();
    m_nCount = m_nCapacity = 0;
}

void PointList::Grow() {
    const std::size_t capacity = m_nCapacity == 0 ? kFirstCapacity : m_nCapacity + m_nCapacity / 2;
    void* const grown = std::realloc(m_points.get(), capacity * sizeof(CGraphData));
    if (grown == nullptr) throw std::bad_alloc();
    static_cast<void>(m_points.release());
    m_points.reset(static_cast<CGraphData*>(grown));
    m_nCapacity = capacity;
}

}  // namespace qel
