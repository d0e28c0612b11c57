#include "qellib10/evaluation/peak_reader.h"

#include <cmath>
#include <numeric>

#include "qellib10/evaluation/level_crossing.h"

namespace qel {
namespace {

constexpr double kTopPart = 2.0 / 3;      // of the height: a polynomial follows the top so far
constexpr double kWiderPart = 0.5;        // of the height: how far it does not is seen here
constexpr std::size_t kFewestOfFour = 7;  // points for degree 4
constexpr std::size_t kTopReach = 2;      // points on either side, at least
constexpr double kClear = 4;              // standard errors
constexpr double kCut = 0.05;             // of the height: what ends higher is cut off
constexpr double kTailingHeight = 0.05;
constexpr double kReach = 1.7;       // times the place with a twentieth of the height
constexpr double kDeviations = 2.4;  // the width of a peak at half height is so many standard deviations
constexpr int kMostSteps = 50;

double Square(double value) { return value * value; }

// One peak of a curve above its baseline.
class PeakReader {
public:
    explicit PeakReader(const PeakCurve& curve)
        : m_data(curve.data),
          m_baseline(curve.baseline),
          m_options(curve.options),
          m_moved(curve.moved),
          m_above(curve.above),
          m_smoothed(curve.smoothed) {}

    CurvePeak Read(FoundPeak found) {
        Widen(found);
        CurvePeak peak;
        peak.start = m_data.x[found.first];
        peak.end = m_data.x[found.last];
        ReadTop(found, peak);
        if (!peak.position) {
            peak.width = peak.tailing = Refused(peak.position.refusal, peak.position.reason);
        } else {
            ReadWidth(found, peak);
            ReadTailing(found, peak);
        }
        ReadArea(found, peak);
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
    void Widen(FoundPeak& found) const {
        const double least = kTailingHeight * m_smoothed[found.top], top = m_data.x[found.top];
        std::size_t left = found.top, right = found.top;
        while (left > found.first && m_smoothed[left] > least) --left;
        while (right < found.last && m_smoothed[right] > least) ++right;
        const auto reach = m_data.In({top - kReach * (top - m_data.x[left]), top + kReach * (m_data.x[right] - top)});
        found.first = std::max(std::min(found.first, reach.first), found.start);
        found.last = std::min(std::max(found.last, reach.second - 1), found.end);
    }

    // The largest value of a polynomial.
    struct Top {
        double place = 0, placeVariance = 0, height = 0, heightVariance = 0;
    };

    // Of degree 4 through the readings above a part of the height, of degree 2 through few.
    std::optional<Top> TopAbove(const FoundPeak& found, double part) const {
        std::size_t first = found.top, last = found.top;
        const double least = part * m_smoothed[found.top];
        while (first > found.first && (m_smoothed[first - 1] >= least || found.top - first < kTopReach)) --first;
        while (last < found.last && (m_smoothed[last + 1] >= least || last - found.top < kTopReach)) ++last;
        const std::size_t count = last - first + 1, columns = count >= kFewestOfFour ? 5 : 3;
        const double center = m_data.x[found.top], scale = (m_data.x[last] - m_data.x[first]) / 2;
        std::vector<double> design;
        for (std::size_t i = first; i <= last; ++i) {
            for (std::size_t k = 0; k < columns; ++k)
                design.push_back(std::pow((m_data.x[i] - center) / scale, static_cast<int>(k)));
        }
        const auto fit = FitLeastSquares(design, columns, std::span(m_above).subspan(first, count),
                                         std::span(m_data.counts).subspan(first, count));
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
        const auto noise = [&](double t, int order) { return Square(m_data.noise) * fit->Variance(rates(t, order)); };
        double t = 0;
        for (int step = 0; step < kMostSteps; ++step) {
            const double next = t - value(t, 1) / value(t, 2);
            const bool isSame = std::abs(next - t) < 1e-14;
            t = next;
            if (isSame) break;
        }
        const double low = (m_data.x[first] - center) / scale, high = (m_data.x[last] - center) / scale;
        if (!(t >= low && t <= high) || !(value(t, 2) < -kClear * std::sqrt(noise(t, 2)))) return std::nullopt;
        return Top{center + scale * t, noise(t, 1) * Square(scale / value(t, 2)), value(t, 0), noise(t, 0)};
    }

    void ReadTop(const FoundPeak& found, CurvePeak& peak) {
        const std::optional<Top> top = TopAbove(found, kTopPart), wider = TopAbove(found, kWiderPart);
        if (!top || !wider) {
            peak.position = peak.height = Refused(
                CurveRefusal::kNoPlace, "the top of the peak near " + NumberInSentence(m_data.x[found.top]) +
                                            " is flat, at an end or of few points: the noise decides where it is");
            return;
        }
        double moved = 0;
        for (std::size_t i = found.first; i <= found.last; ++i) moved = std::max(moved, std::abs(m_moved[i]));
        m_ofBaseline = Square(m_baseline.Uncertainty(m_data, found.top)) + Square(moved);
        peak.position = Result(top->place, top->placeVariance + Square(wider->place - top->place));
        peak.height = Result(top->height, top->heightVariance + m_ofBaseline + Square(wider->height - top->height));
    }

    // What of a peak is beyond the valleys beside it, or of its neighbours within: the tail of a normal distribution
    // that has the height of the valley there.
    double Overlap(const FoundPeak& found, const CurvePeak& peak) const {
        double overlap = 0;
        for (const auto& [valley, isShared] :
             {std::pair(found.first, found.first == found.start && found.start > 0),
              std::pair(found.last, found.last == found.end && found.end + 1 < m_data.size())}) {
            const double away = std::abs(m_data.x[valley] - m_data.x[found.top]);
            if (!isShared || away == 0) continue;
            const double deviation = peak.width ? *peak.width.value / kDeviations : away / 2;
            overlap = std::hypot(overlap, m_smoothed[valley] * Square(deviation) / away);
        }
        return overlap;
    }

    void ReadArea(const FoundPeak& found, CurvePeak& peak) const {
        const double most = kCut * m_smoothed[found.top];
        const bool isCut = (found.first == 0 && m_smoothed[0] > most) ||
                           (found.last + 1 == m_data.size() && m_smoothed[found.last] > most);
        if (isCut || m_data.PartOf(found.first) != m_data.PartOf(found.last)) {
            peak.area = Refused(isCut ? CurveRefusal::kOverlap : CurveRefusal::kPause,
                                "the area of the peak at " + NumberInSentence(m_data.x[found.top]) + " is unknown: " +
                                    (isCut ? "the curve starts or ends in it" : "there is a pause in it"));
            return;
        }
        std::vector<double> factors(m_data.size(), 0.0);
        for (std::size_t i = found.first; i < found.last; ++i) {
            const double half = (m_data.x[i + 1] - m_data.x[i]) / 2;
            factors[i] += half;
            factors[i + 1] += half;
        }
        double area = 0, variance = 0;
        double ofShape = 0;
        for (std::size_t i = found.first; i <= found.last; ++i) {
            area += factors[i] * m_above[i];
            ofShape += factors[i] * m_moved[i];
        }
        const std::vector<double> ofBaseline = m_baseline.Influence(factors);
        for (std::size_t i = 0; i < factors.size(); ++i)
            variance += Square(factors[i] - ofBaseline[i]) / m_data.counts[i];
        // One window of readings at either end, more or less.
        double ends = 0;
        for (const std::size_t i : {found.first, found.last}) {
            const std::size_t before = std::max<std::size_t>(i, 1) - 1,
                              window = std::min(m_options.window, m_data.size());
            ends += static_cast<double>(window) * Square(m_data.x[before + 1] - m_data.x[before]);
        }
        peak.area =
            Result(area, Square(m_data.noise) * (variance + ends) + Square(ofShape) + Square(Overlap(found, peak)));
    }

    // A window that is wide for the peak flattens its sides.
    std::size_t SideWindow(const FoundPeak& found) const {
        std::size_t wide = 0;
        for (std::size_t i = found.first; i <= found.last; ++i)
            wide += m_smoothed[i] > m_smoothed[found.top] / 2 ? 1 : 0;
        const auto window = static_cast<std::size_t>(static_cast<double>(wide) / kDeviations) | 1;
        return std::max(std::min(window, m_options.window), m_options.degree + 1 + (m_options.degree % 2));
    }

    Sides SidesAt(const FoundPeak& found, const CurvePeak& peak, double part, std::size_t window) const {
        const double level = part * *peak.height.value;
        std::size_t left = found.top, right = found.top;
        while (left > found.first && m_smoothed[left] > level) --left;
        while (right < found.last && m_smoothed[right] > level) ++right;
        Sides sides;
        if (m_smoothed[left] > level || m_smoothed[right] > level || left == right) {
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
        LocalFit fit(m_data, window, m_options.degree);
        const auto side = [&](std::size_t before) {
            const auto [at, slope] = RefineCrossing(m_data, fit, m_above, before, [&](double /*x*/) { return level; });
            return CurveValue{at.x, slope.y, at.uncertainty};
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

    void ReadWidth(const FoundPeak& found, CurvePeak& peak) const {
        const std::size_t window = SideWindow(found);
        const Sides sides = SidesAt(found, peak, 0.5, window), wider = SidesAt(found, peak, 0.5, window + 2);
        peak.width = sides.refusal;
        if (sides.refusal.refusal != CurveRefusal::kNone) return;
        const double width = sides.right.x - sides.left.x, moved = wider.right.x - wider.left.x - width;
        peak.width = Result(width, Variance(sides, -1, 1) + Square(moved));
    }

    void ReadTailing(const FoundPeak& found, CurvePeak& peak) const {
        const std::size_t window = SideWindow(found);
        const Sides sides = SidesAt(found, peak, kTailingHeight, window);
        const Sides wider = SidesAt(found, peak, kTailingHeight, window + 2);
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

    const CurveData& m_data;
    const CurveBaseline& m_baseline;
    const PeakOptions& m_options;
    const std::vector<double>&m_moved, &m_above, &m_smoothed;
    double m_ofBaseline = 0;  // its variance at the top
};

}  // namespace

CurvePeak ReadPeak(const PeakCurve& curve, FoundPeak found) { return PeakReader(curve).Read(found); }

}  // namespace qel
