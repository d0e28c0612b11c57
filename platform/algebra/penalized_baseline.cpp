#include "qellib10/platform/algebra/penalized_baseline.h"

#include <Eigen/SparseCholesky>
#include <array>

namespace qel {
namespace {

using Matrix = Eigen::SparseMatrix<double>;
// The matrix has five diagonals: in its own order nothing fills in.
using Solver = Eigen::SimplicialLDLT<Matrix, Eigen::Lower, Eigen::NaturalOrdering<int>>;

Eigen::VectorXd Vector(std::span<const double> values) {
    return Eigen::Map<const Eigen::VectorXd>(values.data(), static_cast<Eigen::Index>(values.size()));
}

}  // namespace

struct PenalizedBaseline::Work {
    Matrix penalty;
    Solver solver;
};

PenalizedBaseline::PenalizedBaseline(std::span<const double> x, double penalty) : m_work(std::make_unique<Work>()) {
    const std::size_t count = x.size();
    const double mean = (x.back() - x.front()) / static_cast<double>(count - 1);
    std::vector<Eigen::Triplet<double>> entries;
    entries.reserve(6 * count);
    for (std::size_t i = 1; i + 1 < count; ++i) {
        const double before = (x[i] - x[i - 1]) / mean, after = (x[i + 1] - x[i]) / mean, whole = (before + after) / 2;
        const std::array<double, 3> difference = {1 / (before * whole), -(1 / before + 1 / after) / whole,
                                                  1 / (after * whole)};
        for (std::size_t j = 0; j < 3; ++j) {
            for (std::size_t k = 0; k <= j; ++k)
                entries.emplace_back(static_cast<int>(i + j - 1), static_cast<int>(i + k - 1),
                                     penalty * difference[j] * difference[k]);
        }
    }
    for (std::size_t i = 0; i < count; ++i) entries.emplace_back(static_cast<int>(i), static_cast<int>(i), 0.0);
    m_work->penalty.resize(static_cast<Eigen::Index>(count), static_cast<Eigen::Index>(count));
    m_work->penalty.setFromTriplets(entries.begin(), entries.end());
    m_work->solver.analyzePattern(m_work->penalty);
}

PenalizedBaseline::~PenalizedBaseline() = default;

bool PenalizedBaseline::SetWeights(std::span<const double> weights) {
    Matrix matrix = m_work->penalty;
    matrix.diagonal() += Vector(weights);
    m_work->solver.factorize(matrix);
    return m_work->solver.info() == Eigen::Success && m_work->solver.vectorD().allFinite() &&
           m_work->solver.vectorD().minCoeff() > 0;
}

std::vector<double> PenalizedBaseline::Solve(std::span<const double> right) const {
    const Eigen::VectorXd solution = m_work->solver.solve(Vector(right));
    return {solution.begin(), solution.end()};
}

}  // namespace qel
