#pragma once

#include <string>
#include <vector>

namespace titration {

struct NamedValue {
    std::string name;
    double value;
};

/// What turns a curve into a result: an INI file, in which names match without regard to case and of two sections with
/// one name the first counts.
///
///     [curve]
///     volume = volume_mL              a column's name or its number (default 1)
///     signal = pH                     default 2
///     [variables]
///     C_NaOH = 0.1                    any number of named values for the formula
///     [result]
///     end_point = EP                  the name by which the formula gets the end point's volume
///     name = acidity
///     formula = (EP - BLANK) * C_NaOH * 60.05 / SAMPLE
///     unit = g/L                      a unit of the library's string table, or its id there
///     digits = 3                      decimal places of the result, 0 to 12
///     variable_digits = 4             optional: every variable, the archived result too, is rounded to so many places
struct Settings {
    std::string volumeColumn;
    std::string signalColumn;
    std::vector<NamedValue> variables;
    std::string endPoint;
    std::string name;
    std::string formula;
    std::string unit;
    int digits = 0;
    int variableDigits = -1;  // below 0: not rounded
};

/// @throws Failure when there is no such file, when a key of these sections is unknown, given twice or has no value of
/// its kind, and when one is missing
Settings ReadSettings(const std::string& path);

}  // namespace titration
