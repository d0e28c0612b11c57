#pragma once

#include <optional>
#include <string>
#include <vector>

#include "demo/method/method.h"

namespace titration {

struct NamedValue {
    std::string name;
    double value;
};

/// A method with its numbers read.
struct Settings {
    std::string volumeColumn;
    std::string signalColumn;
    std::vector<NamedValue> variables;
    std::string endPoint;
    std::string name;
    std::string formula;
    std::string formulaPlace;  // for messages
    std::string unit;          // as written
    int digits = 0;
    int variableDigits = -1;  // below 0: not rounded
    std::optional<double> low, high;
};

/// @throws Failure with the place of an item that is missing or has an invalid text
Settings ParseSettings(const Method& method);

}  // namespace titration
