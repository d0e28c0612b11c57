#include "qellib10/quantity/uncertainty_statement.h"

#include <cstddef>

namespace qel {
namespace {

using Component = UncertaintyComponent;

constexpr double kMostReadings = 1e9;

std::optional<Component> Made(const Component& from) {
    switch (from.evaluation) {
        case Component::Evaluation::kReadings:
            if (!(from.factor >= 2.0 && from.factor <= kMostReadings)) return {};
            return Component::Readings(from.stated, static_cast<std::size_t>(from.factor), from.source);
        case Component::Evaluation::kStandard:
            return Component::Standard(from.stated, from.source, from.degreesOfFreedom);
        case Component::Evaluation::kHalfWidth:
            return from.distribution == Component::Distribution::kTriangular
                       ? Component::Triangular(from.stated, from.source)
                       : Component::Rectangular(from.stated, from.source);
        case Component::Evaluation::kCertificate:
            return Component::Certificate(from.stated, from.factor, from.source, from.degreesOfFreedom);
    }
    return {};
}

}  // namespace

std::optional<UncertaintyComponent> OfItsStatement(const UncertaintyComponent& component) {
    const std::optional<Component> made = Made(component);
    return made && component.uncertainty < 0.0 ? std::optional(made->Opposed()) : made;
}

}  // namespace qel
