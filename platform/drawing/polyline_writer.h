#pragma once

#include <algorithm>

#include "qellib10/platform/drawing/raster.h"
#include "qellib10/platform/drawing/steep_line.h"

namespace qel {

/// Draws a polyline of thin solid lines with the same pixels as drawing each line separately, in a fraction of the time
/// if many points are in one column. A run of points in a column colours every pixel from the lowest to the highest and
/// no other, so it becomes one vertical line. Only the run at the end of the polyline is different: its last pixel is
/// not drawn if only the last point reached it.
template <class Pixel> class BasicPolylineWriter {
public:
    BasicPolylineWriter(const BasicRaster<Pixel>& raster, Pixel value) : m_raster(raster), m_value(value) {}

    void MoveTo(const POINT& to) {
        Flush();
        Begin(to);
    }
    void LineTo(const POINT& to) {
        if (to.x != m_at.x) {
            DrawRun(false);
            m_from = m_at;
            Begin(to);
            m_isEntered = true;
            return;
        }
        if (to.y == m_at.y) return;  // a line of length 0 does not even touch its point
        ++m_nIndex;
        if (to.y < m_low) {
            m_low = to.y;
            m_lowIndex = m_nIndex;
        }
        if (to.y > m_high) {
            m_high = to.y;
            m_highIndex = m_nIndex;
        }
        m_at = to;
    }
    /// Draws what was collected; the polyline may continue.
    void Flush() {
        DrawRun(true);
        Begin(m_at);
    }

private:
    void Begin(const POINT& at) {
        m_at = m_entry = at;
        m_low = m_high = at.y;
        m_nIndex = m_lowIndex = m_highIndex = 0;
        m_isEntered = false;
    }
    void DrawRun(bool isEnd) {
        if (m_isEntered) DrawEntry();
        if (m_low == m_high) return;
        if (m_at.x < m_raster.left || m_at.x >= m_raster.right) return;
        // The last point's row is left out if only the last line reached it.
        const bool isLowOut = isEnd && m_lowIndex == m_nIndex;
        const bool isHighOut = isEnd && !isLowOut && m_highIndex == m_nIndex;
        const std::int64_t first = std::max<std::int64_t>(m_raster.top, std::int64_t{m_low} + isLowOut);
        const std::int64_t last = std::min<std::int64_t>(m_raster.bottom - 1, std::int64_t{m_high} - isHighOut);
        for (std::int64_t y = first; y <= last; ++y) *m_raster.At(m_at.x, static_cast<int>(y)) = m_value;
    }

    void DrawEntry() {
        if (m_raster.Contains(m_from) && m_raster.Contains(m_entry) && IsSteep(m_from, m_entry)) {
            DrawSteepLine(m_raster, m_from, m_entry, m_value);
        } else {
            DrawThinLine(m_raster, m_from, m_entry, m_value);
        }
    }

    BasicRaster<Pixel> m_raster;
    Pixel m_value;
    POINT m_at{0, 0};
    POINT m_entry{0, 0};  // where the run was entered
    POINT m_from{0, 0};   // from where
    int m_low = 0, m_high = 0;
    std::int64_t m_nIndex = 0, m_lowIndex = 0, m_highIndex = 0;
    bool m_isEntered = false;
};
using PolylineWriter = BasicPolylineWriter<std::uint32_t>;

}  // namespace qel
