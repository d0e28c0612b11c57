#pragma once

#include <cstdint>
#include <random>

#include <qellib10/qellib10.h>

namespace viewer {

/// Simulates the instrument: a detector after a column, read through a 24-bit converter. Each minute the same peaks
/// pass by, on a baseline that drifts, with noise. It is the same after each start, so that pictures can be compared.
class Detector {
public:
    static constexpr int kCodesPerSecond = 50;

    /// The next value from the converter, from -2^23 to 2^23 - 1.
    std::int32_t NextCode();
    /// The same as a point: seconds since the start, and mV.
    CGraphData NextPoint();

private:
    std::mt19937 m_random;
    int m_nCodes = 0;
};

}  // namespace viewer
