#include "qellib10/evaluation/peak_reader.h"

#include <cmath>
#include <numeric>

#include "qellib10/evaluation/level_crossing.h"
#include "qellib10/evaluation/peak_overlap.h"
#include "qellib10/evaluation/peak_top.h"

namespace qel {
namespace {

constexpr double kCut = 0.05;  // of the height: what ends higher is cut off
constexpr double kTailingHeight = 0.05;
constexpr double kClearHeight = 3;   // standard deviations of a reading
constexpr double kReach = 1.7;       // times the place with a twentieth of the height
constexpr double kDeviations = 2.4;  // the width of a peak at half height is so many standard deviations

double Square(double value) { return value * value; }

// One peak of a curve above its baseline.
class PeakReader {
public:
    PeakReader(const PeakCurve& curve, const FoundPeak& found)
        : m_curve(curve),
          m_data(curve.data),
          m_baseline(curve.baseline),
          m_options(curve.options),
          m_moved(curve.moved),
          m_above(curve.above),
          m_smoothed(curve.smoothed),
          m_found(Widened(curve, found)),
          m_overlap(curve, m_found) {}

    CurvePeak Read() {
        CurvePeak peak;
        peak.start = m_data.x[m_found.first];
        peak.end = m_data.x[m_found.last];
        ReadTop(peak);
        if (!peak.position) {
            peak.width = peak.tailing = Refused(peak.position.refusal, peak.position.reason);
        } else {
            ReadWidth(peak);
            ReadTailing(peak);
        }
        ReadArea(peak);
        return peak;
    }

private:
    // The sides of a peak at a part of its height.
    struct Sides {
        CurveValue left, right;  // x is the place; y the slope there; the uncertainty is that of the smoothed signal
        double level = 0;        // standard uncertainty of the height that they are taken at
        CurveResult refusal;
    };

    CurveResult Result(double value, double variance) const {
        CurveResult result;
        result.value = value;
        result.uncertainty = std::sqrt(variance);
        result.degreesOfFreedom = m_data.noiseDegrees;
        return result;
    }

    // Where the smoothed curve comes to the baseline is chance: it may be early, where the peak is not yet over.
    static FoundPeak Widened(const PeakCurve& curve, FoundPeak found) {
        const std::vector<double>&smoothed = curve.smoothed, &x = curve.data.x;
        const double least = kTailingHeight * smoothed[found.top], top = x[found.top];
        std::size_t left = found.top, right = found.top;
        while (left > found.first && smoothed[left] > least) --left;
        while (right < found.last && smoothed[right] > least) ++right;
        const auto reach = curve.data.In({top - kReach * (top - x[left]), top + kReach * (x[right] - top)});
        found.first = std::max(std::min(found.first, reach.first), found.start);
        found.last = std::min(std::max(found.last, reach.second - 1), found.end);
        return found;
    }

    void ReadTop(CurvePeak& peak) {
        const PeakTop top = FindPeakTop(m_curve, m_found);
        if (top.refusal.refusal != CurveRefusal::kNone) {
            peak.position = peak.height = top.refusal;
            return;
        }
        double moved = 0;
        for (std::size_t i = m_found.first; i <= m_found.last; ++i) moved = std::max(moved, std::abs(m_moved[i]));
        m_ofBaseline = Square(m_baseline.Uncertainty(m_data, m_found.top)) + Square(moved);
        peak.position = Result(top.place, top.placeVariance);
        peak.height = Result(top.height, top.heightVariance + m_ofBaseline + Square(m_overlap.At(top.place)));
    }

    void ReadArea(CurvePeak& peak) const {
        const double most = kCut * m_smoothed[m_found.top];
        const bool isCut = (m_found.first == 0 && m_smoothed[0] > most) ||
                           (m_found.last + 1 == m_data.size() && m_smoothed[m_found.last] > most);
        if (isCut || m_data.PartOf(m_found.first) != m_data.PartOf(m_found.last)) {
            peak.area = Refused(isCut ? CurveRefusal::kOverlap : CurveRefusal::kPause,
                                "the area of the peak at " + NumberInSentence(m_data.x[m_found.top]) + " is unknown: " +
                                    (isCut ? "the curve starts or ends in it" : "there is a pause in it"));
            return;
        }
        std::vector<double> factors(m_data.size(), 0.0);
        for (std::size_t i = m_found.first; i < m_found.last; ++i) {
            const double half = (m_data.x[i + 1] - m_data.x[i]) / 2;
            factors[i] += half;
            factors[i + 1] += half;
        }
        double area = 0, variance = 0;
        double ofShape = 0;
        for (std::size_t i = m_found.first; i <= m_found.last; ++i) {
            area += factors[i] * m_above[i];
            ofShape += factors[i] * m_moved[i];
        }
        const std::vector<double> ofBaseline = m_baseline.Influence(factors);
        for (std::size_t i = 0; i < factors.size(); ++i)
            variance += Square(factors[i] - ofBaseline[i]) / m_data.counts[i];
        // One window of readings at either end, more or less.
        double ends = 0;
        for (const std::size_t i : {m_found.first, m_found.last}) {
            const std::size_t before = std::max<std::size_t>(i, 1) - 1,
                              window = std::min(m_options.window, m_data.size());
            ends += static_cast<double>(window) * Square(m_data.x[before + 1] - m_data.x[before]);
        }
        peak.area = Result(area, Square(m_data.noise) * (variance + ends) + Square(ofShape) +
                                     Square(m_overlap.OfArea()) + Square(OfTrapezoids()));
    }

