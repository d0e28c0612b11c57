#include "qellib10/curve/sharp_step.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <numeric>

namespace qel {
namespace {

constexpr std::size_t kSlopes = 3, kReadings = kSlopes + 1;
constexpr std::size_t kOuter = 2;  // intervals from the steepest one, whose slopes choose the shape
constexpr double kCertainty = 5;   // deviations
constexpr double kUneven = 3;      // a longer interval beside the steepest one says too little
constexpr double kUnknown = std::numeric_limits<double>::infinity();
constexpr double kLeastOfSteepest = 1e-3;  // a slope that is flatter says nothing of the top

using Readings = std::array<double, kReadings>;
using Slopes = std::array<double, kSlopes>;

Slopes SlopesOf(const Readings& x, const Readings& y, double direction) {
    Slopes slopes;
    for (std::size_t i = 0; i < kSlopes; ++i) slopes[i] = direction * (y[i + 1] - y[i]) / (x[i + 1] - x[i]);
    return slopes;
}

// What is a parabola over the volume, with its top where the curve is steepest. Of a potential that follows the
// logarithm of a concentration, as Nernst's equation has it, the slope falls with the distance from the step, so it is
// the reciprocal square; of one that levels out the slope falls as a bell does.
enum class Shape { logarithm, level };

double Height(double slope, Shape shape) { return shape == Shape::level ? std::log(slope) : -1 / (slope * slope); }

double SlopeOfHeight(double height, Shape shape) {
    return shape == Shape::level ? std::exp(height) : std::sqrt(-1 / std::min(height, 0.0));
}

double AtLeast(double slope, double steepest) { return std::max(slope, kLeastOfSteepest * steepest); }

// Newton's form through three heights.
class Parabola {
public:
    Parabola(const Slopes& middle, const Slopes& slopes, Shape shape) : m_middle(middle), m_shape(shape) {
        Slopes height;
        for (std::size_t i = 0; i < kSlopes; ++i) height[i] = Height(AtLeast(slopes[i], slopes[1]), shape);
        m_first = height[0];
        m_before = (height[1] - height[0]) / (middle[1] - middle[0]);
        m_after = (height[2] - height[1]) / (middle[2] - middle[1]);
    }

    double Top() const {
        const double share = m_before / (m_before - m_after);
        return std::midpoint(m_middle[0], m_middle[1]) + share * (m_middle[2] - m_middle[0]) / 2;
    }

