#pragma once

#include <mutex>
#include <span>
#include <utility>
#include <vector>

#include "qellib10/graph/chart.h"

namespace qel {

/// Points on their way from other threads to the thread of the window.
class ChartFeed {
public:
    void Add(std::size_t series, std::span<const CGraphData> points) {
        const std::scoped_lock guard(m_mutex);
        m_waiting.emplace_back(series, std::vector(points.begin(), points.end()));
    }
    /// @return whether there were any; those of series that do not exist are dropped
    bool MoveTo(Chart& chart) {
        decltype(m_waiting) taken;
        {
            const std::scoped_lock guard(m_mutex);
            taken.swap(m_waiting);
        }
        for (const auto& [series, points] : taken) {
            if (series >= chart.series.size()) continue;
            ChartSeries& to = chart.series[series];
            if (to.store != nullptr) {
                to.store->Append(points);
            } else {
                to.points.insert(to.points.end(), points.begin(), points.end());
            }
        }
        return !taken.empty();
    }

private:
    std::mutex m_mutex;
    std::vector<std::pair<std::size_t, std::vector<CGraphData>>> m_waiting;
};

}  // namespace qel
