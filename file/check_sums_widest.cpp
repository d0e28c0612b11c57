#include "qellib10/file/check_sums_vector.h"

#if defined(__SSE2__)

#include <immintrin.h>

#include <iterator>
#include <numeric>

#include "qellib10/file/crc32_bzip2.h"
#include "qellib10/file/fold_distance.h"

// 512 bits at once. The multiplications and byte shuffles of that width share one port of the processor. So the bytes
// are not put in reverse order; instead an affine map reverses the bits of each byte, and the folding works on
// reflected values. The sum is a dot product with ones for the same reason.
namespace qel {
namespace {

using Bytes = std::span<const unsigned char>;

constexpr std::size_t kLane = 64;
constexpr std::size_t kLanesAtOnce = 8;
constexpr std::size_t kBlock = kLane * kLanesAtOnce;

constexpr std::int64_t kReversedBits = static_cast<std::int64_t>(0x8040201008040201);  // as an 8 x 8 matrix
constexpr ReflectedFoldDistance kOneSmallLane(1);
constexpr ReflectedFoldDistance kWholeBlock(4 * kLanesAtOnce);

[[gnu::target("avx512f,avx512bw,gfni")]] inline __m512i Reflected(__m512i bytes) {
    return _mm512_gf2p8affine_epi64_epi8(bytes, _mm512_set1_epi64(kReversedBits), 0);
}

[[gnu::target("avx512f,avx512vl,gfni")]] inline __m128i Reflected(__m128i bytes) {
    return _mm_gf2p8affine_epi64_epi8(bytes, _mm_set1_epi64x(kReversedBits), 0);
}

// Half 0 of a reflected lane has the higher powers.
inline __m128i Factors(const ReflectedFoldDistance& distance) {
    return _mm_set_epi64x(static_cast<std::int64_t>(distance.lower), static_cast<std::int64_t>(distance.upper));
}

[[gnu::target("avx512f,vpclmulqdq")]] inline __m512i Folded(__m512i lanes, __m512i factors, __m512i next) {
    constexpr int kExclusiveOr = 0x96;
    return _mm512_ternarylogic_epi64(_mm512_clmulepi64_epi128(lanes, factors, 0x00),
                                     _mm512_clmulepi64_epi128(lanes, factors, 0x11), next, kExclusiveOr);
}

[[gnu::target("pclmul")]] inline __m128i Folded(__m128i lane, __m128i factors, __m128i next) {
    return _mm_xor_si128(
        _mm_xor_si128(_mm_clmulepi64_si128(lane, factors, 0x00), _mm_clmulepi64_si128(lane, factors, 0x11)), next);
}

template <bool kWithSum>
[[gnu::target("avx512f,avx512bw,avx512vl,avx512vnni,gfni,pclmul,vpclmulqdq")]] void Fold(RunningSums& sums,
                                                                                         Bytes bytes) {
    const __m512i factors =
        _mm512_set4_epi64(static_cast<std::int64_t>(kWholeBlock.lower), static_cast<std::int64_t>(kWholeBlock.upper),
                          static_cast<std::int64_t>(kWholeBlock.lower), static_cast<std::int64_t>(kWholeBlock.upper));
    const __m512i ones = _mm512_set1_epi8(1);
    __m512i lanes[kLanesAtOnce];
    __m512i parts[kLanesAtOnce] = {};  // one per lane: a single one would wait for itself

    // The register represents 32 bits before the bytes, so it is added to the first four of them.
    __m512i first = _mm512_zextsi128_si512(_mm_cvtsi32_si128(static_cast<int>(__builtin_bswap32(sums.crc))));
    for (std::size_t i = 0; i < kLanesAtOnce; ++i) {
        const __m512i loaded = _mm512_loadu_si512(bytes.data() + i * kLane);
        if constexpr (kWithSum) parts[i] = _mm512_dpbusd_epi32(parts[i], loaded, ones);
        lanes[i] = Reflected(_mm512_xor_si512(loaded, first));
        first = _mm512_setzero_si512();
    }
    for (bytes = bytes.subspan(kBlock); bytes.size() >= kBlock; bytes = bytes.subspan(kBlock)) {
        for (std::size_t i = 0; i < kLanesAtOnce; ++i) {
            const __m512i loaded = _mm512_loadu_si512(bytes.data() + i * kLane);
            if constexpr (kWithSum) parts[i] = _mm512_dpbusd_epi32(parts[i], loaded, ones);
            lanes[i] = Folded(lanes[i], factors, Reflected(loaded));
        }
    }

    const __m128i one = Factors(kOneSmallLane);
    alignas(kLane) __m128i small[4 * kLanesAtOnce];
    for (std::size_t i = 0; i < kLanesAtOnce; ++i) _mm512_store_si512(small + 4 * i, lanes[i]);
    __m128i lane = small[0];
    for (std::size_t i = 1; i < 4 * kLanesAtOnce; ++i) lane = Folded(lane, one, small[i]);
    alignas(16) unsigned char folded[16];
    _mm_store_si128(reinterpret_cast<__m128i*>(folded), Reflected(lane));
    sums.crc = CrcBySlices(0, folded);
    if constexpr (kWithSum) {
        for (std::size_t i = 1; i < kLanesAtOnce; ++i) parts[0] = _mm512_add_epi32(parts[0], parts[i]);
        alignas(kLane) std::uint32_t words[kLane / 4];
        _mm512_store_si512(words, parts[0]);
        sums.sum = std::accumulate(std::begin(words), std::end(words), sums.sum);
    }
}

template <bool kWithSum> void Widest(RunningSums& sums, Bytes bytes) {
    if (bytes.size() >= 2 * kBlock) {
        const std::size_t folded = bytes.size() - bytes.size() % kBlock;
        Fold<kWithSum>(sums, bytes.first(folded));
        bytes = bytes.subspan(folded);
    }
    (kWithSum ? CrcAndSumByWideFolding : CrcByWideFolding)(sums, bytes);
}

}  // namespace

bool HasWidestCarrylessMultiply() noexcept {
    return HasWideCarrylessMultiply() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vnni") && __builtin_cpu_supports("gfni");
}

void CrcByWidestFolding(RunningSums& sums, Bytes bytes) noexcept { Widest<false>(sums, bytes); }
void CrcAndSumByWidestFolding(RunningSums& sums, Bytes bytes) noexcept { Widest<true>(sums, bytes); }

}  // namespace qel

#else

namespace qel {

bool HasWidestCarrylessMultiply() noexcept { return false; }
void CrcByWidestFolding(RunningSums&, std::span<const unsigned char>) noexcept {}
void CrcAndSumByWidestFolding(RunningSums&, std::span<const unsigned char>) noexcept {}

}  // namespace qel

#endif
