#pragma once

#include <optional>

#include "qellib10/quantity/calculation.h"
#include "qellib10/quantity/formula_error.h"

namespace qel {

/// A calculation as a trace keeps it: only with what its JSON has, so that what is read from the JSON is the same and
/// has the same result. A reading keeps its kind, number and marks, and no position of another formula's scope; one
/// that is not finite is invalid.
Calculation AsTraced(const Calculation& calculation);

/// What the JSON cannot have: a text that is not UTF-8, a number that is not finite, an uncertainty that is not what
/// its own statement gives, a rule that cannot be named. Its member expected is the whole sentence.
/// @return nothing where there is nothing of that kind
std::optional<FormulaError> ObjectionToTracing(const Calculation& calculation);

}  // namespace qel
