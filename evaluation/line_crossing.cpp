#include "qellib10/evaluation/line_crossing.h"

#include <cmath>

#include "qellib10/evaluation/following_window.h"
#include "qellib10/evaluation/level_crossing.h"

namespace qel {
namespace {

constexpr double kClear = 4;  // standard deviations of a reading, or errors of a slope

constexpr double kSlight = 2;  // a bend that changes the slope by less from one interval to the next

// Two readings on different sides of the line, and between them only those that may be on either.
struct Change {
    std::size_t before = 0, after = 0;
};

class CrossingFinder {
public:
    CrossingFinder(const CurveData& data, const CrossedLine& line, std::size_t window, std::size_t degree)
        : m_data(data), m_line(line), m_window(window), m_degree(degree) {}

    LineCrossing Find(std::size_t first, std::size_t last) {
        const std::vector<Change> changes = Changes(first, last);
        if (changes.empty()) return Refuse(CurveRefusal::kNoPlace, "the curve does not come to " + m_line.name);
        if (changes.size() > 1) return RefuseSeveral(changes.size(), changes.front().before, changes.back().before);
        const auto [from, to] = changes.front();
        const std::size_t window = FollowingWindow(m_data, from, to, m_window, m_degree);
        return window > 0 ? BySmoothing(from, to, window) : ByReadings(from, to);
    }

private:
    static LineCrossing Refuse(CurveRefusal refusal, std::string reason) {
        LineCrossing crossing;
        crossing.refusal = Refused(refusal, std::move(reason));
        return crossing;
    }

    LineCrossing RefuseSeveral(std::size_t count, std::size_t first, std::size_t last) const {
        return Refuse(CurveRefusal::kSeveralPlaces, "the curve crosses " + m_line.name + ' ' + std::to_string(count) +
                                                        " times, first at " + NumberInSentence(m_data.x[first]) +
                                                        ", last at " + NumberInSentence(m_data.x[last]) +
                                                        "; choose a range or a wider window");
    }

    LineCrossing RefuseFlat(double place) const {
        return Refuse(CurveRefusal::kNoPlace,
                      "the curve crosses " + m_line.name + " too flatly near " + NumberInSentence(place) +
                          ": the noise decides where; choose a steeper place or a wider window");
    }

    LineCrossing RefusePause(std::size_t before) const {
        return Refuse(CurveRefusal::kPause,
                      "the curve crosses " + m_line.name + " where nothing was measured, between " +
                          NumberInSentence(m_data.x[before]) + " and " + NumberInSentence(m_data.x[before + 1]));
    }

    double Above(std::size_t i) const { return m_data.y[i] - m_line.at(m_data.x[i]); }

    std::vector<Change> Changes(std::size_t first, std::size_t last) const {
        std::vector<Change> changes;
        double side = 0;
        std::size_t at = first;
        for (std::size_t i = first; i < last; ++i) {
            const double above = Above(i);
            const double noise =
                std::sqrt(m_data.noise * m_data.noise / m_data.counts[i] + m_line.variance(m_data.x[i]));
            if (std::abs(above) <= kClear * noise) continue;
            if (side * above < 0) changes.push_back({at, i});
            side = above;
            at = i;
        }
        return changes;
    }

    // The points before the places where the signs of numbers from one point to another change.
    template <typename Number>
    static std::vector<std::size_t> SignChanges(std::size_t from, std::size_t to, Number&& number) {
        std::vector<std::size_t> changes;
        bool isAbove = number(from) > 0;
        for (std::size_t i = from + 1; i <= to; ++i) {
            if ((number(i) > 0) == isAbove) continue;
            changes.push_back(i - 1);
            isAbove = !isAbove;
        }
        return changes;
    }

