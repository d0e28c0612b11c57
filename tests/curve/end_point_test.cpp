#include "qellib10/curve/end_point.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <random>

#include "../support/made_curve.h"
#include "../support/soak.h"
#include "../support/test.h"
#include "qellib10/platform/error.h"

namespace {

qel::TitrationCurve Curve(const std::vector<double>& volume, const std::vector<double>& signal) {
    return {volume, signal};
}

std::optional<double> Found(const std::vector<double>& volume, const std::vector<double>& signal) {
    try {
        return qel::FindEndPoint(Curve(volume, signal)).volume;
    } catch (const qel::DataError&) {
        return std::nullopt;
    }
}

std::string Refusal(const qel::TitrationCurve& curve) {
    try {
        return "end point " + std::to_string(qel::FindEndPoint(curve).volume);
    } catch (const qel::DataError& failure) {
        return failure.what();
    }
}

// An even curve with its step at 10.2.
qel::TitrationCurve EvenCurve(double first = 0, double last = 20, double interval = 0.25) {
    qel::TitrationCurve curve;
    for (double volume = first; volume < last; volume += interval) {
        curve.volume.push_back(volume);
        curve.signal.push_back(7 + 3 * std::tanh((volume - 10.2) / 0.6) + 0.01 * volume);
    }
    return curve;
}

// Silver chloride, as measured: volume in mL, potential in mV. The noise is about 1 mV.
const qel::TitrationCurve& SilverChloride() {
    static const qel::TitrationCurve curve =
        Curve({0,   0.2, 0.4,  0.6,  0.8, 1,    1.2,  1.4, 1.5, 1.6, 1.7, 1.8,
               1.9, 2,   2.04, 2.12, 2.2, 2.24, 2.28, 2.3, 2.4, 2.6, 3,   3.2},
              {206.8, 206.5, 204.2, 197.8, 194.3, 188.2, 183.5, 177.3, 172,  166.8, 158.4, 149.4,
               135.3, 96.9,  79.9,  51.6,  42.9,  37.3,  33.5,  33.7,  24.8, 14.1,  3.3,   -1.8});
    return curve;
}

// From where it is on the clean curve, in halves of the step between the readings there; 0 where none was found.
double HalvesOff(const MadeCurve& made, const std::optional<double>& found) {
    if (!found) return 0;
    if (!made.hasStep) return std::numeric_limits<double>::infinity();
    const auto above = std::ranges::upper_bound(made.volume, made.step);
    const double half = (*above - *(above - 1)) / 2, off = std::abs(*found - made.step);
    if (off <= half) return off / half;
    return std::min(off, std::abs(*found - Found(made.volume, made.clean).value_or(made.step))) / half;
}

// The curve that is made after so many others.
MadeCurve MadeAfter(int number, unsigned seed, MadeStrays strays = MadeStrays::seen) {
    CurveMaker maker(seed, strays);
    for (int i = 0; i < number; ++i) maker.Make();
    return maker.Make();
}

std::ptrdiff_t ReadingsBetween(const MadeCurve& made, double found) {
    const auto at = [&](double volume) { return std::ranges::upper_bound(made.volume, volume); };
    return std::abs(at(found) - at(made.step));
}

}  // namespace

// A curve of few readings that is steep everywhere seemed to be noisy.
TEST(EndPoint, OfASteepMeasuredCurveIsCertain) {
    for (const auto& [stray, height] : Cases<std::size_t, double>{
             {0, 0},
             {3, 60},
             {4, -60},
             {20, 40},
             {19, -40},
         }) {  // a height of 0: no stray
        qel::TitrationCurve curve = SilverChloride();
        curve.signal[stray] += height;
        const qel::EndPoint found = qel::FindEndPoint(curve);
        EXPECT_NEAR(found.volume, 2.0013, 0.0001) << stray;
        EXPECT_LT(found.noise, 1.5) << stray;
        EXPECT_EQ(std::ranges::count(found.strays, stray), height == 0 ? 0 : 1) << stray;
    }
}