    // What trapezoids leave out where the signal bends. At even steps the sum of it is next to nothing.
    double OfTrapezoids() const {
        const auto slope = [&](std::size_t i) {
            return (m_above[i + 1] - m_above[i]) / (m_data.x[i + 1] - m_data.x[i]);
        };
        const auto bend = [&](std::size_t i) {  // the second derivative
            if (i == 0 || i + 1 == m_data.size()) return 0.0;
            return 2 * (slope(i) - slope(i - 1)) / (m_data.x[i + 1] - m_data.x[i - 1]);
        };
        double sum = 0;
        for (std::size_t i = m_found.first; i < m_found.last; ++i)
            sum += std::pow(m_data.x[i + 1] - m_data.x[i], 3) / 12 * std::midpoint(bend(i), bend(i + 1));
        return sum;
    }

    // About a standard deviation of the peak: a wider one flattens its sides, and a narrower one is noisier.
    std::size_t SideWindow() const {
        std::size_t wide = 0;
        for (std::size_t i = m_found.first; i <= m_found.last; ++i)
            wide += m_smoothed[i] > m_smoothed[m_found.top] / 2 ? 1 : 0;
        const auto window = static_cast<std::size_t>(static_cast<double>(wide) / kDeviations) | 1;
        return std::max(window, m_options.degree + 1 + (m_options.degree % 2));
    }

    Sides SidesAt(const CurvePeak& peak, double part, std::size_t window) const {
        const double level = part * *peak.height.value;
        LocalFit fit(m_data, window, m_options.degree);
        const auto isAbove = [&](std::size_t i) {
            CurveValue value{0, m_smoothed[i], 0};
            fit.At(i, m_data.x[i], 0, m_above, value);
            return value.y > level;
        };
        std::size_t left = m_found.top, right = m_found.top;
        while (left > m_found.first && isAbove(left)) --left;
        while (right < m_found.last && isAbove(right)) ++right;
        Sides sides;
        if (isAbove(left) || isAbove(right) || left == right) {
            sides.refusal = Refused(CurveRefusal::kOverlap, "the peak at " + NumberInSentence(*peak.position.value) +
                                                                " does not come down to " + NumberInSentence(part) +
                                                                " of its height on both sides");
            return sides;
        }
        if (IsPause(m_data, left) || IsPause(m_data, right - 1)) {
            sides.refusal = Refused(CurveRefusal::kPause, "there is a pause at the side of the peak at " +
                                                              NumberInSentence(*peak.position.value));
            return sides;
        }
        const auto side = [&](std::size_t before) {
            const auto [at, slope] = RefineCrossing(m_data, fit, m_above, before, [&](double /*x*/) { return level; });
            return CurveValue{at.x, slope.y, std::hypot(at.uncertainty, m_overlap.At(at.x))};
        };
        sides.left = side(left);
        sides.right = side(right - 1);
        sides.level = std::sqrt(Square(part * peak.height.uncertainty) + m_ofBaseline);
        if (!(sides.left.y > 0 && sides.right.y < 0))
            sides.refusal =
                Refused(CurveRefusal::kNoPlace,
                        "the sides of the peak at " + NumberInSentence(*peak.position.value) + " are unclear");
        return sides;
    }

    // A function of the places of both sides: its variance by its rates with them, and with the level.
    static double Variance(const Sides& sides, double ofLeft, double ofRight) {
        return Square(ofLeft * sides.left.uncertainty / sides.left.y) +
               Square(ofRight * sides.right.uncertainty / sides.right.y) +
               Square(sides.level * (ofLeft / sides.left.y + ofRight / sides.right.y));
    }

    void ReadWidth(CurvePeak& peak) const {
        const std::size_t window = SideWindow();
        const Sides sides = SidesAt(peak, 0.5, window), wider = SidesAt(peak, 0.5, window + 2);
        peak.width = sides.refusal;
        if (sides.refusal.refusal != CurveRefusal::kNone) return;
        const double width = sides.right.x - sides.left.x, moved = wider.right.x - wider.left.x - width;
        peak.width = Result(width, Variance(sides, -1, 1) + Square(moved));
    }

    void ReadTailing(CurvePeak& peak) const {
        if (kTailingHeight * *peak.height.value < kClearHeight * m_data.noise) {
            peak.tailing =
                Refused(CurveRefusal::kNoPlace, "a twentieth of the height of the peak at " +
                                                    NumberInSentence(*peak.position.value) +
                                                    " is not clear of the noise of " + NumberInSentence(m_data.noise));
            return;
        }
        const std::size_t window = SideWindow();
        const Sides sides = SidesAt(peak, kTailingHeight, window);
        const Sides wider = SidesAt(peak, kTailingHeight, window + 2);
        peak.tailing = sides.refusal;
        if (sides.refusal.refusal != CurveRefusal::kNone) return;
        const auto factor = [&](const Sides& s) {
            return (s.right.x - s.left.x) / (2 * (*peak.position.value - s.left.x));
        };
        const double front = *peak.position.value - sides.left.x, width = sides.right.x - sides.left.x;
        const double ofTop = -width / (2 * Square(front)), ofRight = 1 / (2 * front);
        const double moved = factor(wider) - factor(sides);
        peak.tailing = Result(factor(sides), Variance(sides, -ofTop - ofRight, ofRight) +
                                                 Square(ofTop * peak.position.uncertainty) + Square(moved));
    }

    const PeakCurve& m_curve;
    const CurveData& m_data;
    const CurveBaseline& m_baseline;
    const PeakOptions& m_options;
    const std::vector<double>&m_moved, &m_above, &m_smoothed;
    const FoundPeak m_found;
    const PeakOverlap m_overlap;
    double m_ofBaseline = 0;  // its variance at the top
};

}  // namespace

CurvePeak ReadPeak(const PeakCurve& curve, const FoundPeak& found) { return PeakReader(curve, found).Read(); }

}  // namespace qel
