#include "qellib10/file/check_sums_vector.h"

#if defined(__SSE2__)

#include <immintrin.h>

#include <array>
#include <numeric>

#include "qellib10/file/crc32_bzip2.h"
#include "qellib10/file/fold_distance.h"

namespace qel {
namespace {

using Bytes = std::span<const unsigned char>;

constexpr std::size_t kLane = 16;
constexpr std::size_t kLanesAtOnce = 4;
constexpr std::size_t kWideLane = 32;
constexpr std::size_t kWideLanesAtOnce = 8;  // hides the latency of the multiplications

constexpr FoldDistance kOneLane(1);
constexpr FoldDistance kBlockOfLanes(kLanesAtOnce);
constexpr FoldDistance kBlockOfWideLanes(2 * kWideLanesAtOnce);

[[gnu::target("sse4.1,pclmul")]] inline __m128i Load(const unsigned char* bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

// The first byte becomes the most significant one.
[[gnu::target("sse4.1,pclmul")]] inline __m128i Reversed(__m128i bytes) {
    return _mm_shuffle_epi8(bytes, _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
}

[[gnu::target("sse4.1,pclmul")]] inline __m128i Factors(const FoldDistance& distance) {
    return _mm_set_epi64x(static_cast<std::int64_t>(distance.upper), static_cast<std::int64_t>(distance.lower));
}

[[gnu::target("sse4.1,pclmul")]] inline __m128i Folded(__m128i lane, __m128i factors, __m128i next) {
    const __m128i upper = _mm_clmulepi64_si128(lane, factors, 0x11);
    const __m128i lower = _mm_clmulepi64_si128(lane, factors, 0x00);
    return _mm_xor_si128(_mm_xor_si128(upper, lower), next);
}

[[gnu::target("sse4.1,pclmul")]] inline __m128i ByteSums(__m128i bytes) {
    return _mm_sad_epu8(bytes, _mm_setzero_si128());
}

[[gnu::target("sse4.1,pclmul")]] inline std::uint32_t Total(__m128i sums) {
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(sums) + _mm_extract_epi32(sums, 2));
}

// The register represents 32 bits before the bytes, so it is added to the first 32 of them.
[[gnu::target("sse4.1,pclmul")]] inline __m128i WithRegister(__m128i reversed, std::uint32_t crc) {
    return _mm_xor_si128(reversed, _mm_set_epi32(static_cast<int>(crc), 0, 0, 0));
}

// The register after the bytes that were folded into @p lane.
[[gnu::target("sse4.1,pclmul")]] inline std::uint32_t RegisterOf(__m128i lane) {
    std::array<unsigned char, kLane> bytes;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes.data()), Reversed(lane));
    return CrcBySlices(0, bytes);
}

template <bool kWithSum> void FinishPlain(RunningSums& sums, Bytes rest) {
    sums.crc = CrcBySlices(sums.crc, rest);
    if constexpr (kWithSum) sums.sum = std::accumulate(rest.begin(), rest.end(), sums.sum);
}

template <bool kWithSum> [[gnu::target("sse4.1,pclmul")]] void Fold(RunningSums& sums, Bytes bytes) {
    constexpr std::size_t kBlock = kLane * kLanesAtOnce;
    if (bytes.size() >= 2 * kBlock) {
        const __m128i factors = Factors(kBlockOfLanes);
        __m128i total = _mm_setzero_si128();
        __m128i lanes[kLanesAtOnce];
        const auto next = [&](std::size_t i) __attribute__((target("sse4.1,pclmul"))) {
            const __m128i loaded = Load(bytes.data() + i * kLane);
            if constexpr (kWithSum) total = _mm_add_epi64(total, ByteSums(loaded));
            return Reversed(loaded);
        };
        for (std::size_t i = 0; i < kLanesAtOnce; ++i) lanes[i] = next(i);
        lanes[0] = WithRegister(lanes[0], sums.crc);
        for (bytes = bytes.subspan(kBlock); bytes.size() >= kBlock; bytes = bytes.subspan(kBlock)) {
            for (std::size_t i = 0; i < kLanesAtOnce; ++i) lanes[i] = Folded(lanes[i], factors, next(i));
        }
        __m128i lane = lanes[0];
        for (std::size_t i = 1; i < kLanesAtOnce; ++i) lane = Folded(lane, Factors(kOneLane), lanes[i]);
        sums.crc = RegisterOf(lane);
        if constexpr (kWithSum) sums.sum += Total(total);
    }
    FinishPlain<kWithSum>(sums, bytes);
}

[[gnu::target("avx2,vpclmulqdq")]] inline __m256i LoadWide(const unsigned char* bytes) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

[[gnu::target("avx2,vpclmulqdq")]] inline __m256i FoldedWide(__m256i lanes, __m256i factors, __m256i next) {
    const __m256i upper = _mm256_clmulepi64_epi128(lanes, factors, 0x11);
    const __m256i lower = _mm256_clmulepi64_epi128(lanes, factors, 0x00);
    return _mm256_xor_si256(_mm256_xor_si256(upper, lower), next);
}

template <bool kWithSum> [[gnu::target("avx2,pclmul,vpclmulqdq")]] void FoldWide(RunningSums& sums, Bytes bytes) {
    constexpr std::size_t kBlock = kWideLane * kWideLanesAtOnce;
    if (bytes.size() < 2 * kBlock) {
        Fold<kWithSum>(sums, bytes);
        return;
    }
    const __m256i factors = _mm256_broadcastsi128_si256(Factors(kBlockOfWideLanes));
    const __m256i reversal =
        _mm256_broadcastsi128_si256(_mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
    __m256i total = _mm256_setzero_si256();
    __m256i lanes[kWideLanesAtOnce];
    const auto next = [&](std::size_t i) __attribute__((target("avx2,pclmul,vpclmulqdq"))) {
        const __m256i loaded = LoadWide(bytes.data() + i * kWideLane);
        if constexpr (kWithSum) {
            total = _mm256_add_epi64(total, _mm256_sad_epu8(loaded, _mm256_setzero_si256()));
        }
        return _mm256_shuffle_epi8(loaded, reversal);
    };
    for (std::size_t i = 0; i < kWideLanesAtOnce; ++i) lanes[i] = next(i);
    lanes[0] = _mm256_xor_si256(lanes[0], _mm256_set_epi32(0, 0, 0, 0, static_cast<int>(sums.crc), 0, 0, 0));
    for (bytes = bytes.subspan(kBlock); bytes.size() >= kBlock; bytes = bytes.subspan(kBlock)) {
        for (std::size_t i = 0; i < kWideLanesAtOnce; ++i) lanes[i] = FoldedWide(lanes[i], factors, next(i));
    }
    const __m128i one = Factors(kOneLane);
    __m128i lane = _mm_setzero_si128();
    for (const __m256i& pair : lanes) {
        lane = Folded(lane, one, _mm256_castsi256_si128(pair));
        lane = Folded(lane, one, _mm256_extracti128_si256(pair, 1));
    }
    sums.crc = RegisterOf(lane);
    if constexpr (kWithSum) {
        sums.sum += Total(_mm_add_epi64(_mm256_castsi256_si128(total), _mm256_extracti128_si256(total, 1)));
    }
    Fold<kWithSum>(sums, bytes);
}

}  // namespace

bool HasCarrylessMultiply() noexcept { return __builtin_cpu_supports("sse4.1") && __builtin_cpu_supports("pclmul"); }
bool HasWideCarrylessMultiply() noexcept {
    return HasCarrylessMultiply() && __builtin_cpu_supports("avx2") && __builtin_cpu_supports("vpclmulqdq");
}

void CrcByFolding(RunningSums& sums, Bytes bytes) noexcept { Fold<false>(sums, bytes); }
void CrcAndSumByFolding(RunningSums& sums, Bytes bytes) noexcept { Fold<true>(sums, bytes); }
void CrcByWideFolding(RunningSums& sums, Bytes bytes) noexcept { FoldWide<false>(sums, bytes); }
void CrcAndSumByWideFolding(RunningSums& sums, Bytes bytes) noexcept { FoldWide<true>(sums, bytes); }

[[gnu::target("avx2")]] std::uint32_t SumByVector(std::uint32_t sum, Bytes bytes) noexcept {
    __m256i first = _mm256_setzero_si256();
    __m256i second = first;
    for (; bytes.size() >= 2 * kWideLane; bytes = bytes.subspan(2 * kWideLane)) {
        const auto sumsAt = [&](std::size_t at) __attribute__((target("avx2"))) {
            return _mm256_sad_epu8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes.data() + at)),
                                   _mm256_setzero_si256());
        };
        first = _mm256_add_epi64(first, sumsAt(0));
        second = _mm256_add_epi64(second, sumsAt(kWideLane));
    }
    first = _mm256_add_epi64(first, second);
    std::array<std::uint64_t, 4> parts;
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(parts.data()), first);
    for (const std::uint64_t part : parts) sum += static_cast<std::uint32_t>(part);
    return std::accumulate(bytes.begin(), bytes.end(), sum);
}

}  // namespace qel

#else

// This kind of processor supports none of this, so the functions below are never called.
namespace qel {

bool HasCarrylessMultiply() noexcept { return false; }
bool HasWideCarrylessMultiply() noexcept { return false; }
void CrcByFolding(RunningSums&, std::span<const unsigned char>) noexcept {}
void CrcAndSumByFolding(RunningSums&, std::span<const unsigned char>) noexcept {}
void CrcByWideFolding(RunningSums&, std::span<const unsigned char>) noexcept {}
void CrcAndSumByWideFolding(RunningSums&, std::span<const unsigned char>) noexcept {}
std::uint32_t SumByVector(std::uint32_t sum, std::span<const unsigned char>) noexcept { return sum; }

}  // namespace qel

#endif
