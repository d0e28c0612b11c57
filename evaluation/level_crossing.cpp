#include "qellib10/evaluation/level_crossing.h"

namespace qel {

LevelCrossing RefineCrossing(const CurveData& data, LocalFit& fit, std::span<const double> y, std::size_t before,
                             const std::function<double(double)>& level) {
    double low = data.x[before], high = data.x[before + 1];
    const auto blended = [&](double place, std::size_t order) {
        CurveValue left, right;
        fit.At(before, place, order, y, left);
        fit.At(before + 1, place, order, y, right);
        const double t = (place - data.x[before]) / (data.x[before + 1] - data.x[before]);
        return CurveValue{place, (1 - t) * left.y + t * right.y, std::max(left.uncertainty, right.uncertainty)};
    };
    const bool isRising = blended(low, 0).y < level(low);
    while (true) {
        const double middle = low + (high - low) / 2;
        if (middle <= low || middle >= high) break;
        ((blended(middle, 0).y < level(middle)) == isRising ? low : high) = middle;
    }
    return {blended(low, 0), blended(low, 1)};
}

}  // namespace qel
