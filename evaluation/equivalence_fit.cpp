#include <array>
#include <cmath>

#include "qellib10/evaluation/curve_data.h"
#include "qellib10/evaluation/reading_noise.h"
#include "qellib10/platform/algebra/least_squares.h"

namespace qel {
namespace {

constexpr int kWidths = 24, kPlaces = 24;  // of the grid that the search starts from
constexpr std::size_t kStartPoints = 500;
constexpr std::size_t kFewestFree = 3;
constexpr int kMostSteps = 200;
constexpr double kMostScatter = 3;            // of the noise
constexpr double kMostAlike = 1.3;            // of the noise, where the residuals of neighbours are surely alike
constexpr double kSmallScatter = 1e-3;        // of the signals' range: a shape that is so close is right anyway
constexpr double kAlike = 2, kSureAlike = 5;  // standard errors of a correlation
constexpr double kUnseen = 2;             // a shape that is wrong moves the place so much more than half of it shows
constexpr double kOfError = 1e-6;         // a step so small, of the standard error, ends the search
constexpr double kAccurate = 1e-13;       // of the x range
constexpr double kMostUncertainty = 0.1;  // of the x range

using Numbers = std::span<const double>;

// The readings, and the shape that is fitted to them.
struct Problem {
    EquivalenceShape shape;
    Numbers x, y, counts;

