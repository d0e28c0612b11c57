#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>

/// Ends the program, which the fuzzer reports as a finding, unless the law holds.
inline void Require(bool holds) {
    if (!holds) std::abort();
}

/// The bytes of an input, or of something stored.
template <class Byte> std::string Text(const Byte* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}
