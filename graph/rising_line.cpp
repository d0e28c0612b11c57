#include "qellib10/graph/point_line.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <span>

namespace qel {
namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

// AxisPart::At with the same bits, without a division for each value.
class Placer {
public:
    explicit Placer(const AxisPart& places)
        : m_places(places),
          m_isSimple(!places.isLogarithmic && std::isfinite(places.high - places.low)),
          m_perLength(1 / (places.high - places.low)) {}

    double At(double value) const {
        if (!m_isSimple) return m_places.At(value);
        return m_places.from + (value - m_places.low) * m_perLength * (m_places.to - m_places.from);
    }
    bool HasNoPlace(double value) const { return std::isnan(value) || (m_places.isLogarithmic && !(value > 0)); }

private:
    const AxisPart m_places;
    const bool m_isSimple;
    const double m_perLength;
};

// The places of x, and where columns end: nearly always one comparison of values decides, without a place.
class Columns {
public:
    Columns(const AxisPart& places, double perUnit)
        : m_places(places),
          m_placer(places),
          m_perUnit(perUnit),
          m_unit(1 / perUnit),
          m_low(ScaleOf(places.low)),
          m_perPlace((ScaleOf(places.high) - m_low) / (places.to - places.from)),
          m_slack(std::fabs(m_perPlace) / perUnit * kSlack),
          m_rounding(64 * kEpsilon * (std::fabs(m_low) + std::fabs(ScaleOf(places.high)) + 1)) {}

    double At(double x) const { return m_placer.At(x); }

    // Begins the column of a place. @return false for a place at the infinite right, which is in none
    bool Begin(double place) {
        m_column = std::floor(place * m_perUnit);
        if (m_column == std::numeric_limits<double>::infinity()) return false;
        const bool isReversed = m_perPlace < 0;
        const double fromStart = (m_column + (isReversed ? 0 : 1)) * m_unit - m_places.from;
        const double end = m_low + fromStart * m_perPlace;
        const double slack = m_slack + m_rounding * (1 + std::fabs(fromStart * m_perPlace));
        // Far away the slack is not enough: each x has its place computed.
        const bool isNear = std::fabs(fromStart) < kNear;
        m_surelyIn = isNear ? ValueOf(end - slack) : std::nan("");
        m_surelyOut = isNear ? ValueOf(end + slack) : std::nan("");
        return true;
    }
    // Of an x that is not below the one that the column began with.
    bool Contains(double x) const {
        if (x < m_surelyIn) return true;
        if (x > m_surelyOut) return false;
        const double column = m_placer.At(x) * m_perUnit;
        return column >= m_column && column < m_column + 1;
    }

private:
    static constexpr double kSlack = 1e-3;  // of a column
    static constexpr double kNear = 1e6;    // device units

    double ScaleOf(double value) const { return m_places.isLogarithmic ? std::log(value) : value; }
    double ValueOf(double scaled) const { return m_places.isLogarithmic ? std::exp(scaled) : scaled; }

    const AxisPart m_places;
    const Placer m_placer;
    const double m_perUnit, m_unit;
    const double m_low, m_perPlace;  // of values or logarithms
    const double m_slack, m_rounding;
    double m_column = 0;
    double m_surelyIn = 0, m_surelyOut = 0;
};

// The lowest or highest value of a column. The first point that has it is @p start or after it, in the node of the
// level that starts there, or in the same block.
struct Extreme {
    double value;
    std::size_t start;
    std::size_t level = 0;
};

// A column that was read; its places are computed later.
struct ReadColumn {
    ShapePoint corner;               // where it starts
    std::size_t start, first, last;  // the point that the corner has its height of, and those of the column
    Extreme low, high;
};

// Millions of points are not in the processor's caches, and a point that has to come from memory takes longer than all
// else of a column. So columns are read some at a time, the memory of their lowest and highest points and of columns to
// come is asked for, and the places of these points are computed when it is there.
class RisingReducer {
public:
    RisingReducer(const PointLine& line, std::size_t begin, std::size_t end)
        : m_points(line.points),
          m_begin(begin),
          m_end(end),
          m_columns(line.x, line.columnsPerUnit),
          m_y(line.y),
          m_isSteps(line.isSteps),
          m_leftOut(line.leftOut) {}

    std::vector<ShapePoint> Reduced() {
        for (std::size_t i = m_begin; i < m_end;) {
            if (i == NextLeftOut(i)) {
                ++i;
            } else if (IsGapAt(i)) {
                Place();
                m_line.AddGap();
                m_before = i++;
            } else {
                i = ReadOne(i);
            }
        }
        Place();
        return m_line.Take();
    }

private:
    static constexpr std::size_t kMostRead = 32, kAhead = 4;  // columns

    double X(std::size_t i) const { return m_points[i].GetXData(); }
    double Y(std::size_t i) const { return m_points[i].GetYData(); }
    bool IsGapAt(std::size_t i) const { return std::isnan(m_columns.At(X(i))) || m_y.HasNoPlace(Y(i)); }

    std::size_t NextLeftOut(std::size_t i) {
        while (!m_leftOut.empty() && m_leftOut.front() < i) m_leftOut = m_leftOut.subspan(1);
        return m_leftOut.empty() ? m_end : m_leftOut.front();
    }

