#pragma once

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "qellib10/platform/drawing/geometry.h"

namespace qel {

/// Pixels that can be written: whole rows of an image, limited to a clip inside it (right and bottom exclusive). A word
/// is a pixel 0x00RRGGBB or, in a mask, whatever its drawer uses it for.
template <class Pixel> struct BasicRaster {
    Pixel* pixels = nullptr;
    std::ptrdiff_t stride = 0;  ///< in pixels
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    Pixel* At(int x, int y) const noexcept { return pixels + y * stride + x; }
    bool Contains(POINT at) const noexcept { return at.x >= left && at.x < right && at.y >= top && at.y < bottom; }
    /// The intersection of a box and the clip; empty if they do not overlap.
    CRect Clipped(const CRect& box) const noexcept {
        CRect common;
        common.IntersectRect(box, CRect(left, top, right, bottom));
        return common;
    }
};
using Raster = BasicRaster<std::uint32_t>;

/// The pixels of a thin line from one point up to, but not including, another.
///
/// One step along the longer axis (x if both are equal) per pixel; the other coordinate is the exact value rounded to
/// nearest, a tie to the smaller coordinate whatever the direction. Clipping changes no pixel: the steps inside the
/// clip are computed, not walked. Coordinates may be any 32-bit numbers.
class LineSteps {
public:
    LineSteps(const POINT& from, const POINT& to, const CRect& clip) noexcept;

    bool IsEmpty() const noexcept { return m_first > m_last; }
    /// number of the first step inside, counted from 0 at the start
    std::int64_t First() const noexcept { return m_first; }
    std::int64_t Last() const noexcept { return m_last; }
    /// Calls @p plot with x, y and the number of each step.
    template <class Plot> void ForEach(Plot&& plot) const;
    /// The same, as fast as pixels can be written: sets each to @p value.
    template <class Pixel> void Write(const BasicRaster<Pixel>& raster, Pixel value) const;

private:
    struct Walk {
        std::int64_t x, y, error;
    };
    Walk Start() const noexcept;

    std::int64_t m_x0, m_y0;
    std::int64_t m_length = 0, m_rise = 0;  // along the longer and the other axis, not negative
    std::int64_t m_bias = 0;                // 1 if a tie goes backward
    std::int64_t m_first = 0, m_last = -1;
    bool m_isAlongX = true;
    int m_stepMajor = 1, m_stepMinor = 1;
};

template <class Plot> void LineSteps::ForEach(Plot&& plot) const {
    if (IsEmpty()) return;
    Walk at = Start();
    for (std::int64_t step = m_first;; ++step) {
        plot(static_cast<int>(at.x), static_cast<int>(at.y), step);
        if (step == m_last) return;
        (m_isAlongX ? at.x : at.y) += m_stepMajor;
        if ((at.error += 2 * m_rise) >= 2 * m_length) {
            at.error -= 2 * m_length;
            (m_isAlongX ? at.y : at.x) += m_stepMinor;
        }
    }
}

/// How the pixels of a line follow each other: what a step along the longer axis adds, what one across adds, and how
/// the error grows from step to step.
template <class Pixel, class Number> struct PixelWalk {
    Pixel* pixel;
    std::ptrdiff_t along, across;
    Number length, rise, error;

    void Write(Number steps, Pixel value) {
        for (; steps > 0; --steps) {
            *pixel = value;
            pixel += along;
            if ((error += 2 * rise) >= 2 * length) {
                error -= 2 * length;
                pixel += across;
            }
        }
    }
};

template <class Pixel> void LineSteps::Write(const BasicRaster<Pixel>& raster, Pixel value) const {
    if (IsEmpty()) return;
    const Walk at = Start();
    PixelWalk<Pixel, std::int64_t>{raster.At(static_cast<int>(at.x), static_cast<int>(at.y)),
                                   m_isAlongX ? m_stepMajor : m_stepMajor * raster.stride,
                                   m_isAlongX ? m_stepMinor * raster.stride : m_stepMinor,
                                   m_length,
                                   m_rise,
                                   at.error}
        .Write(m_last - m_first + 1, value);
}

/// The same for a line with both ends in the clip, as nearly all have: nothing needs to be computed first.
template <class Pixel> void DrawThinLineInside(const BasicRaster<Pixel>& raster, POINT from, POINT to, Pixel value) {
    const int dx = to.x - from.x, dy = to.y - from.y;
    const int width = std::abs(dx), height = std::abs(dy);
    const std::ptrdiff_t right = dx > 0 ? 1 : -1, down = dy > 0 ? raster.stride : -raster.stride;
    Pixel* const pixel = raster.At(from.x, from.y);
    if (width >= height) {
        PixelWalk<Pixel, int>{pixel, right, down, width, height, width - (dy > 0)}.Write(width, value);
    } else {
        PixelWalk<Pixel, int>{pixel, down, right, height, width, height - (dx > 0)}.Write(height, value);
    }
}

/// Draws a thin solid line without its last pixel.
template <class Pixel> void DrawThinLine(const BasicRaster<Pixel>& raster, POINT from, POINT to, Pixel value) {
    if (raster.Contains(from) && raster.Contains(to)) {
        DrawThinLineInside(raster, from, to, value);
    } else {
        LineSteps(from, to, {raster.left, raster.top, raster.right, raster.bottom}).Write(raster, value);
    }
}

template <class Pixel> void FillBox(const BasicRaster<Pixel>& raster, const CRect& box, Pixel value) {
    const CRect inside = raster.Clipped(box);
    for (int y = inside.top; y < inside.bottom; ++y) {
        Pixel* const row = raster.At(0, y);
        for (int x = inside.left; x < inside.right; ++x) row[x] = value;
    }
}

/// The columns of one row of an ellipse, both included.
struct EllipseSpan {
    int left;
    int right;
};
/// The rows of the ellipse inscribed in @p width x @p height pixels, symmetric on both axes, touching all four sides;
/// each side is at least 1.
std::vector<EllipseSpan> EllipseSpans(int width, int height);

}  // namespace qel
