#include "qellib10/graph/chart_canvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/print/queue_data.h"

namespace qel {
namespace {

CRect TouchedPixels(const ChartBox& box) {
    return {static_cast<int>(std::floor(box.left)), static_cast<int>(std::floor(box.top)),
            static_cast<int>(std::ceil(box.right)), static_cast<int>(std::ceil(box.bottom))};
}

// std::round, as fast as a curve of a hundred thousand corners needs it: a call of a library costs more than the rest.
double Rounded(double number) {
    constexpr double kMostExact = 1e15;
    if (!(std::fabs(number) < kMostExact)) return std::round(number);
    const auto whole = static_cast<std::int64_t>(number);
    const double rest = number - static_cast<double>(whole);
    return std::copysign(static_cast<double>(whole + (rest >= 0.5 ? 1 : 0) - (rest <= -0.5 ? 1 : 0)), number);
}

// As commands keep lengths and places.
double Hundredth(double length) { return Rounded(length * 100) / 100; }
ShapePoint Kept(const ShapePoint& place) { return {Hundredth(place.x), Hundredth(place.y)}; }

}  // namespace

LabelStyle ChartCanvas::Scaled(LabelStyle style) const {
    style.points = std::round(style.points * m_scale * 10) / 10;
    return style;
}

std::vector<double> ChartCanvas::Lengths(std::span<const double> points) const {
    std::vector<double> lengths;
    for (const double length : points) lengths.push_back(Units(length));
    return lengths;
}

LabelSize ChartCanvas::Measure(std::string_view text, const LabelStyle& style) const {
    return MeasureLabel(text, Scaled(style), m_dotsPerInch);
}

std::string ChartCanvas::Shortened(std::string_view text, const LabelStyle& style, double width) const {
    return ShortenedLabel(text, Scaled(style), m_dotsPerInch, std::max(0.0, width));
}

void ChartCanvas::Shape(std::span<const ShapePoint> corners, const ShapeStyle& style) {
    std::vector<ShapePoint> kept(corners.size());
    std::ranges::transform(corners, kept.begin(), Kept);
    std::vector<double> dashes(style.dashes.size());
    std::ranges::transform(style.dashes, dashes.begin(), Hundredth);
    ShapeStyle keptStyle = style;
    keptStyle.strokeWidth = Hundredth(style.strokeWidth);
    keptStyle.dashes = dashes;
    if (m_pDC != nullptr) DrawShape(*m_pDC, kept, keptStyle);
    if (m_pJob == nullptr) return;
    CQelPrintJobCommand command;
    command.SetShape(kept, keptStyle);
    m_pJob->AddCommand(command);
}

void ChartCanvas::Fill(const ChartBox& box, COLORREF color, double opacity) {
    const std::array<ShapePoint, 4> corners = {
        {{box.left, box.top}, {box.right, box.top}, {box.right, box.bottom}, {box.left, box.bottom}}};
    Shape(corners, {.fill = color, .opacity = opacity});
}

void ChartCanvas::Label(const ShapePoint& start, std::string_view text, const LabelStyle& style) {
    const LabelStyle scaled = Scaled(style);
    if (m_pDC != nullptr) DrawLabel(*m_pDC, Kept(start), text, scaled, m_dotsPerInch);
    if (m_pJob == nullptr) return;
    CQelPrintJobCommand command;
    command.SetLabel(Kept(start), text, scaled);
    m_pJob->AddCommand(command);
}

void ChartCanvas::Straight(const ShapePoint& from, const ShapePoint& to, COLORREF color, double points,
                           std::span<const double> dashes) {
    const double width = std::max(1.0, std::round(Units(points)));
    const bool isOdd = std::fmod(width, 2) != 0;
    const auto crisp = [&](double at) { return isOdd ? std::floor(at) + 0.5 : std::round(at); };
    const bool isVertical = std::fabs(from.x - to.x) < std::fabs(from.y - to.y);
    std::array<ShapePoint, 2> ends = {{{std::round(from.x), crisp(from.y)}, {std::round(to.x), crisp(from.y)}}};
    if (isVertical) ends = {{{crisp(from.x), std::round(from.y)}, {crisp(from.x), std::round(to.y)}}};
    Shape(ends, {.stroke = color, .strokeWidth = width, .dashes = dashes});
}

void ChartCanvas::Clip(const ChartBox& box) {
    const CRect pixels = TouchedPixels(box);
    if (m_pDC != nullptr) {
        m_pDC->SaveDC();
        m_pDC->IntersectClipRect(pixels);
    }
    if (m_pJob == nullptr) return;
    CQelPrintJobCommand command;
    command.SetRgn(pixels.left, pixels.top, pixels.right, pixels.bottom);
    m_pJob->AddCommand(command);
}

void ChartCanvas::EndClip() {
    if (m_pDC != nullptr) m_pDC->RestoreDC(-1);
    if (m_pJob == nullptr) return;
    CQelPrintJobCommand command;
    command.SetRgn(0, 0, 0, 0);
    m_pJob->AddCommand(command);
}

}  // namespace qel
