#pragma once

#include <optional>

#include "qellib10/platform/decimal/decimal.h"

namespace qel {

/// What a factor of udunits2 is by definition. Its tables have rounded factors, such as a gallon of 3.785412 L, and
/// measured ones of 1986, and nothing in them says which are definitions.
struct LibraryFactor {
    Decimal value;
    Decimal divisor = Decimal(1);  ///< of value, where the quotient has no end
    bool isExact = true;           ///< by definition, so that no digit is missing
};

/// @param factor of udunits2, of at most 15 digits; prefixes do not matter, since digits are compared
/// @return nothing where the factor is not in the table
std::optional<LibraryFactor> DefinedFactor(const Decimal& factor);

}  // namespace qel
