#include "qellib10/evaluation/reading_strays.h"

#include <cmath>
#include <numbers>

namespace qel {
namespace {

constexpr double kStrayNoise = 6;  // deviations of a difference
constexpr double kStrayMoves = 3;
constexpr double kEndMoves = 10;
constexpr std::size_t kEndPoints = 4;
constexpr std::size_t kLongestStray = 3;
constexpr double kShoulder = 3;  // times what is further out

class StrayFinder {
public:
    StrayFinder(const MergedPoints& points, const std::vector<std::size_t>& places, double noise)
        : m_y(points.y),
          m_places(places),
          m_clear(kStrayNoise * std::numbers::sqrt2 * noise),
          m_last(std::ssize(points.y) - 1) {}

    std::vector<bool> Find() const {
        std::vector<bool> strays(m_y.size());
        const auto mark = [&](std::ptrdiff_t first, std::ptrdiff_t after) {
            std::fill(strays.begin() + first, strays.begin() + after, true);
        };
        for (std::ptrdiff_t length = 1; length <= static_cast<std::ptrdiff_t>(kLongestStray); ++length) {
            for (std::ptrdiff_t first = 1; first + length <= m_last; ++first) {
                if (IsStray(first, first + length)) mark(first, first + length);
            }
        }
        if (IsStrayEnd(0, 1)) mark(0, 1);
        if (IsStrayEnd(m_last, -1)) mark(m_last, m_last + 1);
        return strays;
    }

private:
    double At(std::ptrdiff_t i) const { return m_y[static_cast<std::size_t>(i)]; }

    bool AreNeighbours(std::ptrdiff_t i, std::ptrdiff_t next) const {
        return m_places[static_cast<std::size_t>(i)] + 1 == m_places[static_cast<std::size_t>(next)];
    }

    // How far the curve moves from a point outwards; the next reading there may be a stray itself.
    double Move(std::ptrdiff_t i, std::ptrdiff_t direction) const {
        double move = std::numeric_limits<double>::infinity();
        for (const std::ptrdiff_t j : {i + direction, i + 2 * direction}) {
            if (j >= 0 && j <= m_last) move = std::min(move, std::abs(At(j) - At(i)));
        }
        return std::isfinite(move) ? move : 0;
    }

    bool IsStray(std::ptrdiff_t first, std::ptrdiff_t after) const {
        if (!AreNeighbours(first - 1, first) || !AreNeighbours(after - 1, after)) return false;
        const double low = std::min(At(first - 1), At(after)), high = std::max(At(first - 1), At(after));
        double away = std::numeric_limits<double>::infinity();
        for (std::ptrdiff_t i = first; i < after; ++i) away = std::min(away, std::max(At(i) - high, low - At(i)));
        const double moves = std::max(Move(first - 1, -1), Move(after, 1));
        if (away <= m_clear || away <= kStrayMoves * moves) return false;
        const double sign = At(first) > high ? 1 : -1;
        return !(IsShoulder(first - 1, -1, sign) && IsShoulder(after, 1, sign));
    }

    // Whether the curve falls from a point outwards, and hardly any more after that.
    bool IsShoulder(std::ptrdiff_t i, std::ptrdiff_t direction, double sign) const {
        const std::ptrdiff_t out = i + direction, further = out + direction;
        if (further < 0 || further > m_last) return false;
        return sign * (At(i) - At(out)) > std::max(m_clear, kShoulder * std::abs(At(out) - At(further)));
    }

    bool IsStrayEnd(std::ptrdiff_t end, std::ptrdiff_t inwards) const {
        const std::ptrdiff_t next = end + inwards;
        double moves = 0;
        for (std::ptrdiff_t i = 1; i < static_cast<std::ptrdiff_t>(kEndPoints); ++i)
            moves = std::max(moves, std::abs(At(next + i * inwards) - At(next + (i - 1) * inwards)));
        const double away = std::abs(At(end) - At(next));
        return AreNeighbours(std::min(end, next), std::max(end, next)) && away > m_clear && away > kEndMoves * moves;
    }

    const std::vector<double>& m_y;
    const std::vector<std::size_t>& m_places;
    double m_clear;
    std::ptrdiff_t m_last;
};

}  // namespace

std::vector<bool> FindStrays(const MergedPoints& points, const std::vector<std::size_t>& places, double noise) {
    return StrayFinder(points, places, noise).Find();
}

}  // namespace qel
