#pragma once

#include "qellib10/graph/data_scale.h"

namespace qel {

/// Leads a pen from point to point of a series. Behind a point that has no place a new line begins.
template <class Pen> class Trail {
public:
    /// @param isSteps each value is held until the next one comes
    Trail(const DataScale& scale, bool isSteps, Pen& pen) : m_scale(scale), m_isSteps(isSteps), m_pen(pen) {}

    void Add(const CGraphData& data) {
        POINT to;
        const bool isPlaced = m_scale.Map(data, to);
        if (isPlaced && m_isDown) {
            if (m_isSteps) m_pen.LineTo({to.x, m_last.y});
            m_pen.LineTo(to);
        } else if (isPlaced) {
            m_pen.MoveTo(to);
        }
        m_isDown = isPlaced;
        m_last = to;
    }

private:
    const DataScale m_scale;
    const bool m_isSteps;
    Pen& m_pen;
    bool m_isDown = false;
    POINT m_last{0, 0};
};

}  // namespace qel
