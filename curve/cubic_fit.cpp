#include "qellib10/curve/cubic_fit.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace qel {
namespace {

double Dot(const std::vector<double>& a, std::span<const double> b) {
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

}  // namespace

// The columns 1, t, t^2, t^3 are made orthogonal one after the other (modified Gram-Schmidt), which bears uneven steps
// better than the normal equations do.
std::optional<CubicFit> CubicFit::Through(std::span<const double> x, std::span<const double> y) {
    if (x.size() < 4) return std::nullopt;
    const auto [lowest, highest] = std::ranges::minmax(x);
    CubicFit fit;
    fit.m_center = std::midpoint(lowest, highest);
    fit.m_scale = (highest - lowest) / 2;
    if (!(fit.m_scale > 0)) return std::nullopt;

    std::array<std::vector<double>, 4> q;
    Vector projections;
    std::vector<double> rest(y.begin(), y.end());
    for (std::size_t k = 0; k < 4; ++k) {
        std::vector<double>& column = q[k];
        column.reserve(x.size());
        for (const double value : x) column.push_back(std::pow(fit.Scaled(value), static_cast<int>(k)));
        const double length = std::sqrt(Dot(column, column));
        for (std::size_t j = 0; j < k; ++j) {
            fit.m_r[j][k] = Dot(q[j], column);
            for (std::size_t i = 0; i < column.size(); ++i) column[i] -= fit.m_r[j][k] * q[j][i];
        }
        fit.m_r[k][k] = std::sqrt(Dot(column, column));
        if (!(fit.m_r[k][k] > 1e-9 * length)) return std::nullopt;
        for (double& value : column) value /= fit.m_r[k][k];
        projections[k] = Dot(column, rest);
        for (std::size_t i = 0; i < rest.size(); ++i) rest[i] -= projections[k] * column[i];
    }
    if (x.size() > 4) fit.m_scatter = std::sqrt(Dot(rest, rest) / static_cast<double>(x.size() - 4));
    for (std::size_t k = 4; k-- > 0;) {
        double sum = projections[k];
        for (std::size_t j = k + 1; j < 4; ++j) sum -= fit.m_r[k][j] * fit.m_coefficients[j];
        fit.m_coefficients[k] = sum / fit.m_r[k][k];
    }
    return fit;
}

double CubicFit::Inflection() const { return m_center - m_scale * m_coefficients[2] / (3 * m_coefficients[3]); }

double CubicFit::Value(double x) const {
    const double t = Scaled(x);
    const Vector& c = m_coefficients;
    return c[0] + t * (c[1] + t * (c[2] + t * c[3]));
}

double CubicFit::Slope(double x) const {
    const double t = Scaled(x);
    const Vector& c = m_coefficients;
    return (c[1] + t * (2 * c[2] + t * 3 * c[3])) / m_scale;
}

double CubicFit::ThirdDerivative() const { return 6 * m_coefficients[3] / std::pow(m_scale, 3); }

double CubicFit::SlopeError(double x) const {
    const double t = Scaled(x);
    return Error({0, 1, 2 * t, 3 * t * t}) / m_scale;
}

double CubicFit::ThirdDerivativeError() const { return Error({0, 0, 0, 6}) / std::pow(m_scale, 3); }

// The second derivative's error, over how fast it goes through zero.
double CubicFit::InflectionError() const {
    const double t = Scaled(Inflection());
    return Error({0, 0, 2, 6 * t}) * m_scale / std::abs(6 * m_coefficients[3]);
}

// The coefficients' covariance is the inverse of R'R, so the error is the length of z in R'z = functional.
double CubicFit::Error(const Vector& functional) const {
    Vector z{};
    double squares = 0;
    for (std::size_t k = 0; k < 4; ++k) {
        double sum = functional[k];
        for (std::size_t j = 0; j < k; ++j) sum -= m_r[j][k] * z[j];
        z[k] = sum / m_r[k][k];
        squares += z[k] * z[k];
    }
    return std::sqrt(squares);
}

}  // namespace qel
