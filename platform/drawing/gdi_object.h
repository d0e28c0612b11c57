#pragma once

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

class CDC;

/// Owns a drawing object by its handle and deletes it. If it is deleted while a context has it selected, that context
/// can still draw with it. Any thread may use objects, one at a time.
class QELLIB10_API CGdiObject {
public:
    CGdiObject() noexcept = default;
    virtual ~CGdiObject();
    CGdiObject(const CGdiObject&) = delete;
    CGdiObject& operator=(const CGdiObject&) = delete;

    HGDIOBJ GetSafeHandle() const noexcept { return m_hObject; }
    /// Takes over a handle; this object must have none. For null, qel::LastFailure keeps the reason of the operation
    /// that returned null. @return 0 if it has one, or for null
    BOOL Attach(HGDIOBJ object);
    /// Returns the handle and gives up its ownership.
    HGDIOBJ Detach();
    /// @return 0 if there is nothing to delete
    BOOL DeleteObject();
    /// Takes the stock object @p number (WHITE_BRUSH and so on); deleting does not affect it.
    BOOL CreateStockObject(int number);
    /// The record of this object, like the function of this name.
    int GetObject(int size, void* record) const;

    HGDIOBJ m_hObject = nullptr;
};

/// Draws lines and outlines.
class QELLIB10_API CPen : public CGdiObject {
public:
    CPen() noexcept = default;
    /// @param width logical units; 0: one device unit; negative: its absolute value
    CPen(int style, int width, COLORREF color) { CreatePen(style, width, color); }
    /// @return 0 if this object already has a pen
    BOOL CreatePen(int style, int width, COLORREF color);
    BOOL CreatePenIndirect(const LOGPEN* pen);
    /// @return 0 without a pen
    BOOL GetLogPen(LOGPEN* pen) const;
    operator HPEN() const noexcept { return static_cast<HPEN>(m_hObject); }
};

/// Fills areas.
class QELLIB10_API CBrush : public CGdiObject {
public:
    CBrush() noexcept = default;
    explicit CBrush(COLORREF color) { CreateSolidBrush(color); }
    CBrush(int hatch, COLORREF color) { CreateHatchBrush(hatch, color); }
    BOOL CreateSolidBrush(COLORREF color);
    BOOL CreateHatchBrush(int hatch, COLORREF color);
    BOOL CreateBrushIndirect(const LOGBRUSH* brush);
    BOOL GetLogBrush(LOGBRUSH* brush) const;
    operator HBRUSH() const noexcept { return static_cast<HBRUSH>(m_hObject); }
};

/// What texts are written in. An unknown or empty face is a default one, never a failure. CreatePointFont and
/// CreatePointFontIndirect are in point_font.cpp.
class QELLIB10_API CFont : public CGdiObject {
public:
    BOOL CreateFontIndirect(const LOGFONT* font);
    /// The same by the members of LOGFONT; the face is cut to 31 bytes.
    BOOL CreateFont(int height, int width, int escapement, int orientation, int weight, BYTE italic, BYTE underline,
                    BYTE strikeOut, BYTE charSet, BYTE outPrecision, BYTE clipPrecision, BYTE quality,
                    BYTE pitchAndFamily, const char* face);
    /// A font of @p tenths tenths of a point on @p dc (null: at 96 dots per inch), scaled by the attribute context's
    /// vertical resolution; 0 is the default size. The face is cut to 31 bytes.
    BOOL CreatePointFont(int tenths, const char* face, CDC* dc = nullptr);
    /// The same from a full description, whose height is in tenths of a point.
    BOOL CreatePointFontIndirect(const LOGFONT* font, CDC* dc = nullptr);
    BOOL GetLogFont(LOGFONT* font) const;
    operator HFONT() const noexcept { return static_cast<HFONT>(m_hObject); }
};

/// An area that drawing is limited to.
class QELLIB10_API CRgn : public CGdiObject {
public:
    /// Covers left to right - 1 and top to bottom - 1; reversed edges are swapped, an empty one hides everything.
    BOOL CreateRectRgn(int left, int top, int right, int bottom);
    BOOL CreateRectRgnIndirect(const RECT* rect);
    /// @return 2, or 1 if it is empty, or 0 without a region
    int GetRgnBox(RECT* box) const;
    BOOL PtInRegion(const POINT& point) const;
    operator HRGN() const noexcept { return static_cast<HRGN>(m_hObject); }
};

/// A picture in memory, black at first. Whatever depth is requested, it holds 24-bit colours in 32-bit words.
class QELLIB10_API CBitmap : public CGdiObject {
public:
    /// @param bits 32-bit words 0x00RRGGBB, row by row; null: black. Only used with one plane of 32 bits.
    /// @return 0 for a side below 1 or above 32767, for an invalid depth, and if memory runs out
    BOOL CreateBitmap(int width, int height, UINT planes, UINT bitsPixel, const void* bits);
    BOOL CreateCompatibleBitmap(CDC* dc, int width, int height);
    BOOL GetBitmap(BITMAP* description) const;
    /// Copies at most @p size bytes of the pixels' words to @p bits, row by row. @return the bytes copied
    DWORD GetBitmapBits(DWORD size, void* bits) const;
    /// Copies such words into the picture.
    DWORD SetBitmapBits(DWORD size, const void* bits);
    operator HBITMAP() const noexcept { return static_cast<HBITMAP>(m_hObject); }
};

/// The same with handles, which their creator deletes; null or 0 on failure.
QELLIB10_API HBITMAP CreateBitmap(int width, int height, UINT planes, UINT bitsPixel, const void* bits);
/// The record of a pen, brush, font or bitmap (LOGPEN, LOGBRUSH, LOGFONT, BITMAP). @return its size, or 0 if @p size is
/// smaller or the handle is invalid
QELLIB10_API int GetObject(HGDIOBJ object, int size, void* record);
QELLIB10_API BOOL DeleteObject(HGDIOBJ object);
QELLIB10_API HGDIOBJ GetStockObject(int number);
