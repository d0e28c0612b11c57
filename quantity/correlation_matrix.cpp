#include "qellib10/quantity/correlation_matrix.h"

#include <algorithm>
#include <cmath>

namespace qel {

CorrelationMatrix::CorrelationMatrix(std::size_t size) : m_size(size), m_elements(size * (size + 1) / 2) {
    for (std::size_t i = 0; i < size; ++i) Element(i, i) = 1.0;
}

bool CorrelationMatrix::Set(std::size_t one, std::size_t other, double coefficient) {
    double& element = Element(std::max(one, other), std::min(one, other));
    if (element != 0.0) return false;
    element = coefficient;
    return true;
}

bool CorrelationMatrix::TakeApart() {
    // Of a variance that is 0 but for rounding, and of a covariance with it, whose square is at most the variance.
    constexpr double kVariance = 1e-12, kCovariance = 1e-6;
    for (std::size_t row = 0; row < m_size; ++row) {
        for (std::size_t column = 0; column <= row; ++column) {
            double rest = Element(row, column);
            for (std::size_t k = 0; k < column; ++k) rest -= Element(row, k) * Element(column, k);
            const bool isVariance = row == column;
            const double pivot = isVariance ? 1.0 : Element(column, column);
            if (isVariance ? rest < -kVariance : pivot == 0.0 && std::abs(rest) > kCovariance) return false;
            if (isVariance) {
                rest = rest > kVariance ? std::sqrt(rest) : 0.0;
            } else {
                rest = pivot != 0.0 ? rest / pivot : 0.0;
            }
            Element(row, column) = rest;
        }
    }
    return true;
}

}  // namespace qel
