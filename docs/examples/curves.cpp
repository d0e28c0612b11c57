// A titration by three methods, then a chromatogram. Each value has its uncertainty, or a reason.
#include <qellib10/quantity.h>

#include <cmath>
#include <cstdio>

namespace {

void Show(const char* what, const qel::CurveResult& result) {
    if (result)
        std::printf("%-18s %.4f, u = %.4f\n", what, *result.value, result.uncertainty);
    else
        std::printf("%-18s %s\n", what, result.reason.c_str());
}

// Two peaks at 5.0 and 6.2 minutes on a baseline that drifts, without chance: the noise repeats.
double Detector(int i) {
    const double t = 0.02 * i, noise = 0.01 * std::sin(i * i * 1.7);
    return 2 + 0.05 * t + 20 * std::exp(-12 * (t - 5) * (t - 5)) + 6 * std::exp(-12 * (t - 6.2) * (t - 6.2)) + noise;
}

}  // namespace

int main() {
    // Silver nitrate into a chloride sample: mL and V.
    const std::vector<qel::CurvePoint> readings = {
        {5, 0.062},    {15, 0.085},   {20, 0.107},   {22, 0.123},   {23, 0.138},   {23.5, 0.146}, {23.8, 0.161},
        {24, 0.174},   {24.1, 0.183}, {24.2, 0.194}, {24.3, 0.233}, {24.4, 0.316}, {24.5, 0.340}, {24.6, 0.351},
        {24.7, 0.358}, {25, 0.373},   {25.5, 0.385}, {26, 0.396},   {28, 0.426}};
    const qel::Curve titration = qel::Curve::Of(readings);
    Show("steepest:", titration.EndPointBy({}));
    const qel::CurveEndPoint end =
        titration.EndPointBy({.method = qel::EndPointMethod::kSecondDerivative, .window = 3, .degree = 2});
    Show("second derivative:", end);
    Show("at 0.5 V:", titration.EndPointBy({.method = qel::EndPointMethod::kFixedValue, .level = 0.5}));

    std::string error;
    const auto volume = end.AsQuantity(*qel::Unit::Parse("mL", error), "end point");
    if (volume)
        std::printf("%-18s %.4f %s\n\n", "for a formula:", volume->value.ToDouble(), volume->unit.Text().c_str());

    std::vector<qel::CurvePoint> signals;
    for (int i = 0; i < 500; ++i) signals.push_back({0.02 * i, Detector(i)});
    qel::PeakOptions options;
    options.baseline.before = {0, 3.5};
    options.baseline.after = {7.5, 10};
    const qel::CurvePeaks found = qel::Curve::Of(signals).Peaks(options);
    if (found.peaks.empty()) std::puts(found.reason.c_str());
    for (const qel::CurvePeak& peak : found.peaks) {
        Show("position:", peak.position);
        Show("  area:", peak.area);
        Show("  width:", peak.width);
        Show("  resolution:", peak.resolution);
    }
}
