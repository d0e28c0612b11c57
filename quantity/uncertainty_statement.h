#pragma once

#include <optional>

#include "qellib10/quantity/uncertainty.h"

namespace qel {

/// The component that its own statement gives: evaluation, distribution, stated number, factor, degrees of freedom and
/// source; opposed where its uncertainty is below 0. Where a statement was changed or read, the uncertainty follows it.
/// @return nothing where the statement is not valid
std::optional<UncertaintyComponent> OfItsStatement(const UncertaintyComponent& component);

}  // namespace qel
