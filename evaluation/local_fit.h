#pragma once

#include <span>
#include <vector>

#include "qellib10/evaluation/curve_data.h"
#include "qellib10/platform/algebra/local_polynomial.h"

namespace qel {

/// Derivatives of local polynomials of a curve, at any place.
class LocalFit {
public:
    /// @param window more than @p degree
    LocalFit(const CurveData& data, std::size_t window, std::size_t degree);

    /// The derivative of @p order at @p place, of the window around the point @p index, which is within the part of the
    /// curve that the point is in.
    /// @return false where the part has too few points; the uncertainty is that of y
    bool At(std::size_t index, double place, std::size_t order, CurveValue& found);
    /// As At, with other signals for the curve's points.
    bool At(std::size_t index, double place, std::size_t order, std::span<const double> y, CurveValue& found);

    /// The standard uncertainty of a sum of derivatives at the points from @p index on, each times its rate.
    double NoiseOf(std::size_t index, std::span<const double> rates, std::size_t order);

    /// The first index of the window around @p index, and the one after its last.
    std::pair<std::size_t, std::size_t> WindowAt(std::size_t index) const;

    /// The derivative at each point that has one; of even steps by weights that are the same for all windows.
    std::vector<CurveValue> All(std::size_t order);

private:
    void AddEvenPart(std::size_t first, std::size_t last, std::size_t order, std::vector<CurveValue>& values);
    bool IsEven(std::size_t first, std::size_t last) const;
    CurveValue Sum(std::size_t first, double place, std::span<const double> y) const;

    const CurveData& m_data;
    std::size_t m_window, m_degree;
    LocalPolynomial m_polynomial;
    std::vector<double> m_weights;
};

/// Why a window or degree is impossible; empty when it is not.
std::string WindowFault(std::size_t window, std::size_t degree, std::size_t order);

}  // namespace qel
