#include "../../examples/titration/end_point.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "../../examples/titration/failure.h"
#include "../support/made_curve.h"
#include "../support/soak.h"
#include "../support/test.h"

namespace {

titration::Curve Curve(const std::vector<double>& volume, const std::vector<double>& signal) {
    titration::Curve curve;
    curve.volume = volume;
    curve.signal = signal;
    return curve;
}

std::optional<double> Found(const std::vector<double>& volume, const std::vector<double>& signal) {
    try {
        return titration::FindEndPoint(Curve(volume, signal)).volume;
    } catch (const titration::Failure&) {
        return std::nullopt;
    }
}

std::string Refusal(const titration::Curve& curve) {
    try {
        return "end point " + std::to_string(titration::FindEndPoint(curve).volume);
    } catch (const titration::Failure& failure) {
        return failure.what();
    }
}

// An even curve with its step at 10.2.
titration::Curve EvenCurve(double first = 0, double last = 20, double interval = 0.25) {
    titration::Curve curve;
    for (double volume = first; volume < last; volume += interval) {
        curve.volume.push_back(volume);
        curve.signal.push_back(7 + 3 * std::tanh((volume - 10.2) / 0.6) + 0.01 * volume);
    }
    return curve;
}

// Silver chloride, as measured: volume in mL, potential in mV. The noise is about 1 mV.
const titration::Curve& SilverChloride() {
    static const titration::Curve curve =
        Curve({0,   0.2, 0.4,  0.6,  0.8, 1,    1.2,  1.4, 1.5, 1.6, 1.7, 1.8,
               1.9, 2,   2.04, 2.12, 2.2, 2.24, 2.28, 2.3, 2.4, 2.6, 3,   3.2},
              {206.8, 206.5, 204.2, 197.8, 194.3, 188.2, 183.5, 177.3, 172,  166.8, 158.4, 149.4,
               135.3, 96.9,  79.9,  51.6,  42.9,  37.3,  33.5,  33.7,  24.8, 14.1,  3.3,   -1.8});
    return curve;
}

}  // namespace

// A curve of few readings that is steep everywhere seemed to be noisy.
TEST(EndPoint, OfASteepMeasuredCurveIsCertain) {
    for (const auto& [stray, height] :
         Cases<std::size_t, double>{{0, 0}, {3, 60}, {4, -60}, {20, 40}, {19, -40}}) {  // a height of 0: no stray
        titration::Curve curve = SilverChloride();
        curve.signal[stray] += height;
        const titration::EndPoint found = titration::FindEndPoint(curve);
        EXPECT_NEAR(found.volume, 2.0013, 0.0001) << stray;
        EXPECT_LT(found.noise, 1.5) << stray;
        EXPECT_EQ(std::ranges::count(found.strays, stray), height == 0 ? 0 : 1) << stray;
    }
}

// Half a step between readings from where it is on the clean curve, or refused.
TEST(EndPoint, OfMadeCurvesIsRightOrRefused) {
    const int count = SoakCount(300);
    CurveMaker maker(SoakSeed());
    int clean = 0, refusedClean = 0, spoilt = 0, refusedSpoilt = 0;
    for (int i = 0; i < count; ++i) {
        const MadeCurve made = maker.Make();
        const std::optional<double> found = Found(made.volume, made.measured);
        if (made.hasStep) {
            (made.hasStrays ? spoilt : clean)++;
            if (!found) (made.hasStrays ? refusedSpoilt : refusedClean)++;
        }
        if (!found) continue;
        EXPECT_TRUE(made.hasStep) << "curve " << i << " has no step, and one at " << *found << " was found";
        if (!made.hasStep) continue;
        const auto above = std::ranges::upper_bound(made.volume, made.step);
        const double half = (*above - *(above - 1)) / 2;
        const double onClean = Found(made.volume, made.clean).value_or(made.step);
        EXPECT_LE(std::min(std::abs(*found - made.step), std::abs(*found - onClean)), half)
            << "curve " << i << ": " << *found << " for " << onClean;
    }
    Tried("curves", count);
    EXPECT_LT(refusedClean, clean / 5);
    EXPECT_LT(refusedSpoilt, spoilt * 2 / 3);
}

TEST(EndPoint, DoesNotMoveWithStraysThatAreFarFromIt) {
    const titration::Curve clean = EvenCurve();
    const double expected = titration::FindEndPoint(clean).volume;
    for (const auto& [first, length, height] : Cases<std::size_t, std::size_t, double>{
             {10, 1, 0.5}, {10, 2, 3}, {10, 3, -2}, {26, 1, 3}, {26, 2, 5}, {54, 2, -3}, {60, 3, 2}, {5, 3, 8}}) {
        titration::Curve curve = clean;
        for (std::size_t i = first; i < first + length; ++i) curve.signal[i] += height;
        EXPECT_EQ(Refusal(curve).substr(0, 9), "end point") << first << Refusal(curve);
        if (!Found(curve.volume, curve.signal)) continue;
        const titration::EndPoint found = titration::FindEndPoint(curve);
        EXPECT_NEAR(found.volume, expected, 0.01) << first;
        EXPECT_EQ(found.strays.size(), length) << first;
        EXPECT_EQ(found.strays.front(), first);
    }
}

TEST(EndPoint, SaysWhyThereIsNone) {
    titration::Curve twice = EvenCurve(), level = EvenCurve();
    for (std::size_t i = 38; i < 41; ++i) twice.signal[i] += 2;
    for (std::size_t i = 50; i < level.signal.size(); ++i) level.signal[i] -= 5.5;
    for (const auto& [curve, expected] :
         Cases<titration::Curve, const char*>{{EvenCurve(10.5), "the curve begins past its step"},
                                              {EvenCurve(0, 9.9), "the curve ends before its step"},
                                              {EvenCurve(9.9, 20), "the curve begins at its step near 10."},
                                              {twice, "stray readings at the step near "},
                                              {level, "the curve comes back over its step near 10."}}) {
        EXPECT_EQ(Refusal(curve).substr(0, std::string(expected).size()), expected) << Refusal(curve);
    }
}

TEST(EndPoint, InAGapIsBetweenTheReadingsAroundIt) {
    titration::Curve curve = EvenCurve();
    EXPECT_FALSE(titration::FindEndPoint(curve).gap);
    for (auto* const values : {&curve.volume, &curve.signal}) values->erase(values->begin() + 39, values->begin() + 43);
    const auto gap = titration::FindEndPoint(curve).gap;
    ASSERT_TRUE(gap);
    EXPECT_EQ(gap->first, 9.5);
    EXPECT_EQ(gap->second, 10.75);
}

// 100,000 points took half a minute.
TEST(EndPoint, OfALongCurveIsFoundAtOnce) {
    for (const auto& [noise, digit, tolerance] :
         Cases<double, double, double>{{0, 0, 0.0001}, {0.01, 0, 0.01}, {0, 0.0001, 0.002}}) {
        titration::Curve curve = EvenCurve(0, 20, 0.0002);
        unsigned random = 1;
        for (double& signal : curve.signal) {
            random = random * 1664525u + 1013904223u;
            signal += noise * ((random >> 16) / 32768.0 - 1);
            if (digit > 0) signal = std::round(signal / digit) * digit;
        }
        const auto start = std::chrono::steady_clock::now();
        EXPECT_NEAR(titration::FindEndPoint(curve).volume, 10.2, tolerance);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    }
}
