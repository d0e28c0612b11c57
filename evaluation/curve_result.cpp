#include "qellib10/evaluation/curve_result.h"

#include <algorithm>
#include <cmath>

namespace qel {

std::optional<Quantity> CurveResult::AsQuantity(const Unit& unit, std::string_view source) const {
    if (!value) return std::nullopt;
    const auto component = UncertaintyComponent::Standard(uncertainty, source, std::max(degreesOfFreedom, 1.0));
    if (!component) return std::nullopt;
    return Quantity{Decimal::OfDouble(*value), unit, {*component}};
}

}  // namespace qel
