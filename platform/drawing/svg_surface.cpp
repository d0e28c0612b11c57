#include "qellib10/platform/drawing/svg_surface.h"

#include <glib.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <span>
#include <utility>

#include "qellib10/platform/drawing/cairo_shape.h"
#include "qellib10/platform/drawing/cairo_shapes.h"
#include "qellib10/platform/drawing/dash_pattern.h"
#include "qellib10/platform/drawing/hatch.h"
#include "qellib10/platform/drawing/png_encoder.h"
#include "qellib10/platform/drawing/screen.h"
#include "qellib10/platform/drawing/text_font.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

__attribute__((format(printf, 1, 2))) std::string Formatted(const char* format, ...) {
    CString text;
    va_list arguments;
    va_start(arguments, format);
    text.FormatV(format, arguments);
    va_end(arguments);
    return std::string(text.View());
}

std::string ColorOf(COLORREF color) {
    return Formatted("#%02x%02x%02x", GetRValue(color), GetGValue(color), GetBValue(color));
}

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;  // XML has no other control characters
        }
    }
    return escaped;
}

std::string BoxAttributes(const CRect& box) {
    return Formatted("x=\"%d\" y=\"%d\" width=\"%ld\" height=\"%ld\"", box.left, box.top,
                     LONGLONG{box.right} - box.left, LONGLONG{box.bottom} - box.top);
}

// In hundredths of a unit; a start alone is no path.
std::string PathOf(std::span<const ShapePoint> corners, bool isClosed) {
    std::string path;
    bool isDown = false;
    for (const ShapePoint& corner : corners) {
        if (!IsPlaced(corner)) {
            isDown = false;
            continue;
        }
        path += Formatted("%c%.2f %.2f", isDown ? 'L' : 'M', NearCoordinate(corner.x), NearCoordinate(corner.y));
        isDown = true;
    }
    if (isClosed && isDown) path += 'Z';
    return path;
}

}  // namespace

SvgSurface::SvgSurface(const CSize& size, int dotsPerInch, std::unique_ptr<DocumentSink> sink)
    : m_size(size), m_nDotsPerInch(dotsPerInch), m_pSink(std::move(sink)) {}

SvgSurface::~SvgSurface() = default;

int SvgSurface::DeviceCaps(int index) const { return PictureCaps(index, m_size, {m_nDotsPerInch, m_nDotsPerInch}, 24); }

// Adds an element to the page, clipped to the ink's clip and the box.
void SvgSurface::Element(std::string_view nameAndAttributes, std::string_view content, const CRect* box) {
    if (m_stage != Stage::kPage) return;
    const std::string_view name = nameAndAttributes.substr(0, nameAndAttributes.find(' '));
    m_body.append("<").append(nameAndAttributes).append(ClipReference(box));
    if (content.empty()) {
        m_body += "/>\n";
    } else {
        m_body.append(">").append(content).append("</").append(name).append(">\n");
    }
}

// A reference to a definition, which is written only once.
std::string SvgSurface::Reference(const std::string& element, const std::string& rest) {
    const auto [known, isNew] = m_mapDefinition.try_emplace(element + rest, m_mapDefinition.size() + 1);
    const std::string id = "d" + std::to_string(known->second);
    if (isNew) m_definitions += "<" + element + " id=\"" + id + "\"" + rest + "</" + element + ">\n";
    return "url(#" + id + ")";
}

std::string SvgSurface::ClipReference(const CRect* box) {
    if (!m_ink.clip && box == nullptr) return {};
    CRect clip = m_ink.clip ? *m_ink.clip : *box;
    if (box != nullptr && !clip.IntersectRect(clip, *box)) clip = CRect();
    return " clip-path=\"" + Reference("clipPath", "><rect " + BoxAttributes(clip) + "/>") + "\"";
}

std::string SvgSurface::HatchReference(const LOGBRUSH& brush) {
    const double scale = ScreenPixelLength(m_nDotsPerInch);
    std::string pattern =
        Formatted(" width=\"%g\" height=\"%g\" patternUnits=\"userSpaceOnUse\"><g transform=\"scale(%g)\">",
                  kHatchCell * scale, kHatchCell * scale, scale);
    if (m_ink.isOpaque) {
        pattern += Formatted("<rect width=\"%d\" height=\"%d\" fill=\"%s\"/>", kHatchCell, kHatchCell,
                             ColorOf(m_ink.backColor).c_str());
    }
    for (int y = 0; y < kHatchCell; ++y) {
        for (int x = 0; x < kHatchCell; ++x) {
            if (!IsHatchPixel(brush.lbHatch, x, y)) continue;
            pattern += Formatted("<rect x=\"%d\" y=\"%d\" width=\"1\" height=\"1\" fill=\"%s\"/>", x, y,
                                 ColorOf(brush.lbColor).c_str());
        }
    }
    return Reference("pattern", pattern + "</g>");
}

std::string SvgSurface::StrokeAttributes(COLORREF color) const {
    std::string attributes =
        Formatted(" fill=\"none\" stroke=\"%s\" stroke-width=\"%d\"", ColorOf(color).c_str(), m_ink.penWidth);
    if (m_ink.penWidth > 1) attributes += " stroke-linecap=\"round\" stroke-linejoin=\"round\"";
    return attributes;
}

