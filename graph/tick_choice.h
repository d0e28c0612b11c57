#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "qellib10/graph/axis_places.h"
#include "qellib10/graph/axis_ticks.h"

// Which step an axis takes: the same for numbers, times and names.
namespace qel {

/// Whatever a range and a space are, an axis has no more ticks.
inline constexpr std::size_t kMostTicks = 1000;

/// Where values are along an axis, from 0 at its low end.
class TickPlaces {
public:
    TickPlaces(double low, double high, bool isLogarithmic, double length);
    /// Of an axis with breaks.
    explicit TickPlaces(const AxisPlaces& places);

    double At(double value) const;
    double Low() const { return m_low; }
    double High() const { return m_high; }
    /// The ranges that are shown, ascending.
    const std::vector<AxisRange>& Parts() const { return m_parts; }
    /// Half the length of all of them: the whole may be more than a number can hold.
    double HalfLength() const;

private:
    double FromLow(double value) const;

    double m_low, m_high;
    bool m_isLogarithmic;
    double m_length;
    double m_range;  // what FromLow gives at the high end
    std::vector<AxisRange> m_parts;
    AxisPlaces m_broken;  // with breaks
};

/// The steps that an axis can have.
class TickSteps {
public:
    virtual ~TickSteps() = default;

    /// Steps count from 0, the closest one first.
    virtual std::size_t Count() const = 0;
    /// Ascending and inside the range; none if there are more than could have a text.
    virtual std::vector<double> Values(std::size_t step) const = 0;
    /// Ticks at some values of a step, with all that depends on which these are.
    virtual AxisTicks Labelled(std::size_t step, const std::vector<double>& values) const = 0;
    /// Values of minor ticks, which may include others: the first set is taken that has space.
    virtual std::vector<std::vector<double>> Minor(std::size_t step) const = 0;
    /// Of two steps the one whose texts show the values of both.
    virtual std::size_t Finer(std::size_t one, std::size_t other) const { return std::min(one, other); }
};

AxisTicks ChooseTicks(const TickSteps& steps, const TickPlaces& places, const AxisSpace& space);

/// ChooseTicks of an axis with breaks: the closest ticks with a text in each part, or in as many as possible. Where the
/// texts at both sides of a gap meet, that of the lower value is left out, or the other one if it is the last of its
/// part. A part that no step of the others hits has one tick, if its text fits.
AxisTicks ChooseTicksOfParts(const TickSteps& steps, const TickPlaces& places, const AxisSpace& space);

/// Whether no text meets the one before it.
bool DoTextsFit(const std::vector<AxisTick>& ticks, const TickPlaces& places, const AxisSpace& space);
/// With the first of the sets that has space.
AxisTicks WithMinor(AxisTicks axis, const std::vector<std::vector<double>>& sets, const TickPlaces& places,
                    const AxisSpace& space);

/// No more texts can have space; 2 to kMostTicks.
std::size_t MostTexts(const AxisSpace& space);
/// No more minor ticks can have space.
std::size_t MostMinor(const AxisSpace& space);

}  // namespace qel
