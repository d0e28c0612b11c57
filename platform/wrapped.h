#pragma once

#include "qellib10/platform/types.h"

// Arithmetic that wraps at 32 bits, for coordinates and sizes that come from a file or a caller.
namespace qel {

constexpr LONG WrappedSum(LONG a, LONG b) noexcept {
    return static_cast<LONG>(static_cast<ULONG>(a) + static_cast<ULONG>(b));
}
constexpr LONG WrappedDifference(LONG a, LONG b) noexcept {
    return static_cast<LONG>(static_cast<ULONG>(a) - static_cast<ULONG>(b));
}
constexpr LONG WrappedProduct(LONG a, LONG b) noexcept {
    return static_cast<LONG>(static_cast<ULONG>(a) * static_cast<ULONG>(b));
}

}  // namespace qel