// Half a step between readings from where it is on the clean curve, or refused.
TEST(EndPoint, OfMadeCurvesIsRightOrRefused) {
    const int count = SoakCount(300);
    CurveMaker maker(SoakSeed());
    int clean = 0, refusedClean = 0, spoilt = 0, refusedSpoilt = 0, wrong = 0;
    for (int i = 0; i < count; ++i) {
        const MadeCurve made = maker.Make();
        const std::optional<double> found = Found(made.volume, made.measured);
        if (made.hasStep) {
            (made.hasStrays ? spoilt : clean)++;
            if (!found) (made.hasStrays ? refusedSpoilt : refusedClean)++;
        }
        const double off = HalvesOff(made, found);
        EXPECT_LE(off, 1) << "curve " << i << ": " << found.value_or(0) << " for " << made.step;
        wrong += off > 1 ? 1 : 0;
    }
    Tried("curves", count);
    Tried("wrong", wrong);
    Tried("refused without strays", refusedClean);
    Tried("refused with strays", refusedSpoilt);
    EXPECT_LT(refusedClean, clean / 4);
    EXPECT_LT(refusedSpoilt, spoilt * 2 / 3);
}

// A stray that lies between its neighbours looks like a reading of another curve. Where it makes the steepest place,
// the end point may be there.
TEST(EndPoint, OfMadeCurvesIsSeldomAtAStrayThatCannotBeSeen) {
    const int count = SoakCount(4000);
    CurveMaker maker(SoakSeed(), MadeStrays::any);
    int hidden = 0, refused = 0, wrong = 0;
    for (int i = 0; i < count; ++i) {
        const MadeCurve made = maker.Make();
        if (!made.hasHiddenStrays) continue;
        const std::optional<double> found = Found(made.volume, made.measured);
        hidden++;
        if (!found) refused++;
        if (HalvesOff(made, found) <= 1) continue;
        wrong++;
        EXPECT_TRUE(made.hasStep) << "curve " << i << ": " << *found;
        EXPECT_LE(ReadingsBetween(made, *found), 7) << "curve " << i << ": " << *found << " for " << made.step;
    }
    Tried("curves with hidden strays", hidden);
    Tried("of these wrong", wrong);
    Tried("of these refused", refused);
    const double usual = hidden / 25.0;
    EXPECT_LE(wrong, usual + 3 * std::sqrt(usual));
    EXPECT_LT(refused, hidden * 9 / 10);
}

// Made curves that had a wrong end point: noise chose the run of readings, or had seemed half as large as it is, or
// strays far away had hidden others at the step, or noise had moved it from a short interval into a long one.
TEST(EndPoint, IsNotChosenByNoise) {
    for (const auto& [seed, number] : Cases<unsigned, int>{
             {41, 23044},
             {41, 23956},
             {42, 10339},
             {42, 14737},
             {51, 3640},
             {51, 17170},
             {52, 5965},
             {52, 11607},
             {52, 12945},
             {8344810, 45454},
             {1003, 38153},
         }) {
        const MadeCurve made = MadeAfter(number, seed);
        EXPECT_LE(HalvesOff(made, Found(made.volume, made.measured)), 1) << number;
    }
}

// Made curves whose strays had become the end point, though the slopes beside them have a valley.
TEST(EndPoint, IsNotBesideAValley) {
    for (const auto& [seed, number] : Cases<unsigned, int>{
             {901, 4855},
             {901, 11938},
             {902, 24364},
             {903, 23879},
         }) {
        const MadeCurve made = MadeAfter(number, seed, MadeStrays::any);
        EXPECT_LE(HalvesOff(made, Found(made.volume, made.measured)), 1) << number;
    }
}

