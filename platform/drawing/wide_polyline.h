#pragma once

#include <algorithm>

#include "qellib10/platform/drawing/geometry.h"

namespace qel {

/// Leads a wide pen along a polyline with the pixels that drawing each of its lines by itself gives, in a fraction of
/// the time where many points fall into one column: a run of them draws what one line from the highest to the lowest
/// draws, its round ends included. Lines to another column are drawn as they are.
///
/// Every line draws in one colour, so their order does not matter. Lines are held back until the run ends.
class WidePolyline {
public:
    /// The next line begins here. Nothing may be held back.
    void MoveTo(const POINT& to) { Begin(to); }

    /// @param drawLine called with the ends of each line that is to be drawn now
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
    /// Draws what is held back; the polyline may go on.
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
    bool m_isRun = false;  // whether a line in the column is held back
};

}  // namespace qel
