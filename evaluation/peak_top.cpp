#include "qellib10/evaluation/peak_top.h"

#include <cmath>
#include <numeric>

#include "qellib10/platform/algebra/least_squares.h"

namespace qel {
namespace {

constexpr double kTopPart = 2.0 / 3;      // of the height: a polynomial follows the top so far
constexpr double kHalf = 0.5;             // of the height: how far it does not is seen here
constexpr std::size_t kFewestInHalf = 4;  // readings above half of the height: fewer show no shape
constexpr std::size_t kFewestOfFour = 8;  // likewise, for polynomials of degree 4
constexpr std::size_t kReach = 2;         // points on either side, at least
constexpr double kClear = 4;              // standard errors of the bend
constexpr double kNearlyClear = 1;        // of a fit that another one is compared with
constexpr double kLeastOfLogarithms = 4;  // standard deviations of a reading that the half height is
constexpr int kMostSteps = 50;

double Square(double value) { return value * value; }

// What a polynomial is fitted to: parabolas through logarithms are normal distributions, those through reciprocals are
// Lorentz's.
enum class Scale { kLinear, kLogarithm, kReciprocal };

// How a top is fitted.
struct TopFit {
    double part;  // of the height that readings are above
    std::size_t degree;
    Scale scale;
};

class TopFinder {
public:
    TopFinder(const PeakCurve& curve, const FoundPeak& found) : m_curve(curve), m_found(found) {
        const auto first = curve.above.begin() + static_cast<std::ptrdiff_t>(found.first),
                   last = curve.above.begin() + static_cast<std::ptrdiff_t>(found.last) + 1;
        const auto highest = std::max_element(first, last);
        m_inHalf = static_cast<std::size_t>(std::count_if(first, last, [&](double y) { return y > *highest * kHalf; }));
        m_isNarrow = m_inHalf < kFewestOfFour;
        // A window that is wide for the peak flattens it.
        m_top = m_isNarrow ? static_cast<std::size_t>(highest - curve.above.begin()) : found.top;
    }

    PeakTop Find() const {
        const std::string where = "the top of the peak near " + NumberInSentence(m_curve.data.x[m_top]);
        if (m_inHalf < kFewestInHalf) {
            return Refuse(CurveRefusal::kTooFewPoints, where + " is between readings: " + PointsInSentence(m_inHalf) +
                                                           " above half of its height, " +
                                                           std::to_string(kFewestInHalf) + " are needed");
        }
        if (m_top == m_found.first || m_top == m_found.last)
            return Refuse(CurveRefusal::kNoPlace, where + " is at an end of it");
        if (!m_isNarrow) {
            const auto top = By({kTopPart, 4, Scale::kLinear}, kClear), wider = By({kHalf, 4, Scale::kLinear}, kClear);
            if (top && wider) return Compared(*top, {wider});
        }
        const bool isClear = kHalf * Values()[m_top] > kLeastOfLogarithms * m_curve.data.noise;
        const Scale scale = isClear ? Scale::kLogarithm : Scale::kLinear;
        const auto top = By({kHalf, 2, scale}, kClear);
        if (top) {
            return Compared(*top, {By({kTopPart, 2, Scale::kLinear}, kNearlyClear), By({kHalf, 3, scale}, kNearlyClear),
                                   m_isNarrow ? By({kHalf, 2, Scale::kReciprocal}, kNearlyClear) : std::nullopt});
        }
        return Refuse(CurveRefusal::kNoPlace, where + " is flat: the noise decides where it is");
    }

private:
    static PeakTop Refuse(CurveRefusal refusal, std::string reason) {
        PeakTop top;
        top.refusal = Refused(refusal, std::move(reason));
        return top;
    }

    const std::vector<double>& Values() const { return m_isNarrow ? m_curve.above : m_curve.smoothed; }

