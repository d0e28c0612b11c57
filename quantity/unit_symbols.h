#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "qellib10/quantity/unit_value.h"

namespace qel {

/// A unit that is known without udunits2, with an exact factor.
struct UnitSymbol {
    std::string_view symbol;      ///< as users write it; the case of letters counts
    std::string_view definition;  ///< by other symbols; as Unit::Parse reads it
    bool takesPrefix = false;     ///< of the SI: m for milli
    bool isExact = true;          ///< false where the definition is measured
    std::string_view prefixes{};  ///< where not all: those it takes, each between blanks

    bool Takes(std::string_view prefix) const {
        if (!takesPrefix || prefixes.empty()) return takesPrefix;
        return prefixes.find(' ' + std::string(prefix) + ' ') != std::string_view::npos;
    }
};

/// All of them, but for the base units.
std::span<const UnitSymbol> UnitSymbols();

/// What a base unit is called: "m", "kgKOH".
std::string_view BaseUnitSymbol(BaseUnit base);
std::optional<BaseUnit> FindBaseUnit(std::string_view symbol);
UnitValue ValueOf(BaseUnit base);

/// Such as "k" and "1e3".
struct UnitPrefix {
    std::string_view symbol;
    std::string_view factor;
};
std::span<const UnitPrefix> UnitPrefixes();

}  // namespace qel
