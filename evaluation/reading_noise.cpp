#include "qellib10/evaluation/reading_noise.h"

#include <array>

namespace qel {
namespace {

constexpr double kNormalQuartile = 0.6744897501960817;  // of a standard normal variable: its median distance from 0
constexpr double kMostAmplified = 100;                  // variance of an extrapolated value, of that of a reading
constexpr double kFewestRepeats = 10;
constexpr double kDegreesPerPoint = 0.3;  // what a median of distances that overlap is worth
constexpr double kStrayNoise = 6;
constexpr double kStrayMoves = 3;
constexpr std::size_t kLongestStray = 3;
constexpr double kPause = 10;
constexpr std::ptrdiff_t kIntervalsAround = 5;

// How far a point is from the cubic polynomial through two points on either side, over how far noise of 1 moves that.
std::optional<double> Distance(const MergedPoints& points, std::size_t i) {
    const std::array<std::size_t, 4> others = {i - 2, i - 1, i + 1, i + 2};
    double value = 0, variance = 1 / points.counts[i];
    for (const std::size_t j : others) {
        double weight = 1;
        for (const std::size_t k : others) {
            if (k != j) weight *= (points.x[i] - points.x[k]) / (points.x[j] - points.x[k]);
        }
        value += weight * points.y[j];
        variance += weight * weight / points.counts[j];
    }
    if (!(variance < kMostAmplified)) return std::nullopt;
    return std::abs(points.y[i] - value) / std::sqrt(variance);
}

// Of an instrument whose last digit hardly changes between readings, noise cannot be seen in them.
double DigitNoise(const std::vector<double>& y) {
    double smallest = std::numeric_limits<double>::infinity();
    std::size_t equal = 0;
    for (std::size_t i = 1; i < y.size(); ++i) {
        const double move = std::abs(y[i] - y[i - 1]);
        if (move > 0) smallest = std::min(smallest, move);
        equal += move == 0 ? 1 : 0;
    }
    return equal >= y.size() / 4 && std::isfinite(smallest) ? smallest / std::sqrt(12.0) : 0;
}

}  // namespace

double MedianIn(std::vector<double>& values) {
    const auto middle = values.begin() + std::ssize(values) / 2;
    std::ranges::nth_element(values, middle);
    return *middle;
}

ReadingNoise EstimateNoise(const MergedPoints& points, double repeats, std::size_t repeatDegrees) {
    std::vector<double> distances;
    for (std::size_t i = 2; i + 2 < points.x.size(); ++i) {
        if (const auto distance = Distance(points, i)) distances.push_back(*distance);
    }
    ReadingNoise found;
    if (!distances.empty()) {
        const auto count = static_cast<double>(distances.size());
        found = {MedianIn(distances) / kNormalQuartile, std::max(1.0, std::floor(kDegreesPerPoint * count))};
    }
    const auto degrees = static_cast<double>(repeatDegrees);
    const double ofRepeats = repeatDegrees > 0 ? std::sqrt(repeats / degrees) : 0;
    if (degrees >= kFewestRepeats && ofRepeats > found.deviation) found = {ofRepeats, degrees};
    found.deviation = std::max(found.deviation, DigitNoise(points.y));
    return found;
}

std::vector<bool> FindStrays(const MergedPoints& points, double noise) {
    const std::vector<double>& y = points.y;
    std::vector<bool> strays(y.size());
    for (std::size_t length = 1; length <= kLongestStray; ++length) {
        for (std::size_t i = 2; i + length + 1 < y.size(); ++i) {
            const std::size_t after = i + length;
            const double sign = y[i] > y[i - 1] ? 1 : -1;
            double away = std::numeric_limits<double>::infinity();
            for (std::size_t j = i; j < after; ++j)
                away = std::min({away, sign * (y[j] - y[i - 1]), sign * (y[j] - y[after])});
            const double moves = std::max(std::abs(y[i - 1] - y[i - 2]), std::abs(y[after + 1] - y[after]));
            if (away <= kStrayNoise * std::sqrt(2.0) * noise || away <= kStrayMoves * moves) continue;
            std::fill(strays.begin() + static_cast<std::ptrdiff_t>(i),
                      strays.begin() + static_cast<std::ptrdiff_t>(after), true);
        }
    }
    return strays;
}

std::vector<std::size_t> FindParts(const std::vector<double>& x) {
    std::vector<std::size_t> parts = {0};
    const auto interval = [&](std::ptrdiff_t i) {
        return x[static_cast<std::size_t>(i)] - x[static_cast<std::size_t>(i) - 1];
    };
    for (std::ptrdiff_t i = 2; i + 1 < std::ssize(x); ++i) {
        if (interval(i) <= kPause * std::min(interval(i - 1), interval(i + 1))) continue;
        std::vector<double> around;
        for (std::ptrdiff_t j = std::max<std::ptrdiff_t>(1, i - kIntervalsAround);
             j <= std::min(std::ssize(x) - 1, i + kIntervalsAround); ++j) {
            if (j != i) around.push_back(interval(j));
        }
        if (interval(i) > kPause * MedianIn(around)) parts.push_back(static_cast<std::size_t>(i));
    }
    parts.push_back(x.size());
    return parts;
}

}  // namespace qel
