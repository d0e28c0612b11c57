#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "qellib10/graph/linear_ticks.h"
#include "qellib10/graph/tick_text.h"

namespace qel {
namespace {

constexpr int kLeastDecade = -307;               // below, doubles have fewer digits
constexpr int kLeastPlain = -3, kMostPlain = 4;  // 0.001 to 10000
constexpr double kDecadesWithParts = 2.9;        // fewer decades have texts at 2 and 5, too

// Decades between texts; 10^100 is easier to find than 10^91.
constexpr std::array kDistances = {1, 2, 3, 4, 5, 6, 10, 15, 20, 25, 30, 50, 100, 200, 300};

struct LogTick {
    double value;
    int number;  // 1 to 9
    int decade;
};

class LogSteps : public TickSteps {
public:
    LogSteps(double low, double high) {
        const int first = std::max(ShortestDigits(low).Exponent(), kLeastDecade),
                  last = ShortestDigits(high).Exponent();
        for (int decade = first; decade <= last; ++decade) {
            for (const int number : {1, 2, 3, 4, 5, 6, 7, 8, 9}) {
                const double value = Scaled(number, decade);
                if (value >= low && value <= high) m_all.push_back({value, number, decade});
            }
        }
        const std::vector<double> decades = Select([](const LogTick& tick) { return tick.number == 1; });
        m_isPlain = std::ranges::all_of(m_all, [](const LogTick& tick) {
            return tick.number != 1 || (tick.decade >= kLeastPlain && tick.decade <= kMostPlain);
        });
        m_hasParts = decades.size() < 2 || std::log10(high) - std::log10(low) < kDecadesWithParts;
    }

    // First 1, 2 and 5, then 1 and 5, then each decade, each second ...
    std::size_t Count() const override { return kDistances.size() + 2; }

    std::vector<double> Values(std::size_t step) const override {
        if (step < 2 && !m_hasParts) return {};
        return Select([step](const LogTick& tick) {
            if (step < 2) return tick.number == 1 || tick.number == 5 || (step == 0 && tick.number == 2);
            return tick.number == 1 && tick.decade % kDistances[step - 2] == 0;
        });
    }

    AxisTicks Labelled(std::size_t, const std::vector<double>& values) const override {
        AxisTicks axis;
        for (const double value : values) {
            const auto& tick = *std::ranges::find(m_all, value, &LogTick::value);
            axis.ticks.push_back({value, TextOf(tick), tick.number != 1});
        }
        return axis;
    }

    std::vector<std::vector<double>> Minor(std::size_t) const override {
        return {Select([](const LogTick&) { return true; }),
                Select([](const LogTick& tick) { return tick.number == 1 || tick.number == 2 || tick.number == 5; }),
                Select([](const LogTick& tick) { return tick.number == 1; })};
    }

private:
    template <typename Predicate> std::vector<double> Select(Predicate isWanted) const {
        std::vector<double> values;
        for (const LogTick& tick : m_all)
            if (isWanted(tick)) values.push_back(tick.value);
        return values;
    }

    std::string TextOf(const LogTick& tick) const {
        if (m_isPlain) return PlainText(tick.value, tick.value, 0);
        const std::string power = PowerText(tick.decade);
        return tick.number == 1 ? power : std::to_string(tick.number) + "\u00D7" + power;
    }

    std::vector<LogTick> m_all;
    bool m_isPlain = false, m_hasParts = false;
};

}  // namespace

AxisTicks LogTicks(double low, double high, const AxisSpace& space) {
    const TickPlaces places(low, high, true, space.length);
    if (high / 10 < low) return LinearTicksAt(places, ChartExponent::kPower, space);
    return ChooseTicks(LogSteps(low, high), places, space);
}

}  // namespace qel