// Few readings lie in the step: no polynomial follows it.
TEST(EndPoint, OfASharpStepIsWithinATenthOfAnInterval) {
    const auto nernst = [](double t) { return std::asinh(t * 40); };
    const auto level = [](double t) { return 3 * std::tanh(t * 2); };
    for (const auto& [shape, first] : Cases<std::function<double(double)>, double>{
             {nernst, 0},
             {nernst, 0.15},
             {nernst, 0.3},
             {level, 0},
             {level, 0.15},
             {level, 0.3},
         }) {
        std::vector<double> volume, signal;
        for (int i = 0; i < 40; ++i) {
            volume.push_back(first + 0.5 * i);
            signal.push_back(7 + shape(volume.back() - 10.2));
        }
        EXPECT_NEAR(Found(volume, signal).value_or(0), 10.2, 0.05) << first;
    }
}

// Made curves whose strays had become the end point.
TEST(EndPoint, IsNotAStrayBesideASharpStep) {
    const qel::TitrationCurve beforeTheStep = Curve(
        {0,       1.4916,  2.9103,  4.1168,  5.3627,  6.2628,  7.6113,  8.8952,  10.2611, 11.2215, 12.6309, 13.7517,
         14.2173, 14.6371, 14.8759, 14.9801, 15.0910, 15.1956, 15.3224, 15.4257, 15.6450, 16.1399, 17.0656},
        {11.6665, 11.5995, 11.5262, 11.0148, 11.3823, 11.3249, 11.2206, 11.0943, 10.9385, 10.7888, 11.5841, 10.1252,
         9.8656,  9.4784,  9.1001,  8.8077,  7.2386,  5.3201,  4.3090,  4.9806,  4.5742,  4.1099,  3.6830});
    const qel::TitrationCurve twice = Curve(
        {0,       0.8250,  1.3214,  1.8558,  2.4438,  3.2853,  3.7601,  4.2677,  4.9722,  5.5399,  6.2381,  7.0233,
         7.5095,  8.0361,  8.8315,  9.5479,  10.0477, 10.7756, 11.3849, 11.8837, 12.3549, 12.5748, 12.7062, 12.8512,
         13.4488, 14.2163, 14.7642, 15.2472, 15.7995, 16.2930, 16.9108, 17.4724, 18.1353, 18.6072},
        {3.1922,  4.1339,  3.2777,  3.3282,  3.3688,  3.4201,  3.4254,  3.4659,  3.5266,  6.6755, 3.6249, 3.6493,
         3.6758,  3.7166,  3.7381,  3.8002,  8.3819,  8.2963,  3.9161,  3.9404,  3.9561,  3.9725, 6.7766, 9.9932,
         10.0590, 10.0909, 10.1099, 10.1336, 10.2020, 10.2343, 10.2773, 10.2842, 10.3322, 10.3672});
    const qel::TitrationCurve nextToOthers =
        Curve({4.4297, 4.6229, 4.8133, 5.0238, 5.2052, 5.4135, 5.6155, 5.7699, 5.9181, 6.0561, 6.1916,
               6.3507, 6.5201, 6.6670, 6.7945, 6.9897, 7.1685, 7.3036, 7.5068, 7.6727, 7.8276, 8.0269,
               8.2143, 8.4215, 8.6002, 8.7917, 8.9475, 9.1318, 9.3322, 9.4889, 9.7090, 9.8983},
              {10.2838, 10.2401, 10.1913, 10.1390, 10.1007, 10.0480, 9.9878, 9.9317, 9.8785, 9.8280, 14.1109,
               14.2443, 9.6110,  9.5257,  9.4318,  9.2708,  7.1763,  6.9632, 6.3085, 6.8957, 5.6548, 5.1420,
               4.8742,  0.4435,  4.5333,  4.4005,  4.3188,  4.2329,  4.1458, 4.0951, 4.0203, 3.9598});
    for (const auto& [curve, expected, half] : Cases<qel::TitrationCurve, double, double>{
             {beforeTheStep, 15.166, 0.0523},
             {twice, 12.709, 0.0725},
             {nextToOthers, 7.666, 0.083},
         })
        EXPECT_NEAR(Found(curve.volume, curve.signal).value_or(expected), expected, half);
}

