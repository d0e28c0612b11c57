#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

#include "demo/method/settings.h"

namespace titration {

struct Result {
    CCalcVariableList variables;    // all of them, the end point's volume and the rounded result included
    std::vector<std::string> used;  // names that the formula refers to
    std::string name;
    double computed = 0;
    double value = 0;  // rounded
    std::string text;  // with the settings' number of decimal places
    std::string unit;
};

/// "ACIDITY = 49.6 g/L"
std::string Shown(const Result& result);

/// Computes the settings' formula over their variables and the end point's volume.
/// @throws Failure when the formula is wrong, divides by zero or gives no number that can be written, and when two
///     names differ in letter case alone or the unit is unknown
Result Calculate(const Settings& settings, double endPointVolume);

}  // namespace titration
