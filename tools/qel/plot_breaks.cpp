#include "plot_breaks.h"

#include <algorithm>
#include <cmath>

#include "csv_time.h"

namespace tool {

PlotBreaks::PlotBreaks(const PlotOptions& options) : m_options(options) {
    for (const std::string& text : options.breaks) m_breaks.push_back(Parsed(text));
}

PlotBreaks::Break PlotBreaks::Parsed(const std::string& text) const {
    const std::size_t equals = std::min(text.find('='), text.size()), dots = text.find("..", equals);
    const std::string axis = text.substr(0, equals);
    Break found;
    std::optional<double> from, to;
    if (axis == "y") found.upward = 1;
    if (axis.size() == 2 && axis[0] == 'y' && axis[1] >= '1' && axis[1] <= '9')
        found.upward = static_cast<std::size_t>(axis[1] - '0');
    if (dots != std::string::npos && (axis == "x" || found.upward > 0)) {
        const std::string first = text.substr(equals + 1, dots - equals - 1), second = text.substr(dots + 2);
        from = ParseNumber(first), to = ParseNumber(second);
        if (!from && !to) {
            TimeReader reader(m_options.utc);
            from = reader.Read(first), to = reader.Read(second);
            found.isTime = true;
        }
    }
    if (!from || !to || *from == *to) throw CLI::ValidationError("\"" + text + "\" is not a break such as x=12..80");
    found.range = {std::min(*from, *to), std::max(*from, *to)};
    return found;
}

void PlotBreaks::Check(bool isLogX, bool isLogY) const {
    for (const Break& each : m_breaks) {
        if (each.upward == 0 ? isLogX : isLogY) throw CLI::ValidationError("--break: a logarithmic axis has none");
        if (each.upward > 0 && each.isTime) throw CLI::ValidationError("--break: times are across");
    }
}

bool PlotBreaks::NeedAllPoints() const {
    // In a line the columns across are thinned, of marks also cells upward.
    return std::ranges::any_of(m_breaks, [&](const Break& each) { return each.upward == 0 || m_options.points; });
}

bool PlotBreaks::IsIn(std::size_t upward, double value) const {
    return std::ranges::any_of(m_breaks, [&](const Break& each) {
        return each.upward == upward && value > each.range.from && value < each.range.to;
    });
}

void PlotBreaks::Count(std::size_t curve, double x, double y) {
    if (m_breaks.empty() || std::isnan(x) || std::isnan(y)) return;
    m_counts.resize(std::max(m_counts.size(), curve + 1));
    if (IsIn(0, x)) {
        ++m_counts[curve][0];
        return;
    }
    for (std::size_t upward = 1; upward <= kMostUpward; ++upward) m_counts[curve][upward] += IsIn(upward, y) ? 1 : 0;
}

void PlotBreaks::AddTo(qel::Chart& chart) const {
    const bool isTime = chart.axes.front().scale == qel::ChartScale::kTime;
    for (std::size_t i = 0; i < m_breaks.size(); ++i) {
        const Break& each = m_breaks[i];
        const std::string option = "--break " + m_options.breaks[i] + ": ";
        if (each.upward >= chart.axes.size())
            throw CLI::ValidationError(option + "the chart has " + tool::Count(chart.axes.size() - 1, "axis", "axes") +
                                       " upward");
        if (each.upward == 0 && each.isTime != isTime)
            throw CLI::ValidationError(option + "column \"" + m_options.x + "\" has " + (isTime ? "times" : "numbers"));
        chart.axes[each.upward].breaks.push_back(each.range);
    }
}

std::size_t PlotBreaks::PointsIn(const qel::Chart& chart) const {
    std::size_t points = 0;
    for (std::size_t i = 0; i < m_counts.size(); ++i) points += m_counts[i][0] + m_counts[i][chart.series[i].yAxis];
    return points;
}

}  // namespace tool
