#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "qellib10/platform/drawing/raster.h"
#include "qellib10/platform/drawing/shape.h"

namespace qel {

/// Draws lines with smooth edges and round ends and joins, like Cairo's, in a time that depends on the number of
/// corners and on the pixels, not on how often the line passes over each: a measured curve has thousands of corners in
/// a pixel.
///
/// The picture is divided into sixteenths of a column. In each of them a line that only goes to the right or only to
/// the left covers one interval; the disc of the pen widens it, and the parts of the pixels that the intervals cover
/// are their shades. So no corner is left out, and none counts twice. Parts of a line that go back are drawn apart, and
/// pixels that both cover have the darker shade.
class SmoothCurve {
public:
    static constexpr double kThinnest = 0.25, kWidest = 64;  // device units

    /// @param raster the pixels within the clip
    /// @param width of the line, within the limits
    SmoothCurve(const Raster& raster, double width);

    void Draw(std::span<const ShapePoint> corners, COLORREF color, double opacity);

private:
    static constexpr int kTile = 16;  // columns whose shades are next to each other

    struct Rows {
        int begin = 0, end = 0;
    };

    void AddRun(std::span<const ShapePoint> run);
    void AddSegment(ShapePoint from, ShapePoint to);
    void Widen();
    void Shade();
    Rows ShadeColumn(int column, int left, int right);
    void FillWhole(int tile, const std::array<Rows, kTile>& whole);
    void Touch(int tile, Rows rows);
    std::uint8_t* ShadesOf(int tile) { return m_shade.get() + static_cast<std::ptrdiff_t>(tile) * kTile * m_nRows; }
    void Blend(COLORREF color, double opacity);

    const Raster m_raster;
    const int m_nReach;                        // of the pen, in parts of a column
    const int m_nColumns, m_nRows;             // of the clip
    const int m_nOrigin;                       // the leftmost part, from the left edge of the picture
    const int m_nParts;                        // of all columns, and those beside them that the pen reaches from
    std::vector<float> m_half;                 // the pen's half height at each distance
    std::vector<float> m_low, m_high;          // of the line in each part
    std::vector<float> m_wideLow, m_wideHigh;  // with the pen
    int m_nFirst, m_nLast;                     // parts that the run has touched
    std::vector<float> m_change, m_part;       // of a column: rows that are wholly covered from here on, and shares
    std::unique_ptr<std::uint8_t[]> m_shade;   // of each pixel: tile by tile, in each row by row
    std::vector<Rows> m_touched;               // of each tile: the rows that have shades; others are not set
};

}  // namespace qel