// Noise makes one of many short intervals the steepest.
TEST(EndPoint, IsNotWhereNoiseIsSteepest) {
    const qel::TitrationCurve curve =
        Curve({3.0915, 3.6650, 4.3320, 5.1224, 5.8179, 6.5172, 7.0671, 7.3277, 7.5769, 7.7126, 7.7902, 7.8762,
               7.9425, 7.9904, 8.0332, 8.1222, 8.1866, 8.2926, 8.4071, 8.5425, 8.6987, 9.0179, 9.5284, 10.1936},
              {9.5531, 9.4651, 9.3629, 9.2256, 9.0369, 8.7663, 8.4844, 8.2831, 7.9886, 7.7727, 7.6142, 7.3846,
               7.1772, 7.0490, 6.8656, 6.5923, 6.4362, 6.2166, 6.0379, 5.8620, 5.6858, 5.4682, 5.2001, 4.9575});
    EXPECT_NEAR(Found(curve.volume, curve.signal).value_or(7.9993), 7.9993, 0.0214);
}

TEST(EndPoint, DoesNotMoveWithStraysThatAreFarFromIt) {
    const qel::TitrationCurve clean = EvenCurve();
    const double expected = qel::FindEndPoint(clean).volume;
    for (const auto& [first, length, height] : Cases<std::size_t, std::size_t, double>{
             {10, 1, 0.5},
             {10, 2, 3},
             {10, 3, -2},
             {26, 1, 3},
             {26, 2, 5},
             {54, 2, -3},
             {60, 3, 2},
             {5, 3, 8},
         }) {
        qel::TitrationCurve curve = clean;
        for (std::size_t i = first; i < first + length; ++i) curve.signal[i] += height;
        EXPECT_EQ(Refusal(curve).substr(0, 9), "end point") << first << Refusal(curve);
        if (!Found(curve.volume, curve.signal)) continue;
        const qel::EndPoint found = qel::FindEndPoint(curve);
        EXPECT_NEAR(found.volume, expected, 0.01) << first;
        EXPECT_EQ(found.strays.size(), length) << first;
        EXPECT_EQ(found.strays.front(), first);
    }
}

TEST(EndPoint, IsTheSameForReadingsInAnyOrderAndDirection) {
    const double expected = qel::FindEndPoint(EvenCurve()).volume;
    qel::TitrationCurve curve = EvenCurve();
    for (double& signal : curve.signal) signal = -signal;
    EXPECT_NEAR(qel::FindEndPoint(curve).volume, expected, 1e-9) << "falling";
    for (auto* const values : {&curve.volume, &curve.signal}) std::ranges::reverse(*values);
    EXPECT_NEAR(qel::FindEndPoint(curve).volume, expected, 1e-9) << "from the last volume to the first";
}

TEST(EndPoint, SaysWhyThereIsNone) {
    qel::TitrationCurve twice = EvenCurve(), level = EvenCurve();
    for (std::size_t i = 38; i < 41; ++i) twice.signal[i] += 2;
    for (std::size_t i = 50; i < level.signal.size(); ++i) level.signal[i] -= 5.5;
    for (const auto& [curve, expected] :
         Cases<qel::TitrationCurve, const char*>{{EvenCurve(10.5), "the curve begins past its step"},
                                                 {EvenCurve(0, 9.9), "the curve ends before its step"},
                                                 {EvenCurve(9.9, 20), "the curve begins at its step near 10."},
                                                 {twice, "stray readings at the step near "},
                                                 {level, "the curve comes back over its step near 10."}})
        EXPECT_EQ(Refusal(curve).substr(0, std::string(expected).size()), expected) << Refusal(curve);
}

TEST(EndPoint, InAGapIsBetweenTheReadingsAroundIt) {
    qel::TitrationCurve curve = EvenCurve();
    EXPECT_FALSE(qel::FindEndPoint(curve).gap);
    for (auto* const values : {&curve.volume, &curve.signal}) values->erase(values->begin() + 39, values->begin() + 43);
    const auto gap = qel::FindEndPoint(curve).gap;
    ASSERT_TRUE(gap);
    EXPECT_EQ(gap->first, 9.5);
    EXPECT_EQ(gap->second, 10.75);
}

