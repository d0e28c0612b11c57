#include "qellib10/platform/drawing/smooth_curve.h"

#include <cairo.h>

#include <cmath>
#include <random>
#include <vector>

#include "qellib10/graph/chart_line.h"
#include "qellib10/platform/drawing/cairo_shape.h"

#include "../support/canvas.h"

namespace {

constexpr int kWidth = 120, kHeight = 90;
using Corners = std::vector<qel::ShapePoint>;

// The shades of a black line on white.
using Shades = std::vector<int>;

Shades ByCairo(const Corners& corners, double width) {
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
    cairo_t* const cairo = cairo_create(surface);
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_paint(cairo);
    qel::PaintShape(cairo, corners, {.stroke = 0, .strokeWidth = width, .isRound = true}, 1U << 30U);
    cairo_destroy(cairo);
    cairo_surface_flush(surface);
    const auto* const pixels = reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(surface));
    Shades shades;
    for (int i = 0; i < kWidth * kHeight; ++i) shades.push_back(static_cast<int>(pixels[i] & 0xFFU));
    cairo_surface_destroy(surface);
    return shades;
}

Shades OnPicture(const Corners& corners, double width) {
    Canvas canvas(kWidth, kHeight);
    qel::DrawShape(canvas.dc, corners, {.stroke = 0, .strokeWidth = width, .isRound = true});
    Shades shades;
    for (const DWORD pixel : canvas.Pixels()) shades.push_back(static_cast<int>(pixel & 0xFFU));
    return shades;
}

struct Difference {
    int most = 0;
    double mean = 0;  // of the pixels that are not white in either
};

Difference DifferenceOf(const Shades& a, const Shades& b) {
    Difference difference;
    int touched = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const int apart = std::abs(a[i] - b[i]);
        difference.most = std::max(difference.most, apart);
        difference.mean += apart;
        touched += a[i] < 255 || b[i] < 255 ? 1 : 0;
    }
    difference.mean /= std::max(1, touched);
    return difference;
}

Corners Noise(int count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> up(-15, 15);
    Corners corners;
    for (int i = 0; i < count; ++i)
        corners.push_back({5.0 + 110.0 * i / count, 45 + 20 * std::sin(i * 7.0 / count) + up(random)});
    return corners;
}

}  // namespace

TEST(SmoothCurve, LooksLikeCairosLine) {
    Corners circle;
    for (int i = 0; i <= 60; ++i) circle.push_back({60 + 30 * std::cos(i * 0.12), 45 + 30 * std::sin(i * 0.12)});
    const struct {
        const char* what;
        Corners corners;
    } kCases[] = {
        {"horizontal", {{10, 20.3}, {100, 20.3}}},
        {"upright", {{30.4, 10}, {30.4, 80}}},
        {"leftward", {{100, 70}, {20, 15}}},
        {"steep", {{50, 5}, {53, 85}}},
        {"flat", {{5, 40}, {115, 46}}},
        {"corner", {{10, 80}, {60, 10}, {110, 80}}},
        {"back and forth", {{10, 10}, {110, 30}, {10, 50}, {110, 70}}},
        {"circle", circle},
        {"across the edges", {{-300, -200}, {60, 45}, {400, 45}, {60, 500}}},
        {"gaps", {{10, 10}, {50, 20}, qel::kLineGap, {60, 60}, {110, 70}, qel::kLineGap}},
        {"far away", {{-1e300, 20}, {1e300, 60}}},
        {"noise", Noise(100, 1)},
    };
    for (const auto& each : kCases) {
        for (const double width : {0.6, 1.0, 2.4, 7.0}) {
            const Difference difference = DifferenceOf(OnPicture(each.corners, width), ByCairo(each.corners, width));
            EXPECT_LE(difference.most, 60) << each.what << ' ' << width;
            EXPECT_LE(difference.mean, 12) << each.what << ' ' << width;
        }
    }
}

// A chart draws a part of the points only: nobody may see that.
TEST(SmoothCurve, OfReducedPointsIsThatOfAllPoints) {
    for (const int count : {500, 20'000, 200'000}) {
        const Corners all = Noise(count, 7);
        qel::LineReducer reducer(qel::PointLine::kFine);
        for (const qel::ShapePoint& corner : all) reducer.Add(corner, corner.y);
        const Corners reduced = reducer.Take();
        EXPECT_LE(DifferenceOf(OnPicture(all, 1.5), OnPicture(reduced, 1.5)).most, 1) << count;
        EXPECT_LE(reduced.size(), 120U * 16 * 4);
    }
}
