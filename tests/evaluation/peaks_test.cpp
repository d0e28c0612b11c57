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

constexpr double kHalfWidth = 2.3548200450309493;  // of a normal distribution, in standard deviations

double Bell(double x, double top, double deviation, double height) {
    return height * std::exp(-(x - top) * (x - top) / (2 * deviation * deviation));
}

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

TEST(Peaks, HaveValuesWhoseUncertaintiesCoverTheTruth) {
    std::mt19937 random(SoakSeed());
    const double area = 20 * 0.2 * std::sqrt(2 * std::numbers::pi);
    for (const auto& [method, noise] : Cases<BaselineMethod, double>{
             {BaselineMethod::kLine, 0.005},
             {BaselineMethod::kLine, 0.05},
             {BaselineMethod::kAsymmetric, 0.05},
         }) {
        PeakOptions options = OnALine();
        options.baseline.method = method;
        std::array<Coverage, 6> coverages;
        for (int i = 0; i < SoakCount(60); ++i) {
            const qel::CurvePeaks found = Curve::Of(Readings(random, Chromatogram, 0, 12, 300, noise)).Peaks(options);
            ASSERT_EQ(found.peaks.size(), 2) << found.reason;
            const CurvePeak& peak = found.peaks[0];
            coverages[0].Add(peak.position, 5);
            coverages[1].Add(peak.height, 20);
            coverages[2].Add(peak.area, area);
            coverages[3].Add(peak.width, 0.2 * kHalfWidth);
            coverages[4].Add(peak.resolution, 1.18 * 1.5 / (0.45 * kHalfWidth));
            coverages[5].Add(peak.tailing, 1);
            EXPECT_LT(peak.area.uncertainty, 0.05 * area);
        }
        for (std::size_t k = 0; k < coverages.size(); ++k) {
            EXPECT_GE(coverages[k].Percent(), 80) << k << " at noise " << noise;
            EXPECT_EQ(coverages[k].refused, 0) << k << " at noise " << noise;
        }
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
