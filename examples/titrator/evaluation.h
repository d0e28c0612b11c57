#pragma once

#include <qellib10/graphics.h>
#include <qellib10/quantity.h>

#include <algorithm>

namespace titrator {

/// The acidity of the sample, by the end point of its curve.
inline qel::Trace Acidity(const qel::CurveEndPoint& end) {
    using qel::CalculationInput, qel::UncertaintyComponent;
    qel::Calculation calculation;
    calculation.result = {"ACIDITY", "(EP - BLANK) * C * M / SAMPLE", "g/L"};
    calculation.inputs = {
        *CalculationInput::Of("EP", (qel::NumberText(*end.value) + " mL").View(),
                              {*UncertaintyComponent::Standard(end.uncertainty, "curve"),
                               *UncertaintyComponent::Rectangular(0.02, "burette")},
                              "end point of the curve"),
        *CalculationInput::Of("BLANK", "0.03 mL", {*UncertaintyComponent::Standard(0.005)}, "method"),
        *CalculationInput::Of("C", "0.10000 mol/L", {*UncertaintyComponent::Certificate(0.0002, 2)}, "lot 4711"),
        *CalculationInput::Of("M", "60.052 g/mol", {}, "acetic acid"),
        *CalculationInput::Of("SAMPLE", "2 mL", {*UncertaintyComponent::Triangular(0.01)}, "pipette 3"),
    };
    calculation.rule = qel::RoundingRule::ToUncertainty(qel::DecimalRounding::kHalfEven, 2);
    return qel::Trace::Of(calculation);
}

/// The end point of a curve, without the points that are left out.
inline qel::CurveEndPoint EndPointOf(const qel::ChartSeries& curve) {
    const std::vector<std::size_t> leftOut = qel::PointsLeftOut(curve);
    std::vector<qel::CurvePoint> readings;
    for (std::size_t i = 0; i < curve.points.size(); ++i) {
        if (std::ranges::binary_search(leftOut, i)) continue;
        readings.push_back({curve.points[i].GetXData(), curve.points[i].GetYData()});
    }
    return qel::Curve::Of(readings).EndPointBy({});
}

}  // namespace titrator
