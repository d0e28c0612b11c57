#include "demo/result/titration.h"

#include "demo/support/failure.h"

namespace titration {

qel::CurveEndPoint EndPointOf(const Curve& curve) {
    std::vector<qel::CurvePoint> readings;
    for (std::size_t i = 0; i < curve.volume.size(); ++i) readings.push_back({curve.volume[i], curve.signal[i]});
    qel::CurveEndPoint found = qel::Curve::Of(readings).EndPointBy({});
    if (!found) throw Failure(found.reason);
    return found;
}

Titration EvaluateTitration(const std::string& methodName, const Method& method, const std::string& dataName,
                            const std::string& data, int table) {
    Titration result;
    result.settingsFile = methodName;
    result.dataFile = dataName;
    result.settings = About(methodName, [&] { return ParseSettings(method); });
    result.curve = About(
        dataName, [&] { return ReadCurve(data, result.settings.volumeColumn, result.settings.signalColumn, table); });
    const qel::CurveEndPoint found = About(dataName, [&] { return EndPointOf(result.curve); });
    result.endPoint = *found.steepest;
    result.result = About(methodName, [&] { return Calculate(result.settings, found); });
    return result;
}

}  // namespace titration
