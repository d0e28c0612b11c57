#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "qellib10/platform/drawing/polyline_writer.h"

namespace {

using qel::PolylineWriter;
using qel::Raster;

constexpr int kWidth = 60, kHeight = 40;

struct Picture {
    std::vector<std::uint32_t> pixels = std::vector<std::uint32_t>(kWidth * kHeight);

    Raster Clipped(const CRect& clip) { return {pixels.data(), kWidth, clip.left, clip.top, clip.right, clip.bottom}; }
};

// The rule as it stands: a step along the longer axis, the other coordinate rounded to nearest, ties to the smaller
// one.
void PlainLine(const Raster& raster, const POINT& from, const POINT& to, std::uint32_t value) {
    const long long dx = to.x - from.x, dy = to.y - from.y;
    const long long length = std::max(std::abs(dx), std::abs(dy));
    for (long long step = 0; step < length; ++step) {
        const auto along = [&](long long start, long long distance) {
            return start + static_cast<long long>(std::ceil(double(distance * step) / double(length) - 0.5));
        };
        const long long x = along(from.x, dx), y = along(from.y, dy);
        if (x < raster.left || x >= raster.right || y < raster.top || y >= raster.bottom) continue;
        *raster.At(static_cast<int>(x), static_cast<int>(y)) = value;
    }
}

}  // namespace

TEST(ThinLine, HasThePixelsOfTheRuleInsideAnyClip) {
    std::mt19937 random(1);
    const auto within = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    for (int i = 0; i < 20000; ++i) {
        const int reach = i % 10 == 0 ? 66000 : 70;
        const POINT from{within(-reach, reach), within(-reach, reach)},
            to{within(-reach, reach), within(-reach, reach)};
        const int left = within(0, kWidth), top = within(0, kHeight);
        const CRect clip(left, top, within(left, kWidth), within(top, kHeight));
        Picture expected, drawn;
        PlainLine(expected.Clipped(clip), from, to, 7);
        qel::DrawThinLine(drawn.Clipped(clip), from, to, 7u);
        ASSERT_EQ(drawn.pixels, expected.pixels) << from.x << ' ' << from.y << " - " << to.x << ' ' << to.y;
    }
}

TEST(ThinLine, IsExactBetweenTheFarthestPoints) {
    constexpr int kFar = 0x7FFFFFFF;
    Picture drawn;
    qel::DrawThinLine(drawn.Clipped({0, 0, kWidth, kHeight}), {-kFar - 1, -kFar - 1}, {kFar, kFar}, 7u);
    for (int i = 0; i < kHeight; ++i) EXPECT_EQ(drawn.pixels[static_cast<std::size_t>(i * kWidth + i)], 7u) << i;
}

TEST(PolylineWriter, DrawsWhatSingleLinesDraw) {
    std::mt19937 random(2);
    const auto within = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    const CRect clip(3, 2, kWidth - 5, kHeight - 1);
    for (int i = 0; i < 20000; ++i) {
        Picture expected, drawn;
        PolylineWriter writer(drawn.Clipped(clip), 9u);
        POINT at{within(0, kWidth), within(0, kHeight)};
        writer.MoveTo(at);
        const int spread = within(0, 3);  // many points in one column, down to vertical lines only
        for (int points = within(1, 12); points > 0; --points) {
            const POINT to{at.x + within(-spread, spread), within(-10, kHeight + 10)};
            if (within(0, 9) == 0) {
                writer.MoveTo(to);
            } else {
                qel::DrawThinLine(expected.Clipped(clip), at, to, 9u);
                writer.LineTo(to);
            }
            if (within(0, 9) == 0) writer.Flush();
            at = to;
        }
        writer.Flush();
        ASSERT_EQ(drawn.pixels, expected.pixels) << "polyline " << i;
    }
}

TEST(EllipseSpans, AreSymmetricAndTouchAllSides) {
    for (int width = 1; width <= 40; ++width) {
        for (int height = 1; height <= 40; ++height) {
            const auto rows = qel::EllipseSpans(width, height);
            int leftmost = width;
            for (std::size_t row = 0; row < rows.size(); ++row) {
                const auto& mirrored = rows[rows.size() - 1 - row];
                ASSERT_EQ(rows[row].left, mirrored.left) << width << 'x' << height;
                ASSERT_EQ(rows[row].left, width - 1 - rows[row].right) << width << 'x' << height;
                ASSERT_LE(rows[row].left, rows[row].right) << width << 'x' << height;
                leftmost = std::min(leftmost, rows[row].left);
            }
            ASSERT_EQ(leftmost, 0) << width << 'x' << height;
        }
    }
}