    std::size_t Linear() const { return shape == EquivalenceShape::kSigmoid ? 3 : 2; }
    double Range() const { return x.back() - x.front(); }
};

double Step(EquivalenceShape shape, double t) {
    return shape == EquivalenceShape::kSigmoid ? std::tanh(t) : std::asinh(t);
}

double StepSlope(EquivalenceShape shape, double t) {
    return shape == EquivalenceShape::kSigmoid ? std::pow(1 / std::cosh(t), 2) : 1 / std::hypot(1, t);
}

// For a place and a width the rest is linear.
std::optional<LeastSquares> LinearFit(const Problem& problem, double place, double width) {
    std::vector<double> design;
    design.reserve(problem.x.size() * problem.Linear());
    for (const double x : problem.x) {
        design.insert(design.end(), {1, Step(problem.shape, (x - place) / width)});
        if (problem.Linear() == 3) design.push_back(x - place);
    }
    return FitLeastSquares(design, problem.Linear(), problem.y, problem.counts);
}

struct Shape {
    double place = 0, width = 0;
    LeastSquares linear;
};

std::optional<Shape> BestOfGrid(const Problem& problem) {
    const auto count = problem.x.size();
    double shortest = problem.Range();
    for (std::size_t i = 1; i < count; ++i) shortest = std::min(shortest, problem.x[i] - problem.x[i - 1]);
    const double least = std::max(shortest / 10, problem.Range() * 1e-6), most = problem.Range();
    std::optional<Shape> best;
    for (int i = 0; i < kWidths; ++i) {
        const double width = least * std::pow(most / least, i / (kWidths - 1.0));
        for (int k = 1; k < kPlaces; ++k) {
            const double place = problem.x.front() + problem.Range() * k / kPlaces;
            const auto linear = LinearFit(problem, place, width);
            if (linear && (!best || linear->squares < best->linear.squares)) best = Shape{place, width, *linear};
        }
    }
    return best;
}

// Of very many readings a part is enough to start from.
std::optional<Shape> Start(const Problem& problem) {
    const std::size_t stride = problem.x.size() / kStartPoints + 1;
    std::array<std::vector<double>, 3> fewer;
    for (std::size_t i = 0; i < problem.x.size(); i += stride) {
        fewer[0].push_back(problem.x[i]);
        fewer[1].push_back(problem.y[i]);
        fewer[2].push_back(problem.counts[i]);
    }
    std::optional<Shape> start = BestOfGrid({problem.shape, fewer[0], fewer[1], fewer[2]});
    if (!start) return start;
    const auto linear = LinearFit(problem, start->place, start->width);
    return linear ? std::optional(Shape{start->place, start->width, *linear}) : std::nullopt;
}

// The readings' rates of change with the linear parameters, the place and the logarithm of the width.
std::vector<double> Rates(const Problem& problem, const Shape& shape) {
    const double height = shape.linear.coefficients[1],
                 slant = problem.Linear() == 3 ? shape.linear.coefficients[2] : 0;
    std::vector<double> rates;
    for (const double x : problem.x) {
        const double t = (x - shape.place) / shape.width, slope = height * StepSlope(problem.shape, t);
        rates.insert(rates.end(), {1, Step(problem.shape, t)});
        if (problem.Linear() == 3) rates.push_back(x - shape.place);
        rates.insert(rates.end(), {-slope / shape.width - slant, -slope * t});
    }
    return rates;
}

std::vector<double> Residuals(const Problem& problem, const Shape& shape) {
    const std::vector<double>& c = shape.linear.coefficients;
    std::vector<double> residuals;
    for (std::size_t i = 0; i < problem.x.size(); ++i) {
        const double away = problem.x[i] - shape.place;
        const double slanted = problem.Linear() == 3 ? c[2] * away : 0;
        residuals.push_back(problem.y[i] - c[0] - c[1] * Step(problem.shape, away / shape.width) - slanted);
    }
    return residuals;
}

// A step of Gauss and Newton, halved until it helps. @return nothing when none does
std::optional<Shape> Better(const Problem& problem, const Shape& shape, double place, double width) {
    for (double part = 1; part > 1e-6; part /= 2) {
        const double nextPlace = shape.place + part * place;
        const double nextWidth = shape.width * std::exp(std::clamp(part * width, -1.0, 1.0));
        const auto linear = LinearFit(problem, nextPlace, nextWidth);
        if (linear && linear->squares <= shape.linear.squares) return Shape{nextPlace, nextWidth, *linear};
    }
    return std::nullopt;
}

// The least squares from a start: the shape, and its last step with all of its rates.
struct Outcome {
    Shape shape;
    LeastSquares last;
};

std::optional<Outcome> Search(const Problem& problem, Shape best) {
    const std::size_t parameters = problem.Linear() + 2;
    for (int step = 0; step < kMostSteps; ++step) {
        const auto move = FitLeastSquares(Rates(problem, best), parameters, Residuals(problem, best), problem.counts);
        if (!move) break;
        const double place = move->coefficients[parameters - 2], width = move->coefficients[parameters - 1];
        const double scatter = std::sqrt(best.linear.squares / static_cast<double>(move->degreesOfFreedom));
        const auto isDone = [&](double step0, std::size_t at, double least) {
            return std::abs(step0) <= std::max(least, kOfError * scatter * std::sqrt(move->Covariance(at, at)));
        };
        if (isDone(place, parameters - 2, kAccurate * problem.Range()) && isDone(width, parameters - 1, kAccurate))
            return Outcome{best, *move};
        const auto next = Better(problem, best, place, width);
        if (!next) return Outcome{best, *move};
        best = *next;
    }
    return std::nullopt;
}

// How far residuals are like those of the next reading, in standard errors. High where the shape is not that of the
// readings.
double Alike(const std::vector<double>& residuals) {
    double products = 0, squares = 0;
    for (std::size_t i = 0; i < residuals.size(); ++i) {
        squares += residuals[i] * residuals[i];
        if (i > 0) products += residuals[i] * residuals[i - 1];
    }
    return squares > 0 ? products / squares * std::sqrt(static_cast<double>(residuals.size())) : 0;
}

// How far the place moves with the half of the readings that is nearer to it: a shape that is not quite that of the
// readings has its place elsewhere there.
double MovedByHalf(const Problem& problem, const Shape& shape) {
    std::vector<double> away;
    for (const double x : problem.x) away.push_back(std::abs(x - shape.place));
    const double reach = MedianIn(away);
    std::size_t first = 0, last = problem.x.size();
    while (first < last && shape.place - problem.x[first] > reach) ++first;
    while (last > first && problem.x[last - 1] - shape.place > reach) --last;
    if (last - first < problem.Linear() + 2 + kFewestFree) return 0;
    const auto part = [&](Numbers values) { return values.subspan(first, last - first); };
    const Problem half{problem.shape, part(problem.x), part(problem.y), part(problem.counts)};
    const auto linear = LinearFit(half, shape.place, shape.width);
    const auto found = linear ? Search(half, {shape.place, shape.width, *linear}) : std::nullopt;
    return found ? found->shape.place - shape.place : 0;
}

// A sigmoid that is level within an interval between readings may be anywhere in it: each place is as likely.
double OpenPart(const Problem& problem, const Shape& shape) {
    const auto after = std::ranges::upper_bound(problem.x, shape.place);
    if (problem.shape != EquivalenceShape::kSigmoid || after == problem.x.begin() || after == problem.x.end()) return 0;
    return std::max(*after - *(after - 1) - shape.width, 0.0) / std::sqrt(12.0);
}

EquivalenceFit RefusedFit(CurveRefusal refusal, std::string reason) {
    EquivalenceFit fit;
    static_cast<CurveResult&>(fit) = Refused(refusal, std::move(reason));
    return fit;
}

EquivalenceFit Judged(const Problem& problem, const Outcome& outcome, double noise, double leastScatter) {
    const Shape& shape = outcome.shape;
    const LeastSquares& last = outcome.last;
    const auto [low, high] = std::ranges::minmax(problem.y);
    const auto degrees = static_cast<double>(last.degreesOfFreedom);
    EquivalenceFit fit;
    fit.scatter = std::max(std::sqrt(shape.linear.squares / degrees), leastScatter);
    const double alike = Alike(Residuals(problem, shape));
    if (fit.scatter >
        std::max((alike > kSureAlike ? kMostAlike : kMostScatter) * noise, kSmallScatter * (high - low))) {
        return RefusedFit(CurveRefusal::kNoFit, "the curve does not have this shape: readings are " +
                                                    NumberInSentence(fit.scatter) + " from it, and their noise is " +
                                                    NumberInSentence(noise));
    }
    const std::size_t at = problem.Linear();
    const double moved = MovedByHalf(problem, shape) * (alike > kAlike ? kUnseen : 1);
    fit.uncertainty = std::hypot(fit.scatter * std::sqrt(last.Covariance(at, at)), moved, OpenPart(problem, shape));
    if (!(shape.place > problem.x.front() && shape.place < problem.x.back())) {
        return RefusedFit(CurveRefusal::kNoPlace, "the shape has its step at " + NumberInSentence(shape.place) +
                                                      ", where nothing was measured");
    }
    if (!(fit.uncertainty < kMostUncertainty * problem.Range())) {
        return RefusedFit(CurveRefusal::kNoFit, "the readings leave the step near " + NumberInSentence(shape.place) +
                                                    " open by " + NumberInSentence(fit.uncertainty));
    }
    fit.value = shape.place;
    fit.degreesOfFreedom = degrees;
    fit.level = shape.linear.coefficients[0];
    fit.height = shape.linear.coefficients[1];
    fit.width = shape.width;
    fit.slant = problem.Linear() == 3 ? shape.linear.coefficients[2] : 0;
    return fit;
}

}  // namespace

EquivalenceFit Curve::FitEquivalence(EquivalenceShape shape, const CurveRange& range) const {
    const CurveData& data = *m_data;
    if (data.refusal != CurveRefusal::kNone) return RefusedFit(data.refusal, data.reason);
    const auto [first, last] = data.In(range);
    const auto part = [&](const std::vector<double>& values) { return Numbers(values).subspan(first, last - first); };
    const Problem problem{shape, part(data.x), part(data.y), part(data.counts)};
    const std::size_t parameters = problem.Linear() + 2;
    if (last - first < parameters + kFewestFree) {
        return RefusedFit(CurveRefusal::kTooFewPoints, "the shape needs " + PointsInSentence(parameters + kFewestFree) +
                                                           ", there are " + std::to_string(last - first));
    }
    const std::optional<Shape> start = Start(problem);
    if (!start) return RefusedFit(CurveRefusal::kNoFit, "the shape cannot be computed for the readings");
    const auto found = Search(problem, *start);
    if (found) return Judged(problem, *found, data.noise, data.digitNoise);
    return RefusedFit(CurveRefusal::kNoFit,
                      "the fit of the shape came to no end near " + NumberInSentence(start->place));
}

}  // namespace qel
