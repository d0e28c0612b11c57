#include <algorithm>

#include "qellib10/graph/tick_choice.h"
#include "qellib10/graph/time_steps.h"

namespace qel {
namespace {

constexpr double kYear1 = -62135596800, kYear10000 = 253402300800;
constexpr double kDay = 86400;  // local clocks are less than this from UTC

class TimeSteps : public TickSteps {
public:
    TimeSteps(double low, double high, ChartClock clock, const AxisSpace& space)
        : m_low(std::max(low, kYear1 + (clock == ChartClock::kLocal ? kDay : 0))),
          m_high(std::min(high, kYear10000 - (clock == ChartClock::kLocal ? kDay : 0.001))),
          m_clock(clock),
          m_mostTexts(MostTexts(space)),
          m_mostMinor(MostMinor(space)) {}

    std::size_t Count() const override { return m_low <= m_high ? TimeStepTable().size() : 0; }

    std::vector<double> Values(std::size_t step) const override { return TimesAt(TimeStepTable()[step], m_mostTexts); }

    AxisTicks Labelled(std::size_t step, const std::vector<double>& values) const override {
        return TimesWithTexts(TimeStepTable()[step], values, m_clock);
    }

    std::vector<std::vector<double>> Minor(std::size_t step) const override {
        return {TimesAt(TimeStepTable()[step].Minor(), m_mostMinor)};
    }

private:
    std::vector<double> TimesAt(const TimeStep& step, std::size_t most) const {
        return TimesOf(step, m_low, m_high, m_clock, most);
    }

    double m_low, m_high;
    WallClock m_clock;
    std::size_t m_mostTexts, m_mostMinor;
};

}  // namespace

AxisTicks TimeTicks(double low, double high, ChartClock clock, const AxisSpace& space) {
    return ChooseTicks(TimeSteps(low, high, clock, space), TickPlaces(low, high, false, space.length), space);
}

}  // namespace qel
