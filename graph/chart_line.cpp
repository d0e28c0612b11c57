#include "qellib10/graph/chart_line.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "qellib10/graph/left_out.h"

namespace qel {
namespace {

// The part of a segment within the box, by Liang and Barsky (1984).
std::optional<std::pair<ShapePoint, ShapePoint>> CutSegment(const ShapePoint& from, const ShapePoint& to,
                                                            const ChartBox& box) {
    double start = 0, end = 1;
    const double dx = to.x - from.x, dy = to.y - from.y;
    const auto cut = [&](double direction, double distance) {
        if (direction == 0) return distance >= 0;
        const double share = distance / direction;
        if (direction < 0) {
            start = std::max(start, share);
        } else {
            end = std::min(end, share);
        }
        return start <= end;
    };
    if (!cut(-dx, from.x - box.left) || !cut(dx, box.right - from.x) || !cut(-dy, from.y - box.top) ||
        !cut(dy, box.bottom - from.y))
        return {};
    return std::pair(ShapePoint{from.x + start * dx, from.y + start * dy},
                     ShapePoint{from.x + end * dx, from.y + end * dy});
}

ChartBox Reach(const ChartBox& area) {
    const double reach = 64 + area.Width() + area.Height();
    return {area.left - reach, area.top - reach, area.right + reach, area.bottom + reach};
}

bool IsIn(const ShapePoint& place, const ChartBox& box) {
    return place.x >= box.left && place.x <= box.right && place.y >= box.top && place.y <= box.bottom;
}

bool IsLone(std::span<const ShapePoint> line, std::size_t i) {
    return !IsGap(line[i]) && (i == 0 || IsGap(line[i - 1])) && (i + 1 == line.size() || IsGap(line[i + 1]));
}

}  // namespace

// A point in another column, or a gap.
void LineReducer::Start(const ShapePoint& place, double value) {
    End();
    if (IsGap(place)) return m_line.AddGap();
    m_column = std::floor(place.x * m_columnsPerUnit);
    m_first = m_last = m_low = m_high = place;
    m_lowValue = m_highValue = value;
}

std::vector<ShapePoint> LineReducer::Take() {
    End();
    return m_line.Take();
}

void LineReducer::End() {
    if (m_column == kNone) return;
    m_column = kNone;
    const ShapePoint& earlier = m_isLowLater ? m_high : m_low;
    const ShapePoint& later = m_isLowLater ? m_low : m_high;
    m_line.AddColumn(m_first, earlier, later, m_last);
}

std::vector<ShapePoint> PointLine::Reduced(std::size_t begin, std::size_t end) const {
    return IsRising() ? ReducedRising(begin, end) : ReducedPlain(begin, end);
}

std::vector<ShapePoint> PointLine::ReducedPlain(std::size_t begin, std::size_t end) const {
    LineReducer reducer(columnsPerUnit);
    ShapePoint before = kLineGap;
    double heightBefore = 0;
    ForEachKept(leftOut, begin, end, [&](std::size_t first, std::size_t last) {
        for (std::size_t i = first; i < last; ++i) {
            const double height = heights.empty() ? points[i].GetYData() : heights[i];
            const ShapePoint place{x.At(points[i].GetXData()), y.At(height)};
            if (isSteps && !IsGap(before) && !IsGap(place)) reducer.Add({place.x, before.y}, heightBefore);
            reducer.Add(place, height);
            before = place;
            heightBefore = height;
        }
    });
    return reducer.Take();
}

std::vector<ShapePoint> CutToArea(std::vector<ShapePoint>&& line, const ChartBox& area) {
    const ChartBox box = Reach(area);
    if (std::ranges::all_of(line, [&](const ShapePoint& place) { return IsIn(place, box); })) return std::move(line);
    return CutToArea(std::span<const ShapePoint>(line), area);
}

std::vector<ShapePoint> CutToArea(std::span<const ShapePoint> line, const ChartBox& area) {
    const ChartBox box = Reach(area);
    std::vector<ShapePoint> cut;
    cut.reserve(line.size());
    bool isDown = false;  // the last corner that was added is the one before
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (IsGap(line[i])) {
            isDown = false;
            continue;
        }
        const bool hasBefore = i > 0 && !IsGap(line[i - 1]);
        if (!hasBefore) {
            if (!cut.empty()) cut.push_back(kLineGap);
            if (IsIn(line[i], box)) cut.push_back(line[i]);
            isDown = IsIn(line[i], box);
            continue;
        }
        if (isDown && IsIn(line[i], box)) {
            cut.push_back(line[i]);
            continue;
        }
        const auto part = CutSegment(line[i - 1], line[i], box);
        if (part) {
            if (!isDown) {
                if (!cut.empty() && !IsGap(cut.back())) cut.push_back(kLineGap);
                cut.push_back(part->first);
            }
            cut.push_back(part->second);
        }
        isDown = IsIn(line[i], box);
    }
    return cut;
}

std::vector<ShapePoint> LonePlaces(std::span<const ShapePoint> line) {
    std::vector<ShapePoint> places;
    for (std::size_t i = 0; i < line.size(); ++i)
        if (IsLone(line, i)) places.push_back(line[i]);
    return places;
}

std::vector<ShapePoint> PlacesAlong(std::span<const ShapePoint> line, double distance) {
    std::vector<ShapePoint> places;
    if (line.empty()) return places;
    ShapePoint last{line.front().x - distance / 2, line.front().y};  // lines often start at one place
    for (std::size_t i = 0; i < line.size(); ++i) {
        const bool isFar = std::hypot(line[i].x - last.x, line[i].y - last.y) >= distance;  // not of a gap
        if (!isFar && !IsLone(line, i)) continue;
        places.push_back(last = line[i]);
    }
    return places;
}

}  // namespace qel
