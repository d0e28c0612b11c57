#include <cmath>

#include "qellib10/evaluation/curve_baseline.h"
#include "qellib10/evaluation/local_fit.h"
#include "qellib10/evaluation/peak_reader.h"

namespace qel {
namespace {

constexpr double kUsualHeight = 6;    // standard uncertainties
constexpr double kResolution = 1.18;  // for widths at half height
constexpr double kOtherSmoothness = 10;

CurveResult Resolution(const CurvePeak& peak, const CurvePeak& next) {
    for (const CurveResult* const needed : {&peak.position, &peak.width, &next.position, &next.width}) {
        if (!*needed) return Refused(needed->refusal, needed->reason);
    }
    const double apart = *next.position.value - *peak.position.value, widths = *peak.width.value + *next.width.value;
    const double ofPlaces = std::hypot(peak.position.uncertainty, next.position.uncertainty);
    const double ofWidths = std::hypot(peak.width.uncertainty, next.width.uncertainty);
    CurveResult result;
    result.value = kResolution * apart / widths;
    result.uncertainty = *result.value * std::hypot(ofPlaces / apart, ofWidths / widths);
    result.degreesOfFreedom = peak.width.degreesOfFreedom;
    return result;
}

// How far baselines of ten times the smoothness and of a tenth are from this one: nobody knows the right one better.
std::vector<double> MovedBy(const CurveData& data, const CurveBaseline& baseline, const BaselineOptions& options) {
    std::vector<double> moved(data.size(), 0.0);
    if (options.method != BaselineMethod::kAsymmetric) return moved;
    for (const double factor : {kOtherSmoothness, 1 / kOtherSmoothness}) {
        BaselineOptions others = options;
        others.smoothness = std::min(options.smoothness * factor, kMostSmoothness);
        CurveValues refused;
        const auto other = CurveBaseline::Of(data, others, refused);
        for (std::size_t i = 0; other && i < moved.size(); ++i)
            moved[i] = std::max(moved[i], std::abs(other->Values()[i] - baseline.Values()[i]));
    }
    return moved;
}

// The readings that were left out and are as high as a peak would be, by their x.
std::vector<double> HighStrays(const PeakCurve& curve, const std::vector<double>& leastHeight) {
    std::vector<double> places;
    const CurveData& data = curve.data;
    for (const std::size_t i : data.areStraysIn ? std::vector<std::size_t>{} : data.strays) {
        const CurvePoint& stray = data.given[i];
        const auto after = static_cast<std::size_t>(std::ranges::lower_bound(data.x, stray.x) - data.x.begin());
        const std::size_t near = std::min(after, data.size() - 1);
        if (stray.y - curve.baseline.Values()[near] > leastHeight[near]) places.push_back(stray.x);
    }
    std::ranges::sort(places);
    return places;
}

CurvePeaks RefusedPeaks(CurveRefusal refusal, std::string reason) { return {{}, refusal, std::move(reason), {}}; }

}  // namespace

CurvePeaks Curve::Peaks(const PeakOptions& options) const {
    const CurveData& data = *m_data;
    if (data.refusal != CurveRefusal::kNone) return RefusedPeaks(data.refusal, data.reason);
    if (std::string fault = WindowFault(options.window, options.degree, 1); !fault.empty())
        return RefusedPeaks(CurveRefusal::kArgument, std::move(fault));
    if (!(options.leastHeight >= 0)) return RefusedPeaks(CurveRefusal::kArgument, "a height below 0 is impossible");
    CurveValues refused;
    const auto baseline = CurveBaseline::Of(data, options.baseline, refused);
    if (!baseline) return RefusedPeaks(refused.refusal, refused.reason);

    PeakCurve curve{data, *baseline, options, MovedBy(data, *baseline, options.baseline), data.y, {}};
    for (std::size_t i = 0; i < data.size(); ++i) curve.above[i] -= baseline->Values()[i];
    curve.smoothed = curve.above;
    std::vector<double> least(data.size(), options.leastHeight);
    std::size_t at = 0;  // a part with too few points is as it was measured
    for (const CurveValue& value : LocalFit(data, options.window, options.degree).All(0)) {
        while (data.x[at] < value.x) ++at;
        curve.smoothed[at] = value.y - baseline->Values()[at];
        if (options.leastHeight == 0) least[at] = kUsualHeight * value.uncertainty;
    }
    CurvePeaks found;
    for (const FoundPeak& peak : FindPeaks(curve.smoothed, least)) found.peaks.push_back(ReadPeak(curve, peak));
    if (found.peaks.empty()) {
        CurvePeaks none =
            RefusedPeaks(CurveRefusal::kNoPlace, "no peak is " + NumberInSentence(std::ranges::max(least)) +
                                                     " high above the baseline; the noise is " +
                                                     NumberInSentence(data.noise) + StraysInSentence(data));
        none.strays = HighStrays(curve, least);
        return none;
    }
    found.strays = HighStrays(curve, least);
    for (std::size_t k = 0; k < found.peaks.size(); ++k) {
        CurvePeak& peak = found.peaks[k];
        peak.resolution = k + 1 < found.peaks.size() ? Resolution(peak, found.peaks[k + 1])
                                                     : Refused(CurveRefusal::kNoPlace, "there is no next peak");
    }
    return found;
}

}  // namespace qel
