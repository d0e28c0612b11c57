#pragma once

#include <cstdint>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "qellib10/base/guid_text.h"
#include "qellib10/base/guid_text_plain.h"

// WriteGuid, inlined into its caller: half the cost of a text is its memory, and a call would be a tenth. Every x86-64
// processor has SSE2, so there is nothing to choose at run time.
namespace qel {

#ifdef __SSE2__

inline __m128i HexadecimalDigits(__m128i values) {
    const __m128i isLetter = _mm_cmpgt_epi8(values, _mm_set1_epi8(9));
    const __m128i distance = _mm_and_si128(isLetter, _mm_set1_epi8('A' - '0' - 10));
    return _mm_add_epi8(_mm_add_epi8(values, _mm_set1_epi8('0')), distance);
}

inline void WriteGuidInline(const GUID& guid, std::span<char, kGuidTextLength> text) noexcept {
    const std::uint64_t fields = std::uint64_t{guid.Data1} << 32 | std::uint64_t{guid.Data2} << 16 | guid.Data3;
    std::int64_t tail = 0;
    std::memcpy(&tail, guid.Data4, sizeof tail);
    const __m128i bytes = _mm_set_epi64x(tail, static_cast<std::int64_t>(__builtin_bswap64(fields)));

    const __m128i nibble = _mm_set1_epi8(0x0F);
    const __m128i high = _mm_and_si128(_mm_srli_epi16(bytes, 4), nibble);
    const __m128i low = _mm_and_si128(bytes, nibble);
    const __m128i front = HexadecimalDigits(_mm_unpacklo_epi8(high, low));  // digits 0-15: groups of 8, 4 and 4
    const __m128i back = HexadecimalDigits(_mm_unpackhi_epi8(high, low));   // digits 16-31: groups of 4 and 12

    // Each store may overlap the bytes of a later one.
    char* const to = text.data();
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 1), front);
    const __m128i frontHalf = _mm_srli_si128(front, 8);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to + 10), frontHalf);
    const int lastOfFront = _mm_cvtsi128_si32(_mm_srli_si128(frontHalf, 4));
    std::memcpy(to + 15, &lastOfFront, 4);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 21), back);
    const int firstOfBack = _mm_cvtsi128_si32(back);
    std::memcpy(to + 20, &firstOfBack, 4);
    to[0] = '{';
    for (const int hyphen : {9, 14, 19, 24}) to[hyphen] = '-';
    to[37] = '}';
}

#else

inline void WriteGuidInline(const GUID& guid, std::span<char, kGuidTextLength> text) noexcept {
    WriteGuidPlain(guid, text);
}

#endif

}  // namespace qel
