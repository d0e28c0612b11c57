#include "qellib10/graph/chart_marks.h"

#include <array>
#include <cmath>
#include <vector>

namespace qel {
namespace {

// The corners of a regular figure around 0,0; the first one is above.
std::vector<ShapePoint> Regular(int corners, double radius, double turn = 0) {
    std::vector<ShapePoint> figure;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2 * M_PI * (i + turn) / corners;
        figure.push_back({radius * std::sin(angle), -radius * std::cos(angle)});
    }
    return figure;
}

std::vector<ShapePoint> Star(double radius) {
    std::vector<ShapePoint> figure = Regular(10, radius);
    for (std::size_t i = 1; i < figure.size(); i += 2) figure[i] = {figure[i].x * 0.45, figure[i].y * 0.45};
    return figure;
}

std::vector<ShapePoint> Bars(double radius, bool isTurned) {
    const double a = isTurned ? radius * M_SQRT1_2 : radius;
    const double nan = std::nan("");
    if (isTurned) return {{-a, -a}, {a, a}, {nan, nan}, {-a, a}, {a, -a}};
    return {{-a, 0}, {a, 0}, {nan, nan}, {0, -a}, {0, a}};
}

// Figures of the same size look so when their areas are about the same.
std::vector<ShapePoint> FigureOf(ChartMark mark, double size) {
    constexpr int kCircleCorners = 32;
    const double radius = size / 2;
    switch (mark) {
        case ChartMark::kSquare:
        case ChartMark::kOpenSquare:
            return Regular(4, radius * 1.25, 0.5);
        case ChartMark::kTriangle:
            return Regular(3, radius * 1.3);
        case ChartMark::kTriangleDown:
            return Regular(3, radius * 1.3, 0.5);
        case ChartMark::kDiamond:
            return Regular(4, radius * 1.3);
        case ChartMark::kPlus:
            return Bars(radius * 1.15, false);
        case ChartMark::kCross:
            return Bars(radius * 1.25, true);
        case ChartMark::kStar:
            return Star(radius * 1.4);
        case ChartMark::kPentagon:
            return Regular(5, radius * 1.15);
        case ChartMark::kHexagon:
            return Regular(6, radius * 1.15);
        default:
            return Regular(kCircleCorners, radius);
    }
}

}  // namespace

void DrawMark(ChartCanvas& canvas, ChartMark mark, const ShapePoint& at, double size, COLORREF color, COLORREF inside,
              bool isSmooth) {
    if (mark == ChartMark::kNone || mark == ChartMark::kAuto) return;
    std::vector<ShapePoint> figure = FigureOf(mark, size);
    for (ShapePoint& corner : figure) corner = {corner.x + at.x, corner.y + at.y};
    ShapeStyle style;
    style.isSmooth = isSmooth;
    style.strokeWidth = size / 4.5;
    if (mark == ChartMark::kPlus || mark == ChartMark::kCross) {
        style.stroke = color;
    } else if (mark == ChartMark::kOpenCircle || mark == ChartMark::kOpenSquare) {
        style.stroke = color;
        style.fill = inside;
        style.isClosed = true;
    } else {
        style.fill = color;
    }
    canvas.Shape(figure, style);
}

void DrawLeftOut(const Chart& chart, ChartCanvas& canvas, const ShapePoint& at) {
    const ChartTheme& theme = chart.theme;
    const double size = canvas.Units(theme.markSize) * 1.3, reach = size * 0.7;
    DrawMark(canvas, ChartMark::kOpenCircle, at, size, theme.faintText, theme.plot, chart.isSmooth);
    const std::array<ShapePoint, 2> stroke = {{{at.x - reach, at.y + reach}, {at.x + reach, at.y - reach}}};
    canvas.Shape(stroke, {.stroke = theme.faintText, .strokeWidth = size / 6, .isSmooth = chart.isSmooth});
}

}  // namespace qel
