#include "qellib10/platform/algebra/least_squares.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>

namespace qel {
namespace {

using Rows = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

constexpr double kRankTolerance = 1e-10;  // of the largest pivot, after each column got the length 1

bool AreFinite(std::span<const double> values) {
    return std::ranges::all_of(values, [](double value) { return std::isfinite(value); });
}

}  // namespace

double LeastSquares::Variance(std::span<const double> function) const {
    double sum = 0;
    for (std::size_t i = 0; i < coefficients.size(); ++i) {
        for (std::size_t j = 0; j < coefficients.size(); ++j) sum += function[i] * Covariance(i, j) * function[j];
    }
    return std::max(sum, 0.0);
}

double LeastSquares::Scatter() const {
    return degreesOfFreedom > 0 ? std::sqrt(squares / static_cast<double>(degreesOfFreedom)) : 0;
}

std::optional<LeastSquares> FitLeastSquares(std::span<const double> design, std::size_t columns,
                                            std::span<const double> values, std::span<const double> weights) {
    const std::size_t rows = values.size();
    if (columns == 0 || rows < columns || design.size() != rows * columns) return std::nullopt;
    if (!weights.empty() && weights.size() != rows) return std::nullopt;
    if (!AreFinite(design) || !AreFinite(values) || !AreFinite(weights)) return std::nullopt;
    const auto height = static_cast<Eigen::Index>(rows), width = static_cast<Eigen::Index>(columns);
    Eigen::MatrixXd matrix = Eigen::Map<const Rows>(design.data(), height, width);
    Eigen::VectorXd right = Eigen::Map<const Eigen::VectorXd>(values.data(), height);
    for (std::size_t i = 0; i < weights.size(); ++i) {
        const double root = std::sqrt(weights[i]);
        matrix.row(static_cast<Eigen::Index>(i)) *= root;
        right[static_cast<Eigen::Index>(i)] *= root;
    }
    const Eigen::VectorXd lengths = matrix.colwise().norm();
    if (!(lengths.minCoeff() > 0) || !lengths.allFinite()) return std::nullopt;
    matrix.array().rowwise() /= lengths.transpose().array();
    Eigen::ColPivHouseholderQR<Eigen::MatrixXd> qr(matrix);
    qr.setThreshold(kRankTolerance);
    if (qr.rank() < width) return std::nullopt;

    const Eigen::VectorXd solution = qr.solve(right);
    const Eigen::MatrixXd inverse = qr.matrixR()
                                        .topLeftCorner(width, width)
                                        .triangularView<Eigen::Upper>()
                                        .solve(Eigen::MatrixXd::Identity(width, width));
    const Eigen::MatrixXd root = qr.colsPermutation() * inverse;
    const Eigen::MatrixXd covariance = root * root.transpose();
    LeastSquares fit;
    for (Eigen::Index i = 0; i < width; ++i) {
        fit.coefficients.push_back(solution[i] / lengths[i]);
        for (Eigen::Index j = 0; j < width; ++j) fit.covariance.push_back(covariance(i, j) / (lengths[i] * lengths[j]));
    }
    fit.squares = (right - matrix * solution).squaredNorm();
    fit.degreesOfFreedom = rows - columns;
    if (!AreFinite(fit.coefficients) || !AreFinite(fit.covariance) || !std::isfinite(fit.squares)) return std::nullopt;
    return fit;
}

}  // namespace qel
