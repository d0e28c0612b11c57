#include "qellib10/evaluation/curve.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "../support/soak.h"
#include "../support/test.h"
#include "made_readings.h"

namespace {

using qel::Curve, qel::CurvePoint, qel::CurveRefusal;
using Points = std::vector<CurvePoint>;

double Wave(double x) { return std::sin(x) + 0.2 * x; }

Points Waves(int count = 60) {
    std::mt19937 random(1);
    return Readings(random, Wave, 0, 6, count, 0.01);
}

Points Changed(Points points, std::size_t at, double y) {
    points[at].y = y;
    return points;
}

std::string Indexes(const std::vector<std::size_t>& indexes) {
    std::string text;
    for (const std::size_t index : indexes) text += std::to_string(index) + ' ';
    return text;
}

}  // namespace

TEST(Curve, SaysWhyItGivesNothing) {
    const double infinite = std::numeric_limits<double>::infinity();
    for (const auto& [points, refusal, reason] : Cases<Points, CurveRefusal, const char*>{
             {{}, CurveRefusal::kTooFewPoints, "a curve needs at least 6 points, there are 0"},
             {{{0, 1}, {1, 2}}, CurveRefusal::kTooFewPoints, "a curve needs at least 6 points, there are 2"},
             {Points(9, {2, 1}), CurveRefusal::kTooFewPoints, "a curve needs at least 6 points, there are 1"},
             {Changed(Waves(), 6, NAN), CurveRefusal::kNotFinite,
              "reading 7 of the curve is no number up to 1e30: nan"},
             {Changed(Waves(), 0, -infinite), CurveRefusal::kNotFinite,
              "reading 1 of the curve is no number up to 1e30: -inf"},
             {{{0, 5}, {1, 5}, {2, 5}, {3, 5}, {4, 5}, {5, 5}},
              CurveRefusal::kConstant,
              "all signals of the curve are 5: nothing was measured"},
             {{{0, 5}, {1, 5}, {2, 5}, {3, 5}, {4, 5}, {4e-31, 4}},
              CurveRefusal::kNotFinite,
              "the curve has points closer than 1e-30, at 4e-31"},
         }) {
        const Curve curve = Curve::Of(points);
        EXPECT_EQ(curve.Refusal(), refusal) << reason;
        EXPECT_EQ(curve.Reason(), reason);
        EXPECT_EQ(curve.Smoothed(5, 2).reason, reason);
        EXPECT_EQ(curve.Derivative(1, 5, 2).reason, reason);
        EXPECT_EQ(curve.Drift().reason, reason);
    }
}

TEST(Curve, SaysWhyAValueIsRefused) {
    const Curve curve = Curve::Of(Waves());
    const std::string rule = "; the degree is at most 8, the derivative at most the degree, and the window above it";
    for (const auto& [reason, expected] : Cases<std::string, std::string>{
             {curve.Smoothed(2, 2).reason,
              "a window of 2 points does not give derivative 0 of a polynomial of degree 2" + rule},
             {curve.Derivative(3, 9, 2).reason,
              "a window of 9 points does not give derivative 3 of a polynomial of degree 2" + rule},
             {curve.Derivative(0, 9, 2).reason, "there is no derivative 0; Smoothed gives the values"},
             {curve.Drift({1, 1.1}).reason, "a drift needs 3 points, there are 1 in the range"},
             {curve.Drift({5, 1}).reason, "a drift needs 3 points, there are 0 in the range"},
             {curve.Drift({0, 2}).reason.substr(0, 34), "the signal does not drift steadily"},
             {Curve::Of(Waves(), {.noise = -1}).Reason(), "a noise of -1 is impossible"},
         })
        EXPECT_EQ(reason, expected);
}

