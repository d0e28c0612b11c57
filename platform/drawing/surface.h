#pragma once

#include <memory>
#include <span>

#include "qellib10/platform/drawing/ink.h"
#include "qellib10/platform/drawing/shape.h"
#include "qellib10/platform/text/string.h"

namespace qel {

class PixelBuffer;
class TextFont;
struct PdfInfo;
struct TextLine;

/// A back end of device contexts. All coordinates are device units; boxes are normalised, their right and bottom edges
/// not included. A back end may collect lines; Flush draws what it has collected.
class Surface {
public:
    virtual ~Surface() = default;

    /// What GetDeviceCaps returns; 0 for an unknown index.
    virtual int DeviceCaps(int index) const = 0;

    /// Sets the ink of all following primitives.
    virtual void SetInk(const Ink& ink) = 0;

    /// Starts a new polyline; the pattern of a dashed pen starts again.
    virtual void MoveTo(const POINT& to) = 0;
    /// Continues the polyline; its last point is not drawn.
    virtual void LineTo(const POINT& to) = 0;
    /// Draws from each point to the next, like LineTo for each.
    virtual void LinesTo(std::span<const POINT> points) {
        for (const POINT& to : points) LineTo(to);
    }
    /// Draws the outline with the pen and fills with the brush.
    virtual void Rectangle(const CRect& box) = 0;
    /// The ellipse inscribed in the box, without a fill, counter-clockwise from the ray centre-start to the ray
    /// centre-end; the whole ellipse if both have the same direction.
    virtual void Arc(const CRect& box, const POINT& start, const POINT& end) = 0;
    virtual void FillRect(const CRect& box, const LOGBRUSH& brush) = 0;
    virtual void InvertRect(const CRect& box) = 0;
    /// One line of text, whose baseline starts at @p baseline; ink outside @p box (if given) is cut off.
    virtual void Text(const TextFont& font, const TextLine& line, const POINT& baseline, COLORREF color,
                      const CRect* box) = 0;
    /// A polygon or polyline; the ink has only the clip.
    virtual void Shape(std::span<const ShapePoint> corners, const ShapeStyle& style) = 0;
    /// One line of text, whose baseline starts at @p start, @p scale times as large as the font.
    virtual void Label(const TextFont& font, const TextLine& line, const ShapePoint& start, double scale,
                       int quarterTurns, COLORREF color) = 0;
    /// Copies the part @p source of @p pixels to @p to.
    virtual void CopyPixels(const PixelBuffer& pixels, const CRect& source, const POINT& to) = 0;

    /// From now on draws on another picture. @return false if that cannot be changed
    virtual bool SelectPixels(std::shared_ptr<PixelBuffer>) { return false; }
    /// Called before anything else reads what was drawn.
    virtual void Flush() {}
    /// The picture itself, or null if it cannot be read.
    virtual PixelBuffer* Pixels() { return nullptr; }

    // Documents. A back end without documents fails; each result above 0 means success.
    virtual int StartDoc(const CString&) { return -1; }
    virtual int StartPage() { return -1; }
    virtual int EndPage() { return -1; }
    virtual int EndDoc() { return -1; }
    virtual int AbortDoc() { return -1; }
    /// Sets what documents say about themselves from now on. @return false if they cannot say it
    virtual bool SetPdfInfo(const PdfInfo&) { return false; }
    /// What was set last. Null if documents cannot say it.
    virtual const PdfInfo* GetPdfInfo() const { return nullptr; }
};

}  // namespace qel
