#pragma once

#include <cmath>
#include <optional>
#include <vector>

#include "qellib10/graph/chart.h"

namespace qel {

/// From the values of an axis to places along it.
struct AxisPlaces {
    double low = 0, high = 1;  ///< low < high; of a logarithmic axis both above 0
    bool isLogarithmic = false;
    double from = 0, to = 1;  ///< device units of low and high

    double At(double value) const noexcept {
        if (isLogarithmic && !(value > 0)) return std::nan("");
        // Not the logarithm of a quotient, which may be infinite.
        const double share =
            isLogarithmic ? (std::log(value) - std::log(low)) / (std::log(high) - std::log(low)) : Share(value);
        return from + share * (to - from);
    }
    double ValueAt(double place) const noexcept {
        const double share = (place - from) / (to - from);
        return isLogarithmic ? std::exp(std::log(low) + share * (std::log(high) - std::log(low)))
                             : low * (1 - share) + high * share;
    }
    /// Where bars and areas start.
    double BaseAt(double base) const noexcept { return At(isLogarithmic && !(base > 0) ? low : base); }

private:
    // Halves: the difference of the ends may be more than a number can hold.
    double Share(double value) const noexcept { return (value / 2 - low / 2) / (high / 2 - low / 2); }
};

/// The range of each axis of the chart, from fixed ends and data.
std::vector<AxisRange> AxisRanges(const Chart& chart);

/// Whether both axes exist, the first one horizontal, the second one vertical.
bool HasItsAxes(const Chart& chart, std::size_t xAxis, std::size_t yAxis);
inline bool HasItsAxes(const Chart& chart, const ChartSeries& series) {
    return HasItsAxes(chart, series.xAxis, series.yAxis);
}

inline bool IsHorizontal(const ChartAxis& axis) {
    return axis.side == ChartSide::kBottom || axis.side == ChartSide::kTop;
}

/// At most 8.
std::size_t AxisCount(const Chart& chart);

/// The sum of what stacked series before @p index have at the x of each of its points; 0 for other series.
std::vector<double> StackedBelow(const Chart& chart, std::size_t index);

}  // namespace qel
