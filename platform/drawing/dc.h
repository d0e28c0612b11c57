#pragma once

#include <map>
#include <memory>

#include "qellib10/platform/drawing/gdi_object.h"

struct DEVMODE;

namespace qel {
class DeviceContext;
}

/// The surface that everything is drawn on: a picture in memory, a printer's page, a file, a widget. A program that
/// draws with one set of calls on the screen and with another one on paper prints reports that differ from what was
/// seen. With a context, one function draws both.
///
/// @code
/// CDC dc;
/// CBitmap picture;
/// if (!dc.CreateCompatibleDC(nullptr) || !picture.CreateBitmap(400, 300, 1, 32, nullptr)) return;
/// CPen axis(PS_SOLID, 2, RGB(0, 0, 0));
/// const CRect all(0, 0, 400, 300);
/// dc.SelectObject(&picture);
/// dc.FillSolidRect(&all, RGB(255, 255, 255));  // a new picture is black
/// CPen* const former = dc.SelectObject(&axis);
/// dc.MoveTo(40, 260);
/// dc.LineTo(380, 260);
/// dc.SelectObject(former);
/// @endcode
///
/// A context takes logical units (device units unless a map mode is set) and draws with the selected objects and
/// colours.
///
/// A new context has a black pen of one unit, a white brush, black text on an opaque white background, the position 0,0
/// and no clip. It has two sides: the output context is drawn on, the attribute context is asked for resolution, map
/// mode and fonts. Both are the same except in a print preview, which shows a printer's page on the screen.
///
/// Operations on a context without a handle return 0 and do nothing. A context belongs to one thread at a time.
class QELLIB10_API CDC {
public:
    CDC();
    virtual ~CDC();
    CDC(const CDC&) = delete;
    CDC& operator=(const CDC&) = delete;

    /// A context in memory like @p dc (null: like the screen, 96 dots per inch), with a picture of 1 x 1 until a bitmap
    /// is selected. @return 0 if this object already has a handle
    BOOL CreateCompatibleDC(CDC* dc);
    /// A context of a printer, like the function of this name; defined next to that, in platform/printing.
    /// @return 0 also if this object already has a handle
    BOOL CreateDC(const char* driver, const char* device, const char* output, const DEVMODE* mode);
    /// Takes a context for output and attributes. For null, qel::LastFailure keeps the reason of the operation that
    /// returned null. @return 0 if this object has one, or for a bad handle
    BOOL Attach(HDC dc);
    HDC Detach();  ///< gives up the output context to the caller
    BOOL DeleteDC();
    HDC GetSafeHdc() const noexcept { return m_hDC; }
    operator HDC() const noexcept { return m_hDC; }
    /// Sets the attribute context; it is not deleted with this object unless it is also the output context.
    virtual void SetAttribDC(HDC dc);
    virtual void ReleaseAttribDC();
    virtual void SetOutputDC(HDC dc);
    virtual void ReleaseOutputDC();
    BOOL IsPrinting() const;  ///< whether the attribute context is a printer's

    int GetDeviceCaps(int index) const;

    /// Saves objects, colours, modes, mapping, position and clip. @return how many states are saved now
    virtual int SaveDC();
    /// Restores the state saved as number @p saved, or the last one for -1; later ones are discarded.
    virtual BOOL RestoreDC(int saved);

    // These return the object selected before. It belongs to its creator; if nobody created it, it is valid until this
    // context is deleted.
    CPen* SelectObject(CPen* pen);
    CBrush* SelectObject(CBrush* brush);
    virtual CFont* SelectObject(CFont* font);
    CBitmap* SelectObject(CBitmap* bitmap);
    int SelectObject(CRgn* region) { return SelectClipRgn(region); }
    virtual CGdiObject* SelectStockObject(int number);
    CPen* GetCurrentPen() const;
    CBrush* GetCurrentBrush() const;
    CFont* GetCurrentFont() const;
    CBitmap* GetCurrentBitmap() const;  ///< null where there are no pixels

    virtual COLORREF SetTextColor(COLORREF color);  ///< the setters return the former value
    virtual COLORREF SetBkColor(COLORREF color);
    virtual int SetBkMode(int mode);
    virtual UINT SetTextAlign(UINT align);
    COLORREF GetTextColor() const;
    COLORREF GetBkColor() const;
    int GetBkMode() const;
    UINT GetTextAlign() const;

    virtual int SetMapMode(int mode);
    int GetMapMode() const;
    virtual CPoint SetViewportOrg(int x, int y);
    CPoint SetViewportOrg(const POINT& origin) { return SetViewportOrg(origin.x, origin.y); }
    virtual CSize SetViewportExt(int cx, int cy);
    virtual CPoint SetWindowOrg(int x, int y);
    virtual CSize SetWindowExt(int cx, int cy);
    CPoint GetViewportOrg() const;
    CSize GetViewportExt() const;
    CPoint GetWindowOrg() const;
    CSize GetWindowExt() const;
    void LPtoDP(POINT* points, int count = 1) const;
    void LPtoDP(RECT* rect) const;  ///< both corners
    void DPtoLP(POINT* points, int count = 1) const;
    void DPtoLP(RECT* rect) const;

    /// Limits drawing to a copy of the region, which is in device units in every map mode; null: no limit.
    /// @return 2, or 1 for an empty region, or 0 on failure
    virtual int SelectClipRgn(CRgn* region);
    /// The clip, or the whole device, in logical units. @return like SelectClipRgn
    virtual int GetClipBox(RECT* box) const;
    /// Limits drawing to the intersection of the clip and the box, which is in logical units. @return like
    /// SelectClipRgn
    virtual int IntersectClipRect(int left, int top, int right, int bottom);
    int IntersectClipRect(const RECT* box) {
        return box != nullptr ? IntersectClipRect(box->left, box->top, box->right, box->bottom) : 0;
    }

