#pragma once

#include <cstddef>
#include <memory>
#include <span>

namespace qel {

/// The weights by which least squares makes a derivative of a local polynomial of the values in a window (Savitzky and
/// Golay, Anal. Chem. 36 (1964) 1627; here for steps of any length). Made once and used for many windows.
class LocalPolynomial {
public:
    explicit LocalPolynomial(std::size_t degree);
    ~LocalPolynomial();

    /// @param x of the window, rising
    /// @param counts how many readings were averaged for each; none: one each
    /// @param center where the derivative is taken
    /// @param order of the derivative, 0 for the value, at most the degree
    /// @param weights gets one for each x
    /// @return false where x does not determine the polynomial
    bool Weights(std::span<const double> x, std::span<const double> counts, double center, std::size_t order,
                 std::span<double> weights);

private:
    struct Work;
    std::unique_ptr<Work> m_work;
};

}  // namespace qel
