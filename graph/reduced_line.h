#pragma once

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "qellib10/platform/drawing/shape.h"

namespace qel {

/// Where a line ends and the next one starts.
inline constexpr ShapePoint kLineGap = {std::numeric_limits<double>::quiet_NaN(),
                                        std::numeric_limits<double>::quiet_NaN()};
inline bool IsGap(const ShapePoint& place) { return std::isnan(place.x) || std::isnan(place.y); }

/// Collects a line column by column; corners at the same place are one.
class ReducedLine {
public:
    void AddColumn(const ShapePoint& first, const ShapePoint& earlier, const ShapePoint& later,
                   const ShapePoint& last) {
        for (const ShapePoint* place : {&first, &earlier, &later, &last}) Add(*place);
    }
    void Add(const ShapePoint& place) {
        if (m_line.empty() || m_line.back() != place) m_line.push_back(place);
    }
    void AddGap() {
        if (!m_line.empty() && !IsGap(m_line.back())) m_line.push_back(kLineGap);
    }
    std::vector<ShapePoint> Take() { return std::move(m_line); }

private:
    std::vector<ShapePoint> m_line;
};

}  // namespace qel
