#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// The base units that the library udunits2 takes a unit apart into, in this order: m, kg, s, A, K, mol, cd, rad.
inline constexpr std::size_t kLibraryUnits = 8;

/// A unit as udunits2 knows it: a value x in it is scale * (x + offset) in the product of powers of the base units.
struct LibraryUnit {
    std::array<int, kLibraryUnits> powers = {};
    double scale = 1.0;
    double offset = 0.0;
};

enum class LibraryAnswer {
    kFound,
    kUnknown,
    kNoFactor,  ///< a logarithm of a ratio or a time of day: no factor converts it
    kMissing,   ///< udunits2 or its tables of units are not installed
};

/// Asks udunits2, which is opened at the first call, for one name or symbol, with or without a prefix: "furlong",
/// "hPa". Any thread may call; the answers do not depend on the locale.
/// @param name UTF-8 of at most 64 bytes, without operators, digits at its end and blanks; any other is unknown
QELLIB10_INTERNAL_API LibraryAnswer FindLibraryUnit(std::string_view name, LibraryUnit& unit);

}  // namespace qel
