#pragma once

#include <vector>

#include "qellib10/platform/drawing/geometry.h"

namespace qel {

/// Reduces a polyline to the points that a thin line needs: of a run in one column the first, lowest, highest and last,
/// in their original order. The other points are covered by what is drawn.
class ColumnReducer {
public:
    /// Appends the points to keep to @p points.
    void Add(const POINT& point, std::vector<CPoint>& points) {
        if (m_isRun && point.x == m_last.x) {
            if (point.y < m_low.at.y) m_low = {point, m_nCount};
            if (point.y > m_high.at.y) m_high = {point, m_nCount};
        } else {
            End(points);
            points.emplace_back(point);
            m_low = m_high = {point, 0};
            m_nCount = 0;
            m_isRun = true;
        }
        m_last = point;
        ++m_nCount;
    }
    /// Appends the rest of the run; the next point starts a new run.
    void End(std::vector<CPoint>& points) {
        if (!m_isRun) return;
        m_isRun = false;
        const bool isLowFirst = m_low.number < m_high.number;
        const Extreme& first = isLowFirst ? m_low : m_high;
        const Extreme& second = isLowFirst ? m_high : m_low;
        if (first.number > 0) points.push_back(first.at);
        if (second.number > 0 && second.number != first.number) points.push_back(second.at);
        if (m_nCount > 1 && !(points.back() == CPoint(m_last))) points.push_back(m_last);
    }

private:
    struct Extreme {
        CPoint at;
        long number = 0;
    };
    Extreme m_low, m_high;
    CPoint m_last;
    long m_nCount = 0;
    bool m_isRun = false;
};

}  // namespace qel
