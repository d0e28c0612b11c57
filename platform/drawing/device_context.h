#pragma once

#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "qellib10/platform/drawing/drawing_object.h"
#include "qellib10/platform/drawing/mapping.h"
#include "qellib10/platform/drawing/surface.h"

namespace qel {

/// Why a CDC takes no other context.
inline constexpr std::string_view kContextInUse = "it has a device context already";

class TextFont;
struct LabelText;
struct TextLine;

/// A selected object: what it draws with, and its handle.
template <class Object> struct Selected {
    HGDIOBJ handle = nullptr;
    std::shared_ptr<const Object> object;
};

/// All that SaveDC keeps.
struct DrawState {
    explicit DrawState(const SIZE& dotsPerInch);

    Selected<PenObject> pen;
    Selected<BrushObject> brush;
    Selected<FontObject> font;
    Selected<BitmapObject> bitmap;
    std::optional<CRect> clip;  // device units
    COLORREF textColor = 0;
    COLORREF backColor = RGB(255, 255, 255);
    int backMode = OPAQUE;
    UINT textAlign = 0;
    Mapping mapping;
    POINT position{0, 0};  // logical units
};

/// State and coordinates over one back end: takes logical units, draws in device units. One thread at a time.
class DeviceContext {
public:
    explicit DeviceContext(std::unique_ptr<Surface> surface);
    ~DeviceContext();
    DeviceContext(const DeviceContext&) = delete;
    DeviceContext& operator=(const DeviceContext&) = delete;

    /// The back end, after everything collected so far has been drawn.
    Surface& Flushed();
    /// Whether it draws on a picture, whose edges are not smoothed.
    bool IsPicture() const { return m_pSurface->Pixels() != nullptr; }
    int DeviceCaps(int index) const { return m_pSurface->DeviceCaps(index); }

    /// For printers: whether pages are laid out for a sheet other than the requested one.
    bool HasOtherSheet() const noexcept { return m_hasOtherSheet; }
    void SetHasOtherSheet() noexcept { m_hasOtherSheet = true; }

    const DrawState& State() const noexcept { return m_state; }
    /// The state, to be changed; the ink is updated before the next primitive.
    DrawState& Change() noexcept {
        m_isInkStale = true;
        return m_state;
    }

    /// @return the handle selected before; null if the object cannot be selected
    HGDIOBJ Select(HGDIOBJ handle);
    int Save();
    bool Restore(int saved);

    void MoveTo(const POINT& to);
    void LineTo(POINT to) {
        if (m_isInkStale) UseInk();
        if (!m_isPenDown) PutPenDown();
        m_state.position = to;
        m_pSurface->LineTo(m_state.mapping.ToDevice(to));
    }
    void LinesTo(std::span<const POINT> points);
    void Rectangle(const CRect& box);
    void Arc(const CRect& box, const POINT& start, const POINT& end);
    void FillRect(const CRect& box, const LOGBRUSH& brush);
    void InvertRect(const CRect& box);
    void FillDevicePixel(const POINT& at, COLORREF color);
    void Shape(std::span<const ShapePoint> corners, const ShapeStyle& style);
    void Label(const ShapePoint& start, const LabelText& text, int quarterTurns, COLORREF color);
    /// @return false when the source has no pixels
    bool Copy(const POINT& to, const SIZE& size, DeviceContext& source, const POINT& from);

    /// A rectangle given by logical corners, in device units, normalised.
    CRect ToDevice(const RECT& box) const noexcept;

    /// Returns like the back end's StartPage.
    int BeginPage();

    // Texts: device_context_text.cpp
    /// The selected font in its size on the device.
    const TextFont& Font();
    void TextOut(const POINT& at, const CString& text);
    /// @return the height of the text in logical units; with DT_CALCRECT nothing is drawn and @p box is set
    int DrawTextBox(const CString& text, CRect& box, UINT format);
    CSize TextExtent(const CString& text);
    TEXTMETRIC TextMetrics();

private:
    void DrawCell(const TextLine& line, const POINT& corner, const CRect* limit);
    void UseInk();
    void PutPenDown();

    std::unique_ptr<Surface> m_pSurface;
    DrawState m_state;
    std::vector<DrawState> m_arySaved;
    std::shared_ptr<const TextFont> m_pFont;  // for m_pFontInUse
    std::shared_ptr<const FontObject> m_pFontInUse;
    int m_nFontHeight = 0;           // of m_pFont, in device units, as requested
    HGDIOBJ m_hOwnBitmap = nullptr;  // if there are pixels: selected until another one is, and again after that one
    bool m_isInkStale = true;
    bool m_hasOtherSheet = false;
    bool m_isPenDown = false;  // whether the back end's polyline ends at the current position
};

/// Contexts by handle. Any thread.
HDC AddDeviceContext(std::shared_ptr<DeviceContext> context);
std::shared_ptr<DeviceContext> FindDeviceContext(HDC handle);
bool RemoveDeviceContext(HDC handle);

}  // namespace qel
