#pragma once

#include <type_traits>

namespace qel {

/// What converts to a floating-point number other than by way of an integer: float, double and long double, and
/// classes such as std::atomic<double>. Where an int is wanted it would lose its decimals without a word, so such
/// operations are declared as deleted.
template <typename T>
concept Fractional = requires(const T& value) {
    std::type_identity_t<long double>{value};  // an integer would be narrowed
};

}  // namespace qel
