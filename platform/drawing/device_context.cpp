#include "qellib10/platform/drawing/device_context.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <new>
#include <utility>

#include "qellib10/platform/drawing/handle_table.h"
#include "qellib10/platform/drawing/label_text.h"
#include "qellib10/platform/wrapped.h"

namespace qel {
namespace {

SIZE DotsPerInch(const Surface& surface) {
    return {std::max(1, surface.DeviceCaps(LOGPIXELSX)), std::max(1, surface.DeviceCaps(LOGPIXELSY))};
}

template <class Object> Selected<Object> Stock(int number) {
    const HGDIOBJ handle = StockObject(number);
    return {handle, FindObject<Object>(handle)};
}

HandleTable<DeviceContext>& Contexts() {
    static HandleTable<DeviceContext>& table = *new HandleTable<DeviceContext>;
    return table;
}

int DeviceWidth(const PenObject& pen, const Mapping& mapping) {
    const int width =
        pen.width == std::numeric_limits<int>::min() ? std::numeric_limits<int>::max() : std::abs(pen.width);
    return std::max(1, mapping.WidthToDevice(width));
}

}  // namespace

DrawState::DrawState(const SIZE& dotsPerInch)
    : pen(Stock<PenObject>(BLACK_PEN)),
      brush(Stock<BrushObject>(WHITE_BRUSH)),
      font(Stock<FontObject>(SYSTEM_FONT)),
      mapping(dotsPerInch) {}

DeviceContext::DeviceContext(std::unique_ptr<Surface> surface)
    : m_pSurface(std::move(surface)), m_state(DotsPerInch(*m_pSurface)) {
    if (m_pSurface->Pixels() == nullptr) return;
    m_hOwnBitmap = AddDrawingObject(BitmapObject{PixelBuffer::Create(1, 1)});
    Select(m_hOwnBitmap);
}

DeviceContext::~DeviceContext() {
    try {
        m_pSurface->Flush();
    } catch (const std::bad_alloc&) {  // then the last lines of a document are missing; pictures need no memory
    }
    RemoveDrawingObject(m_hOwnBitmap);
}

Surface& DeviceContext::Flushed() {
    m_pSurface->Flush();
    return *m_pSurface;
}

HGDIOBJ DeviceContext::Select(HGDIOBJ handle) {
    const auto exchange = [&]<class Object>(Selected<Object>& selected) -> HGDIOBJ {
        auto object = FindObject<Object>(handle);
        if (!object) return nullptr;
        m_isInkStale = true;
        selected.object = std::move(object);
        return std::exchange(selected.handle, handle);
    };
    const auto found = FindDrawingObject(handle);
    if (!found) return nullptr;
    if (std::holds_alternative<PenObject>(*found)) return exchange(m_state.pen);
    if (std::holds_alternative<BrushObject>(*found)) return exchange(m_state.brush);
    if (std::holds_alternative<FontObject>(*found)) return exchange(m_state.font);
    if (const auto* const bitmap = std::get_if<BitmapObject>(found.get())) {
        m_pSurface->Flush();
        if (!m_pSurface->SelectPixels(bitmap->pixels)) return nullptr;
        return exchange(m_state.bitmap);
    }
    return nullptr;  // a region is not selected as an object but becomes the clip
}

int DeviceContext::Save() {
    m_arySaved.push_back(m_state);
    return static_cast<int>(m_arySaved.size());
}

bool DeviceContext::Restore(int saved) {
    const auto count = static_cast<int>(m_arySaved.size());
    const int kept = saved < 0 ? count + saved : saved - 1;  // number of states below the one to restore
    if (saved == 0 || kept < 0 || kept >= count) return false;
    m_pSurface->Flush();
    m_state = std::move(m_arySaved[static_cast<std::size_t>(kept)]);
    m_arySaved.resize(static_cast<std::size_t>(kept), m_state);
    if (m_state.bitmap.object) m_pSurface->SelectPixels(m_state.bitmap.object->pixels);
    m_isInkStale = true;
    return true;
}

void DeviceContext::MoveTo(const POINT& to) {
    m_state.position = to;
    m_isPenDown = false;
}

void DeviceContext::LinesTo(std::span<const POINT> points) {
    if (points.empty()) return;
    if (m_isInkStale) UseInk();
    if (!m_isPenDown) PutPenDown();
    m_state.position = points.back();
    if (m_state.mapping.IsSame()) return m_pSurface->LinesTo(points);
    std::array<POINT, 256> device;
    while (!points.empty()) {
        const std::size_t count = std::min(points.size(), device.size());
        std::ranges::transform(points.first(count), device.begin(),
                               [this](POINT point) { return m_state.mapping.ToDevice(point); });
        m_pSurface->LinesTo({device.data(), count});
        points = points.subspan(count);
    }
}

void DeviceContext::Rectangle(const CRect& box) {
    UseInk();
    const CRect device = ToDevice(box);
    if (!device.IsRectEmpty()) m_pSurface->Rectangle(device);
}

void DeviceContext::Arc(const CRect& box, const POINT& start, const POINT& end) {
    UseInk();
    const CRect device = ToDevice(box);
    if (!device.IsRectEmpty()) m_pSurface->Arc(device, m_state.mapping.ToDevice(start), m_state.mapping.ToDevice(end));
}

void DeviceContext::FillRect(const CRect& box, const LOGBRUSH& brush) {
    UseInk();
    const CRect device = ToDevice(box);
    if (!device.IsRectEmpty() && brush.lbStyle != BS_NULL) m_pSurface->FillRect(device, brush);
}

void DeviceContext::InvertRect(const CRect& box) {
    UseInk();
    const CRect device = ToDevice(box);
    if (!device.IsRectEmpty()) m_pSurface->InvertRect(device);
}

void DeviceContext::FillDevicePixel(const POINT& at, COLORREF color) {
    UseInk();
    CRect pixel(at, SIZE{1, 1});
    if (!pixel.IsRectEmpty()) m_pSurface->FillRect(pixel, {BS_SOLID, color, 0});
}

void DeviceContext::Shape(std::span<const ShapePoint> corners, const ShapeStyle& style) {
    UseInk();
    if (m_state.mapping.IsSame()) return m_pSurface->Shape(corners, style);
    std::vector<ShapePoint> device(corners.size());
    std::ranges::transform(corners, device.begin(),
                           [this](const ShapePoint& at) { return m_state.mapping.ToExactDevice(at); });
    const double scale = m_state.mapping.UnitLength();
    std::vector<double> dashes(style.dashes.begin(), style.dashes.end());
    for (double& length : dashes) length *= scale;
    ShapeStyle scaled = style;
    scaled.strokeWidth *= scale;
    scaled.dashes = dashes;
    m_pSurface->Shape(device, scaled);
}

void DeviceContext::Label(const ShapePoint& start, const LabelText& text, int quarterTurns, COLORREF color) {
    UseInk();
    const Mapping& mapping = m_state.mapping;
    m_pSurface->Label(*text.font, text.line, mapping.ToExactDevice(start), text.scale * mapping.UnitLength(),
                      quarterTurns & 3, color);
}

int DeviceContext::BeginPage() {
    m_isInkStale = true;  // a new page has no ink yet
    return Flushed().StartPage();
}

bool DeviceContext::Copy(const POINT& to, const SIZE& size, DeviceContext& source, const POINT& from) {
    const PixelBuffer* const pixels = source.Flushed().Pixels();
    if (pixels == nullptr) return false;
    UseInk();
    const POINT corner = m_state.mapping.ToDevice(to);
    const CRect wanted = source.ToDevice(CRect(from, size));
    CRect there;
    if (!there.IntersectRect(wanted, CRect(0, 0, pixels->Width(), pixels->Height()))) return true;
    // The part outside the source leaves the target unchanged.
    CPoint target = corner;
    target.Offset(WrappedDifference(there.left, wanted.left), WrappedDifference(there.top, wanted.top));
    m_pSurface->CopyPixels(*pixels, there, target);
    return true;
}

CRect DeviceContext::ToDevice(const RECT& box) const noexcept {
    const POINT topLeft = m_state.mapping.ToDevice({box.left, box.top});
    const POINT bottomRight = m_state.mapping.ToDevice({box.right, box.bottom});
    CRect device(topLeft.x, topLeft.y, bottomRight.x, bottomRight.y);
    device.NormalizeRect();
    return device;
}

void DeviceContext::UseInk() {
    if (!m_isInkStale) return;
    m_isInkStale = false;
    const PenObject& pen = *m_state.pen.object;
    Ink ink;
    ink.penStyle = pen.style >= PS_SOLID && pen.style <= PS_INSIDEFRAME ? pen.style : int{PS_SOLID};
    ink.penWidth = DeviceWidth(pen, m_state.mapping);
    ink.penColor = pen.color;
    ink.brush = m_state.brush.object->description;
    ink.backColor = m_state.backColor;
    ink.isOpaque = m_state.backMode == OPAQUE;
    ink.clip = m_state.clip;
    m_pSurface->SetInk(ink);
    m_isPenDown = false;
}

void DeviceContext::PutPenDown() {
    m_pSurface->MoveTo(m_state.mapping.ToDevice(m_state.position));
    m_isPenDown = true;
}

HDC AddDeviceContext(std::shared_ptr<DeviceContext> context) {
    return static_cast<HDC>(Contexts().Add(std::move(context)));
}

std::shared_ptr<DeviceContext> FindDeviceContext(HDC handle) { return Contexts().Find(handle); }

bool RemoveDeviceContext(HDC handle) { return Contexts().Remove(handle) != nullptr; }

}  // namespace qel