TEST(Curve, LeavesOutStraysButNoSteps) {
    const auto moved = [](std::initializer_list<std::size_t> places, double by) {
        Points points = Waves();
        for (const std::size_t place : places) points[place].y += by * (place % 4 == 0 ? -1 : 1);
        return points;
    };
    Points step = Waves(), block = Waves(), peak = Waves(), triples, pairs;
    for (std::size_t i = 30; i < step.size(); ++i) step[i].y += 50;
    for (std::size_t i = 20; i < 23; ++i) block[i].y -= 5;
    for (std::size_t i = 26; i < 35; ++i) peak[i].y += 20 * std::exp(-std::pow(static_cast<double>(i) - 30.1, 2) / 1.3);
    for (const CurvePoint& point : Waves()) {
        for (int i = -1; i <= 1; ++i) triples.push_back({point.x, point.y + 0.01 * i});
        for (int i = 0; i <= 1; ++i) pairs.push_back({point.x, point.y + 0.01 * i});
    }
    triples[50].y += 2;
    for (const std::size_t i : {7, 30, 61}) pairs[i].y -= 1;
    for (const auto& [points, expected] : Cases<Points, const char*>{
             {Waves(), ""},
             {Changed(Waves(), 10, 4), "10 "},
             {Changed(Changed(Waves(), 10, 4), 40, -4), "10 40 "},
             {block, "20 21 22 "},
             {step, ""},
             {moved({0}, 3), "0 "},
             {moved({1}, 3), "1 "},
             {moved({58, 0}, 3), "0 58 "},
             {moved({59}, -3), "59 "},
             {moved({20, 22, 24, 25, 27}, 2), "20 22 24 25 27 "},
             {peak, ""},
             {triples, "50 "},
             {pairs, "7 30 61 "},
         }) {
        const Curve curve = Curve::Of(points);
        EXPECT_EQ(Indexes(curve.Strays()), expected);
        EXPECT_GT(curve.Noise(), 0.006) << expected;
        EXPECT_LT(curve.Noise(), 0.02) << expected;  // repeats have the noise of their place
        const std::size_t all = Curve::Of(points, {.leaveOutStrays = false}).Points().size();
        EXPECT_EQ(all, Waves().size());
        EXPECT_EQ(curve.Points().size(), points.size() > all ? all : all - curve.Strays().size());
    }
}

TEST(Curve, TakesRepeatsAsTheyAreMeant) {
    Points points = Waves();
    points.push_back({points[5].x, points[5].y + 0.03});
    points.push_back({points[5].x, points[5].y + 0.06});
    for (const auto& [repeats, expected] : Cases<qel::RepeatedReadings, double>{
             {qel::RepeatedReadings::kAverage, 0.03},
             {qel::RepeatedReadings::kLast, 0.06},
         })
        EXPECT_NEAR(Curve::Of(points, {.repeats = repeats}).Points()[5].y - points[5].y, expected, 1e-12);
    points = Waves();
    const qel::CurveValues once = Curve::Of(points).Smoothed(7, 2);
    points.insert(points.end(), points.begin(), points.begin() + 60);
    const qel::CurveValues twice = Curve::Of(points, {.noise = 0.01}).Smoothed(7, 2);
    EXPECT_NEAR(twice.values[9].y, once.values[9].y, 1e-12);
}

