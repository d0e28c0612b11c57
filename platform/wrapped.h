#pragma once

#include "qellib10/platform/types.h"

// Arithmetic that wraps at 32 bits, for coordinates and sizes that come from a file or a caller.
namespace qel {

constexpr LONG WrappedSum(LONG a, LONG b) noexcept {
    return static_cast<LONG>(static_cast<DWORD>(a) + static_cast<DWORD>(b));
}
constexpr LONG WrappedDifference(LONG a, LONG b) noexcept {
    return static_cast<LONG>(static_cast<DWORD>(a) - static_cast<DWORD>(b));
}
constexpr LONG WrappedProduct(LONG a, LONG b) noexcept {
    return static_cast<LONG>(static_cast<DWORD>(a) * static_cast<DWORD>(b));
}

}  // namespace qel
