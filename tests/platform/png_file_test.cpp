#include "qellib10/platform/drawing/png_file.h"

#include <png.h>

#include "../support/test.h"

TEST(PngFile, IsReadBackWithEveryPixel) {
    const TempFolder folder;
    constexpr int kWidth = 37, kHeight = 11;
    for (const unsigned colors : {1u, 256u, 257u}) {
        SCOPED_TRACE(colors);
        std::vector<std::uint32_t> words;
        for (unsigned i = 0; i < kWidth * kHeight; ++i) words.push_back((i % colors) * 0x101);
        CBitmap bitmap;
        ASSERT_TRUE(bitmap.CreateBitmap(kWidth, kHeight, 1, 32, words.data()));
        ASSERT_EQ(qel::SavePng(bitmap, folder.Path("picture.png")), 1);
        const std::string bytes = folder.Read("picture.png");
        ASSERT_EQ(qel::SavePng(bitmap, folder.Path("picture.png")), 1);
        EXPECT_EQ(folder.Read("picture.png"), bytes);

        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        ASSERT_TRUE(png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()));
        ASSERT_EQ(Line({image.width, image.height}), Line({kWidth, kHeight}));
        EXPECT_EQ((image.format & PNG_FORMAT_FLAG_COLORMAP) != 0, colors <= 256);
        image.format = PNG_FORMAT_BGRA;
        std::vector<std::uint32_t> read(words.size());
        ASSERT_TRUE(png_image_finish_read(&image, nullptr, read.data(), 0, nullptr));
        for (std::uint32_t& word : read) word &= 0xFFFFFF;
        EXPECT_EQ(read, words);
    }
    EXPECT_EQ(qel::SavePng(CBitmap(), folder.Path("none.png")), 0);
    CBitmap bitmap;
    ASSERT_TRUE(bitmap.CreateBitmap(1, 1, 1, 32, nullptr));
    for (const int dots : {0, 9601, 0x7FFFFFFF}) EXPECT_EQ(qel::SavePng(bitmap, folder.Path("none.png"), dots), 0);
    EXPECT_EQ(qel::SavePng(bitmap, folder.Path("no") + "\\folder.png"), 0);
}
