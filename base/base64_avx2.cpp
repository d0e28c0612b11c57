#include "qellib10/base/base64_avx2.h"

#if defined(__SSE2__)

#include <immintrin.h>

namespace qel {
namespace {

constexpr std::size_t kBytes = 24, kCharacters = 32;  // of one step: eight groups

// Reads bytes 0-23 and no more: the upper half starts at byte 8 and has what it needs from its fourth byte on.
[[gnu::target("avx2")]] inline __m256i LoadBytes(const unsigned char* source) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + 8));
    return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}

// Eight groups of three bytes to 32 characters.
[[gnu::target("avx2")]] inline __m256i Encoded(__m256i bytes) {
    // A group's bytes 0 1 2 become the 16-bit words (0 1) and (1 2): each contains two of the four values completely.
    const __m256i words =
        _mm256_shuffle_epi8(bytes, _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10,  //
                                                    5, 4, 6, 5, 8, 7, 9, 8, 11, 10, 12, 11, 14, 13, 15, 14));
    // Multiplications shift each word by its own distance: the high halves right by 10 and 6, the low halves left by 4
    // and 8.
    const __m256i even =
        _mm256_mulhi_epu16(_mm256_and_si256(words, _mm256_set1_epi32(0x0FC0FC00)), _mm256_set1_epi32(0x04000040));
    const __m256i odd =
        _mm256_mullo_epi16(_mm256_and_si256(words, _mm256_set1_epi32(0x003F03F0)), _mm256_set1_epi32(0x01000010));
    const __m256i values = _mm256_or_si256(even, odd);
    // The range of a value, as a row of the table below: 0 A-Z, 1 a-z, 2-11 digits, 12 plus, 13 slash.
    const __m256i pastUpper = _mm256_cmpgt_epi8(values, _mm256_set1_epi8(25));  // -1 where true
    const __m256i range = _mm256_sub_epi8(_mm256_subs_epu8(values, _mm256_set1_epi8(51)), pastUpper);
    constexpr char kLower = 'a' - 26, kDigit = '0' - 52, kPlus = '+' - 62, kSlash = '/' - 63;
    const __m256i distances =
        _mm256_broadcastsi128_si256(_mm_setr_epi8('A', kLower, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit,
                                                  kDigit, kDigit, kDigit, kPlus, kSlash, 0, 0));
    return _mm256_add_epi8(values, _mm256_shuffle_epi8(distances, range));
}

// 32 characters to their values; 0 for each character outside the alphabet.
[[gnu::target("avx2")]] inline __m256i Values(__m256i characters) {
    const __m256i high = _mm256_and_si256(_mm256_srli_epi32(characters, 4), _mm256_set1_epi8(0x0F));
    // A character belongs to the alphabet if its two nibbles share a bit:
    // 1 plus and slash (2B, 2F), 2 digits (30-39), 4 first half of the letters (x1-xF), 8 second half (x0-xA).
    // The shuffle uses the low nibble as its row and gives 0 from character 80 on.
    constexpr char kZero = 2 + 8, kOneToNine = 2 + 4 + 8, kA = 4 + 8, kBOrF = 1 + 4, kCToE = 4;
    const __m256i lowBits = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(kZero, kOneToNine, kOneToNine, kOneToNine, kOneToNine, kOneToNine, kOneToNine, kOneToNine,
                      kOneToNine, kOneToNine, kA, kBOrF, kCToE, kCToE, kCToE, kBOrF));
    const __m256i highBits = _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 0, 1, 2, 4, 8, 4, 8, 0, 0, 0, 0, 0, 0, 0, 0));
    const __m256i shared =
        _mm256_and_si256(_mm256_shuffle_epi8(lowBits, characters), _mm256_shuffle_epi8(highBits, high));
    // The high nibble gives the distance to the value. Only the slash, three too far with the distance of the plus,
    // exceeds 63.
    constexpr char kPlus = 62 - '+', kDigit = 52 - '0', kUpper = -'A', kLower = 26 - 'a';
    const __m256i distances = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 0, kPlus, kDigit, kUpper, kUpper, kLower, kLower, 0, 0, 0, 0, 0, 0, 0, 0));
    const __m256i values = _mm256_add_epi8(characters, _mm256_shuffle_epi8(distances, high));
    return _mm256_sign_epi8(_mm256_min_epu8(values, _mm256_set1_epi8(63)), shared);  // 0 if no bit is shared
}