    LineCrossing BySmoothing(std::size_t from, std::size_t to, std::size_t window) {
        LocalFit fit(m_data, window, m_degree);
        const std::vector<std::size_t> changes = SignChanges(from, to, [&](std::size_t i) {
            CurveValue value;
            return fit.At(i, m_data.x[i], 0, value) ? value.y - m_line.at(value.x) : NAN;
        });
        if (changes.empty()) return ByReadings(from, to);
        if (changes.size() > 1) return RefuseSeveral(changes.size(), changes.front(), changes.back());
        const std::size_t before = changes.front();
        if (IsPause(m_data, before)) return RefusePause(before);
        const auto [at, slope] = RefineCrossing(m_data, fit, m_data.y, before, m_line.at);
        LineCrossing crossing{before, at.x, slope.y - m_line.slope, 0, 0, {}};
        if (!(std::abs(crossing.slope) > kClear * slope.uncertainty)) return RefuseFlat(at.x);
        crossing.noise = std::sqrt(at.uncertainty * at.uncertainty + m_line.variance(at.x)) / std::abs(crossing.slope);
        const auto compare = [&](std::size_t otherWindow, std::size_t degree) {
            LocalFit other(m_data, otherWindow, degree);
            const auto moved = RefineCrossing(m_data, other, m_data.y, before, m_line.at);
            crossing.shape = std::max(crossing.shape, std::abs(moved.at.x - at.x));
        };
        compare(std::max(window, m_degree + 3), m_degree + 2);
        if (window > m_degree + 2) compare(window - 2, m_degree);
        if (FollowingWindow(m_data, from, to, window + 2, m_degree) == window + 2) compare(window + 2, m_degree);
        return crossing;
    }

    // Between two readings the curve is between the straight lines through the readings before and after them, as long
    // as it bends to one side before its steepest place and to the other after that. Where it crosses is open between
    // the places where these do. A cubic polynomial finds it where the bend is slight; each place is as likely where
    // the lines leave the whole interval open.
    LineCrossing ByReadings(std::size_t from, std::size_t to) {
        const std::vector<std::size_t> changes = SignChanges(from, to, [&](std::size_t i) { return Above(i); });
        if (changes.size() > 1) return RefuseFlat(m_data.x[changes.front()]);
        const std::size_t i = changes.front();
        if (IsPause(m_data, i)) return RefusePause(i);
        const auto [first, last] = m_data.PartOf(i);
        const double interval = m_data.x[i + 1] - m_data.x[i], rise = Above(i + 1) - Above(i), t = -Above(i) / rise;
        LineCrossing crossing{i, m_data.x[i] + t * interval, rise / interval, 0, 0, {}};
        const double ofBefore = (1 - t) * (1 - t) / m_data.counts[i], ofAfter = t * t / m_data.counts[i + 1];
        const double noise = m_data.noise * m_data.noise;
        if (!(std::abs(rise) > kClear * std::sqrt(noise / m_data.counts[i] + noise / m_data.counts[i + 1])))
            return RefuseFlat(crossing.place);
        crossing.noise =
            std::sqrt(noise * (ofBefore + ofAfter) + m_line.variance(crossing.place)) / std::abs(crossing.slope);
        // The slopes beside, where the whole interval rises by 1.
        const auto slope = [&](std::size_t k) {
            return (Above(k + 1) - Above(k)) / (m_data.x[k + 1] - m_data.x[k]) / crossing.slope;
        };
        const double before = i > first ? slope(i - 1) : 0, after = i + 2 < last ? slope(i + 1) : 0;
        const double ofFirst = before > 0 ? std::min(t / before, 1.0) : 1;
        const double ofLast = after > 0 ? std::max(1 - (1 - t) / after, 0.0) : 0;
        const double low = std::min({ofFirst, ofLast, t}), high = std::max({ofFirst, ofLast, t}), open = high - low;
        // A cubic polynomial follows a slight bend.
        const bool isSlight = std::min(before, after) > 1 / kSlight && std::max(before, after) < kSlight;
        double place = t;
        if (isSlight) {
            const auto bend = [&](double change, double beside) { return change * 2 * interval / (interval + beside); };
            const double bendBefore = bend(1 - before, m_data.x[i] - m_data.x[i - 1]);
            const double bendAfter = bend(after - 1, m_data.x[i + 2] - m_data.x[i + 1]);
            place = std::clamp(t + t * (1 - t) / 6 * ((2 - t) * bendBefore + (1 + t) * bendAfter), low, high);
            crossing.place = m_data.x[i] + place * interval;
        }
        if (open > 0) {
            const double cubes = std::pow(high - place, 3) + std::pow(place - low, 3);
            crossing.shape = interval * (isSlight ? open : 1) * std::sqrt(cubes / (3 * open));
        }
        return crossing;
    }

    const CurveData& m_data;
    const CrossedLine& m_line;
    std::size_t m_window, m_degree;
};

}  // namespace

LineCrossing FindCrossing(const CurveData& data, std::size_t first, std::size_t last, std::size_t window,
                          std::size_t degree, const CrossedLine& line) {
    return CrossingFinder(data, line, window, degree).Find(first, last);
}

}  // namespace qel
