#pragma once

#include <type_traits>

namespace qel {

/// Types that convert to a floating-point number without going through an integer: float, double, long double, and
/// classes such as std::atomic<double>. Where an int is expected, such a value would lose its decimals without a
/// warning, so these operations are declared as deleted.
template <typename T>
concept Fractional = requires(const T& value) {
    std::type_identity_t<long double>{value};  // an integer would be a narrowing conversion
};

}  // namespace qel