    CPoint MoveTo(int x, int y);  ///< returns the former position
    CPoint MoveTo(const POINT& to) { return MoveTo(to.x, to.y); }
    CPoint GetCurrentPosition() const;
    /// Draws a line from the current position, which moves to the line's end; a thin line does not draw its last point.
    BOOL LineTo(int x, int y);
    BOOL LineTo(const POINT& to) { return LineTo(to.x, to.y); }
    BOOL Polyline(const POINT* points, int count);
    BOOL PolylineTo(const POINT* points, int count);  ///< like LineTo for each point
    /// Draws the outline with the pen and fills with the brush; the right and bottom edges are not included.
    BOOL Rectangle(int left, int top, int right, int bottom);
    BOOL Rectangle(const RECT& box) { return Rectangle(box.left, box.top, box.right, box.bottom); }
    BOOL Rectangle(const RECT* box) { return box != nullptr && Rectangle(*box); }
    /// Part of the ellipse in the box, counter-clockwise from the ray through the start point to the ray through the
    /// end point; the whole ellipse if both rays are the same. Not filled.
    BOOL Arc(int left, int top, int right, int bottom, int startX, int startY, int endX, int endY);
    BOOL Arc(const RECT& box, const POINT& start, const POINT& end) {
        return Arc(box.left, box.top, box.right, box.bottom, start.x, start.y, end.x, end.y);
    }
    BOOL Arc(const RECT* box, const POINT& start, const POINT& end) { return box != nullptr && Arc(*box, start, end); }
    void FillRect(const RECT* rect, CBrush* brush);
    void FillSolidRect(const RECT* rect, COLORREF color);  ///< sets the background colour to it
    void InvertRect(const RECT* rect);                     ///< inverting twice restores the picture
    /// Copies a part of the picture of @p source. @return 0 also if there are no pixels, and unless @p operation is
    /// SRCCOPY
    BOOL BitBlt(int x, int y, int width, int height, CDC* source, int sourceX, int sourceY, DWORD operation = SRCCOPY);
    COLORREF GetPixel(int x, int y) const;  ///< 0xFFFFFFFF outside, or where there are no pixels
    COLORREF SetPixel(int x, int y, COLORREF color);
    BOOL SetPixelV(int x, int y, COLORREF color);

    // Draws text of the code page in the selected font and the text colour; an opaque background fills the cell of each
    // line.
    virtual BOOL TextOut(int x, int y, const char* text, int length);
    BOOL TextOut(int x, int y, const CString& text) { return TextOut(x, y, text, text.GetLength()); }
    virtual BOOL ExtTextOut(int x, int y, UINT options, const RECT* rect, const char* text, UINT length,
                            const int* spacing);
    BOOL ExtTextOut(int x, int y, UINT options, const RECT* rect, const CString& text, const int* spacing) {
        return ExtTextOut(x, y, options, rect, text, static_cast<UINT>(text.GetLength()), spacing);
    }
    /// Draws within @p rect by the DT_ flags. @return the height of the text, 0 on failure
    virtual int DrawText(const char* text, int length, RECT* rect, UINT format);
    int DrawText(const CString& text, RECT* rect, UINT format) {
        return DrawText(text, text.GetLength(), rect, format);
    }
    /// Width and line height on the attribute context.
    CSize GetTextExtent(const char* text, int length) const;
    CSize GetTextExtent(const CString& text) const { return GetTextExtent(text, text.GetLength()); }
    CSize GetOutputTextExtent(const CString& text) const;
    BOOL GetTextMetrics(TEXTMETRIC* metrics) const;

    // Documents of a printer or a file; results above 0 mean success.
    virtual int StartDoc(const char* name);
    /// The same; fails for null and if an output is named.
    int StartDoc(const DOCINFO* document) {
        return document != nullptr && document->lpszOutput == nullptr ? StartDoc(document->lpszDocName) : -1;
    }
    virtual int StartPage();
    virtual int EndPage();
    virtual int EndDoc();
    virtual int AbortDoc();

    HDC m_hDC = nullptr;        ///< output; read only
    HDC m_hAttribDC = nullptr;  ///< attributes; read only

protected:
    qel::DeviceContext* Output() const noexcept { return m_pOutput.get(); }
    qel::DeviceContext* Attributes() const noexcept { return m_pAttributes.get(); }

private:
    template <class Object> Object* Select(Object* object);
    template <class Object> Object* ObjectOf(HGDIOBJ handle) const;

    std::shared_ptr<qel::DeviceContext> m_pOutput;
    std::shared_ptr<qel::DeviceContext> m_pAttributes;
    mutable std::map<HGDIOBJ, std::unique_ptr<CGdiObject>> m_mapObject;  // for selected objects that have no owner
};

// The same with handles, for code that keeps handles.
QELLIB10_API HDC CreateCompatibleDC(HDC dc);  ///< null when @p dc is neither null nor a context
QELLIB10_API BOOL DeleteDC(HDC dc);
/// @return the object selected before; null on failure
QELLIB10_API HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);
QELLIB10_API int GetDeviceCaps(HDC dc, int index);
QELLIB10_API BOOL GetViewportOrgEx(HDC dc, POINT* origin);  ///< 0 on failure
QELLIB10_API COLORREF SetBkColor(HDC dc, COLORREF color);   ///< 0xFFFFFFFF on failure
QELLIB10_API BOOL ExtTextOut(HDC dc, int x, int y, UINT options, const RECT* rect, const char* text, UINT length,
                             const int* spacing);
