#include <algorithm>
#include <cmath>

#include "qellib10/graph/tick_choice.h"

namespace qel {
namespace {

class CategorySteps : public TickSteps {
public:
    CategorySteps(std::span<const std::string> names, double low, double high) : m_names(names) {
        const double count = static_cast<double>(names.size());
        m_first = static_cast<std::size_t>(std::clamp(std::ceil(low), 0.0, count));
        m_end = static_cast<std::size_t>(std::clamp(std::floor(high) + 1, 0.0, count));
        m_closest = (m_end - std::min(m_first, m_end)) / kMostTicks + 1;
    }

    std::size_t Count() const override { return kMostTicks; }

    std::vector<double> Values(std::size_t step) const override { return Each(m_closest * (step + 1)); }

    AxisTicks Labelled(std::size_t, const std::vector<double>& values) const override {
        AxisTicks axis;
        for (const double value : values) axis.ticks.push_back({value, m_names[static_cast<std::size_t>(value)]});
        return axis;
    }

    std::vector<std::vector<double>> Minor(std::size_t) const override { return {Each(m_closest)}; }

private:
    // Counted from the first name of all, so that a moved axis shows the same names.
    std::vector<double> Each(std::size_t distance) const {
        std::vector<double> values;
        for (std::size_t i = (m_first + distance - 1) / distance * distance; i < m_end; i += distance)
            values.push_back(static_cast<double>(i));
        return values;
    }

    std::span<const std::string> m_names;
    std::size_t m_first, m_end, m_closest;
};

}  // namespace

AxisTicks CategoryTicks(std::span<const std::string> names, double low, double high, const AxisSpace& space) {
    return ChooseTicks(CategorySteps(names, low, high), TickPlaces(low, high, false, space.length), space);
}

}  // namespace qel
