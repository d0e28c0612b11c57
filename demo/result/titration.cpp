#include "demo/result/titration.h"

#include "demo/support/failure.h"

namespace titration {
namespace {

qel::EndPoint EndPointOf(const Curve& curve) {
    try {
        return qel::FindEndPoint(curve);
    } catch (const qel::DataError& refusal) {
        throw Failure(refusal.what());
    }
}

}  // namespace

Titration EvaluateTitration(const std::string& methodName, const Method& method, const std::string& dataName,
                            const std::string& data, int table) {
    Titration result;
    result.settingsFile = methodName;
    result.dataFile = dataName;
    result.settings = About(methodName, [&] { return ParseSettings(method); });
    result.curve = About(
        dataName, [&] { return ReadCurve(data, result.settings.volumeColumn, result.settings.signalColumn, table); });
    result.endPoint = About(dataName, [&] { return EndPointOf(result.curve); });
    result.result = About(methodName, [&] { return Calculate(result.settings, result.endPoint.volume); });
    return result;
}

}  // namespace titration
