#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"

namespace qel {

/// What is known of an input from one source of uncertainty (GUM 4.2, 4.3): the standard uncertainty, and how a
/// certificate, a standard or a series of readings states it. A half-width taken for a standard uncertainty is the
/// usual fault of a budget; here each is given as it is stated, and divided by the right number.
///
/// @code
/// const auto flask = qel::UncertaintyComponent::Triangular(0.1, "flask 17");         // 100 mL +- 0.1 mL
/// const auto balance = qel::UncertaintyComponent::Certificate(0.00026, 2, "balance");  // U with k = 2
/// @endcode
///
/// Two components with the same source, which is not empty, are one quantity: fully correlated, also between two inputs
/// and two formulas. They then have the same distribution and degrees of freedom.
///
/// The operations that make one return nothing where a number is negative, infinite or NaN; qel::LastFailure() says
/// which. An uncertainty of 0 is valid.
struct QELLIB10_API UncertaintyComponent {
    enum class Distribution { kNormal, kRectangular, kTriangular };
    enum class Evaluation { kReadings, kStandard, kHalfWidth, kCertificate };  ///< the first is Type A, others Type B

    static constexpr double kInfinite = std::numeric_limits<double>::infinity();

    std::string source;                   ///< UTF-8; empty for a source of its own
    double uncertainty = 0.0;             ///< standard uncertainty, in the unit of the input; its sign: see Opposed
    double degreesOfFreedom = kInfinite;  ///< 1 or more
    Distribution distribution = Distribution::kNormal;
    Evaluation evaluation = Evaluation::kStandard;
    double stated = 0.0;  ///< standard deviation of single readings, standard uncertainty, half-width or U
    double factor = 1.0;  ///< of readings their number, of a half-width its divisor, of a certificate k

    /// Type A: the mean of @p count readings, 2 or more, with the standard deviation @p deviation of single ones. It
    /// has count - 1 degrees of freedom.
    static std::optional<UncertaintyComponent> Readings(double deviation, std::size_t count,
                                                        std::string_view source = {});
    /// Type B, normal: a standard uncertainty.
    /// @param degreesOfFreedom 1 or more
    static std::optional<UncertaintyComponent> Standard(double uncertainty, std::string_view source = {},
                                                        double degreesOfFreedom = kInfinite);
    /// Type B: all values within +- @p halfWidth are equally probable. u = halfWidth / sqrt(3).
    static std::optional<UncertaintyComponent> Rectangular(double halfWidth, std::string_view source = {});
    /// Type B: as before, but those in the middle are more probable. u = halfWidth / sqrt(6).
    static std::optional<UncertaintyComponent> Triangular(double halfWidth, std::string_view source = {});
    /// Type B, normal: an expanded uncertainty with its coverage factor, above 0. u = U / k.
    static std::optional<UncertaintyComponent> Certificate(double expanded, double k, std::string_view source = {},
                                                           double degreesOfFreedom = kInfinite);

    /// The same source moves this input in the opposite direction: its uncertainty gets the other sign.
    UncertaintyComponent Opposed() const;

    /// How it is stated, for a report: "rectangular, half-width 0.1".
    std::string Statement() const;

    friend bool operator==(const UncertaintyComponent&, const UncertaintyComponent&) = default;
};

/// An input of a formula: its estimate and the sources of its uncertainty. Without any it is exact.
struct QELLIB10_API UncertainInput {
    std::string name;  ///< for the rows of a budget, UTF-8
    double value = 0.0;
    std::vector<UncertaintyComponent> components;

    /// The mean of 2 or more readings, Type A. @return nothing also where a reading is not finite
    static std::optional<UncertainInput> OfReadings(std::string_view name, std::span<const double> readings,
                                                    std::string_view source = {});

    friend bool operator==(const UncertainInput&, const UncertainInput&) = default;
};

/// A correlation coefficient between two inputs, by their positions, where no common source is known (GUM 5.2.2).
/// Each of them has a component; an exact input varies with no other, so that such a pair is refused.
struct InputCorrelation {
    std::size_t first = 0, second = 0;
    double coefficient = 0.0;  ///< -1 to 1

    friend bool operator==(const InputCorrelation&, const InputCorrelation&) = default;
};

}  // namespace qel
