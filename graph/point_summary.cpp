#include "qellib10/graph/point_summary.h"

#include <algorithm>
#include <cmath>

namespace qel {
namespace {

void Include(ValueRange& range, double value) {
    if (!std::isfinite(value)) return;
    range.low = std::min(range.low, value);
    range.high = std::max(range.high, value);
    if (value > 0) range.lowestAboveZero = std::min(range.lowestAboveZero, value);
}

// The lowest and highest of some values, and whether all are numbers.
struct Ends {
    double low, high;
    bool areNumbers;
};

template <class Low, class High> Ends EndsOf(const Low& lowOf, const High& highOf) {
    constexpr std::size_t kLanes = 4;  // that do not wait for each other
    std::array<double, kLanes> lows{}, highs{};
    unsigned isNone = 0;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        double low = lowOf(lane), high = highOf(lane);
        isNone |= static_cast<unsigned>(low != low);
        for (std::size_t i = lane + kLanes; i < PointSummary::kBlock; i += kLanes) {
            const double nextLow = lowOf(i), nextHigh = highOf(i);
            low = nextLow < low ? nextLow : low;
            high = nextHigh > high ? nextHigh : high;
            isNone |= static_cast<unsigned>(nextLow != nextLow);
        }
        lows[lane] = low;
        highs[lane] = high;
    }
    return {std::ranges::min(lows), std::ranges::max(highs), isNone == 0};
}

Ends EndsOfY(const CGraphData* points) {
    const auto y = [points](std::size_t point) { return points[point].GetYData(); };
    return EndsOf(y, y);
}

// Of a block whose lowest and highest value are finite.
void IncludeBlock(ValueRange& range, double low, double high, const CGraphData* points,
                  const double& (CGraphData::*value)() const) {
    range.low = std::min(range.low, low);
    range.high = std::max(range.high, high);
    if (low > 0) range.lowestAboveZero = std::min(range.lowestAboveZero, low);
    if (low > 0 || !(high > 0)) return;
    double lowest = range.lowestAboveZero;
    for (std::size_t i = 0; i < PointSummary::kBlock; ++i) {
        const double each = (points[i].*value)();
        lowest = each > 0 && each < lowest ? each : lowest;
    }
    range.lowestAboveZero = lowest;
}

}  // namespace

void PointSummary::Add(std::span<const CGraphData> next) {
    while (!next.empty()) {
        const bool isWhole = m_totals.count % kBlock == 0 && next.size() >= kBlock && AddWhole(next.data());
        if (!isWhole) AddOne(next.front());
        next = next.subspan(isWhole ? kBlock : 1);
    }
}

void PointSummary::AddOne(const CGraphData& point) {
    const double x = point.GetXData();
    Include(m_totals.x, x);
    Include(m_totals.y, point.GetYData());
    if (!std::isnan(x)) {
        m_totals.isRising = m_totals.isRising && x >= m_totals.lastX && std::isfinite(x);
        m_totals.lastX = x;
    }
    if (m_totals.count % kBlock == 0 || std::isnan(m_firstX)) m_firstX = x;
    if (++m_totals.count % kBlock != 0 || !m_totals.isRising) return;
    const CGraphData* const block = &point + 1 - kBlock;
    Ends ends = EndsOfY(block);
    for (std::size_t i = 0; i < kBlock; ++i) ends.areNumbers = ends.areNumbers && !std::isnan(block[i].GetXData());
    AddBlock({std::isnan(m_firstX) ? m_totals.lastX : m_firstX, ends.low, ends.high}, ends.areNumbers);
}

// The same for a block of finite numbers that rise, in a fraction of the time.
bool PointSummary::AddWhole(const CGraphData* points) {
    if (!m_totals.isRising) return false;
    const double first = points[0].GetXData(), last = points[kBlock - 1].GetXData();
    unsigned rises = static_cast<unsigned>(first >= m_totals.lastX);
    for (std::size_t i = 1; i < kBlock; ++i)
        rises += static_cast<unsigned>(points[i].GetXData() >= points[i - 1].GetXData());
    const Ends ends = EndsOfY(points);
    const bool areFinite = std::isfinite(first) && std::isfinite(last) && ends.areNumbers && std::isfinite(ends.low) &&
                           std::isfinite(ends.high);
    if (rises != kBlock || !areFinite) return false;
    IncludeBlock(m_totals.x, first, last, points, &CGraphData::GetXData);
    IncludeBlock(m_totals.y, ends.low, ends.high, points, &CGraphData::GetYData);
    m_totals.lastX = last;
    m_totals.count += kBlock;
    AddBlock({first, ends.low, ends.high}, true);
    return true;
}

void PointSummary::AddBlock(PointNode node, bool areNumbers) {
    std::size_t i = m_totals.count / kBlock - 1;
    for (std::size_t level = 0;; ++level) {
        if (!areNumbers) node.low = node.high = std::numeric_limits<double>::quiet_NaN();
        m_levels[level].Set(i, node);
        if ((i + 1) % kBlock != 0 || level + 1 == kLevels) return;
        const PointNode* const below = &m_levels[level][i + 1 - kBlock];
        const Ends ends = EndsOf([below](std::size_t child) { return below[child].low; },
                                 [below](std::size_t child) { return below[child].high; });
        node = {below[0].firstX, ends.low, ends.high};
        areNumbers = ends.areNumbers;
        i /= kBlock;
    }
}

std::size_t PointSummary::Reserved() const noexcept {
    std::size_t bytes = 0, nodes = m_totals.count / kBlock;
    for (std::size_t level = 0; level < kLevels && nodes > 0; ++level, nodes /= kBlock)
        bytes += GrowingArray<PointNode>::Reserved(nodes);
    return bytes;
}

}  // namespace qel
