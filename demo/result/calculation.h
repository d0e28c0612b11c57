#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>
#include <qellib10/quantity.h>

#include "demo/method/settings.h"

namespace titration {

struct Result {
    CCalcVariableList variables;    // all of them, including the end point's volume and the rounded result
    std::vector<std::string> used;  // names that the formula refers to
    std::string name;
    double computed = 0;
    double value = 0;  // rounded
    std::string text;  // with the settings' number of decimal places
    std::string unit;
    qel::Trace trace;  // of the same computation in decimal numbers, see RequireTrace; empty in earlier releases
};

/// "ACIDITY = 49.6 g/L"
std::string Shown(const Result& result);

/// Computes the settings' formula with their variables and the end point's volume.
/// @param endPoint its value is the volume, and its uncertainty that of the curve
/// @throws Failure if the formula is wrong, divides by zero or gives no number that can be written, and if two names
/// differ only in letter case or the unit is unknown
Result Calculate(const Settings& settings, const qel::CurveResult& endPoint);

}  // namespace titration
