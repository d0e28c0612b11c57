#include "qellib10/platform/drawing/raster.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace qel {
namespace {

// Products of two 33-bit distances: lines between any two 32-bit points are exact.
__extension__ using Wide = __int128;

}  // namespace

LineSteps::LineSteps(const POINT& from, const POINT& to, const CRect& clip) noexcept : m_x0(from.x), m_y0(from.y) {
    const std::int64_t dx = std::int64_t{to.x} - from.x, dy = std::int64_t{to.y} - from.y;
    m_isAlongX = std::abs(dx) >= std::abs(dy);
    m_length = std::abs(m_isAlongX ? dx : dy);
    m_rise = std::abs(m_isAlongX ? dy : dx);
    if (m_length == 0 || clip.IsRectEmpty()) return;  // a line of length 0 draws nothing
    m_stepMajor = (m_isAlongX ? dx : dy) > 0 ? 1 : -1;
    m_stepMinor = (m_isAlongX ? dy : dx) > 0 ? 1 : -1;
    m_bias = m_stepMinor > 0 ? 1 : 0;

    const std::int64_t major0 = m_isAlongX ? m_x0 : m_y0, minor0 = m_isAlongX ? m_y0 : m_x0;
    const std::int64_t majorLow = m_isAlongX ? clip.left : clip.top;
    const std::int64_t majorHigh = (m_isAlongX ? clip.right : clip.bottom) - std::int64_t{1};
    const std::int64_t minorLow = m_isAlongX ? clip.top : clip.left;
    const std::int64_t minorHigh = (m_isAlongX ? clip.bottom : clip.right) - std::int64_t{1};
    std::int64_t first = 0, last = m_length - 1;
    if (m_stepMajor > 0) {
        first = std::max(first, majorLow - major0);
        last = std::min(last, majorHigh - major0);
    } else {
        first = std::max(first, major0 - majorHigh);
        last = std::min(last, major0 - majorLow);
    }
    // How often the other coordinate must have moved, and how often it may have.
    const std::int64_t least = m_stepMinor > 0 ? minorLow - minor0 : minor0 - minorHigh;
    const std::int64_t most = m_stepMinor > 0 ? minorHigh - minor0 : minor0 - minorLow;
    if (most < 0) return;
    if (m_rise == 0) {
        if (least > 0) return;
    } else {
        // The first step at which it has moved `moves` times (at least once).
        const auto firstStep = [this](Wide moves) {
            return static_cast<std::int64_t>((2 * m_length * moves - m_length + m_bias + 2 * m_rise - 1) /
                                             (2 * m_rise));
        };
        if (least > 0) first = std::max(first, firstStep(least));
        if (most < m_rise) last = std::min(last, firstStep(most + 1) - 1);
    }
    m_first = first;
    m_last = last;
}

LineSteps::Walk LineSteps::Start() const noexcept {
    const Wide position = Wide{2} * m_rise * m_first + m_length - m_bias;
    const auto moves = static_cast<std::int64_t>(position / (2 * m_length));
    const auto error = static_cast<std::int64_t>(position % (2 * m_length));
    return m_isAlongX ? Walk{m_x0 + m_stepMajor * m_first, m_y0 + m_stepMinor * moves, error}
                      : Walk{m_x0 + m_stepMinor * moves, m_y0 + m_stepMajor * m_first, error};
}

std::vector<EllipseSpan> EllipseSpans(int width, int height) {
    std::vector<EllipseSpan> rows(static_cast<std::size_t>(height));
    for (int row = 0; row < height; ++row) {
        const double down = double(2 * row + 1 - height) / height;
        // Columns whose doubled distance from the middle is at most this.
        const int half = static_cast<int>(std::floor(width * std::sqrt(std::max(0.0, 1 - down * down)) + 1e-9));
        int left = (width - half) / 2;
        if (2 * left + 1 - width < -half) ++left;
        left = std::min(left, (width - 1) / 2);  // the tip is never empty
        rows[static_cast<std::size_t>(row)] = {left, width - 1 - left};
    }
    rows[static_cast<std::size_t>((height - 1) / 2)] = rows[static_cast<std::size_t>(height / 2)] = {0, width - 1};
    return rows;
}

}  // namespace qel
