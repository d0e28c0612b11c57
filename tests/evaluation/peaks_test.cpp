#include <array>
#include <cmath>
#include <numbers>

#include "../support/soak.h"
#include "../support/test.h"
#include "made_readings.h"
#include "qellib10/evaluation/curve.h"

namespace {

using qel::BaselineMethod, qel::Curve, qel::CurvePeak, qel::CurvePoint, qel::CurveResult, qel::PeakOptions;
using Points = std::vector<CurvePoint>;

double Bell(double x, double top, double deviation, double height) {
    return height * std::exp(-(x - top) * (x - top) / (2 * deviation * deviation));
}

// A normal distribution with an exponential tail (exponentially modified), or none.
struct Tailing {
    double deviation, tail, height, top = 0, area;

    Tailing(double s, double t, double h)
        : deviation(s), tail(t), height(h), area(h * s * std::sqrt(2 * std::numbers::pi)) {
        for (double step = deviation; step > 1e-9; step /= 2) {
            while (At(top + step) > At(top)) top += step;
            while (At(top - step) > At(top)) top -= step;
        }
    }
    double At(double x) const {
        if (tail == 0) return Bell(x, 0, deviation, height);
        const double exponent = deviation * deviation / (2 * tail * tail) - x / tail;
        const double part = std::erfc((deviation / tail - x / deviation) / std::numbers::sqrt2);
        return part == 0 ? 0 : area / (2 * tail) * std::exp(exponent) * part;
    }
    // Where a side has a part of the height.
    double Side(double part, int direction) const {
        double inside = top, outside = top + direction * 8 * (deviation + tail);
        for (int i = 0; i < 60; ++i) {
            const double middle = (inside + outside) / 2;
            (At(middle) > part * At(top) ? inside : outside) = middle;
        }
        return inside;
    }
    double Width(double part) const { return Side(part, 1) - Side(part, -1); }
};

double Chromatogram(double x) { return 2 + 0.05 * x + Bell(x, 5, 0.2, 20) + Bell(x, 6.5, 0.25, 10); }

PeakOptions OnALine() { return {.baseline = {.before = {0, 3.8}, .after = {8, 12}}}; }

Points Even(const Shape& shape, double last = 12) {
    std::mt19937 random(3);
    return Readings(random, shape, 0, last, static_cast<int>(last * 25), 0.01);
}

std::string Reason(const CurveResult& result) {
    EXPECT_EQ(result.value.has_value(), result.reason.empty());
    return result ? "a value" : result.reason;
}

}  // namespace

// Peaks of many readings and of few, beside another one, with a tail, and in much noise.
TEST(Peaks, HaveValuesWhoseUncertaintiesCoverTheTruth) {
    struct Case {
        const char* name;
        double tail, step, noise;
        BaselineMethod baseline = BaselineMethod::kLine;
    };
    const Case cases[] = {
        {"usual", 0, 0.04, 0.05},
        {"little noise", 0, 0.04, 0.005},
        {"asymmetric", 0, 0.04, 0.05, BaselineMethod::kAsymmetric},
        {"a tenth noise", 0, 0.02, 2},
        {"a twentieth", 0, 0.05, 1},
        {"4 readings across", 0, 0.12, 0.02},
        {"7 readings", 0, 0.07, 0.2},
        {"tail", 0.2, 0.02, 0.02},
        {"tail in noise", 0.2, 0.04, 0.8},
        {"tail, few", 0.2, 0.1, 0.02},
    };
    const char* const names[] = {"position", "height", "area", "width", "resolution", "tailing"};
    std::mt19937 random(SoakSeed());
    std::uniform_real_distribution<double> moved(-0.5, 0.5);
    std::array<Coverage, 6> all;
    for (const Case& made : cases) {
        const Tailing shape(0.2, made.tail, 20);
        PeakOptions options = OnALine();
        options.baseline.method = made.baseline;
        std::array<Coverage, 6> coverages;
        for (int i = 0; i < SoakCount(40); ++i) {
            const double place = 5 + made.step * moved(random);
            const auto signal = [&](double x) {
                return 2 + 0.05 * x + shape.At(x - place) + shape.At(x - place - 1.5) / 2;
            };
            const int count = static_cast<int>(12 / made.step);
            const qel::CurvePeaks found = Curve::Of(Readings(random, signal, 0, 12, count, made.noise)).Peaks(options);
            ASSERT_EQ(found.peaks.size(), 2) << made.name << found.reason;
            const CurvePeak& peak = found.peaks[0];
            coverages[0].Add(peak.position, place + shape.top);
            coverages[1].Add(peak.height, shape.At(shape.top));
            coverages[2].Add(peak.area, shape.area);
            coverages[3].Add(peak.width, shape.Width(0.5));
            coverages[4].Add(peak.resolution, 1.18 * 1.5 / (2 * shape.Width(0.5)));
            coverages[5].Add(peak.tailing, shape.Width(0.05) / (2 * (shape.top - shape.Side(0.05, -1))));
        }
        for (std::size_t k = 0; k < coverages.size(); ++k) {
            if (coverages[k].tried > SoakCount(40) / 2) {
                EXPECT_GE(coverages[k].Percent(), 75) << made.name << ", " << names[k];
            }
            all[k].Add(coverages[k]);
        }
    }
    for (std::size_t k = 0; k < all.size(); ++k) {
        EXPECT_GE(all[k].Percent(), 94) << names[k];
        EXPECT_LE(all[k].Excess(), k == 5 ? 5 : 2) << names[k];  // tailing ends under the next peak
        EXPECT_LE(all[k].refused, all[k].tried) << names[k];
    }
}