    // Of the column of a point. @return the number of the first point that is not in it
    std::size_t ReadOne(std::size_t first) {
        const double x = m_columns.At(X(first));
        // A step starts at the height of the point before.
        const bool hasCorner = m_isSteps && m_before && !IsGapAt(*m_before);
        const std::size_t start = hasCorner ? *m_before : first;
        m_before = first;
        if (!m_columns.Begin(x)) return first + 1;
        m_low = m_high = {Y(start), start};
        if (hasCorner) Include(Y(first), Y(first), {first});
        const std::size_t end = AddRest(first + 1);
        m_read[m_nRead++] = {{x, m_y.At(Y(start))}, start, first, *m_before, m_low, m_high};
        // Not in a function of its own, which would do nothing that the compiler knows of.
        constexpr std::size_t kLine = 64 / sizeof(CGraphData);  // points that come from memory together
        for (std::size_t i : {m_low.start, m_high.start, end + kAhead * (end - first)}) {
            const std::size_t last = std::min(m_end, (i / PointSummary::kBlock + 1) * PointSummary::kBlock);
            for (; i < last; i += kLine) __builtin_prefetch(&m_points[i]);
        }
        if (m_nRead == kMostRead) Place();
        return end;
    }

    // Or up to a point that is left out.
    std::size_t EndOfBlock(std::size_t i) {
        return std::min({m_end, (i / PointSummary::kBlock + 1) * PointSummary::kBlock, NextLeftOut(i)});
    }

    // Adds the columns that were read to the line.
    void Place() {
        for (const ReadColumn& column : std::span(m_read).first(m_nRead)) Place(column);
        m_nRead = 0;
    }

    void Place(const ReadColumn& column) {
        const auto placeOf = [&](std::size_t i) {
            return i == column.start ? column.corner : ShapePoint{m_columns.At(X(i)), m_y.At(Y(i))};
        };
        if (column.last == column.first) {
            m_line.Add(column.corner);
            m_line.Add(placeOf(column.first));
            return;
        }
        const std::size_t low = PointOf(column.low, &PointNode::low), high = PointOf(column.high, &PointNode::high);
        m_line.AddColumn(column.corner, placeOf(std::min(low, high)), placeOf(std::max(low, high)),
                         placeOf(column.last));
    }

    std::size_t AddRest(std::size_t i) {
        while (i < m_end) {
            if (i == NextLeftOut(i)) {
                ++i;
                continue;
            }
            std::size_t count = AddNode(i);
            if (count == 0) count = AddPoints(i);
            if (count == 0) break;
            i += count;
            m_before = i - 1;
        }
        return i;
    }

    // Of the points up to the next block those that are in the column, without a gap. @return how many they are
    std::size_t AddPoints(std::size_t i) {
        const std::span<const CGraphData> points = m_points.From(i, EndOfBlock(i));
        std::size_t count = 0;
        while (count < points.size() && m_columns.Contains(points[count].GetXData())) ++count;
        double low = std::numeric_limits<double>::infinity(), high = -low;
        for (std::size_t k = 0; k < count; ++k) {
            const double y = points[k].GetYData();
            if (m_y.HasNoPlace(y)) {
                count = k;
                break;
            }
            low = y < low ? y : low;
            high = y > high ? y : high;
        }
        if (count > 0) Include(low, high, {i});
        return count;
    }

    // The largest node that starts with a point and is wholly in the column. @return how many points it has, 0 if none
    std::size_t AddNode(std::size_t i) {
        const PointNode* taken = nullptr;
        std::size_t level = 0;
        for (;; ++level) {
            const PointNode* const node = m_points.NodeAt(level, i);
            if (node == nullptr || m_y.HasNoPlace(node->low)) break;
            const std::size_t after = i + SizeOf(level);
            if (after >= m_end || after > NextLeftOut(i) || !m_columns.Contains(FirstXFrom(after))) break;
            taken = node;
        }
        if (taken == nullptr) return 0;
        Include(taken->low, taken->high, {i, level - 1});
        return SizeOf(level - 1);
    }

    struct Start {
        std::size_t point;
        std::size_t level = 0;
    };
    void Include(double low, double high, const Start& at) {
        if (low < m_low.value) m_low = {low, at.point, at.level};
        if (high > m_high.value) m_high = {high, at.point, at.level};
    }

    static std::size_t SizeOf(std::size_t level) { return PointSummary::kBlock << (4 * level); }
    double FirstXFrom(std::size_t i) const {
        const PointNode* const node = m_points.NodeAt(0, i);
        return node != nullptr ? node->firstX : X(i);
    }

    // The first point that has the value.
    std::size_t PointOf(const Extreme& extreme, double PointNode::*end) const {
        std::size_t i = extreme.start;
        for (std::size_t level = extreme.level; level > 0; --level)
            while (m_points.NodeAt(level - 1, i)->*end != extreme.value) i += SizeOf(level - 1);
        while (Y(i) != extreme.value) ++i;
        return i;
    }

    const PointView& m_points;
    const std::size_t m_begin, m_end;
    Columns m_columns;
    const Placer m_y;
    const bool m_isSteps;
    std::span<const std::size_t> m_leftOut;  // those to come
    std::optional<std::size_t> m_before;     // the last point that counts
    ReducedLine m_line;
    Extreme m_low{}, m_high{};
    std::array<ReadColumn, kMostRead> m_read{};
    std::size_t m_nRead = 0;
};

}  // namespace

bool PointLine::IsRising() const {
    const auto hasEnds = [](const AxisPart& axis) {
        return std::isfinite(axis.At(axis.low)) && std::isfinite(axis.At(axis.high));
    };
    return heights.empty() && points.Totals().isRising && hasEnds(x) && hasEnds(y);
}

std::vector<ShapePoint> PointLine::ReducedRising(std::size_t begin, std::size_t end) const {
    return RisingReducer(*this, begin, end).Reduced();
}

}  // namespace qel
