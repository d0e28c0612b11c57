#include <algorithm>
#include <cmath>
#include <string>

#include "../support/made_curve.h"
#include "../support/soak.h"
#include "../support/test.h"
#include "made_readings.h"
#include "qellib10/evaluation/curve.h"

namespace {

using qel::Curve, qel::CurvePoint, qel::CurveRange, qel::CurveRefusal, qel::EndPointMethod, qel::EndPointOptions;
using Points = std::vector<CurvePoint>;

// Silver nitrate, 0.1 mol/L, into 2.433 mmol of chloride: the potentiometric example of textbooks (Skoog, West, Holler
// and Crouch, Fundamentals of Analytical Chemistry), whose second differences give 24.34 mL.
const Points kChloride = {{5, 0.062},    {15, 0.085},   {20, 0.107},   {22, 0.123},   {23, 0.138},
                          {23.5, 0.146}, {23.8, 0.161}, {24, 0.174},   {24.1, 0.183}, {24.2, 0.194},
                          {24.3, 0.233}, {24.4, 0.316}, {24.5, 0.340}, {24.6, 0.351}, {24.7, 0.358},
                          {25, 0.373},   {25.5, 0.385}, {26, 0.396},   {28, 0.426}};

constexpr double kPlace = 10.2;  // of the step

double Nernst(double x) { return 200 + 40 * std::asinh((x - kPlace) / 0.15); }
double Sigmoid(double x) { return 7 + 3 * std::tanh((x - kPlace) / 0.9) + 0.1 * (x - kPlace); }
double Bend(double x) { return 100 - 4 * std::min(x, kPlace) + 6 * std::max(x - kPlace, 0.0); }

// The pH of 50 mL of an acid, which a strong base neutralises at kPlace; c = 0.1 mol/L.
double StrongAcid(double x) { return 7 - std::asinh((kPlace - x) * 0.1 / (50 + x) / 2e-7) / std::log(10.0); }
// Of a weak acid with pK 4.76; by bisection of the charges.
double WeakAcid(double x) {
    double low = 0, high = 14;
    for (int i = 0; i < 50; ++i) {
        const double middle = (low + high) / 2, h = std::pow(10, -middle), k = 1.74e-5;
        const double charge = h - 1e-14 / h + 0.1 * x / (50 + x) - 0.1 * kPlace / (50 + x) * k / (k + h);
        (charge > 0 ? low : high) = middle;
    }
    return low;
}
// Without what water adds: the equations of Gran, and of Henderson and Hasselbalch.
double StrongBefore(double x) { return -std::log10((kPlace - x) * 0.1 / (50 + x)); }
double WeakBefore(double x) { return 4.76 + std::log10(x / (kPlace - x)); }

double PlaceOf(const Shape& shape, double level) {
    double low = 0, high = 20;
    for (int i = 0; i < 60; ++i) {
        const double middle = (low + high) / 2;
        ((shape(middle) < level) == (shape(low) < shape(high)) ? low : high) = middle;
    }
    return low;
}

std::string Reason(const Points& points, const EndPointOptions& options) {
    const qel::CurveEndPoint found = Curve::Of(points).EndPointBy(options);
    EXPECT_EQ(found.value.has_value(), found.refusal == CurveRefusal::kNone);
    return found ? "a value" : found.reason;
}

Points Even(const Shape& shape, double last = 20) {
    Points points;
    for (double x = 0.25; x <= last; x += 0.25) points.push_back({x, shape(x)});
    return points;
}

}  // namespace

TEST(EndPointBy, SecondDifferencesIsThatOfTheTextbook) {
    const EndPointOptions options{.method = EndPointMethod::kSecondDerivative, .window = 3, .degree = 2};
    const qel::CurveEndPoint found = Curve::Of(kChloride, {.noise = 0.001}).EndPointBy(options);
    ASSERT_TRUE(found) << found.reason;
    EXPECT_NEAR(*found.value, 24.343, 0.0005);
    EXPECT_NEAR(*found.value, 24.33, 2 * found.uncertainty);  // where all chloride has its silver
    EXPECT_LT(found.uncertainty, 0.03);
}

TEST(EndPointBy, SteepestIsThatOfFindEndPoint) {
    const qel::CurveEndPoint found = Curve::Of(Even(Sigmoid)).EndPointBy({});
    ASSERT_TRUE(found) << found.reason;
    EXPECT_NEAR(*found.value, kPlace, 0.01);
    EXPECT_NEAR(found.signal, 7, 0.1);
    EXPECT_EQ(found.steepest.value().volume, *found.value);
    const qel::CurveEndPoint few = Curve::Of(Points{{1, 2}, {2, 2.1}, {3, 5}, {4, 7.9}, {5, 8}}).EndPointBy({});
    EXPECT_EQ(few.refusal, qel::CurveRefusal::kUncertain) << "by its noise, not its 5 points: " << few.reason;
}

