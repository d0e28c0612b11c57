#include <algorithm>

#include "qellib10/graph/linear_ticks.h"
#include "qellib10/graph/time_steps.h"

namespace qel {
namespace {

constexpr double kYear1 = -62135596800, kYear10000 = 253402300800;
constexpr double kDay = 86400;  // local clocks are less than this from UTC

class TimeSteps : public TickSteps {
public:
    TimeSteps(const TickPlaces& places, ChartClock clock, const AxisSpace& space)
        : m_isBroken(places.Parts().size() > 1),
          m_clock(clock),
          m_mostTexts(MostTexts(space)),
          m_mostMinor(MostMinor(space)) {
        const bool isLocal = clock == ChartClock::kLocal;
        for (const auto& [low, high] : places.Parts()) {
            const AxisRange part{std::max(low, kYear1 + (isLocal ? kDay : 0)),
                                 std::min(high, kYear10000 - (isLocal ? kDay : 0.001))};
            if (part.low <= part.high) m_parts.push_back(part);
        }
    }

    std::size_t Count() const override { return m_parts.empty() ? 0 : TimeStepTable().size(); }

    std::vector<double> Values(std::size_t step) const override { return TimesAt(TimeStepTable()[step], m_mostTexts); }

    AxisTicks Labelled(std::size_t step, const std::vector<double>& values) const override {
        return TimesWithTexts(TimeStepTable()[step], values, m_clock, m_isBroken);
    }

    std::vector<std::vector<double>> Minor(std::size_t step) const override {
        return {TimesAt(TimeStepTable()[step].Minor(), m_mostMinor)};
    }

private:
    std::vector<double> TimesAt(const TimeStep& step, std::size_t most) const {
        return TimesOf(step, m_parts, m_clock, most);
    }

    std::vector<AxisRange> m_parts;
    bool m_isBroken;
    WallClock m_clock;
    std::size_t m_mostTexts, m_mostMinor;
};

}  // namespace

AxisTicks TimeTicksAt(const TickPlaces& places, ChartClock clock, const AxisSpace& space) {
    return ChooseTicks(TimeSteps(places, clock, space), places, space);
}

AxisTicks TimeTicks(double low, double high, ChartClock clock, const AxisSpace& space) {
    return TimeTicksAt(TickPlaces(low, high, false, space.length), clock, space);
}

}  // namespace qel