// A fit over a pause would join what has nothing to do with each other.
TEST(Curve, FitsNothingOverAPause) {
    Points points = Waves(), whole = points;
    for (std::size_t i = 30; i < points.size(); ++i) {
        points[i].x += 100;
        points[i].y += 1000;
    }
    const Curve curve = Curve::Of(points);
    ASSERT_EQ(curve.Pauses().size(), 1);
    EXPECT_EQ(Line({curve.Pauses()[0].first, curve.Pauses()[0].last}), Line({points[29].x, points[30].x}));
    const qel::CurveValues values = curve.Smoothed(9, 2);
    ASSERT_EQ(values.values.size(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        EXPECT_NEAR(values.values[i].y - (i < 30 ? 0 : 1000), Wave(whole[i].x), 0.05) << i;
}

TEST(Curve, IsTheSameInAnyOrderOfReadings) {
    Points points = Waves();
    const Curve curve = Curve::Of(points);
    std::ranges::reverse(points);
    const Curve reversed = Curve::Of(points);
    EXPECT_EQ(reversed.Noise(), curve.Noise());
    EXPECT_EQ(reversed.Smoothed(9, 3).values[17].y, curve.Smoothed(9, 3).values[17].y);
}

// The noise is estimated from each curve.
TEST(Curve, UncertaintiesOfFitsAndDriftsCoverTheTruth) {
    std::mt19937 random(7);
    Coverage smoothed, slopes, drifts;
    for (int i = 0; i < 400; ++i) {
        const Curve curve = Curve::Of(Readings(random, Wave, 0, 6, 60, 0.02));
        for (const std::size_t at : {3, 30, 57}) {
            const qel::CurveValue value = curve.Smoothed(11, 3).values[at],
                                  slope = curve.Derivative(1, 15, 4).values[at];
            smoothed.Add({value.y, value.uncertainty}, Wave(value.x));
            slopes.Add({slope.y, slope.uncertainty}, std::cos(slope.x) + 0.2);
        }
        drifts.Add(Curve::Of(Readings(
                                 random, [](double x) { return 3 - 0.4 * x; }, 0, 6, 60, 0.02))
                       .Drift({1, 5}),
                   -0.4);
    }
    for (const auto& [what, coverage] :
         Cases<const char*, Coverage>{{"smoothed", smoothed}, {"slopes", slopes}, {"drifts", drifts}}) {
        EXPECT_GE(coverage.Percent(), 90) << what;
        EXPECT_LE(coverage.Percent(), 99) << what;
        EXPECT_LT(coverage.refused, 5) << what;
    }
}

// Readings that rise by about one digit each time are on an exact line, and still nobody knows more than their digits.
TEST(Curve, KnowsTheDigitsOfItsReadings) {
    std::mt19937 random(SoakSeed());
    std::uniform_real_distribution<double> part(0, 1);
    for (const double digit : {1.0, 0.01, 0.05, 0.002}) {
        Coverage drifts, ends;
        for (int i = 0; i < SoakCount(100); ++i) {
            const double slope = digit * (0.7 + part(random)), start = 5 + part(random), bend = 12.5 + part(random);
            Points line, lines;
            for (int x = 0; x < 25; ++x) {
                const double away = std::max(x - bend, 0.0);
                line.push_back({1.0 * x, digit * std::round((start + slope * x) / digit)});
                lines.push_back({1.0 * x, digit * std::round((start + slope * (x - 3 * away)) / digit)});
            }
            const Curve curve = Curve::Of(line);
            EXPECT_GE(curve.Noise(), digit * 0.288);
            EXPECT_LE(curve.Noise(), digit);
            drifts.Add(curve.Drift({0, 12}), slope);
            ends.Add(Curve::Of(lines).EndPointBy(
                         {.method = qel::EndPointMethod::kLines, .before = {0, 12}, .after = {14, 25}}),
                     bend);
        }
        EXPECT_GE(drifts.Percent(), 90) << digit;
        EXPECT_GE(ends.Percent(), 90) << digit;
        EXPECT_LE(drifts.Excess(), 2) << digit;
        EXPECT_LE(ends.Excess(), 2) << digit;
    }
}

TEST(CurveResult, IsAQuantity) {
    std::string error;
    const qel::Unit unit = *qel::Unit::Parse("mL", error);
    EXPECT_FALSE(qel::CurveResult{}.AsQuantity(unit));
    const auto quantity = qel::CurveResult{12.5, 0.02, 9}.AsQuantity(unit);
    ASSERT_TRUE(quantity);
    EXPECT_EQ(Line({quantity->Text(), *quantity->StandardUncertainty(), *quantity->DegreesOfFreedom()}),
              "12.5 mL 0.02 9");
}
