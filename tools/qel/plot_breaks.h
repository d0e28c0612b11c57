#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "chart_options.h"

namespace tool {

/// The ranges that axes of a chart leave out, by --break, and how many points are in them.
class PlotBreaks {
public:
    /// "x=1800..2700", "y=16..240", "y2=0.5..7" for the second vertical axis, "x=2026-11-28T12:00..2026-12-05".
    /// @throws CLI::ValidationError
    explicit PlotBreaks(const PlotOptions& options);

    /// @throws CLI::ValidationError for a break of a logarithmic axis, and for times upward
    void Check(bool isLogX, bool isLogY) const;
    /// Whether the chart may show a small part of what is read: thinned points would be seen.
    bool NeedAllPoints() const;
    /// A point that is read. Whose axis a curve has is known when all of the table is read.
    void Count(std::size_t curve, double x, double y);
    /// The first axis of the chart is that across, then come those upward.
    /// @throws CLI::ValidationError for an axis that the chart does not have, and for numbers at times
    void AddTo(qel::Chart& chart) const;
    std::size_t PointsIn(const qel::Chart& chart) const;

private:
    static constexpr std::size_t kMostUpward = 9;

    struct Break {
        std::size_t upward = 0;  // in Chart::axes; 0: the axis across
        qel::ChartBreak range;
        bool isTime = false;
    };
    Break Parsed(const std::string& text) const;
    bool IsIn(std::size_t upward, double value) const;

    const PlotOptions& m_options;
    std::vector<Break> m_breaks;
    std::vector<std::array<std::size_t, kMostUpward + 1>> m_counts;  // of each curve, by Break::upward
};

}  // namespace tool
