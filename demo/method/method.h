#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <qellib10/qellib10.h>

namespace titration {

/// The values that turn a curve into a result, as text. Sections and keys are listed in kKeys, except those of
/// kNamedSections, whose keys are names.
///
///     [curve]
///     volume = volume_mL              a column's name or its number (default 1)
///     signal = pH                     default 2
///     [variables]
///     C_NaOH = 0.1                    any number of named values for the formula
///     [units]
///     C_NaOH = mol/L                  optional, of variables and of the end point; what has none is a number
///     [uncertainties]
///     C_NaOH = certificate 0.0002 k 2, titrant    optional, of variables and of the end point: see ReadUncertainties
///     [result]
///     end_point = EP                  the name of the end point's volume in the formula
///     name = acidity
///     formula = (EP - BLANK) * C_NaOH * 60.05 / SAMPLE
///     unit = g/L                      a unit of the library's string table, or its id there
///     digits = 3                      decimal places of the result, 0 to 12
///     variable_digits = 4             optional: every variable, also the archived result, is rounded to this many places
///     [limits]
///     low = 45                        optional, in the unit of the result; the limits themselves are allowed values
///     high = 55
///     rule = guarded acceptance, w = 1 U    optional, see qel::DecisionRule; else simple acceptance
struct MethodItem {
    std::string section, key, text;
    std::size_t line = 0;  // of the settings file; 0 in a method that is kept
};
using Method = std::vector<MethodItem>;

inline constexpr const char* kVariables = "variables";
inline constexpr const char* kUnits = "units";
inline constexpr const char* kUncertainties = "uncertainties";
inline constexpr const char* kNamedSections[] = {kVariables, kUnits, kUncertainties};

inline constexpr std::pair<const char*, const char*> kKeys[] = {
    {"curve", "volume"},   {"curve", "signal"}, {"result", "end_point"}, {"result", "name"},
    {"result", "formula"}, {"result", "unit"},  {"result", "digits"},    {"result", "variable_digits"},
    {"limits", "low"},     {"limits", "high"},  {"limits", "rule"}};

/// Whether the keys of a section are names.
bool HasNames(const std::string& section);

/// The text of an item; @p otherwise if there is none.
std::string TextOf(const Method& method, const std::string& section, const std::string& key,
                   const std::string& otherwise = "");

/// The place of an item, for messages: "line 7, [result] digits", or "[result] digits" if no line is known.
std::string PlaceOf(const Method& method, const std::string& section, const std::string& key);

/// The items that are not in both, or not with the same text. The text of a missing item is empty.
CQDiffList Differences(const Method& before, const Method& after);

/// One difference per line, each after @p indent.
std::string Listed(const CQDiffList& differences, const std::string& indent);

}  // namespace titration