// Adds a shape that is drawn with the pen; for dashes the background is drawn first and shows in their gaps.
void SvgSurface::Stroke(const std::string& name, const std::string& geometry) {
    std::string pen = StrokeAttributes(m_ink.penColor);
    if (m_ink.IsDashed()) {
        if (m_ink.isOpaque) Element(name + StrokeAttributes(m_ink.backColor) + geometry);
        pen += " stroke-dasharray=\"";
        for (const int length : DashLengths(m_ink.penStyle)) {
            pen += Formatted("%g ", length * ScreenPixelLength(m_nDotsPerInch));
        }
        pen.back() = '"';
    }
    Element(name + pen + geometry);
}

void SvgSurface::SetInk(const Ink& ink) {
    Flush();
    m_ink = ink;
}

void SvgSurface::MoveTo(const POINT& to) {
    Flush();
    m_at = to;
}

void SvgSurface::LineTo(const POINT& to) {
    const auto add = [this](const CPoint& point) {
        if (m_ink.IsThinSolid()) {
            m_reducer.Add(point, m_aryPoint);
        } else {
            m_aryPoint.push_back(point);
        }
    };
    if (m_aryPoint.empty()) add(m_at);
    add(to);
    m_at = to;
}

void SvgSurface::Flush() {
    m_reducer.End(m_aryPoint);
    const std::vector<CPoint> points = std::exchange(m_aryPoint, {});
    if (points.size() < 2 || m_ink.penStyle == PS_NULL) return;
    std::string line = " points=\"";
    for (const CPoint& point : points) line += Formatted("%.1f,%.1f ", point.x + 0.5, point.y + 0.5);
    line.back() = '"';
    Stroke("polyline", line);
}

void SvgSurface::Rectangle(const CRect& box) {
    Flush();
    if (m_ink.penStyle == PS_NULL) {
        FillRect({box.left, box.top, box.right - 1, box.bottom - 1}, m_ink.brush);
        return;
    }
    FillRect(box, m_ink.brush);
    const double inset = m_ink.penStyle == PS_INSIDEFRAME ? m_ink.penWidth / 2.0 : 0.5;
    Stroke("rect", Formatted(" x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\"", box.left + inset, box.top + inset,
                             std::max(0.0, Near(box.right) - Near(box.left) - 2 * inset),
                             std::max(0.0, Near(box.bottom) - Near(box.top) - 2 * inset)));
}

void SvgSurface::Arc(const CRect& box, const POINT& start, const POINT& end) {
    Flush();
    if (m_ink.penStyle == PS_NULL) return;
    const double radiusX = (Near(box.right) - Near(box.left) - 1) / 2,
                 radiusY = (Near(box.bottom) - Near(box.top) - 1) / 2;
    const double middleX = Near(box.left) + radiusX + 0.5, middleY = Near(box.top) + radiusY + 0.5;
    if (radiusX <= 0 || radiusY <= 0) {
        Stroke("line", Formatted(" x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\"", middleX - radiusX,
                                 middleY - radiusY, middleX + radiusX, middleY + radiusY));
        return;
    }
    if (IsWholeEllipse(box, start, end)) {
        Stroke("ellipse",
               Formatted(" cx=\"%.1f\" cy=\"%.1f\" rx=\"%.1f\" ry=\"%.1f\"", middleX, middleY, radiusX, radiusY));
        return;
    }
    // Counter-clockwise from start to end.
    const double from = EllipseAngle(box, start), to = EllipseAngle(box, end);
    const double turned = from > to ? from - to : from - to + 2 * M_PI;
    Stroke("path", Formatted(" d=\"M%.2f %.2fA%.1f %.1f 0 %d 0 %.2f %.2f\"", middleX + radiusX * std::cos(from),
                             middleY + radiusY * std::sin(from), radiusX, radiusY, turned > M_PI,
                             middleX + radiusX * std::cos(to), middleY + radiusY * std::sin(to)));
}

void SvgSurface::FillRect(const CRect& box, const LOGBRUSH& brush) {
    Flush();
    if (brush.lbStyle == BS_NULL || box.IsRectEmpty()) return;
    const std::string fill = brush.lbStyle == BS_HATCHED ? HatchReference(brush) : ColorOf(brush.lbColor);
    Element("rect " + BoxAttributes(box) + " fill=\"" + fill + "\"");
}

void SvgSurface::InvertRect(const CRect& box) {
    Flush();
    Element("rect " + BoxAttributes(box) + " fill=\"#ffffff\" style=\"mix-blend-mode:difference\"");
}

void SvgSurface::Text(const TextFont& font, const TextLine& line, const POINT& baseline, COLORREF color,
                      const CRect* box) {
    Flush();
    TextElement(font, line, Formatted("x=\"%d\" y=\"%d\"", baseline.x, baseline.y), 1, color, box);
}

