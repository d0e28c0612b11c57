#pragma once

#include <memory>
#include <span>

#include "qellib10/platform/drawing/ink.h"
#include "qellib10/platform/text/string.h"

namespace qel {

class PixelBuffer;
class TextFont;
struct PdfInfo;
struct TextLine;

/// What a device context draws on: a back end. All coordinates are device units; boxes come normalised, their right
/// and bottom edge not belonging to them. A back end may collect lines; Flush draws what it holds back.
class Surface {
public:
    virtual ~Surface() = default;

    /// What GetDeviceCaps answers; 0 for an index that is not known.
    virtual int DeviceCaps(int index) const = 0;

    /// Ink of all primitives from now on.
    virtual void SetInk(const Ink& ink) = 0;

    /// Begins another polyline; the pattern of a dashed pen starts again.
    virtual void MoveTo(const POINT& to) = 0;
    /// The polyline goes on from where it ended; its last point is left out.
    virtual void LineTo(const POINT& to) = 0;
    /// From one to the next; as good as LineTo for each.
    virtual void LinesTo(std::span<const POINT> points) {
        for (const POINT& to : points) LineTo(to);
    }
    /// Outline by the pen, inside by the brush.
    virtual void Rectangle(const CRect& box) = 0;
    /// The ellipse inscribed in the box, without a fill; from the ray centre-start counter-clockwise to the ray
    /// centre-end, the whole of it when both have the same direction.
    virtual void Arc(const CRect& box, const POINT& start, const POINT& end) = 0;
    virtual void FillRect(const CRect& box, const LOGBRUSH& brush) = 0;
    virtual void InvertRect(const CRect& box) = 0;
    /// One line of text, its baseline beginning at @p baseline; ink outside @p box (if given) is cut.
    virtual void Text(const TextFont& font, const TextLine& line, const POINT& baseline, COLORREF color,
                      const CRect* box) = 0;
    /// Copies pixels: @p source of @p pixels comes to lie at @p to.
    virtual void CopyPixels(const PixelBuffer& pixels, const CRect& source, const POINT& to) = 0;

    /// Draws on another picture from now on. @return false where that is fixed
    virtual bool SelectPixels(std::shared_ptr<PixelBuffer>) { return false; }
    /// Before anything else looks at what was drawn.
    virtual void Flush() {}
    /// The picture itself, or null where there is none to read.
    virtual PixelBuffer* Pixels() { return nullptr; }

    // Documents. A back end that is none fails; each answer is above 0 on success.
    virtual int StartDoc(const CString&) { return -1; }
    virtual int StartPage() { return -1; }
    virtual int EndPage() { return -1; }
    virtual int EndDoc() { return -1; }
    virtual int AbortDoc() { return -1; }
    /// What documents say of themselves from now on. @return false where there is no place for it
    virtual bool SetPdfInfo(const PdfInfo&) { return false; }
    /// What was set last. Null where there is no place for it.
    virtual const PdfInfo* GetPdfInfo() const { return nullptr; }
};

}  // namespace qel
