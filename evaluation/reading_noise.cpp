#include "qellib10/evaluation/reading_noise.h"

#include <array>
#include <numeric>

namespace qel {
namespace {

constexpr double kMostAmplified = 100;    // variance of an extrapolated value, of that of a reading
constexpr double kDegreesPerPoint = 0.3;  // what a median of distances that overlap is worth
constexpr double kMostMultiples = 1e12;   // of the last digit; beyond that doubles do not show digits
constexpr int kMostDecimals = 15;
constexpr double kDoubleErrors = 2;
constexpr std::ptrdiff_t kFewestDifferent = 8;
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

// Whether all numbers are multiples of a unit, as far as doubles show it. @param multiples how many of it each is
bool AreMultiples(std::span<const CurvePoint> readings, double perUnit, std::vector<double>& multiples) {
    multiples.clear();
    for (const CurvePoint& reading : readings) {
        const double multiple = reading.y * perUnit, whole = std::round(multiple);
        if (!(std::abs(multiple) < kMostMultiples)) return false;
        if (std::abs(multiple - whole) > kDoubleErrors * std::numeric_limits<double>::epsilon() * std::abs(multiple))
            return false;
        multiples.push_back(whole);
    }
    return true;
}

}  // namespace

// Instruments with a digit of 0.002 or 0.05 are seen where there are so many different readings that it is no chance.
double DigitOf(std::span<const CurvePoint> readings) {
    std::vector<double> multiples;
    double perUnit = 1;
    for (int decimals = 0; decimals <= kMostDecimals; ++decimals, perUnit *= 10) {
        if (std::abs(readings.front().y) * perUnit >= kMostMultiples) return 0;
        if (!AreMultiples(readings, perUnit, multiples)) continue;
        std::ranges::sort(multiples);
        const auto [last, end] = std::ranges::unique(multiples);
        if (last - multiples.begin() < kFewestDifferent) return 1 / perUnit;
        long long common = 0;
        for (auto i = multiples.begin() + 1; i != last; ++i)
            common = std::gcd(common, static_cast<long long>(*i - *(i - 1)));
        return static_cast<double>(common) / perUnit;
    }
    return 0;
}

double MedianIn(std::vector<double>& values) {
    const auto middle = values.begin() + std::ssize(values) / 2;
    std::ranges::nth_element(values, middle);
    return *middle;
}

ReadingNoise EstimateNoise(const MergedPoints& points, double repeats, std::size_t repeatDegrees, double digit) {
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
    if (repeatDegrees >= kFewestRepeats && ofRepeats > found.deviation) found = {ofRepeats, degrees};
    found.deviation = std::max({found.deviation, DigitNoise(points.y), digit / std::sqrt(12.0)});
    return found;
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
