#pragma once

#include <cstdint>
#include <span>

#include "qellib10/platform/drawing/ink.h"
#include "qellib10/platform/drawing/raster.h"

namespace qel {

/// Draws a polyline of thin dashed lines. The pattern continues from line to line, one step of it for each step along a
/// line's longer axis; on an opaque background its gaps are drawn too.
///
/// Many points in one column give the same pixels as one line after the other, in a fraction of the time. On an opaque
/// background the last line through a pixel sets its colour, so lines are drawn from the last one back, each only where
/// no later one passed. On a transparent background a pixel in the pen's colour stays, so full rows are skipped.
class DashedPolyline {
public:
    DashedPolyline() = default;
    /// @param ink has a dashed pen
    /// @param color, gap the pen's and the background's colour, as pixels
    DashedPolyline(const Raster& raster, const Ink& ink, std::uint32_t color, std::uint32_t gap);

    /// The pattern starts again.
    void MoveTo(const POINT& to) noexcept {
        m_at = to;
        m_nPhase = 0;
    }
    void LineTo(const POINT& to);
    void LinesTo(std::span<const POINT> points);

private:
    // Both rows are included.
    struct Rows {
        std::int64_t low, high;
        bool IsEmpty() const noexcept { return low > high; }
    };
    // A vertical line, without its last row.
    struct Upright {
        Upright(LONG start, LONG end) noexcept;
        std::int64_t from, steps;
        Rows rows;
    };

    void DrawColumn(std::span<const POINT> points);
    // Both return the number of steps to the last point.
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
    std::uint32_t m_nDashes = 1;  // the pattern, one bit per step
    int m_nPeriod = 1;            // its number of steps
    POINT m_at{0, 0};
    std::int64_t m_nPhase = 0;  // of the next step, below the period
};

}  // namespace qel
