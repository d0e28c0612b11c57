#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "qellib10/graph/column_window.h"
#include "qellib10/graph/data_scale.h"

namespace qel {

/// Draws a pen from point to point of a series. After a point without a position a new line starts.
template <class Pen> class Trail {
public:
    /// @param isSteps each value is held until the next one comes
    Trail(const DataScale& scale, bool isSteps, Pen& pen) : m_scale(scale), m_isSteps(isSteps), m_pen(pen) {}

    /// All points of a series; if many are in one column, only their y values are computed.
    void Draw(std::span<const CGraphData> data) {
        // From this number of points in the column on, a window pays off.
        constexpr int kFew = 32;
        int count = 0;
        while (!data.empty()) {
            const POINT before = m_last;
            Add(data.front());
            data = data.subspan(1);
            count = m_isDown && m_last.x == before.x ? count + 1 : 0;
            if (count < kFew) continue;
            data = DrawColumn(data);
            count = 0;
        }
    }
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
    // @return the points after those in the column's window
    std::span<const CGraphData> DrawColumn(std::span<const CGraphData> data) {
        const ColumnWindow window(m_scale, m_last.x - m_scale.edge.x);
        const std::size_t stops = m_isSteps ? 2 : 1;  // of a point
        for (;;) {
            const std::span<POINT> space = m_pen.FreeSpace();
            const std::size_t most = std::min(data.size(), space.size() / stops);
            const std::size_t count = window.Map(data.first(most), space.data());
            if (count > 0) {
                const POINT last = space[count - 1];
                if (m_isSteps) InsertSteps(space.data(), count);
                m_pen.Take(count * stops);
                m_last = last;
            }
            data = data.subspan(count);
            if (count < most || data.empty()) return data;
        }
    }
    // Makes two of each point; the first one has the value before it.
    void InsertSteps(POINT* points, std::size_t count) const {
        for (std::size_t i = count; i-- > 0;) {
            const POINT to = points[i];
            points[2 * i + 1] = to;
            points[2 * i] = {to.x, i > 0 ? points[i - 1].y : m_last.y};
        }
    }

    const DataScale m_scale;
    const bool m_isSteps;
    Pen& m_pen;
    bool m_isDown = false;
    POINT m_last{0, 0};
};

}  // namespace qel