// Sharp steps with few readings in them as well as wide ones with many: what no reading shows is in the uncertainty
// too.
TEST(EndPointBy, EachMethodCoversTheTruth) {
    struct Titration {
        const char* name;
        Shape shape;
        double noise, level, knee;
    };
    const Titration titrations[] = {
        {"strong acid", StrongAcid, 0.005, 8.5, 7},
        {"weak acid", WeakAcid, 0.005, 8.5, 6.5},
        {"silver", Nernst, 0.5, 260, 150},
        {"sigmoid", Sigmoid, 0.01, 8.5, 5},
        {"falling", [](double x) { return -Sigmoid(x); }, 0.02, -8.5, -9.5},
    };
    const CurveRange before{0, 6}, after{14, 20};
    const std::pair<const char*, EndPointOptions> methods[] = {
        {"first derivative", {.method = EndPointMethod::kFirstDerivative}},
        {"second derivative", {.method = EndPointMethod::kSecondDerivative}},
        {"tangents", {.method = EndPointMethod::kTangents, .before = before, .after = after}},
        {"fixed value", {.method = EndPointMethod::kFixedValue}},
        {"knee", {.method = EndPointMethod::kFixedValue}},
    };
    std::mt19937 random(SoakSeed());
    for (auto [method, options] : methods) {
        Coverage all;
        for (const Titration& titration : titrations) {
            double truth = kPlace;
            if (options.method == EndPointMethod::kFixedValue) {
                options.level = method == std::string("knee") ? titration.knee : titration.level;
                truth = PlaceOf(titration.shape, options.level);
            }
            for (const auto& [dosing, step] : Cases<Dosing, double>{
                     {Dosing::kEven, 0.1}, {Dosing::kEven, 0.5}, {Dosing::kUneven, 0.5}, {Dosing::kDynamic, 0.5}}) {
                Coverage coverage;
                for (int i = 0; i < SoakCount(40); ++i) {
                    const Points points = Titrated(random, titration.shape, dosing, step, 20, titration.noise);
                    coverage.Add(Curve::Of(points).EndPointBy(options), truth);
                }
                EXPECT_GE(coverage.Percent(), 80) << method << ", " << titration.name << static_cast<int>(dosing);
                all.Add(coverage);
            }
        }
        EXPECT_GE(all.Percent(), 95) << method;
        EXPECT_LE(all.Excess(), 2) << method;
        EXPECT_LE(all.refused, all.tried / 50) << method;
    }
}

TEST(EndPointBy, LinesCoverTheTruth) {
    struct Way {
        const char* name;
        Shape shape;
        double last;  // reading; the first one is at 0.3
        double noise;
        EndPointOptions options;
    };
    const Way ways[] = {
        {"lines", Bend, 20, 0.5, {.method = EndPointMethod::kLines, .before = {0, 9}, .after = {11.5, 20}}},
        {"Gran, strong acid", StrongBefore, 9, 0.01, {.method = EndPointMethod::kGran, .startVolume = 50}},
        {"Gran, weak acid", WeakBefore, 9, 0.01, {.method = EndPointMethod::kGran, .isWeak = true}},
    };
    std::mt19937 random(SoakSeed());
    for (const Way& way : ways) {
        Coverage coverage;
        for (int i = 0; i < SoakCount(300); ++i) {
            const Points points = Readings(random, way.shape, 0.3, way.last, 60, way.noise);
            coverage.Add(Curve::Of(points).EndPointBy(way.options), kPlace);
        }
        EXPECT_GE(coverage.Percent(), 90) << way.name;
        EXPECT_LE(coverage.Percent(), 99) << way.name;
        EXPECT_LE(coverage.refused, SoakCount(300) / 10) << way.name;
    }
}

// Of the curves that end points of titrations are tested with, those that are not refused.
TEST(EndPointBy, SteepestCoversTheTruthOfMadeCurves) {
    CurveMaker maker(SoakSeed());
    Coverage coverage;
    for (int i = 0; i < SoakCount(100); ++i) {
        const MadeCurve made = maker.Make();
        Points points;
        for (std::size_t k = 0; k < made.volume.size(); ++k) points.push_back({made.volume[k], made.measured[k]});
        if (made.hasStep) coverage.Add(Curve::Of(points).EndPointBy({}), made.step);
    }
    EXPECT_GE(coverage.Percent(), 90);
}

