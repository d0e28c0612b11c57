#pragma once

#include <cstddef>
#include <span>

// Base64, 32 characters per step, on processors with AVX2. The results are exactly those of the plain form, also for
// characters outside the alphabet. Nothing outside the spans and their results is read or written.
namespace qel {

/// Whether this processor and system run AVX2; the other functions need it.
bool HasAvx2() noexcept;

/// Encodes whole groups of three from the start of @p source to @p target.
/// @return bytes encoded: all whole groups, or 0 if there are fewer than 24 bytes
std::size_t EncodeBase64Avx2(std::span<const unsigned char> source, char* target);

/// Decodes whole groups of four from the start of @p source to @p target, which may be the start of @p source.
/// @return characters decoded: all whole groups, or 0 if there are fewer than 32 characters
std::size_t DecodeBase64Avx2(std::span<const char> source, unsigned char* target);

}  // namespace qel
