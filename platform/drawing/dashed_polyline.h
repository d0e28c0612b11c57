#pragma once

#include <cstdint>
#include <span>

#include "qellib10/platform/drawing/ink.h"
#include "qellib10/platform/drawing/raster.h"

namespace qel {

/// Draws a polyline of thin dashed lines. The pattern runs on from line to line, a step of it for each step along a
/// line's longer axis; on an opaque background its gaps are drawn too.
///
/// Points in one column, many of them, have the pixels of one line after the other in a fraction of the time. On an
/// opaque background the last line that passes a pixel gives its colour: they are drawn from the last one back, each
/// where no later one passed. On a transparent one a pixel that has the pen's colour keeps it: rows that are full are
/// passed over.
class DashedPolyline {
public:
    DashedPolyline() = default;
    /// @param ink has a dashed pen
    /// @param color, gap as pixels: of the pen, and of the background
    DashedPolyline(const Raster& raster, const Ink& ink, std::uint32_t color, std::uint32_t gap);

    /// The pattern starts again.
    void MoveTo(const POINT& to) noexcept {
        m_at = to;
        m_nPhase = 0;
    }
    void LineTo(const POINT& to);
    void LinesTo(std::span<const POINT> points);

private:
    // Both included.
    struct Rows {
        std::int64_t low, high;
        bool IsEmpty() const noexcept { return low > high; }
    };
    // A line up or down, its last row left out.
    struct Upright {
        Upright(LONG start, LONG end) noexcept;
        std::int64_t from, steps;
        Rows rows;
    };

    void DrawColumn(std::span<const POINT> points);
    // Both return the steps to the last point.
    std::int64_t DrawBackward(std::span<const POINT> points);
    std::int64_t DrawOutsideFull(std::span<const POINT> points);
    void DrawOutside(const Rows& rows, const Upright& line, std::int64_t phase);
    void DrawRows(Rows rows, std::int64_t from, std::int64_t phase);
    void WidenFull(Rows& full, std::int64_t row) const;
    void Put(std::uint32_t& pixel, int phase) const noexcept {
        if ((m_nDashes >> phase & 1) != 0) {
            pixel = m_color;
        } else if (m_isOpaque) {
            pixel = m_gap;
        }
    }

    Raster m_raster;
    std::uint32_t m_color = 0, m_gap = 0;
    bool m_isOpaque = true;
    std::uint32_t m_nDashes = 1;  // the pattern, a bit for each step
    int m_nPeriod = 1;            // steps of it
    POINT m_at{0, 0};
    std::int64_t m_nPhase = 0;  // of the next step, below the period
};

}  // namespace qel
