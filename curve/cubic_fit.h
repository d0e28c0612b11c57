#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>

namespace qel {

/// The cubic polynomial that lies closest to points (least squares), and how far noise in them moves it.
class CubicFit {
public:
    /// @return nothing when the points, at least 4, do not determine a cubic
    static std::optional<CubicFit> Through(std::span<const double> x, std::span<const double> y);

    /// Where the second derivative is zero, so that the slope has an extreme; infinite or NaN for a straight line or a
    /// parabola.
    double Inflection() const;
    double Value(double x) const;
    double Slope(double x) const;
    /// The sign shows the kind of the slope's extreme: negative for a maximum.
    double ThirdDerivative() const;

    /// Standard errors for independent noise of standard deviation 1 in each y.
    double SlopeError(double x) const;
    double ThirdDerivativeError() const;
    /// That of the inflection's place.
    double InflectionError() const;
    /// The standard deviation of the points about the polynomial; 0 for 4 points.
    double Scatter() const { return m_scatter; }

private:
    using Vector = std::array<double, 4>;

    double Scaled(double x) const { return (x - m_center) / m_scale; }
    double Error(const Vector& functional) const;

    double m_center = 0;
    double m_scale = 1;  // the points lie at -1 to 1
    double m_scatter = 0;
    Vector m_coefficients{};      // of 1, t, t^2, t^3
    std::array<Vector, 4> m_r{};  // the triangular factor of the design matrix, by rows
};

}  // namespace qel