    double SlopeAt(double x) const {
        const double bend = (m_after - m_before) / (m_middle[2] - m_middle[0]);
        return SlopeOfHeight(m_first + (x - m_middle[0]) * (m_before + bend * (x - m_middle[1])), m_shape);
    }

private:
    Slopes m_middle;
    Shape m_shape;
    double m_first, m_before, m_after;
};

Slopes MiddlesOf(const Readings& x) {
    return {std::midpoint(x[0], x[1]), std::midpoint(x[1], x[2]), std::midpoint(x[2], x[3])};
}

double TopOf(const Readings& x, const Slopes& slopes, Shape shape) {
    return Parabola(MiddlesOf(x), slopes, shape).Top();
}

// The shape that the next slopes on either side speak for.
Shape ShapeAround(const CurvePoints& points, std::size_t steepest, const Readings& x, const Slopes& slopes,
                  double direction) {
    if (steepest < kOuter || steepest + kOuter + 1 >= points.x.size()) return Shape::level;
    const auto misfit = [&](Shape shape) {
        double sum = 0;
        for (const std::size_t i : {steepest - kOuter, steepest + kOuter}) {
            const double rise = direction * (points.y[i + 1] - points.y[i]);
            const double expected =
                Parabola(MiddlesOf(x), slopes, shape).SlopeAt(std::midpoint(points.x[i], points.x[i + 1]));
            sum += std::abs(
                std::log(AtLeast(expected, slopes[1]) / AtLeast(rise / (points.x[i + 1] - points.x[i]), slopes[1])));
        }
        return sum;
    };
    return misfit(Shape::logarithm) < misfit(Shape::level) ? Shape::logarithm : Shape::level;
}

double ErrorOfTop(const Readings& x, const Readings& y, double direction, double noise, Shape shape) {
    const double top = TopOf(x, SlopesOf(x, y, direction), shape);
    double error = 0;
    for (std::size_t i = 0; i < kReadings; ++i) {
        Readings moved = y;
        moved[i] += noise;
        error = std::hypot(error, TopOf(x, SlopesOf(x, moved, direction), shape) - top);
    }
    return error;
}

double SlopeAfter(const CurvePoints& points, std::size_t i, double direction) {
    return direction * (points.y[i + 1] - points.y[i]) / (points.x[i + 1] - points.x[i]);
}

std::size_t SteepestInterval(const CurvePoints& points, double direction) {
    std::size_t at = 0;
    double steepest = 0;
    for (std::size_t i = 0; i + 1 < points.x.size(); ++i) {
        const double slope = SlopeAfter(points, i, direction);
        if (slope > steepest) at = i, steepest = slope;
    }
    return at;
}

// Where an interval that is not a neighbour could be as steep, the step is not sharp, and noise chose the place.
bool IsPeak(const CurvePoints& points, std::size_t at, double direction, double noise) {
    const auto error = [&](std::size_t i) {
        return kCertainty * std::numbers::sqrt2 * noise / (points.x[i + 1] - points.x[i]);
    };
    const double steepest = SlopeAfter(points, at, direction);
    for (std::size_t i = 0; i + 1 < points.x.size(); ++i) {
        const bool isNear = i + 1 >= at && i <= at + 1;
        if (!isNear && SlopeAfter(points, i, direction) + std::hypot(error(i), error(at)) > steepest) return false;
    }
    return true;
}

}  // namespace

std::optional<Step> SharpStep(const CurvePoints& points, double direction, double noise) {
    const std::size_t at = SteepestInterval(points, direction);
    if (at == 0 || at + kSlopes > points.x.size()) return std::nullopt;
    Readings x, y;
    std::copy_n(points.x.begin() + static_cast<std::ptrdiff_t>(at - 1), kReadings, x.begin());
    std::copy_n(points.y.begin() + static_cast<std::ptrdiff_t>(at - 1), kReadings, y.begin());
    Slopes slopes = SlopesOf(x, y, direction);
    bool areCertain = true, isAlone = true;
    for (const std::size_t i : {std::size_t{0}, std::size_t{2}}) {
        const double error = kCertainty * std::numbers::sqrt2 * noise / (x[i + 1] - x[i]);
        areCertain = areCertain && slopes[i] > error;
        isAlone = isAlone && slopes[1] - slopes[i] > error + kCertainty * std::numbers::sqrt2 * noise / (x[2] - x[1]);
        slopes[i] = std::max(slopes[i], error);
    }
    const bool isPeak = IsPeak(points, at, direction, noise);
    if (!isAlone && !(areCertain && isPeak)) return std::nullopt;
    areCertain = areCertain && isPeak && std::max(x[1] - x[0], x[3] - x[2]) <= kUneven * (x[2] - x[1]);
    const auto stepOf = [&](Shape shape) {
        const double top = TopOf(x, slopes, shape);
        Step step{std::clamp(top, x[1], x[2]), 0, direction * slopes[1], kReadings, 0, x[2] - x[1]};
        step.signal = std::lerp(y[1], y[2], (step.volume - x[1]) / step.interval);
        const bool isInside = top > x[1] && top < x[2];
        step.error = areCertain && isInside ? ErrorOfTop(x, y, direction, noise, shape) : kUnknown;
        return step;
    };
    const Step step = stepOf(ShapeAround(points, at, x, slopes, direction));
    return IsSure(step) ? step : stepOf(Shape::level);
}

}  // namespace qel
