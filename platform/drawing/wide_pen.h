#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "qellib10/platform/drawing/raster.h"

namespace qel {

/// Which pixels a line of a wide pen with round ends consists of: those whose middle lies within its outline, exactly
/// as Cairo fills it without antialiasing, in a small part of the time.
///
/// The outline has the line's two sides and, at each end, half of a polygon in place of the pen's circle, with so many
/// corners that it is nowhere more than a tenth of a pixel inside. All corners are whole 256ths of a pixel.
class WidePen {
public:
    /// The widest pen that is drawn here, in pixels.
    static constexpr int kWidest = 32;

    /// @param width 2 to kWidest
    explicit WidePen(int width);

    int Width() const noexcept { return m_nWidth; }

    /// Takes the memory for any line on it, so that none is needed to draw one.
    void Reserve(const Raster& raster) {
        m_aryRow.reserve(static_cast<std::size_t>(std::max(0, raster.bottom - raster.top)));
    }

    /// Draws the line, its last point included; a dot when both points are the same.
    /// @return false when nothing was drawn because Cairo's pixels may be others: it rounds where an outline leaves the
    ///   clip at the left or right, and places a million pixels away
    bool Draw(const Raster& raster, const POINT& from, const POINT& to, std::uint32_t value);

private:
    // 256ths of a pixel.
    struct Place {
        std::int64_t x, y;
        Place operator+(const Place& other) const noexcept { return {x + other.x, y + other.y}; }
    };
    // Where an edge of the polygon passes a row, both counted from the pixel that the pen is on.
    struct Crossing {
        int row, x;
    };
    // Pixels of a row, the right one not included.
    struct Span {
        std::int64_t left, right;
    };
    // Which of two corners, when the edge between them has the line's direction.
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
    std::vector<Place> m_aryCorner;       // from the pen's middle; by angle, from the x axis to the y axis
    std::vector<Crossing> m_aryCrossing;  // of the edge after each corner
    std::vector<std::size_t> m_aryFirst;  // the first of each edge, and the end
    std::vector<Span> m_aryRow;           // of the line at hand
    std::int64_t m_nTop = 0;              // where the first of these rows lies
};

}  // namespace qel
