#include "qellib10/platform/drawing/palette.h"

#include <array>

namespace qel {
namespace {

// Numbers colours with an open hash table; four times as many slots as colours keep the searches short.
class ColorNumbers {
public:
    static constexpr int kNone = -1;

    ColorNumbers() { m_aryNumber.fill(kNone); }

    /// The colour's number, or kNone if it would be the 257th.
    int Of(std::uint32_t color) {
        for (std::size_t place = (color * 0x9E3779B1u) >> 22;; place = (place + 1) % kPlaces) {
            int& number = m_aryNumber[place];
            if (number == kNone) {
                if (m_aryColor.size() == 256) return kNone;
                m_aryColor.push_back(color);
                return number = static_cast<int>(m_aryColor.size()) - 1;
            }
            if (m_aryColor[static_cast<std::size_t>(number)] == color) return number;
        }
    }
    std::vector<std::uint32_t>& Colors() { return m_aryColor; }

private:
    static constexpr std::size_t kPlaces = 1024;

    std::array<int, kPlaces> m_aryNumber;
    std::vector<std::uint32_t> m_aryColor;
};

}  // namespace

std::optional<PalettePicture> WithPalette(const PixelBuffer& pixels) {
    PalettePicture picture;
    picture.numbers.resize(static_cast<std::size_t>(pixels.Width()) * static_cast<std::size_t>(pixels.Height()));
    ColorNumbers numbers;
    std::uint32_t last = pixels.Row(0)[0] & 0xFFFFFF;
    int number = numbers.Of(last);
    std::uint8_t* to = picture.numbers.data();
    for (int y = 0; y < pixels.Height(); ++y) {
        const std::uint32_t* const row = pixels.Row(y);
        for (int x = 0; x < pixels.Width(); ++x) {
            // Most pixels equal the one before.
            if (const std::uint32_t color = row[x] & 0xFFFFFF; color != last) {
                number = numbers.Of(color);
                if (number == ColorNumbers::kNone) return std::nullopt;
                last = color;
            }
            *to++ = static_cast<std::uint8_t>(number);
        }
    }
    picture.colors = std::move(numbers.Colors());
    return picture;
}

}  // namespace qel
