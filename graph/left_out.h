#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/graph/chart.h"
#include "qellib10/platform/export.h"

// The points of a series that do not count.
namespace qel {

/// Why a point is left out, "" if no reason was given; nothing for a point that counts.
QELLIB10_API std::optional<std::string> ReasonLeftOut(const ChartSeries& series, std::size_t point);

/// Leaves points out, or takes them back if all of them are left out already: the same click does and undoes. Those
/// that are left out already keep their reason; points that do not exist are ignored.
/// @return whether something changed
QELLIB10_API bool ToggleLeftOut(ChartSeries& series, const std::vector<std::size_t>& points, std::string_view reason);

/// The points that are left out, each once, in their order.
QELLIB10_API std::vector<std::size_t> PointsLeftOut(const ChartSeries& series);

/// How many points are left out for a reason.
struct LeftOutReason {
    std::string reason;
    std::size_t count = 0;
};
/// Of all series that are drawn, in the order of series and points.
QELLIB10_API std::vector<LeftOutReason> ReasonsLeftOut(const Chart& chart);

/// Calls @p step with the first point and the end of each run of points from @p begin to @p end that count.
template <class Step>
void ForEachKept(std::span<const std::size_t> leftOut, std::size_t begin, std::size_t end, const Step& step) {
    for (const std::size_t point : leftOut) {
        if (point < begin) continue;
        if (point >= end) break;
        if (begin < point) step(begin, point);
        begin = point + 1;
    }
    if (begin < end) step(begin, end);
}

}  // namespace qel
