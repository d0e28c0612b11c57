#pragma once

#include <algorithm>

#include "qellib10/platform/drawing/geometry.h"

namespace qel {

/// Passes a polyline on with at most five points a column, and yet the pixels of the whole of it.
///
/// Points that follow one another in one column draw every pixel between the highest and the lowest of them and nothing
/// else; a line leaves out its last point, so of the very last point only whether another line reaches it too. So of
/// such a run the first point counts, the last, and the one before it, which the last line comes from, and the highest
/// and lowest before that line. Lines without length draw nothing and are dropped.
///
/// This holds for thin solid pens, on surfaces where a unit is a pixel.
template <class Pen> class CurveReducer {
public:
    explicit CurveReducer(Pen& pen) : m_pen(pen) {}
    ~CurveReducer() { EndRun(); }
    CurveReducer(const CurveReducer&) = delete;
    CurveReducer& operator=(const CurveReducer&) = delete;

    void MoveTo(const POINT& to) {
        EndRun();
        m_pen.MoveTo(to);
        Begin(to);
    }
    void LineTo(const POINT& to) {
        if (to.x != m_x) {
            EndRun();
            m_pen.LineTo(to);
            Begin(to);
        } else if (to.y != m_lastY) {
            m_low = std::min(m_low, m_lastY);
            m_high = std::max(m_high, m_lastY);
            m_beforeY = m_lastY;
            m_lastY = to.y;
        }
    }

private:
    void Begin(const POINT& at) {
        m_x = at.x;
        m_firstY = m_low = m_high = m_beforeY = m_lastY = at.y;
    }
    void EndRun() {
        int y = m_firstY;
        for (const int next : {m_low, m_high, m_beforeY, m_lastY}) {
            if (next != y) m_pen.LineTo({m_x, next});
            y = next;
        }
    }

    Pen& m_pen;
    int m_x = 0;
    int m_firstY = 0;
    int m_low = 0, m_high = 0;  // of all points but the last
    int m_beforeY = 0, m_lastY = 0;
};

}  // namespace qel
