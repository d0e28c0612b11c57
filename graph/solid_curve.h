#pragma once

#include <algorithm>
#include <initializer_list>
#include <span>

#include "qellib10/graph/column_window.h"
#include "qellib10/graph/data_scale.h"

namespace qel {

/// Draws a series with a pen like Trail, but with at most five points per column and still the pixels of all points.
///
/// A run of points in one column draws every pixel between its highest and its lowest point and nothing else. So of a
/// run only the first, last, highest and lowest points are needed. The run at the end of a line is different, because a
/// thin line does not draw its last point: that pixel is drawn only if another point of the run reaches it, or a line
/// crosses it. There, highest and lowest are taken of all points before the last one that differs from the point before
/// it; and the pen leaves both of them again. A wide pen has round ends around this range, including its last point, so
/// the same points are needed; it draws a dot if all points of a line are the same.
///
/// For solid pens in map mode MM_TEXT: thin ones on any surface, wide ones on pictures, where edges are not smoothed.
template <class Pen> class SolidCurve {
public:
    /// @param isSteps each value is held until the next one comes
    SolidCurve(const DataScale& scale, bool isSteps, Pen& pen) : m_scale(scale), m_isSteps(isSteps), m_pen(pen) {}

    void Draw(std::span<const CGraphData> data) {
        m_pEnd = data.data() + data.size();
        for (const CGraphData* at = data.data(); at != m_pEnd;) {
            POINT first;
            at = m_scale.Map(*at, first) ? DrawLine(at, first) : at + 1;
        }
    }

private:
    struct Run {
        const CGraphData* end;  // the first point after the run
        bool isLast;            // of its line
        POINT next;             // the position of that point, unless this is the last run
        double low, high;
    };

    // @return the end of the line: a gap, or the end of the series
    const CGraphData* DrawLine(const CGraphData* at, POINT first) {
        m_pen.MoveTo(first);
        for (;;) {
            const Run run = FindRun(at, first.x);
            if (run.isLast) {
                DrawLastRun({at, run.end}, first);
                return run.end;
            }
            int y = first.y;
            if (run.end - at > 1) {
                y = m_scale.MapY(run.end[-1].GetYData());
                DrawUpright(first, {m_scale.MapY(run.low), m_scale.MapY(run.high), y});
            }
            if (m_isSteps) m_pen.LineTo({run.next.x, y});
            m_pen.LineTo(run.next);
            first = run.next;
            at = run.end;
        }
    }

    Run FindRun(const CGraphData* begin, int column) const {
        // From this number of points in the column on, a window pays off.
        constexpr std::ptrdiff_t kFew = 6;
        Run run{begin + 1, false, {0, 0}, begin->GetYData(), begin->GetYData()};
        for (; run.end != m_pEnd; ++run.end) {
            if (run.end - begin == kFew) {
                PassWindow(ColumnWindow(m_scale, column - m_scale.edge.x), column, run);
                break;
            }
            if (!Take(column, run)) break;
        }
        run.isLast |= run.end == m_pEnd;
        return run;
    }
    void PassWindow(const ColumnWindow& window, int column, Run& run) const {
        for (; run.end != m_pEnd; ++run.end) {
            run.end = window.Pass({run.end, m_pEnd}, run.low, run.high);
            if (run.end == m_pEnd || !Take(column, run)) return;
        }
    }
    // Adds the point at the run's end. @return false if it is not in the run
    bool Take(int column, Run& run) const {
        run.isLast = !m_scale.Map(*run.end, run.next);
        if (run.isLast || run.next.x != column) return false;
        run.low = std::min(run.low, run.end->GetYData());
        run.high = std::max(run.high, run.end->GetYData());
        return true;
    }

    void DrawLastRun(std::span<const CGraphData> points, const POINT& first) {
        int low = first.y, high = first.y, last = first.y;
        for (const CGraphData& point : points) {
            const int y = m_scale.MapY(point.GetYData());
            if (y == last) continue;
            low = std::min(low, last);
            high = std::max(high, last);
            last = y;
        }
        if (points.size() > 1 && low == high && low == last) m_pen.LineTo(first);
        DrawUpright(first, {low, high, low, last});
    }
    void DrawUpright(const POINT& from, std::initializer_list<int> stops) {
        int y = from.y;
        for (const int next : stops) {
            if (next != y) m_pen.LineTo({from.x, next});
            y = next;
        }
    }

    const DataScale m_scale;
    const bool m_isSteps;
    Pen& m_pen;
    const CGraphData* m_pEnd = nullptr;
};

}  // namespace qel
