#include "qellib10/curve/noise.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "qellib10/curve/median.h"

namespace qel {
namespace {

constexpr std::size_t kRun = 4;              // points of a third difference
constexpr double kLowerQuartile = 0.318639;  // of |z| for standard normal z
constexpr double kMedian = 0.674490;         // likewise
constexpr double kLevel = 0.2;               // of the steepest slope between neighbours, at most
constexpr double kOfRough = 0.6;             // at least: the levels of few points may have little noise by chance
constexpr double kChance = 6;                // deviations, in the difference of two points
constexpr std::size_t kFewestOfLevels = 6;   // differences; the median of fewer is not an estimate
constexpr double kFarOut = 4;                // a sharp bend at the end of a level, deviations
constexpr std::size_t kFewestRepeats = 5;

// Third divided differences show no parabola, only noise and sharp bends. Each is scaled to the deviation of a single
// point.
double DeviationAt(const CurvePoints& points, std::size_t first) {
    double sum = 0;
    double squares = 0;
    for (std::size_t j = first; j < first + kRun; ++j) {
        double product = 1;
        for (std::size_t k = first; k < first + kRun; ++k) {
            if (k != j) product *= points.x[j] - points.x[k];
        }
        sum += points.y[j] / product;
        squares += 1 / (product * product);
    }
    return std::abs(sum) / std::sqrt(squares);
}

double SlopeAt(const CurvePoints& points, std::size_t first) {
    return std::abs((points.y[first + 1] - points.y[first]) / (points.x[first + 1] - points.x[first]));
}

// Noise of that deviation alone makes no run a step: it would leave only those runs that have less of it by chance.
bool IsLevel(const CurvePoints& points, std::size_t first, double most, double noise) {
    for (std::size_t i = first; i + 1 < first + kRun; ++i) {
        if (SlopeAt(points, i) > most + kChance * noise / (points.x[i + 1] - points.x[i])) return false;
    }
    return true;
}

// Of few deviations the median is small by chance more often than this mean is. Larger values count as @p most.
double RootMeanSquare(const std::vector<double>& values, double most) {
    double sum = 0;
    for (const double value : values) sum += std::pow(std::min(value, most), 2);
    return std::sqrt(sum / static_cast<double>(values.size()));
}

}  // namespace

// The lower quartile, because strays and the bends of a curve with few points would fill the upper half.
double RoughNoise(const CurvePoints& points) {
    std::vector<double> deviations;
    for (std::size_t i = 0; i + kRun <= points.x.size(); ++i) deviations.push_back(DeviationAt(points, i));
    const auto quartile = deviations.begin() + static_cast<std::ptrdiff_t>(deviations.size() / 4);
    std::ranges::nth_element(deviations, quartile);
    return *quartile / kLowerQuartile;
}

double Noise(const CurvePoints& points) {
    const double rough = RoughNoise(points);
    double steepest = 0;
    for (std::size_t i = 0; i + 1 < points.x.size(); ++i) steepest = std::max(steepest, SlopeAt(points, i));
    std::vector<double> deviations;
    for (std::size_t i = 0; i + kRun <= points.x.size(); ++i) {
        if (IsLevel(points, i, kLevel * steepest, rough)) deviations.push_back(DeviationAt(points, i));
    }
    if (deviations.size() < kFewestOfLevels) return rough;
    const double median = MedianOf(deviations) / kMedian;
    return std::max({median, RootMeanSquare(deviations, kFarOut * median), kOfRough * rough});
}

// Of neighbours, so that a slow drift of the electrode is not taken for noise.
double RepeatNoise(const TitrationCurve& readings, const std::vector<bool>& strays) {
    double squares = 0;
    std::size_t count = 0;
    for (std::size_t i = 1; i < readings.volume.size(); ++i) {
        if (readings.volume[i] != readings.volume[i - 1] || strays[i] || strays[i - 1]) continue;
        squares += std::pow(readings.signal[i] - readings.signal[i - 1], 2);
        ++count;
    }
    return count < kFewestRepeats ? 0 : std::sqrt(squares / static_cast<double>(2 * count));
}

}  // namespace qel
