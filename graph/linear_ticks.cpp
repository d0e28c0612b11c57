#include "qellib10/graph/linear_ticks.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "qellib10/graph/tick_text.h"

namespace qel {
namespace {

constexpr int kDigits = 15;          // each number of so many digits has a double of its own
constexpr double kMostUnits = 1e15;  // whole numbers of kDigits
constexpr int kLeastPlace = -307;    // below, doubles have fewer digits
constexpr std::size_t kFewTexts = 4;

// number * 10^place.
struct Step {
    std::int64_t number;  // 1, 2, 5 or 25
    int place;

    double Value() const { return Scaled(number, place); }
    bool IsQuarter() const { return number == 25; }
    Step Minor() const {
        switch (number) {
            case 1:
                return {2, place - 1};
            case 2:
                return {5, place - 1};
            default:
                return {number / 5, place};
        }
    }
};

class LinearSteps : public TickSteps {
public:
    LinearSteps(const TickPlaces& places, ChartExponent kind, const AxisSpace& space)
        : m_parts(places.Parts()),
          m_largest(std::max(std::abs(places.Low()), std::abs(places.High()))),
          m_kind(kind),
          m_exponent(AxisExponent(m_largest, kind)),
          m_mostTexts(MostTexts(space)),
          m_mostMinor(MostMinor(space)) {
        const int first = ShortestDigits(places.HalfLength()).Exponent() - 3;
        // In a range too narrow for steps, at least one number may be round.
        const int last = std::max(first + 4, ShortestDigits(m_largest).Exponent() - kDigits + 2);
        for (int place = first; place <= last; ++place)
            for (const Step& step : {Step{1, place}, Step{2, place}, Step{25, place - 1}, Step{5, place}})
                m_steps.push_back(step);
    }

    std::size_t Count() const override { return m_steps.size(); }

    std::vector<double> Values(std::size_t at) const override {
        const Step& step = m_steps[at];
        const bool isLonger = step.IsQuarter() && step.place < m_exponent;
        if (isLonger && ValuesOf(m_steps[at + 1], m_mostTexts).size() >= kFewTexts) return {};
        return ValuesOf(step, m_mostTexts);
    }

    AxisTicks Labelled(std::size_t at, const std::vector<double>& values) const override {
        AxisTicks axis;
        axis.step = m_steps[at].Value();
        if (LongestText(values, axis.step, m_exponent) < LongestText(values, axis.step, 0)) axis.exponent = m_exponent;
        axis.factor = FactorText(axis.exponent, m_kind);
        // All texts in one form, not "800000000000" and "1.0e+12".
        const bool isScientific = axis.exponent == 0 && std::ranges::any_of(values, [&](double value) {
                                      return NumberText(value, axis.step, 0) != PlainText(value, axis.step, 0);
                                  });
        for (const double value : values)
            axis.ticks.push_back(
                {value, isScientific ? ScientificText(value, axis.step) : NumberText(value, axis.step, axis.exponent)});
        return axis;
    }

    std::vector<std::vector<double>> Minor(std::size_t at) const override {
        return {ValuesOf(m_steps[at].Minor(), m_mostMinor)};
    }

    std::size_t Finer(std::size_t one, std::size_t other) const override {
        return m_steps[one].place <= m_steps[other].place ? one : other;
    }

private:
    // The text of the first or the last value.
    static std::size_t LongestText(const std::vector<double>& values, double step, int exponent) {
        return std::max(PlainText(values.front(), step, exponent).size(),
                        PlainText(values.back(), step, exponent).size());
    }

    std::vector<double> ValuesOf(const Step& step, std::size_t most) const {
        const double unit = Scaled(1, step.place), size = step.Value();
        if (step.place < kLeastPlace || !std::isfinite(size) || m_largest / unit > kMostUnits) return {};
        std::vector<double> values;
        for (const auto& [low, high] : m_parts) {
            // Quotients of doubles may be one off.
            const double first = std::ceil(low / size) - 1, last = std::floor(high / size) + 1;
            if (last - first > static_cast<double>(most) + 2) return {};
            for (auto i = static_cast<std::int64_t>(first); i <= static_cast<std::int64_t>(last); ++i) {
                const double value = Scaled(i * step.number, step.place);
                if (value >= low && value <= high) values.push_back(value);
            }
        }
        return values.size() <= most ? values : std::vector<double>();
    }

    std::vector<AxisRange> m_parts;
    double m_largest;
    ChartExponent m_kind;
    int m_exponent;
    std::size_t m_mostTexts, m_mostMinor;
    std::vector<Step> m_steps;
};

}  // namespace

AxisTicks LinearTicksAt(const TickPlaces& places, ChartExponent exponent, const AxisSpace& space) {
    return ChooseTicks(LinearSteps(places, exponent, space), places, space);
}

AxisTicks LinearTicks(double low, double high, ChartExponent exponent, const AxisSpace& space) {
    return LinearTicksAt(TickPlaces(low, high, false, space.length), exponent, space);
}

}  // namespace qel