    // A top, and how far others differ from it.
    static PeakTop Compared(PeakTop top, std::initializer_list<std::optional<PeakTop>> others) {
        double place = 0, height = 0;
        for (const auto& other : others) {
            if (!other) continue;
            place = std::max(place, std::abs(other->place - top.place));
            height = std::max(height, std::abs(other->height - top.height));
        }
        top.placeVariance += Square(place);
        top.heightVariance += Square(height);
        return top;
    }

    // The largest value of a polynomial through the readings above a part of the height.
    std::optional<PeakTop> By(const TopFit& way, double clear) const {
        const CurveData& data = m_curve.data;
        const std::vector<double>&above = m_curve.above, &values = Values();
        std::size_t first = m_top, last = m_top;
        const double least = way.part * values[m_top];
        const std::size_t reach = m_isNarrow ? 1 : kReach;
        while (first > m_found.first && (values[first - 1] >= least || m_top - first < reach)) --first;
        while (last < m_found.last && (values[last + 1] >= least || last - m_top < reach)) ++last;
        const std::size_t columns = way.degree + 1;
        const double center = data.x[m_top], scale = (data.x[last] - data.x[first]) / 2;
        std::vector<double> design, y, weights;
        for (std::size_t i = first; i <= last; ++i) {
            if (way.scale != Scale::kLinear && !(above[i] > 0)) return std::nullopt;
            for (std::size_t k = 0; k < columns; ++k)
                design.push_back(std::pow((data.x[i] - center) / scale, static_cast<int>(k)));
            y.push_back(Scaled(above[i], way.scale));
            weights.push_back(data.counts[i] / Square(ScaledRate(values[i], way.scale)));
        }
        const auto fit = FitLeastSquares(design, columns, y, weights);
        if (!fit) return std::nullopt;
        // The factors of the coefficients in a derivative at t.
        const auto rates = [&](double t, int order) {
            std::vector<double> factors(columns, 0.0);
            for (std::size_t k = static_cast<std::size_t>(order); k < columns; ++k) {
                factors[k] = std::pow(t, static_cast<int>(k) - order);
                for (int j = 0; j < order; ++j) factors[k] *= static_cast<double>(k) - j;
            }
            return factors;
        };
        const auto value = [&](double t, int order) {
            const std::vector<double> factors = rates(t, order);
            return std::inner_product(factors.begin(), factors.end(), fit->coefficients.begin(), 0.0);
        };
        const auto noise = [&](double t, int order) { return Square(data.noise) * fit->Variance(rates(t, order)); };
        double t = 0;
        for (int step = 0; step < kMostSteps; ++step) {
            const double next = t - value(t, 1) / value(t, 2);
            const bool isSame = std::abs(next - t) < 1e-14;
            t = next;
            if (isSame) break;
        }
        const double low = (data.x[first] - center) / scale, high = (data.x[last] - center) / scale;
        if (!(t >= low && t <= high) || !(value(t, 2) < -clear * std::sqrt(noise(t, 2)))) return std::nullopt;
        const double height = Unscaled(value(t, 0), way.scale);
        return PeakTop{center + scale * t,
                       noise(t, 1) * Square(scale / value(t, 2)),
                       height,
                       noise(t, 0) / Square(ScaledRate(height, way.scale)),
                       {}};
    }

    // Each rises with y.
    static double Scaled(double y, Scale scale) {
        return scale == Scale::kLinear ? y : (scale == Scale::kLogarithm ? std::log(y) : -1 / y);
    }
    static double Unscaled(double value, Scale scale) {
        return scale == Scale::kLinear ? value : (scale == Scale::kLogarithm ? std::exp(value) : -1 / value);
    }
    static double ScaledRate(double y, Scale scale) {
        return scale == Scale::kLinear ? 1 : (scale == Scale::kLogarithm ? 1 / y : 1 / (y * y));
    }

    const PeakCurve& m_curve;
    const FoundPeak& m_found;
    std::size_t m_inHalf = 0, m_top = 0;  // readings above half of the height, and the highest one
    bool m_isNarrow = false;
};

}  // namespace

PeakTop FindPeakTop(const PeakCurve& curve, const FoundPeak& found) { return TopFinder(curve, found).Find(); }

}  // namespace qel
