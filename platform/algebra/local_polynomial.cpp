#include "qellib10/platform/algebra/local_polynomial.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>

namespace qel {
namespace {

constexpr double kRankTolerance = 1e-10;  // of a column's length

}  // namespace

struct LocalPolynomial::Work {
    Eigen::Index columns = 0;
    Eigen::MatrixXd matrix;
    Eigen::HouseholderQR<Eigen::MatrixXd> qr;
    Eigen::VectorXd roots, lengths, column;
};

LocalPolynomial::LocalPolynomial(std::size_t degree) : m_work(std::make_unique<Work>()) {
    m_work->columns = static_cast<Eigen::Index>(degree) + 1;
}

LocalPolynomial::~LocalPolynomial() = default;

// With sqrt(W) A = QR, the weights are sqrt(W) Q R'^-1 e: of the coefficient that e chooses.
bool LocalPolynomial::Weights(std::span<const double> x, std::span<const double> counts, double center,
                              std::size_t order, std::span<double> weights) {
    Work& work = *m_work;
    const auto rows = static_cast<Eigen::Index>(x.size());
    if (rows < work.columns || weights.size() != x.size() || static_cast<Eigen::Index>(order) >= work.columns)
        return false;
    const double scale = std::max(std::abs(x.front() - center), std::abs(x.back() - center));
    if (!(scale > 0)) return false;
    work.matrix.resize(rows, work.columns);
    work.roots.resize(rows);
    for (Eigen::Index i = 0; i < rows; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const double t = (x[at] - center) / scale;
        double power = work.roots[i] = counts.empty() ? 1 : std::sqrt(counts[at]);
        for (Eigen::Index k = 0; k < work.columns; ++k, power *= t) work.matrix(i, k) = power;
    }
    work.lengths = work.matrix.colwise().norm();
    work.qr.compute(work.matrix);
    const auto& packed = work.qr.matrixQR();
    for (Eigen::Index k = 0; k < work.columns; ++k) {
        if (!(std::abs(packed(k, k)) > kRankTolerance * work.lengths[k])) return false;
    }
    double factor = 1;
    for (std::size_t k = 1; k <= order; ++k) factor *= static_cast<double>(k) / scale;
    work.column.setZero(rows);
    work.column[static_cast<Eigen::Index>(order)] = factor;
    for (Eigen::Index k = 0; k < work.columns; ++k) {  // R'z = e
        double sum = work.column[k];
        for (Eigen::Index j = 0; j < k; ++j) sum -= packed(j, k) * work.column[j];
        work.column[k] = sum / packed(k, k);
    }
    for (Eigen::Index k = work.columns; k-- > 0;) {  // the Householder vectors of Q, from the last one on
        const Eigen::Index below = rows - k - 1;
        const double tau = work.qr.hCoeffs()[k];
        const double dot = work.column[k] + packed.col(k).tail(below).dot(work.column.tail(below));
        work.column[k] -= tau * dot;
        work.column.tail(below) -= tau * dot * packed.col(k).tail(below);
    }
    for (Eigen::Index i = 0; i < rows; ++i) weights[static_cast<std::size_t>(i)] = work.column[i] * work.roots[i];
    return work.column.allFinite();
}

}  // namespace qel
