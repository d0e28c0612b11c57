#include "qellib10/graph/tick_choice.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>

namespace qel {
namespace {

bool AreApart(const std::vector<AxisTick>& ticks, const TickPlaces& places, double least) {
    for (std::size_t i = 1; i < ticks.size(); ++i)
        if (!(places.At(ticks[i].value) - places.At(ticks[i - 1].value) >= least)) return false;
    return true;
}

// The first and the last value of the widest step that has two.
std::optional<AxisTicks> TwoEnds(const TickSteps& steps, const TickPlaces& places, const AxisSpace& space) {
    for (std::size_t i = steps.Count(); i-- > 0;) {
        const std::vector<double> values = steps.Values(i);
        if (values.size() < 2) continue;
        AxisTicks axis = steps.Labelled(i, {values.front(), values.back()});
        if (DoTextsFit(axis.ticks, places, space)) return WithMinor(std::move(axis), {values}, places, space);
    }
    return std::nullopt;
}

AxisTicks OneTick(const TickSteps& steps) {
    for (std::size_t i = steps.Count(); i-- > 0;) {
        const std::vector<double> values = steps.Values(i);
        if (!values.empty()) return steps.Labelled(i, {values[values.size() / 2]});
    }
    return {};
}

std::size_t Most(double length, double distance) {
    const double most = length / distance + 2;
    return most >= 2 && most < kMostTicks ? static_cast<std::size_t>(most) : kMostTicks;
}

}  // namespace

bool DoTextsFit(const std::vector<AxisTick>& ticks, const TickPlaces& places, const AxisSpace& space) {
    double end = -std::numeric_limits<double>::infinity();
    for (const AxisTick& tick : ticks) {
        if (tick.text.empty()) continue;
        const double half = space.extent(tick.text) / 2, place = places.At(tick.value);
        if (!(place - half >= end)) return false;
        end = place + half;
    }
    return true;
}

AxisTicks WithMinor(AxisTicks axis, const std::vector<std::vector<double>>& sets, const TickPlaces& places,
                    const AxisSpace& space) {
    for (const std::vector<double>& set : sets) {
        std::vector<AxisTick> all = axis.ticks;
        for (const double value : set)
            if (!std::ranges::binary_search(axis.ticks, value, {}, &AxisTick::value)) all.push_back({value, {}, true});
        if (all.size() > kMostTicks) continue;
        std::ranges::sort(all, {}, &AxisTick::value);
        if (!AreApart(all, places, space.shortestMinor)) continue;
        axis.ticks = std::move(all);
        break;
    }
    return axis;
}

TickPlaces::TickPlaces(double low, double high, bool isLogarithmic, double length)
    : m_low(low),
      m_high(high),
      m_isLogarithmic(isLogarithmic),
      m_length(length),
      m_range(FromLow(high)),
      m_parts{{low, high}} {}

TickPlaces::TickPlaces(const AxisPlaces& places)
    : TickPlaces(places.low, places.high, false, std::fabs(places.to - places.from)) {
    m_broken = places;
    m_parts.clear();
    for (const AxisPart& part : places.parts) m_parts.push_back({part.low, part.high});
}

double TickPlaces::At(double value) const {
    if (m_parts.size() > 1) return std::fabs(m_broken.At(value) - m_broken.from);
    return FromLow(value) / m_range * m_length;
}

double TickPlaces::HalfLength() const {
    double length = 0;
    for (const AxisRange& part : m_parts) length += part.high / 2 - part.low / 2;
    return length;
}

double TickPlaces::FromLow(double value) const {
    // Halves: the difference of the ends may be more than a number can hold.
    if (!m_isLogarithmic) return value / 2 - m_low / 2;
    // The difference of two logarithms would lose the digits of a narrow range, a quotient would overflow in a wide
    // one.
    return m_high / 10 < m_low ? std::log1p((value - m_low) / m_low) : std::log(value) - std::log(m_low);
}

AxisTicks ChooseTicks(const TickSteps& steps, const TickPlaces& places, const AxisSpace& space) {
    if (places.Parts().size() > 1) return ChooseTicksOfParts(steps, places, space);
    for (std::size_t i = 0; i < steps.Count(); ++i) {
        const std::vector<double> values = steps.Values(i);
        if (values.size() < 2) continue;
        AxisTicks axis = steps.Labelled(i, values);
        if (DoTextsFit(axis.ticks, places, space)) return WithMinor(std::move(axis), steps.Minor(i), places, space);
    }
    if (std::optional<AxisTicks> ends = TwoEnds(steps, places, space)) return *std::move(ends);
    return OneTick(steps);
}

std::size_t MostTexts(const AxisSpace& space) { return Most(space.length, space.extent("0")); }

std::size_t MostMinor(const AxisSpace& space) { return Most(space.length, space.shortestMinor); }

}  // namespace qel
