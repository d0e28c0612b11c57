#include "qellib10/platform/drawing/shade_mixer.h"

#include <algorithm>
#include <cstring>

namespace qel {
namespace {

constexpr std::size_t kBytes = ShadeMixer::kMost * sizeof(std::uint32_t);
using Bytes = std::array<std::uint8_t, kBytes>;

// All is in 16 bits: below * (255 - shade) + above * shade + 127 is less than 2^16.
constexpr std::uint8_t Mixed(std::uint8_t below, std::uint8_t above, std::uint8_t shade) {
    const auto kept = static_cast<std::uint16_t>(below * static_cast<std::uint16_t>(255 - shade));
    const auto added = static_cast<std::uint16_t>(above * static_cast<std::uint16_t>(shade));
    const auto sum = static_cast<std::uint16_t>(kept + added + 127);
    return static_cast<std::uint8_t>(static_cast<std::uint16_t>(sum + 1 + (sum >> 8)) >> 8);  // divided by 255
}

std::uint64_t WordAt(const std::uint8_t* shades) {
    std::uint64_t word;
    std::memcpy(&word, shades, sizeof word);
    return word;
}

std::array<std::uint32_t, ShadeMixer::kMost> AllOf(std::uint32_t color) {
    std::array<std::uint32_t, ShadeMixer::kMost> all{};
    all.fill(color);
    return all;
}

}  // namespace

ShadeMixer::ShadeMixer(std::uint32_t color, std::uint32_t opacity)
    : m_color(color), m_colors(AllOf(color)), m_opacity(opacity), m_shadeOf{} {
    for (std::size_t shade = 0; shade < m_shadeOf.size(); ++shade)
        m_shadeOf[shade] = Mixed(0, static_cast<std::uint8_t>(opacity), static_cast<std::uint8_t>(shade));
}

void ShadeMixer::Mix(std::uint32_t* pixels, int count, const std::uint8_t* shades) const {
    const std::uint64_t first = WordAt(shades), second = WordAt(shades + sizeof first);
    if ((first | second) == 0) return;
    if ((first & second) == ~std::uint64_t{0} && m_opacity == 255) {
        std::fill(pixels, pixels + count, m_color);
        return;
    }
    Words below{}, spread{};
    const std::size_t size = static_cast<std::size_t>(count) * sizeof(std::uint32_t);
    std::memcpy(below.data(), pixels, size);
    for (std::size_t i = 0; i < kMost; ++i)
        spread[i] = (m_opacity == 255 ? shades[i] : m_shadeOf[shades[i]]) * 0x01010101U;
    Bytes belowBytes, aboveBytes, shadeBytes;
    std::memcpy(belowBytes.data(), below.data(), kBytes);
    std::memcpy(aboveBytes.data(), m_colors.data(), kBytes);
    std::memcpy(shadeBytes.data(), spread.data(), kBytes);
    for (std::size_t i = 0; i < kBytes; ++i) belowBytes[i] = Mixed(belowBytes[i], aboveBytes[i], shadeBytes[i]);
    std::memcpy(below.data(), belowBytes.data(), kBytes);
    // A pixel that is drawn has the whole highest byte of the colour.
    for (std::size_t i = 0; i < kMost; ++i) below[i] |= shades[i] != 0 ? m_color & 0xFF000000U : 0;
    std::memcpy(pixels, below.data(), size);
}

}  // namespace qel
