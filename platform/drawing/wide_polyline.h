#pragma once

#include <algorithm>

#include "qellib10/platform/drawing/geometry.h"

namespace qel {

/// Draws a polyline of a wide pen with the same pixels as drawing each of its lines separately, in a fraction of the
/// time if many points are in one column: a run of them is drawn as one line from the highest to the lowest, with round
/// ends. Lines to another column are drawn as they are.
///
/// All lines have one colour, so their order does not matter. Lines are collected until the run ends.
class WidePolyline {
public:
    /// The next line starts here. Flush first.
    void MoveTo(const POINT& to) { Begin(to); }

    /// @param drawLine called with the ends of each line to be drawn now
    template <class DrawLine> void LineTo(const POINT& to, const DrawLine& drawLine) {
        if (to.x == m_at.x) {
            m_low = std::min(m_low, to.y);
            m_high = std::max(m_high, to.y);
            m_isRun = true;
            m_at = to;
            return;
        }
        const POINT from = m_at;
        Flush(drawLine);
        drawLine(from, to);
        Begin(to);
    }
    /// Draws what was collected; the polyline may continue.
    template <class DrawLine> void Flush(const DrawLine& drawLine) {
        if (m_isRun) drawLine(POINT{m_at.x, m_low}, POINT{m_at.x, m_high});
        Begin(m_at);
    }

private:
    void Begin(const POINT& at) {
        m_at = at;
        m_low = m_high = at.y;
        m_isRun = false;
    }

    POINT m_at{0, 0};
    int m_low = 0, m_high = 0;
    bool m_isRun = false;  // whether a line in the column is waiting to be drawn
};

}  // namespace qel
