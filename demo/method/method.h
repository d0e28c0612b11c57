#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <qellib10/qellib10.h>

namespace titration {

/// What turns a curve into a result, as text. Sections and keys other than those of [variables] are those of kKeys.
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
///     [limits]
///     low = 45                        optional, in the unit of the result, which may be as low and as high
///     high = 55
struct MethodItem {
    std::string section, key, text;
    std::size_t line = 0;  // of the settings file; 0 in a method that is kept
};
using Method = std::vector<MethodItem>;

inline constexpr const char* kVariables = "variables";

inline constexpr std::pair<const char*, const char*> kKeys[] = {
    {"curve", "volume"}, {"curve", "signal"},  {"result", "end_point"},       {"result", "name"}, {"result", "formula"},
    {"result", "unit"},  {"result", "digits"}, {"result", "variable_digits"}, {"limits", "low"},  {"limits", "high"}};

/// The text of an item; @p otherwise when there is none.
std::string TextOf(const Method& method, const std::string& section, const std::string& key,
                   const std::string& otherwise = "");

/// Where an item is, for messages: "line 7, [result] digits", or "[result] digits" where no line is known.
std::string PlaceOf(const Method& method, const std::string& section, const std::string& key);

/// The items that are not in both, or not with the same text. One that is missing has the empty text there.
CQDiffList Differences(const Method& before, const Method& after);

/// One difference a line, each behind @p indent.
std::string Listed(const CQDiffList& differences, const std::string& indent);

}  // namespace titration
