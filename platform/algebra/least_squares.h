#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace qel {

/// A linear least-squares fit: its coefficients, and how noise in the values moves them.
struct LeastSquares {
    std::vector<double> coefficients;
    std::vector<double> covariance;  ///< of the coefficients for noise of variance 1 at weight 1; by rows
    double squares = 0;              ///< of the residuals, each times its weight
    std::size_t degreesOfFreedom = 0;

    double Covariance(std::size_t i, std::size_t j) const { return covariance[i * coefficients.size() + j]; }
    /// The variance of a linear function of the coefficients.
    double Variance(std::span<const double> function) const;
    /// The standard deviation of a value of weight 1 about the fit; 0 without degrees of freedom.
    double Scatter() const;
};

/// Fits @p values by the columns of @p design (by rows, as many as values), by a QR decomposition with pivots.
/// @param weights of the values, above 0; none: all are 1
/// @return nothing where sizes do not fit together, the columns do not determine the coefficients, or a number is not
/// finite
std::optional<LeastSquares> FitLeastSquares(std::span<const double> design, std::size_t columns,
                                            std::span<const double> values, std::span<const double> weights = {});

}  // namespace qel
