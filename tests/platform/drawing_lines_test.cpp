#include <cairo.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "qellib10/platform/drawing/polyline_writer.h"

#include "../support/canvas.h"

namespace {

using qel::PolylineWriter;
using qel::Raster;

constexpr int kWidth = 60, kHeight = 40;

struct Picture {
    std::vector<std::uint32_t> pixels = std::vector<std::uint32_t>(kWidth * kHeight);

    Raster Clipped(const CRect& clip) { return {pixels.data(), kWidth, clip.left, clip.top, clip.right, clip.bottom}; }
};

// The rule: a step along the longer axis, the other coordinate rounded to nearest, ties to the smaller
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

// Without the byte of a pixel that is not a colour.
std::vector<DWORD> Colors(std::vector<DWORD> pixels) {
    for (DWORD& pixel : pixels) pixel &= 0xFFFFFF;
    return pixels;
}

// Lines of a wide pen on a white picture, each by itself and by Cairo alone.
class WideLines {
public:
    WideLines(int penWidth, const CRect& clip) : m_nMiddle(penWidth % 2 * 0.5) {
        cairo_set_source_rgb(m_pCairo, 1, 1, 1);
        cairo_paint(m_pCairo);
        cairo_set_source_rgb(m_pCairo, 0, 0, 0);
        cairo_rectangle(m_pCairo, clip.left, clip.top, clip.Width(), clip.Height());
        cairo_clip(m_pCairo);
        cairo_set_antialias(m_pCairo, CAIRO_ANTIALIAS_NONE);
        cairo_set_line_width(m_pCairo, penWidth);
        cairo_set_line_cap(m_pCairo, CAIRO_LINE_CAP_ROUND);
    }
    ~WideLines() { cairo_destroy(m_pCairo); }
    WideLines(const WideLines&) = delete;
    WideLines& operator=(const WideLines&) = delete;

    void Draw(const POINT& from, const POINT& to) {
        cairo_move_to(m_pCairo, from.x + m_nMiddle, from.y + m_nMiddle);
        cairo_line_to(m_pCairo, to.x + m_nMiddle, to.y + m_nMiddle);
        cairo_stroke(m_pCairo);
    }
    std::vector<DWORD> Colors() {
        cairo_surface_t* const surface = cairo_get_target(m_pCairo);
        cairo_surface_flush(surface);
        const auto* const pixels = reinterpret_cast<const DWORD*>(cairo_image_surface_get_data(surface));
        return ::Colors({pixels, pixels + kWidth * kHeight});
    }

private:
    static cairo_t* NewPicture() {
        cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
        cairo_t* const cairo = cairo_create(surface);
        cairo_surface_destroy(surface);
        return cairo;
    }

    cairo_t* const m_pCairo = NewPicture();
    const double m_nMiddle;
};

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

TEST(WidePen, PolylinesHaveThePixelsOfEachLineByCairo) {
    std::mt19937 random(3);
    const auto within = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    for (int i = 0; i < 20000; ++i) {
        const int penWidth = i % 10 == 0 ? within(2, 40) : within(2, 9);  // beyond 32 Cairo draws
        const int left = within(0, kWidth), top = within(0, kHeight);
        const CRect clip =
            i % 2 == 0 ? CRect(0, 0, kWidth, kHeight) : CRect(left, top, within(left, kWidth), within(top, kHeight));
        Canvas drawn(kWidth, kHeight);
        WideLines expected(penWidth, clip);
        CRgn region;
        region.CreateRectRgnIndirect(&clip);
        drawn.dc.SelectClipRgn(&region);
        CPen pen(PS_SOLID, penWidth, 0);
        drawn.dc.SelectObject(&pen);
        POINT at{within(0, kWidth), within(0, kHeight)};
        drawn.dc.MoveTo(at);
        const int spread = within(0, 3) * 4, reach = i % 20 == 0 ? 66000 : 20;
        const bool isShallow = i % 3 == 1;
        for (int points = within(1, 6); points > 0; --points) {
            const bool isAlone = within(0, 9) == 0;  // now and then a dot
            const POINT steep{at.x + within(-spread, spread) / 4, within(-reach, kHeight + reach)};
            const POINT shallow{within(-reach, kWidth + reach), at.y + within(-spread, spread) / 4};
            const POINT to = isAlone ? at : isShallow ? shallow : steep;
            drawn.dc.LineTo(to);
            expected.Draw(at, to);
            if (within(0, 9) == 0) drawn.dc.GetPixel(0, 0);  // nothing may be held back now
            at = to;
        }
        drawn.dc.GetPixel(0, 0);
        ASSERT_EQ(Colors(drawn.Pixels()), expected.Colors()) << "polyline " << i << " of width " << penWidth;
    }
}

TEST(WidePen, TakesCairosCornerWhereAnEdgeOfItLiesAlongTheLine) {
    for (const CPoint& along : {CPoint(14, -13), CPoint(-14, 13)}) {
        Canvas drawn(kWidth, kHeight);
        WideLines expected(17, {0, 0, kWidth, kHeight});
        CPen pen(PS_SOLID, 17, 0);
        drawn.dc.SelectObject(&pen);
        drawn.dc.MoveTo(30, 20);
        drawn.dc.LineTo(30 + along.x, 20 + along.y);
        expected.Draw({30, 20}, {30 + along.x, 20 + along.y});
        EXPECT_EQ(Colors(drawn.Pixels()), expected.Colors()) << along.x;
    }
}

TEST(DashedPen, ManyPointsHaveThePixelsOfOneLineAfterTheOther) {
    std::mt19937 random(4);
    const auto within = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    for (int i = 0; i < 4000; ++i) {
        Canvas drawn(kWidth, kHeight), expected(kWidth, kHeight);
        std::vector<POINT> points;
        const int spread = within(0, 1), reach = i % 10 == 0 ? 66000 : within(1, kHeight);
        int x = within(0, kWidth);
        for (int count = within(1, i % 5 == 0 ? 1500 : 60); count > 0; --count) {
            if (within(0, 15) == 0) x += within(-spread, spread);
            points.push_back({x, within(-3, reach)});
        }
        CPen pen(within(PS_DASH, PS_DASHDOTDOT), 1, kRed);
        CRgn region;
        region.CreateRectRgn(3, 2, kWidth - 5, kHeight - 1);
        const int backMode = within(TRANSPARENT, OPAQUE);
        for (Canvas* const canvas : {&drawn, &expected}) {
            canvas->dc.SelectObject(&pen);
            canvas->dc.SetBkMode(backMode);
            canvas->dc.SetBkColor(0);
            if (i % 3 == 0) canvas->dc.SelectClipRgn(&region);
            canvas->dc.MoveTo(x, 5);
        }
        drawn.dc.PolylineTo(points.data(), static_cast<int>(points.size()));
        for (const POINT& to : points) expected.dc.LineTo(to);
        ASSERT_EQ(drawn.Pixels(), expected.Pixels()) << "polyline " << i;
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
