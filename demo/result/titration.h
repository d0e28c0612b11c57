#pragma once

#include <string>

#include <qellib10/qellib10.h>
#include <qellib10/quantity.h>

#include "demo/curve/csv_table.h"
#include "demo/method/settings.h"
#include "demo/result/calculation.h"

namespace titration {

/// What was measured, and its result.
struct Titration {
    std::string settingsFile;
    Settings settings;
    std::string dataFile;
    Curve curve;
    qel::EndPoint endPoint{};
    Result result;
};

/// The end point of a curve, with what the curve shows of its uncertainty.
/// @throws Failure if there is none that is certain
qel::CurveEndPoint EndPointOf(const Curve& curve);

/// The result of a measured curve, given as the text of its file, by a method. The names of both are for messages and
/// the report.
/// @param table which table of the file it is, 0: the only one
/// @throws Failure if one of them cannot give a result
Titration EvaluateTitration(const std::string& methodName, const Method& method, const std::string& dataName,
                            const std::string& data, int table = 0);

}  // namespace titration
