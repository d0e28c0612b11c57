#pragma once

#include <memory>
#include <optional>

#include "qellib10/evaluation/curve_data.h"
#include "qellib10/evaluation/peak_options.h"
#include "qellib10/platform/algebra/least_squares.h"
#include "qellib10/platform/algebra/penalized_baseline.h"

namespace qel {

inline constexpr double kMostSmoothness = 1e12;

/// A baseline of a curve. Its values are linear in the readings (at its last weights), so that the uncertainty of what
/// is computed of both is known: noise in the baseline moves all of a peak in one direction.
class CurveBaseline {
public:
    /// @param refused why there is none
    static std::optional<CurveBaseline> Of(const CurveData& data, const BaselineOptions& options, CurveValues& refused);

    const std::vector<double>& Values() const { return m_values; }
    /// How a sum of baseline values, each times its factor, depends on each reading.
    std::vector<double> Influence(const std::vector<double>& factors) const;
    double Uncertainty(const CurveData& data, std::size_t index) const;

private:
    struct Line {
        std::vector<double> basis;  // 1 and the place, for each point
        LeastSquares fit;
        std::vector<double> weights;  // of each point in the fit
    };

    std::vector<double> m_values;
    std::optional<Line> m_line;
    std::shared_ptr<PenalizedBaseline> m_penalized;
    std::vector<double> m_weights;
};

}  // namespace qel
