#include "qellib10/quantity/uncertainty.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "qellib10/base/read_number.h"
#include "qellib10/platform/operation.h"

namespace qel {
namespace {

using Component = UncertaintyComponent;

bool IsUncertainty(double value) { return std::isfinite(value) && value >= 0.0; }

std::optional<Component> Refused(const char* text) {
    Operation("qel::UncertaintyComponent").Failed(FailureKind::kArgument, "", text);
    return {};
}

std::optional<Component> Made(const Component& component) {
    if (!IsUncertainty(component.stated)) return Refused("an uncertainty that is negative or not finite");
    if (!(component.factor > 0.0 && std::isfinite(component.factor))) return Refused("a coverage factor not above 0");
    if (!(component.degreesOfFreedom >= 1.0)) return Refused("less than one degree of freedom");
    if (!std::isfinite(component.uncertainty)) return Refused("an uncertainty that is too large");
    Operation("qel::UncertaintyComponent").Ended(1);
    return component;
}

std::string Shown(double value) { return std::string(NumberText(value).View()); }

}  // namespace

std::optional<Component> Component::Readings(double deviation, std::size_t count, std::string_view source) {
    if (count < 2) return Refused("less than two readings");
    const auto n = static_cast<double>(count);
    return Made({std::string(source), deviation / std::sqrt(n), n - 1.0, Distribution::kNormal, Evaluation::kReadings,
                 deviation, n});
}

std::optional<Component> Component::Standard(double uncertainty, std::string_view source, double degreesOfFreedom) {
    return Made({std::string(source), uncertainty, degreesOfFreedom, Distribution::kNormal, Evaluation::kStandard,
                 uncertainty, 1.0});
}

std::optional<Component> Component::Rectangular(double halfWidth, std::string_view source) {
    const double divisor = std::sqrt(3.0);
    return Made({std::string(source), halfWidth / divisor, kInfinite, Distribution::kRectangular,
                 Evaluation::kHalfWidth, halfWidth, divisor});
}

std::optional<Component> Component::Triangular(double halfWidth, std::string_view source) {
    const double divisor = std::sqrt(6.0);
    return Made({std::string(source), halfWidth / divisor, kInfinite, Distribution::kTriangular, Evaluation::kHalfWidth,
                 halfWidth, divisor});
}

std::optional<Component> Component::Certificate(double expanded, double k, std::string_view source,
                                                double degreesOfFreedom) {
    return Made({std::string(source), expanded / k, degreesOfFreedom, Distribution::kNormal, Evaluation::kCertificate,
                 expanded, k});
}

Component Component::Opposed() const {
    Component opposed = *this;
    opposed.uncertainty = -uncertainty;
    return opposed;
}

std::string Component::Statement() const {
    switch (evaluation) {
        case Evaluation::kReadings:
            return "Type A, " + Shown(factor) + " readings, standard deviation " + Shown(stated);
        case Evaluation::kStandard:
            return "Type B, standard uncertainty " + Shown(stated);
        case Evaluation::kHalfWidth:
            return (distribution == Distribution::kRectangular ? "Type B, rectangular, half-width "
                                                               : "Type B, triangular, half-width ") +
                   Shown(stated);
        case Evaluation::kCertificate:
            return "Type B, certificate, U = " + Shown(stated) + ", k = " + Shown(factor);
    }
    return {};
}

std::optional<UncertainInput> UncertainInput::OfReadings(std::string_view name, std::span<const double> readings,
                                                         std::string_view source) {
    const auto n = static_cast<double>(readings.size());
    // Ten readings of 0.1 have the mean 0.1: summed as differences from the first.
    const double first = readings.empty() ? 0.0 : readings.front();
    const double sum = std::accumulate(readings.begin(), readings.end(), 0.0,
                                       [first](double all, double reading) { return all + (reading - first); });
    const double mean = first + sum / n;
    double squares = 0.0;
    for (const double reading : readings) squares += (reading - mean) * (reading - mean);
    std::optional<Component> component = Component::Readings(std::sqrt(squares / (n - 1.0)), readings.size(), source);
    if (!component) return {};
    return UncertainInput{std::string(name), mean, {std::move(*component)}};
}

}  // namespace qel
