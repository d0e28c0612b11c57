#include <algorithm>
#include <optional>
#include <set>

#include "qellib10/graph/tick_choice.h"

namespace qel {
namespace {

class PartTicks {
public:
    PartTicks(const TickSteps& steps, const TickPlaces& places, const AxisSpace& space)
        : m_steps(steps), m_places(places), m_space(space) {}

    AxisTicks Chosen() {
        for (std::size_t i = 0; i < m_steps.Count() && m_covered < m_places.Parts().size(); ++i) {
            const std::vector<double> values = m_steps.Values(i);
            if (values.size() >= 2) Try(i, i, values);
        }
        for (std::size_t part = 0; part < m_places.Parts().size(); ++part)
            if (!m_best || !HasText(*m_best, part)) AddLone(part);
        if (!m_best) return {};
        return WithMinor(*std::move(m_best), m_steps.Minor(m_step), m_places, m_space);
    }

private:
    std::size_t PartOf(double value) const {
        const auto& parts = m_places.Parts();
        const auto found = std::ranges::find_if(parts, [&](const AxisRange& part) { return value <= part.high; });
        return static_cast<std::size_t>(found - parts.begin());
    }

    bool HasText(const AxisTicks& axis, std::size_t part) const {
        return std::ranges::any_of(axis.ticks, [&](const AxisTick& tick) { return PartOf(tick.value) == part; });
    }

    // Which of two neighbours in different parts, whose texts meet, has to go.
    std::optional<std::size_t> Meeting(const std::vector<AxisTick>& ticks) const {
        const auto countOf = [&](std::size_t part) {
            return std::ranges::count(ticks, part, [&](const AxisTick& tick) { return PartOf(tick.value); });
        };
        for (std::size_t i = 1; i < ticks.size(); ++i) {
            const std::size_t before = PartOf(ticks[i - 1].value), part = PartOf(ticks[i].value);
            if (before == part || DoTextsFit({ticks[i - 1], ticks[i]}, m_places, m_space)) continue;
            if (countOf(before) > 1) return i - 1;
            if (countOf(part) > 1) return i;
        }
        return {};
    }

    // Takes the texts of @p step at these values if they fit and more parts have one than before.
    void Try(std::size_t step, std::size_t minor, std::vector<double> values) {
        AxisTicks axis = m_steps.Labelled(step, values);
        // Without one of the values, other texts may be longer: that of a time has the date instead of it.
        while (const auto at = Meeting(axis.ticks)) {
            values.erase(values.begin() + static_cast<std::ptrdiff_t>(*at));
            axis = m_steps.Labelled(step, values);
        }
        if (!DoTextsFit(axis.ticks, m_places, m_space)) return;
        std::set<std::size_t> covered;
        for (const double value : values) covered.insert(PartOf(value));
        if (covered.size() <= m_covered) return;
        m_covered = covered.size();
        m_values = std::move(values);
        m_best = std::move(axis);
        m_step = minor;
        m_textStep = step;
    }

    // The roundest value of the part.
    void AddLone(std::size_t part) {
        for (std::size_t i = m_steps.Count(); i-- > 0;) {
            std::vector<double> values = m_steps.Values(i);
            std::erase_if(values, [&](double value) { return PartOf(value) != part; });
            if (values.empty()) continue;
            std::vector<double> all = m_values;
            all.push_back(values[values.size() / 2]);
            std::ranges::sort(all);
            return m_best ? Try(m_steps.Finer(m_textStep, i), m_step, all) : Try(i, i, all);
        }
    }

    const TickSteps& m_steps;
    const TickPlaces& m_places;
    const AxisSpace& m_space;
    std::optional<AxisTicks> m_best;
    std::vector<double> m_values;  // that have texts
    std::size_t m_covered = 0;     // parts with a text
    std::size_t m_step = 0, m_textStep = 0;
};

}  // namespace

AxisTicks ChooseTicksOfParts(const TickSteps& steps, const TickPlaces& places, const AxisSpace& space) {
    return PartTicks(steps, places, space).Chosen();
}

}  // namespace qel
