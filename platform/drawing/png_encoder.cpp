#include "qellib10/platform/drawing/png_encoder.h"

#include <png.h>

#include <cmath>
#include <new>
#include <span>
#include <vector>

#include "qellib10/platform/drawing/palette.h"
#include "qellib10/platform/error.h"

namespace qel {
namespace {

[[noreturn]] void OnError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void OnWarning(png_structp, png_const_charp) {}

// No exception may pass through libpng.
void Append(png_structp png, png_bytep bytes, std::size_t count) {
    const auto data = std::as_bytes(std::span(bytes, count));
    auto& file = *static_cast<std::vector<std::byte>*>(png_get_io_ptr(png));
    bool isDone = true;
    try {
        file.insert(file.end(), data.begin(), data.end());
    } catch (const std::bad_alloc&) {
        isDone = false;
    }
    if (!isDone) png_error(png, "no memory");
}

// The content in libpng's terms.
struct Content {
    png_uint_32 width;
    png_uint_32 height;
    png_uint_32 dotsAMetre;
    std::vector<png_color> palette;  // empty: three bytes per pixel
    std::vector<png_byte> bytes;     // rows one after another
};

Content ContentOf(const PixelBuffer& pixels, int dotsPerInch) {
    Content content{static_cast<png_uint_32>(pixels.Width()),
                    static_cast<png_uint_32>(pixels.Height()),
                    static_cast<png_uint_32>(std::lround(dotsPerInch / 0.0254)),
                    {},
                    {}};
    const auto red = [](std::uint32_t color) { return static_cast<png_byte>(color >> 16); };
    const auto green = [](std::uint32_t color) { return static_cast<png_byte>(color >> 8); };
    const auto blue = [](std::uint32_t color) { return static_cast<png_byte>(color); };
    if (std::optional<PalettePicture> picture = WithPalette(pixels)) {
        for (const std::uint32_t c : picture->colors) content.palette.push_back({red(c), green(c), blue(c)});
        content.bytes = std::move(picture->numbers);
        return content;
    }
    content.bytes.resize(std::size_t{content.width} * content.height * 3);
    png_byte* to = content.bytes.data();
    for (int y = 0; y < pixels.Height(); ++y) {
        for (int x = 0; x < pixels.Width(); ++x) {
            const std::uint32_t c = pixels.Row(y)[x];
            *to++ = red(c);
            *to++ = green(c);
            *to++ = blue(c);
        }
    }
    return content;
}

// Nothing in here has a destructor: on failure libpng leaves by a jump.
bool Write(png_structp png, png_infop info, const Content& content) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    const bool hasPalette = !content.palette.empty();
    png_set_IHDR(png, info, content.width, content.height, 8, hasPalette ? PNG_COLOR_TYPE_PALETTE : PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (hasPalette) png_set_PLTE(png, info, content.palette.data(), static_cast<int>(content.palette.size()));
    png_set_pHYs(png, info, content.dotsAMetre, content.dotsAMetre, PNG_RESOLUTION_METER);
    // Curves look alike from row to row: their differences compress well at the fastest level.
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_UP);
    png_set_compression_level(png, 1);
    png_write_info(png, info);
    const std::size_t rowSize = std::size_t{content.width} * (hasPalette ? 1 : 3);
    for (png_uint_32 y = 0; y < content.height; ++y) png_write_row(png, content.bytes.data() + y * rowSize);
    png_write_end(png, info);
    return true;
}

std::vector<std::byte> Encoded(const Content& content) {
    std::vector<std::byte> file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    if (info != nullptr) png_set_write_fn(png, &file, Append, nullptr);
    const bool isDone = info != nullptr && Write(png, info, content);
    png_destroy_write_struct(&png, &info);
    if (!isDone) throw DataError("a picture could not be encoded");
    return file;
}

}  // namespace

std::vector<std::byte> EncodePng(const PixelBuffer& pixels, int dotsPerInch) {
    return Encoded(ContentOf(pixels, dotsPerInch));
}

}  // namespace qel
