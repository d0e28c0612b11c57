#include "qellib10/platform/drawing/dash_pattern.h"

#include <numeric>

#include "qellib10/platform/drawing/drawing_types.h"

namespace qel {

std::span<const int> DashLengths(int penStyle) noexcept {
    static constexpr int kDash[] = {18, 6}, kDot[] = {3, 3}, kDashDot[] = {9, 6, 3, 6},
                         kDashDotDot[] = {9, 3, 3, 3, 3, 3};
    switch (penStyle) {
        case PS_DASH:
            return kDash;
        case PS_DOT:
            return kDot;
        case PS_DASHDOT:
            return kDashDot;
        case PS_DASHDOTDOT:
            return kDashDotDot;
        default:
            return {};
    }
}

int DashPeriod(int penStyle) noexcept {
    const std::span<const int> lengths = DashLengths(penStyle);
    return std::accumulate(lengths.begin(), lengths.end(), 0);
}

bool IsDash(int penStyle, std::int64_t step) noexcept {
    const std::span<const int> lengths = DashLengths(penStyle);
    if (lengths.empty()) return true;
    std::int64_t rest = step % DashPeriod(penStyle);
    bool isDash = true;
    for (const int length : lengths) {
        if (rest < length) break;
        rest -= length;
        isDash = !isDash;
    }
    return isDash;
}

}  // namespace qel
