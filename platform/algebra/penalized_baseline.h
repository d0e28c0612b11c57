#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace qel {

/// A smooth baseline below a signal: it minimises the weighted squares of its distances from the signal, plus a penalty
/// times the squares of its second differences (Whittaker, Proc. Edinburgh Math. Soc. 41 (1923) 63). Second differences
/// are divided by the steps, and scaled so that for even steps they are those of neighbouring values.
class PenalizedBaseline {
public:
    /// @param x rising, at least 3
    explicit PenalizedBaseline(std::span<const double> x, double penalty);
    ~PenalizedBaseline();

    /// Weights of the signal, as many as x; they stay until the next call.
    /// @return false where the system has no sure solution
    bool SetWeights(std::span<const double> weights);
    /// The solution of (W + penalty D'D) b = @p right.
    std::vector<double> Solve(std::span<const double> right) const;

private:
    struct Work;
    std::unique_ptr<Work> m_work;
};

}  // namespace qel