void SvgSurface::TextElement(const TextFont& font, const TextLine& line, const std::string& place, double scale,
                             COLORREF color, const CRect* box) {
    if (line.text.find_first_not_of(' ') == std::string::npos) return;
    std::string text = "text " + place;
    text += Formatted(" font-size=\"%g\" textLength=\"%.10g\" font-family=\"%s\" fill=\"%s\"", font.EmHeight() * scale,
                      line.width * scale, Escaped(font.Families()).c_str(), ColorOf(color).c_str());
    if (font.IsBold()) text += " font-weight=\"bold\"";
    if (font.IsItalic()) text += " font-style=\"italic\"";
    if (font.IsUnderlined() || font.IsStruckOut()) {
        text += std::string(" text-decoration=\"") + (font.IsUnderlined() ? "underline " : "") +
                (font.IsStruckOut() ? "line-through" : "") + "\"";
    }
    Element(text + " xml:space=\"preserve\"", Escaped(line.text), box);
}

void SvgSurface::Shape(std::span<const ShapePoint> corners, const ShapeStyle& style) {
    Flush();
    const auto element = [&](const std::string& attributes, bool isClosed) {
        const std::string path = PathOf(corners, isClosed);
        if (path.empty()) return;
        const double opacity = UsableOpacity(style.opacity);
        Element("path d=\"" + path + "\"" + attributes + (opacity < 1 ? Formatted(" opacity=\"%g\"", opacity) : "") +
                (style.isSmooth ? "" : " shape-rendering=\"crispEdges\""));
    };
    if (style.fill) element(" fill=\"" + ColorOf(*style.fill) + "\" stroke=\"none\"", true);
    if (!style.stroke) return;
    std::string pen = Formatted(" fill=\"none\" stroke=\"%s\" stroke-width=\"%g\" stroke-linejoin=\"round\"",
                                ColorOf(*style.stroke).c_str(), UsableWidth(style.strokeWidth));
    if (style.isRound) pen += " stroke-linecap=\"round\"";
    if (const std::span<const double> dashes = UsableDashes(style); !dashes.empty()) {
        pen += " stroke-dasharray=\"";
        for (const double length : dashes) pen += Formatted("%g ", length);
        pen.back() = '"';
    }
    element(pen, style.isClosed);
}

void SvgSurface::Label(const TextFont& font, const TextLine& line, const ShapePoint& start, double scale,
                       int quarterTurns, COLORREF color) {
    Flush();
    std::string place = Formatted("x=\"%.2f\" y=\"%.2f\"", start.x, start.y);
    if (quarterTurns != 0)
        place += Formatted(" transform=\"rotate(%d %.2f %.2f)\"", -90 * quarterTurns, start.x, start.y);
    TextElement(font, line, place, scale, color, nullptr);
}

void SvgSurface::CopyPixels(const PixelBuffer& pixels, const CRect& source, const POINT& to) {
    Flush();
    const auto part = PixelBuffer::Create(source.Width(), source.Height());
    if (!part) return;
    for (int y = 0; y < source.Height(); ++y) {
        const std::uint32_t* const row = pixels.Row(source.top + y) + source.left;
        std::copy(row, row + source.Width(), part->Row(y));
    }
    const std::vector<std::byte> png = EncodePng(*part, m_nDotsPerInch);
    const std::unique_ptr<gchar, decltype(&g_free)> text(
        g_base64_encode(reinterpret_cast<const guchar*>(png.data()), png.size()), &g_free);
    Element("image " + BoxAttributes(CRect(to, source.Size())) + " href=\"data:image/png;base64," + text.get() + "\"");
}

int SvgSurface::StartDoc(const CString& name) {
    if (m_stage != Stage::kNone || !m_pSink->Begin(name)) return -1;
    m_szName = name;
    m_definitions.clear();
    m_body.clear();
    m_mapDefinition.clear();
    m_stage = Stage::kDocument;
    return 1;
}

int SvgSurface::StartPage() {
    if (m_stage != Stage::kDocument) return -1;
    m_stage = Stage::kPage;
    return 1;
}

int SvgSurface::EndPage() {
    if (m_stage != Stage::kPage) return -1;
    Flush();
    m_stage = Stage::kPageDone;
    return 1;
}

int SvgSurface::EndDoc() {
    const Stage stage = std::exchange(m_stage, Stage::kNone);
    if (stage == Stage::kDocument) return 1;  // without a page there is nothing to write
    if (stage != Stage::kPageDone) return -1;
    const std::string whole = Whole();
    return m_pSink->Take(m_szName, std::as_bytes(std::span(whole))) ? 1 : -1;
}

int SvgSurface::AbortDoc() { return std::exchange(m_stage, Stage::kNone) != Stage::kNone ? 1 : -1; }

std::string SvgSurface::Whole() const {
    return Formatted(
               "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%gin\" height=\"%gin\" viewBox=\"0 0 %d %d\">\n",
               double(m_size.cx) / m_nDotsPerInch, double(m_size.cy) / m_nDotsPerInch, m_size.cx, m_size.cy) +
           "<title>" + Escaped(ToUtf8(m_szName.View())) + "</title>\n<defs>\n" + m_definitions + "</defs>\n" + m_body +
           "</svg>\n";
}

}  // namespace qel
