#pragma once

#include <qellib10/graphics.h>

#include <cmath>
#include <random>

/// Simulates an instrument: a detector after a column. Each minute the same peaks pass by, on a baseline that drifts,
/// with noise. It is the same after each start, so that pictures can be compared.
class Detector {
public:
    static constexpr int kPerSecond = 50;

    /// Seconds since the start, and mV.
    CGraphData Next() {
        constexpr struct {
            double second, width, height;
        } kPeaks[] = {{9, 0.5, 18}, {16, 0.8, 92}, {19.5, 0.9, 47}, {31, 1.3, 140}, {46, 1.9, 33}};
        const double second = double(m_nRead++) / kPerSecond;
        double signal = 6 + 4 * std::sin(second / 67) + std::uniform_real_distribution<double>(-0.3, 0.3)(m_random);
        for (const auto& peak : kPeaks) {
            const double distance = (std::fmod(second, 60) - peak.second) / peak.width;
            signal += peak.height * std::exp(-distance * distance / 2);
        }
        return {second, signal};
    }

private:
    std::mt19937 m_random;
    int m_nRead = 0;
};
