#pragma once

#include <cstddef>
#include <vector>

namespace qel {

/// The correlation coefficients of several quantities, taken apart into independent ones (Cholesky). Full correlation
/// makes a matrix singular, which is valid; coefficients that contradict each other make a variance negative.
class CorrelationMatrix {
public:
    static constexpr std::size_t kLargest = 1000;

    explicit CorrelationMatrix(std::size_t size);

    /// @return false where the two have a coefficient already
    bool Set(std::size_t one, std::size_t other, double coefficient);

    /// @return false where the coefficients contradict each other
    bool TakeApart();

    /// After TakeApart: how far the independent quantity @p column, up to @p row, moves quantity @p row.
    double Factor(std::size_t row, std::size_t column) const { return m_elements[row * (row + 1) / 2 + column]; }

private:
    double& Element(std::size_t row, std::size_t column) { return m_elements[row * (row + 1) / 2 + column]; }

    std::size_t m_size;
    std::vector<double> m_elements;  // the lower half, row by row
};

}  // namespace qel
