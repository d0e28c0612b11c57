#include "qellib10/graph/chart_hatch.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace qel {
namespace {

constexpr double kDistance = 5, kWidth = 0.8;  // points
constexpr double kLeastDistance = 2;           // device units
constexpr std::size_t kPatterns = 5;
constexpr double kGap = std::numeric_limits<double>::quiet_NaN();

class Hatch {
public:
    Hatch(const ChartBox& box, double distance) : m_box(box), m_distance(distance) {}

    // Lines are where they would be in any other box, so that those of neighbours meet. Downward is positive.
    void AddDiagonals(bool isRising) {
        const double sign = isRising ? 1 : -1;
        const double low = std::min(sign * m_box.top, sign * m_box.bottom);
        const double high = std::max(sign * m_box.top, sign * m_box.bottom);
        for (double sum = First(m_box.left + low); sum < m_box.right + high; sum += m_distance) {
            const double from = std::max(m_box.left, sum - high), to = std::min(m_box.right, sum - low);
            if (from < to) Add({from, sign * (sum - from)}, {to, sign * (sum - to)});
        }
    }
    // Level ones would miss the lowest bars.
    void AddUprights() {
        for (double x = First(m_box.left); x < m_box.right; x += m_distance) Add({x, m_box.top}, {x, m_box.bottom});
    }
    const std::vector<ShapePoint>& Lines() const { return m_lines; }

private:
    double First(double least) const { return std::ceil(least / m_distance) * m_distance; }
    void Add(const ShapePoint& from, const ShapePoint& to) {
        if (!m_lines.empty()) m_lines.push_back({kGap, kGap});
        m_lines.push_back(from);
        m_lines.push_back(to);
    }

    const ChartBox& m_box;
    double m_distance;
    std::vector<ShapePoint> m_lines;
};

}  // namespace

void DrawHatch(ChartCanvas& canvas, const ChartBox& box, std::size_t pattern, COLORREF color) {
    Hatch hatch(box, std::max(kLeastDistance, canvas.Units(kDistance)));
    switch (pattern % kPatterns) {
        case 1:
            hatch.AddDiagonals(true);
            break;
        case 2:
            hatch.AddDiagonals(false);
            break;
        case 3:
            hatch.AddDiagonals(true);
            hatch.AddDiagonals(false);
            break;
        case 4:
            hatch.AddUprights();
            break;
        default:
            return;
    }
    if (!hatch.Lines().empty()) canvas.Shape(hatch.Lines(), {.stroke = color, .strokeWidth = canvas.Units(kWidth)});
}

}  // namespace qel