TEST(EndPointBy, FitOfAShapeCoversTheTruth) {
    std::mt19937 random(SoakSeed());
    for (const auto& [name, shape, kind, noise] : Cases<const char*, Shape, qel::EquivalenceShape, double>{
             {"Nernst", Nernst, qel::EquivalenceShape::kNernst, 1},
             {"sigmoid", Sigmoid, qel::EquivalenceShape::kSigmoid, 0.02},
         }) {
        Coverage coverage;
        for (int i = 0; i < SoakCount(100); ++i)
            coverage.Add(Curve::Of(Readings(random, shape, 0.3, 20, 60, noise)).FitEquivalence(kind), kPlace);
        EXPECT_GE(coverage.Percent(), 90) << name;
        EXPECT_LE(coverage.Percent(), 99) << name;
        EXPECT_EQ(coverage.refused, 0) << name;
    }
}

TEST(EndPointBy, SaysWhyThereIsNone) {
    const Points sigmoid = Even(Sigmoid);
    const auto level = [](double x) { return 5 + 0.001 * std::sin(40 * x); };
    const auto twice = [](double x) { return std::tanh(3 * (x - 5)) + std::tanh(3 * (x - 15)); };
    Points pause = sigmoid;
    for (CurvePoint& point : pause) point.x += point.x > kPlace ? 50 : 0;
    const auto by = [](EndPointMethod method) { return EndPointOptions{.method = method}; };
    const EndPointOptions first = by(EndPointMethod::kFirstDerivative), fixed = by(EndPointMethod::kFixedValue);
    const auto fixedAt = [&](double value) {
        EndPointOptions options = fixed;
        options.level = value;
        return options;
    };
    const auto lines = [](CurveRange before, CurveRange after, EndPointMethod method = EndPointMethod::kLines) {
        return EndPointOptions{.method = method, .before = before, .after = after};
    };
    const EndPointOptions gran = by(EndPointMethod::kGran);
    for (const auto& [points, options, expected] : Cases<Points, EndPointOptions, const char*>{
             {{{0, 1}}, first, "a curve needs at least 6 points, there are 1"},
             {Even(level), first, "the curve has no step: it is steepest at "},
             {Even(Sigmoid, 10), first, "the curve is steepest at an end of the range, at 10"},
             {Even(twice), first, "the curve is as steep at 15 as at 5; choose a range with one of them"},
             {sigmoid,
              {.method = EndPointMethod::kFirstDerivative, .degree = 2},
              "a window of 7 points does not give derivative 3 of a polynomial of degree 2"},
             {sigmoid,
              {.method = EndPointMethod::kFirstDerivative, .range = {10, 10.5}},
              "there are 3 points in the range, 5 are needed"},
             {sigmoid,
              {.method = EndPointMethod::kFirstDerivative, .range = {NAN, 20}},
              "there are 0 points in the range, 5 are needed"},
             {sigmoid, fixedAt(20), "the curve does not come to the level 20"},
             {Even([](double x) { return std::sin(x); }), fixedAt(0.5),
              "the curve crosses the level 0.5 7 times, first at "},
             {sigmoid, fixedAt(NAN), "the level is no number"},
             {pause, fixedAt(7), "the curve crosses the level 7 where nothing was measured, between 10 and 60.25"},
             {sigmoid, lines({0, 0.5}, {14, 20}), "two lines need 3 points each, there are 2 and 25"},
             {sigmoid, lines({0, 8}, {7, 20}), "the readings of the lines overlap"},
             {Even(level), lines({0, 8}, {12, 20}), "the lines are parallel within their noise"},
             {Even([](double x) { return x * x / 10; }), lines({0, 9}, {12, 20}),
              "the readings from 0.25 to 9 are not on a straight line: its slope of "},
             {Even(Bend), lines({0, 4}, {4.25, 9}),
              "the lines are parallel within their noise: their slopes are -4 and -4"},
             {sigmoid, lines({0, 0.2}, {12, 20}, EndPointMethod::kTangents),
              "parallel tangents need 2 points before and after the step, there are 0 and 33"},
             {sigmoid, gran, "Gran's line ends within its readings, at 16.3671; take "},
             {sigmoid,
              {.method = EndPointMethod::kGran, .perDecade = 0},
              "a signal that changes by 0 for ten times the ion shows nothing of it"},
             {sigmoid, {.method = EndPointMethod::kGran, .startVolume = -1}, "the volume of the sample is below 0"},
             {Even(level), {}, "no end point: the curve has no step that is clear of its noise of "},
         })
        EXPECT_EQ(Reason(points, options).substr(0, std::string(expected).size()), expected);
    for (const auto& [curve, expected] : Cases<Curve, const char*>{
             {Curve::Of(Even(twice)), "the curve does not have this shape: readings are "},
             {Curve::Of(Even(Sigmoid, 1.75)), "the shape needs 8 points, there are 7"},
         })
        EXPECT_EQ(curve.FitEquivalence(qel::EquivalenceShape::kSigmoid).reason.substr(0, std::string(expected).size()),
                  expected);
}