TEST(Peaks, RefuseWhatDoesNotExist) {
    const auto fused = [](double x) { return Bell(x, 5, 0.3, 20) + Bell(x, 5.8, 0.3, 19); };
    PeakOptions zero;
    zero.baseline.method = BaselineMethod::kZero;
    const qel::CurvePeaks two = Curve::Of(Even(fused)).Peaks(zero), cut = Curve::Of(Even(fused, 5.8)).Peaks(zero);
    ASSERT_EQ(Line({two.peaks.size(), cut.peaks.size()}), "2 2") << two.reason << cut.reason;
    const std::string overlap = "the peak at 5.0";
    for (const auto& [result, expected] : Cases<CurveResult, std::string>{
             {two.peaks[0].position, "a value"},
             {two.peaks[0].area, "a value"},
             {two.peaks[0].width, overlap},
             {two.peaks[0].resolution, overlap},
             {two.peaks[0].tailing, overlap},
             {two.peaks[1].resolution, "there is no next peak"},
             {cut.peaks[1].area, "the area of the peak at 5."},
         })
        EXPECT_EQ(Reason(result).substr(0, expected.size()), expected);
}

TEST(Peaks, SayWhyThereAreNone) {
    PeakOptions wide = OnALine(), negative = OnALine(), nowhere, stiff = OnALine(), high = OnALine();
    wide.window = 2;
    negative.leastHeight = -1;
    stiff.baseline = {.method = BaselineMethod::kAsymmetric, .smoothness = 0};
    high.leastHeight = 100;
    const Points points = Even(Chromatogram);
    for (const auto& [options, expected] : Cases<PeakOptions, std::string>{
             {wide, "a window of 2 points does not give derivative 1"},
             {negative, "a height below 0 is impossible"},
             {nowhere, "a straight baseline needs 3 points in its ranges, there are 0"},
             {stiff, "a baseline of smoothness 0 and asymmetry 0.001 is impossible"},
             {high, "no peak is 100 high above the baseline; the noise is 0.0"},
         })
        EXPECT_EQ(Curve::Of(points).Peaks(options).reason.substr(0, expected.size()), expected);
    EXPECT_EQ(Curve::Of({}).Peaks(high).reason, "a curve needs at least 6 points, there are 0");
    EXPECT_EQ(Curve::Of({}).Baseline({}).reason, "a curve needs at least 6 points, there are 0");
}

// A peak that is so narrow may as well be a disturbance.
TEST(Peaks, OfThreeReadingsAreReportedAsStrays) {
    const auto readings = [](double deviation) {
        std::mt19937 random(3);
        std::normal_distribution<double> error(0, 0.02);
        Points points;
        for (int i = 0; i <= 100; ++i) points.push_back({0.1 * i, Bell(0.1 * i, 5, deviation, 20) + error(random)});
        return points;
    };
    PeakOptions zero;
    zero.baseline.method = BaselineMethod::kZero;
    const qel::CurvePeaks none = Curve::Of(readings(0.055)).Peaks(zero), narrow = Curve::Of(readings(0.09)).Peaks(zero);
    EXPECT_EQ(none.peaks.size(), 0);
    EXPECT_EQ(none.strays.size(), 3);
    EXPECT_NE(none.reason.find("; 3 readings were left out as strays, the first at 4."), std::string::npos)
        << none.reason;
    ASSERT_EQ(narrow.peaks.size(), 1) << narrow.reason;
    EXPECT_EQ(Reason(narrow.peaks[0].area), "a value");
    EXPECT_EQ(narrow.peaks[0].position.refusal, qel::CurveRefusal::kTooFewPoints);
}

TEST(Peaks, OfNoiseAreNotFound) {
    std::mt19937 random(SoakSeed());
    int found = 0;
    for (int i = 0; i < SoakCount(100); ++i) {
        const Points points = Readings(
            random, [](double x) { return 3 + x; }, 0, 12, 300, 0.1);
        found += Curve::Of(points).Peaks(OnALine()).peaks.empty() ? 0 : 1;
    }
    EXPECT_LE(found, SoakCount(100) / 20);
}
