#include "detector.h"

#include <algorithm>
#include <cmath>

namespace viewer {
namespace {

constexpr double kFullScale = 250;  // mV at 2^23
constexpr double kCodes = 1 << 23;

constexpr double kPeriod = 60;  // seconds
constexpr double kDrift = 4, kDriftPeriod = 420;
constexpr double kNoise = 0.3;

struct Peak {
    double second, width, height;
};
constexpr Peak kPeaks[] = {{9, 0.5, 18}, {16, 0.8, 92}, {19.5, 0.9, 47}, {31, 1.3, 140}, {46, 1.9, 33}};

double MillivoltsAt(double second) {
    double sum = 6 + kDrift * std::sin(2 * 3.14159265 * second / kDriftPeriod);
    for (const Peak& peak : kPeaks) {
        const double distance = (std::fmod(second, kPeriod) - peak.second) / peak.width;
        sum += peak.height * std::exp(-distance * distance / 2);
    }
    return sum;
}

}  // namespace

std::int32_t Detector::NextCode() {
    std::uniform_real_distribution<double> noise(-kNoise, kNoise);
    const double millivolts = MillivoltsAt(double{1} * m_nCodes++ / kCodesPerSecond) + noise(m_random);
    const double code = std::round(millivolts * kCodes / kFullScale);
    return static_cast<std::int32_t>(std::clamp(code, -kCodes, kCodes - 1));
}

CGraphData Detector::NextPoint() {
    const double second = double{1} * m_nCodes / kCodesPerSecond;
    return {second, NextCode() * kFullScale / kCodes};
}

}  // namespace viewer
