#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "qellib10/platform/drawing/raster.h"

namespace qel {

/// The pixels of a line of a wide pen with round ends: those whose middle is inside its outline, exactly as Cairo fills
/// it without antialiasing, in a small part of the time.
///
/// The outline has the line's two sides and, at each end, half of a polygon instead of the pen's circle. The polygon
/// has so many corners that it is nowhere more than a tenth of a pixel inside the circle. All corners are whole 256ths
/// of a pixel.
class WidePen {
public:
    /// The widest pen that is drawn here, in pixels.
    static constexpr int kWidest = 32;

    /// @param width 2 to kWidest
    explicit WidePen(int width);

    int Width() const noexcept { return m_nWidth; }

    /// Reserves the memory for any line on it, so that drawing one needs none.
    void Reserve(const Raster& raster) {
        m_aryRow.reserve(static_cast<std::size_t>(std::max(0, raster.bottom - raster.top)));
    }

    /// Draws the line, its last point included; a dot if both points are the same.
    /// @return false if nothing was drawn because Cairo's pixels may differ: it rounds if an outline leaves the clip at
    /// the left or right, and if coordinates are about a million pixels
    bool Draw(const Raster& raster, const POINT& from, const POINT& to, std::uint32_t value);

private:
    // 256ths of a pixel.
    struct Place {
        std::int64_t x, y;
        Place operator+(const Place& other) const noexcept { return {x + other.x, y + other.y}; }
    };
    // Where an edge of the polygon crosses a row, both counted from the pixel under the pen.
    struct Crossing {
        int row, x;
    };
    // Pixels of a row, the right one excluded.
    struct Span {
        std::int64_t left, right;
    };
    // Which of two corners is used if the edge between them has the line's direction.
    enum class Tie { kEarlier, kLater };

    template <class Step>
    static void ForEachRow(Place from, Place to, std::int64_t low, std::int64_t high, const Step& step);
    void AddLine(const POINT& from, const POINT& to);
    void AddEnd(const POINT& at, const Place& outward, const Place& side);
    void AddCrossings(const POINT& at, std::size_t firstEdge, std::size_t endEdge);
    void AddEdge(const Place& from, const Place& to);
    void Widen(std::int64_t row, std::int64_t x) noexcept;
    std::size_t CornerTouched(const Place& direction, Tie tie) const noexcept;
    bool IsTouched(std::size_t corner, const Place& direction, Tie tie) const noexcept;
    std::size_t Next(std::size_t corner) const noexcept { return corner + 1 < m_aryCorner.size() ? corner + 1 : 0; }
    std::size_t Before(std::size_t corner) const noexcept { return (corner > 0 ? corner : m_aryCorner.size()) - 1; }
    Place MiddleOf(const POINT& at) const noexcept;

    int m_nWidth;
    std::vector<Place> m_aryCorner;       // from the pen's middle, by angle from the x axis to the y axis
    std::vector<Crossing> m_aryCrossing;  // of the edge after each corner
    std::vector<std::size_t> m_aryFirst;  // the first of each edge, and the end
    std::vector<Span> m_aryRow;           // of the current line
    std::int64_t m_nTop = 0;              // the first of these rows
};

}  // namespace qel
