#pragma once

#include <optional>
#include <string>
#include <vector>

#include <qellib10/quantity.h>

#include "demo/method/method.h"
#include "demo/method/uncertainties.h"

namespace titration {

struct NamedValue {
    std::string name;
    double value;
};

struct NamedUnit {
    std::string name, unit;
};

struct NamedUncertainty {
    std::string name;
    Uncertainties stated;
};

/// A method with its numbers read.
struct Settings {
    std::string volumeColumn;
    std::string signalColumn;
    std::vector<NamedValue> variables;
    std::vector<NamedUnit> units;                 // of variables and of the end point, by their names there
    std::vector<NamedUncertainty> uncertainties;  // as before
    std::string endPoint;
    std::string name;
    std::string formula;
    std::string formulaPlace;  // for messages
    std::string unit;          // as written
    int digits = 0;
    int variableDigits = -1;  // below 0: not rounded
    std::optional<double> low, high;
    qel::DecisionRule rule = qel::DecisionRule::SimpleAcceptance();  // of the limits
};

/// @throws Failure with the place of an item that is missing or has an invalid text
Settings ParseSettings(const Method& method);

}  // namespace titration