// Long curves are searched through means first; the benchmark has their time.
TEST(EndPoint, OfALongCurveIsThatOfAllItsReadings) {
    for (const auto& [noise, digit, tolerance] : Cases<double, double, double>{
             {0, 0, 0.0001},
             {0.001, 0, 0.005},
             {0.003, 0, 0.005},
             {0.01, 0, 0.02},
             {0, 0.0001, 0.002},
         }) {
        qel::TitrationCurve curve = EvenCurve(0, 20, 0.0002);
        std::mt19937 random(1);
        std::normal_distribution<double> error;
        for (double& signal : curve.signal) {
            signal += noise * error(random);
            if (digit > 0) signal = std::round(signal / digit) * digit;
        }
        EXPECT_NEAR(qel::FindEndPoint(curve).volume, 10.2, tolerance);
    }
}

TEST(EndPoint, IsRefusedForListsThatAreNoCurve) {
    const double infinite = std::numeric_limits<double>::infinity();
    qel::TitrationCurve shorter = EvenCurve(), infinitely = EvenCurve(), nan = EvenCurve(), huge = EvenCurve(),
                        close = EvenCurve();
    shorter.signal.pop_back();
    infinitely.volume[3] = infinite;
    nan.signal[70] = std::nan("");
    huge.signal[0] = 1e31;
    close.volume[1] = 1e-31;
    for (const auto& [curve, expected] : Cases<qel::TitrationCurve, const char*>{
             {qel::TitrationCurve(), "an end point needs at least 5 points, there are 0; measure more of the curve"},
             {shorter, "a curve has 80 volumes and 79 signals"},
             {infinitely, "reading 4 of a curve is not a finite number"},
             {nan, "reading 71 of a curve is not a finite number"},
             {huge, "a curve has a number beyond 1e30"},
             {close, "a curve has volumes closer than 1e-30"},
         })
        EXPECT_EQ(Refusal(curve), expected);
}

TEST(EndPoint, UsedPointsLeaveOutItsStrays) {
    qel::TitrationCurve curve = EvenCurve();
    curve.signal[10] += 3;
    qel::EndPoint found = qel::FindEndPoint(curve);
    const qel::CurvePoints used = qel::UsedPoints(curve, found);
    EXPECT_EQ(used.x.size(), curve.volume.size() - 1);
    EXPECT_EQ(std::ranges::count(used.x, curve.volume[10]), 0);
    found.strays = {curve.volume.size()};
    EXPECT_THROW(qel::UsedPoints(curve, found), qel::DataError);
}

TEST(CurvePoints, OfACubicHaveItsSlopeAtAnySteps) {
    qel::TitrationCurve curve;
    for (const double x : {4.0, 0.0, 1.0, 1.5, 2.5, 1.0, 6.0, 7.0}) {
        curve.volume.push_back(x);
        curve.signal.push_back(x * x * x - 2 * x);
    }
    const qel::CurvePoints points = qel::MergeRepeats(curve);
    EXPECT_EQ(points.x.size(), 7);
    for (const auto& [run, count] : Cases<std::size_t, std::size_t>{
             {0, 0},
             {3, 0},
             {4, 7},
             {5, 7},
             {100, 7},
         }) {
        const qel::CurvePoints slope = qel::Differentiate(points, run);
        EXPECT_EQ(slope.x.size(), count) << run;
        for (std::size_t i = 0; i < slope.x.size(); ++i)
            EXPECT_NEAR(slope.y[i], 3 * slope.x[i] * slope.x[i] - 2, 1e-9) << run;
    }
    EXPECT_EQ(qel::AverageGroups(points, 0).y, points.y);
    EXPECT_EQ(qel::AverageGroups(points, 5).x.size(), 2);
    EXPECT_THROW(qel::SmoothByMedian({{1, 2}, {1}}), qel::DataError);
}
