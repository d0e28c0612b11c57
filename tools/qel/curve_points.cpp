#include "curve_points.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <tuple>

namespace tool {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr double kCells = 4096;  // of marks, at most across and upward; at least half of it

bool IsGap(const CGraphData& point) { return std::isnan(point.GetXData()); }

struct Extent {
    double low = std::numeric_limits<double>::infinity(), high = -low;

    void Include(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    // The power of two that divides it into at most so many parts, and at least half of them. Halves: the difference
    // may be more than a number can hold.
    double WidthOf(double parts) const {
        const double half = high / 2 - low / 2;
        return half > 0 ? std::exp2(std::ceil(std::log2(half / parts * 2))) : 1;
    }
};

double Place(double value, bool isLogarithmic) { return isLogarithmic ? std::log10(value) : value; }

}  // namespace

void CurvePoints::Add(double x, double y, double error) {
    const bool isGap = std::isnan(x) || std::isnan(y) || (m_drawn.isLogX && !(x > 0)) || (m_drawn.isLogY && !(y > 0));
    if (isGap && (m_points.empty() || IsGap(m_points.back()) || m_drawn.thinned == Thinned::kMarks)) return;
    if (m_points.size() >= m_most) Thin();
    m_points.push_back(isGap ? CGraphData(kNone, kNone) : CGraphData(x, y));
    if (m_drawn.hasErrors) m_errors.push_back(error);
}

double CurvePoints::PlaceOf(const CGraphData& point) const { return Place(point.GetXData(), m_drawn.isLogX); }

void CurvePoints::Keep(std::size_t point, std::size_t& kept) {
    m_points[kept] = m_points[point];
    if (m_drawn.hasErrors) m_errors[kept] = m_errors[point];
    ++kept;
}

void CurvePoints::Thin() {
    if (m_drawn.thinned == Thinned::kLine) ThinLine();
    if (m_drawn.thinned == Thinned::kMarks && !m_drawn.hasErrors) ThinMarks();
    // Curves that go to and fro in x, or have many gaps, keep more.
    m_most = std::max(m_most, 2 * m_points.size());
}

void CurvePoints::ThinLine() {
    Extent extent;
    if (m_drawn.xRange) {
        extent.Include(Place(m_drawn.xRange->first, m_drawn.isLogX));
        extent.Include(Place(m_drawn.xRange->second, m_drawn.isLogX));
    } else {
        for (const CGraphData& point : m_points)
            if (!IsGap(point)) extent.Include(PlaceOf(point));
    }
    const double width = extent.WidthOf(static_cast<double>(m_drawn.most) / 8);
    // What the picture does not show is one column at each side.
    const auto columnOf = [&](const CGraphData& point) {
        return std::floor(std::clamp(PlaceOf(point), extent.low - width, extent.high + width) / width);
    };

    std::size_t kept = 0;
    const std::size_t all = m_points.size();
    for (std::size_t first = 0, next = 0; first < all; first = next) {
        next = first + 1;
        std::size_t lowest = first, highest = first, lowestEnd = first, highestEnd = first;
        if (!IsGap(m_points[first])) {
            const auto yOf = [&](std::size_t i) { return m_points[i].GetYData(); };
            const double column = columnOf(m_points[first]);
            for (; next < all && !IsGap(m_points[next]) && columnOf(m_points[next]) == column; ++next) {
                if (yOf(next) < yOf(lowest)) lowest = next;
                if (yOf(next) > yOf(highest)) highest = next;
                if (yOf(next) - ErrorAt(next) < yOf(lowestEnd) - ErrorAt(lowestEnd)) lowestEnd = next;
                if (yOf(next) + ErrorAt(next) > yOf(highestEnd) + ErrorAt(highestEnd)) highestEnd = next;
            }
        }
        std::array keep = {first, lowest, highest, lowestEnd, highestEnd, next - 1};
        std::ranges::sort(keep);
        for (const std::size_t i : std::span(keep.begin(), std::unique(keep.begin(), keep.end()))) Keep(i, kept);
    }
    m_points.resize(kept);
    if (m_drawn.hasErrors) m_errors.resize(kept);
}

void CurvePoints::ThinMarks() {
    const auto yOf = [&](const CGraphData& point) { return Place(point.GetYData(), m_drawn.isLogY); };
    Extent across, upward;
    for (const CGraphData& point : m_points) {
        across.Include(PlaceOf(point));
        upward.Include(yOf(point));
    }
    const double width = across.WidthOf(kCells), height = upward.WidthOf(kCells);
    struct InCell {
        double x, y;
        std::size_t point;
    };
    std::vector<InCell> cells;
    cells.reserve(m_points.size());
    for (const CGraphData& point : m_points)
        cells.push_back({std::floor(PlaceOf(point) / width), std::floor(yOf(point) / height), cells.size()});
    std::ranges::sort(cells, {}, [](const InCell& cell) { return std::tuple(cell.x, cell.y, cell.point); });
    const auto same = [](const InCell& a, const InCell& b) { return a.x == b.x && a.y == b.y; };
    cells.erase(std::unique(cells.begin(), cells.end(), same), cells.end());
    std::ranges::sort(cells, {}, &InCell::point);
    std::size_t kept = 0;
    for (const InCell& cell : cells) Keep(cell.point, kept);
    m_points.resize(kept);
}

void CurvePoints::GiveTo(qel::ChartSeries& series) {
    series.points = std::move(m_points);
    series.yErrors.down = std::move(m_errors);
}

}  // namespace tool