// 32 characters to eight groups of three bytes: 12 bytes at the start of each half, the rest zero.
[[gnu::target("avx2")]] inline __m256i Decoded(__m256i characters) {
    // Values a b c d to a * 64 + b and c * 64 + d, then to a 24-bit number in each 32-bit lane.
    const __m256i pairs = _mm256_maddubs_epi16(Values(characters), _mm256_set1_epi32(0x01400140));
    const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
    return _mm256_shuffle_epi8(
        groups, _mm256_broadcastsi128_si256(_mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1)));
}

[[gnu::target("avx2")]] inline __m256i LoadCharacters(const char* source) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source));
}

[[gnu::target("avx2")]] inline void StoreCharacters(char* target, __m256i characters) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(target), characters);
}

[[gnu::target("avx2")]] inline void StoreHalf(unsigned char* target, __m128i bytes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target), bytes);
}

// Writes the 24 bytes, followed by four zeros.
[[gnu::target("avx2")]] inline void StoreBytesAndFour(unsigned char* target, __m256i bytes) {
    StoreHalf(target, _mm256_castsi256_si128(bytes));
    StoreHalf(target + 12, _mm256_extracti128_si256(bytes, 1));
}

// Writes the 24 bytes and no more.
[[gnu::target("avx2")]] inline void StoreBytes(unsigned char* target, __m256i bytes) {
    const __m256i joined = _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 1, 2, 4, 2, 4, 5, 6));
    StoreHalf(target, _mm256_castsi256_si128(joined));
    StoreHalf(target + 8, _mm256_extracti128_si256(joined, 1));
}

}  // namespace

bool HasAvx2() noexcept { return __builtin_cpu_supports("avx2") != 0; }

[[gnu::target("avx2")]] std::size_t EncodeBase64Avx2(std::span<const unsigned char> source, char* target) {
    if (source.size() < kBytes) return 0;
    const std::size_t taken = source.size() / 3 * 3;
    // The last step ends with the last whole group and may repeat groups of the one before it.
    const unsigned char* const last = source.data() + taken - kBytes;
    char* const lastTarget = target + taken / 3 * 4 - kCharacters;
    for (const unsigned char* at = source.data(); at < last; at += kBytes, target += kCharacters)
        StoreCharacters(target, Encoded(LoadBytes(at)));
    StoreCharacters(lastTarget, Encoded(LoadBytes(last)));
    return taken;
}

[[gnu::target("avx2")]] std::size_t DecodeBase64Avx2(std::span<const char> source, unsigned char* target) {
    if (source.size() < kCharacters) return 0;
    const std::size_t taken = source.size() / 4 * 4;
    // Like above; its characters are read before text that is decoded in place is overwritten.
    const char* const last = source.data() + taken - kCharacters;
    unsigned char* const lastTarget = target + taken / 4 * 3 - kBytes;
    const __m256i lastCharacters = LoadCharacters(last);
    const char* at = source.data();
    for (; last - at > 4; at += kCharacters, target += kBytes) StoreBytesAndFour(target, Decoded(LoadCharacters(at)));
    if (at < last) StoreBytes(target, Decoded(LoadCharacters(at)));
    StoreBytes(lastTarget, Decoded(lastCharacters));
    return taken;
}

}  // namespace qel

#else

namespace qel {

bool HasAvx2() noexcept { return false; }
std::size_t EncodeBase64Avx2(std::span<const unsigned char>, char*) { return 0; }
std::size_t DecodeBase64Avx2(std::span<const char>, unsigned char*) { return 0; }

}  // namespace qel

#endif
