#include "qellib10/platform/statistics/philox.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace qel {
namespace {

constexpr int kRounds = 10;
constexpr std::uint32_t kFirst = 0xD2511F53, kSecond = 0xCD9E8D57;          // multipliers
constexpr std::uint32_t kFirstStep = 0x9E3779B9, kSecondStep = 0xBB67AE85;  // of the key

struct Key {
    explicit Key(std::uint64_t seed)
        : first(static_cast<std::uint32_t>(seed)), second(static_cast<std::uint32_t>(seed >> 32)) {}
    void Step() {
        first += kFirstStep;
        second += kSecondStep;
    }
    std::uint32_t first, second;
};

}  // namespace

Philox::Block Philox::Enciphered(const Block& counter, std::uint64_t seed) {
    auto [a, b, c, d] = counter;
    Key key(seed);
    for (int round = 0; round < kRounds; ++round, key.Step()) {
        const std::uint64_t first = std::uint64_t{kFirst} * a, second = std::uint64_t{kSecond} * c;
        a = static_cast<std::uint32_t>(second >> 32) ^ b ^ key.first;
        b = static_cast<std::uint32_t>(second);
        c = static_cast<std::uint32_t>(first >> 32) ^ d ^ key.second;
        d = static_cast<std::uint32_t>(first);
    }
    return {a, b, c, d};
}

Philox::Philox(std::uint64_t seed, std::uint64_t block, std::uint32_t source)
    : m_seed(seed), m_block(block), m_source(source), m_at(2 * kLanes) {}

#if defined(__SSE2__)

namespace {

// Two counters: each word is in the lower half of 64 bits, and the upper halves mean nothing.
struct Two {
    __m128i a, b, c, d;

    void Round(__m128i firstKey, __m128i secondKey) {
        const __m128i first = _mm_mul_epu32(a, _mm_set1_epi64x(kFirst));
        const __m128i second = _mm_mul_epu32(c, _mm_set1_epi64x(kSecond));
        a = _mm_xor_si128(_mm_xor_si128(_mm_srli_epi64(second, 32), b), firstKey);
        b = second;
        c = _mm_xor_si128(_mm_xor_si128(_mm_srli_epi64(first, 32), d), secondKey);
        d = first;
    }
};

void Store(std::uint64_t* numbers, __m128i high, __m128i low) {
    const __m128i lower = _mm_srli_epi64(_mm_slli_epi64(low, 32), 32);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(numbers), _mm_or_si128(_mm_slli_epi64(high, 32), lower));
}

}  // namespace

void Philox::Refill() {
    constexpr std::size_t kAtOnce = 4;  // counters of two: enough to keep the multiplier busy
    for (std::size_t i = 0; i < kLanes; i += kAtOnce) {
        const auto block = [&](std::uint32_t shift) {
            return _mm_set1_epi64x(static_cast<long long>(m_block >> shift));
        };
        const auto two = [&](std::uint32_t at) {
            const long long counter = m_counter + static_cast<std::uint32_t>(i) + at;
            return Two{_mm_set_epi64x(counter + 1, counter), _mm_set1_epi64x(m_source), block(0), block(32)};
        };
        Two one = two(0), other = two(2);
        Key key(m_seed);
        for (int round = 0; round < kRounds; ++round, key.Step()) {
            const __m128i first = _mm_set1_epi64x(key.first), second = _mm_set1_epi64x(key.second);
            one.Round(first, second);
            other.Round(first, second);
        }
        Store(&m_numbers[i], one.a, one.b);
        Store(&m_numbers[i + 2], other.a, other.b);
        Store(&m_numbers[kLanes + i], one.c, one.d);
        Store(&m_numbers[kLanes + i + 2], other.c, other.d);
    }
    m_counter += kLanes;
    m_at = 0;
}

#else

void Philox::Refill() {
    for (std::size_t i = 0; i < kLanes; ++i) {
        const auto [a, b, c, d] = Enciphered(
            {m_counter++, m_source, static_cast<std::uint32_t>(m_block), static_cast<std::uint32_t>(m_block >> 32)},
            m_seed);
        m_numbers[i] = std::uint64_t{a} << 32 | b;
        m_numbers[kLanes + i] = std::uint64_t{c} << 32 | d;
    }
    m_at = 0;
}

#endif

}  // namespace qel
