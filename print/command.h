#pragma once

#include <span>
#include <string_view>

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/drawing/shape.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

class CDC;
class CGDIObjects;
namespace qel {
class CommandList;
struct DrawnShape;
}  // namespace qel

/// One drawing command of a print job. A report is often printed days after the measurement, or a second time; a
/// program that draws it again from the data then prints what the data are now. A job keeps the commands, so each copy
/// is that of the first day.
///
/// @code
/// CQelPrintJobCommand title;
/// title.SetText(0, 0, "", 120, RGB(0, 0, 0), "Acidity: 49.6 g/L", 0, -1, -1);  // 12 points, no box
/// CQelPrintJobBlockData block;
/// if (!block.AddCommand(title)) return;
/// block.SetOffset(200, 100);  // where the text is on the page
/// @endcode
///
/// Coordinates are device units of the surface that it will be drawn on, which are a printer's pixels; sums that exceed
/// 32 bits wrap. Font sizes are tenths of a point, colours 0x00BBGGRR.
///
/// The setter that was called last decides the kind of the command. A setter writes only its own fields, the others
/// stay, and returns 1. Nothing is thrown but std::bad_alloc. One thread at a time.
class QELLIB10_API CQelPrintJobCommand {
public:
    enum : int {
        kEmpty,
        kUnit,
        kText,
        kMoveTo,
        kLineTo,
        kLine,
        kCircle,
        kSetPen,
        kSetRgn,
        kRectangle,
        kArc,
        kShape,
        kLabel
    };

    CQelPrintJobCommand() { Initialize(); }
    CQelPrintJobCommand(const CQelPrintJobCommand&) = default;
    CQelPrintJobCommand& operator=(const CQelPrintJobCommand&) = default;
    virtual ~CQelPrintJobCommand();

    /// Makes it the empty command: all numbers 0, no font, no text. Returns 1.
    int Initialize();

    /// A code that readers of a job may use; draws nothing.
    int SetUnit(int unit);

    /// A text at x, y; with a @p width and a @p height it is in that box, -1 for either means no box.
    /// @param fontName cut to 31 bytes, between characters
    /// @param fontSize tenths of a point; 0 is the surface's default size
    /// @param style alignment in the box: 2 centred, 4 right, every other value of the lowest four bits left; plus 0x10
    /// one line, in the middle of the height; 0x20 broken between words; 0x40 broken also within a word that is too
    /// long, and without a last line that fits only partly
    int SetText(int x, int y, const char* fontName, int fontSize, unsigned long color, const char* text, int style,
                int width, int height);

    int SetMoveTo(int x, int y);
    int SetLineTo(int x, int y);                            ///< from the current position, which moves to its end
    int SetLine(int x1, int y1, int x2, int y2);            ///< the current position moves to its end
    int SetCircle(int x, int y, int r);                     ///< stored and saved; kept so that it draws nothing
    int SetPen(int style, int width, unsigned long color);  ///< PS_SOLID and so on, width in device units

    /// Limits the following drawing to the box; its corners are logical units of the surface. Four equal numbers (as
    /// drawn, so including the block's offset) remove the limit.
    int SetRgn(int x1, int y1, int x2, int y2);

    int SetRectangle(int x1, int y1, int x2, int y2);
    /// Part of the ellipse in the box x1, y1 - x2, y2, counter-clockwise from the ray through x3, y3 to the ray through
    /// x4, y4; the whole ellipse if both have the same direction.
    int SetArc(int x1, int y1, int x2, int y2, int x3, int y3, int x4, int y4);

    /// A polygon or polyline with smooth edges, or exact ones, see qel::DrawShape. Its coordinates and lengths are kept
    /// to a hundredth of a device unit, its opacity to a hundredth. Readers that do not know
    /// shapes pass over them.
    int SetShape(std::span<const qel::ShapePoint> corners, const qel::ShapeStyle& style);
    int SetShape(const qel::DrawnShape& shape);  ///< as a job file has it
    /// A line of UTF-8 text whose baseline starts at a point, and which may be turned, see qel::DrawLabel. Readers that
    /// do not know labels pass over them.
    int SetLabel(const qel::ShapePoint& start, std::string_view utf8, const qel::LabelStyle& style);

    int GetKind() const { return m_nKind; }
    int GetX1() const { return m_nX1; }
    int GetY1() const { return m_nY1; }
    int GetX2() const { return m_nX2; }  ///< for a text its width
    int GetY2() const { return m_nY2; }  ///< for a text its height
    int GetX3() const { return m_nX3; }
    int GetY3() const { return m_nY3; }
    int GetX4() const { return m_nX4; }
    int GetY4() const { return m_nY4; }
    int GetRadius() const { return m_nRadius; }
    int GetPenWidth() const { return m_nPenWidth; }
    int GetStyle() const { return m_nStyle; }  ///< the code of a unit, the format of a text, or the style of a pen
    /// Its height is the size in tenths of a point; everything else except the face is 0.
    const LOGFONT& GetFont() const { return m_font; }
    /// Of a text in the code page; of a label, and the corners of a shape, in UTF-8.
    const CString& GetText() const { return m_szText; }
    COLORREF GetColor() const { return m_color; }

    /// Draws the command, shifted by the offset; draws nothing without a surface, and for an unknown kind.
    /// @param objects carries pen and clip from one command to the next; null: they apply only to this command, but
    /// stay on the surface
    /// @return 1, whatever the surface does
    int Draw(CDC* dc, int offsetX, int offsetY, CGDIObjects* objects) const;

private:
    friend class qel::CommandList;

    void DrawTextCommand(CDC& dc, const POINT& at) const;
    void DrawShapeCommand(CDC& dc, int offsetX, int offsetY) const;
    void DrawLabelCommand(CDC& dc, int offsetX, int offsetY) const;

    int m_nKind;
    int m_nX1, m_nY1, m_nX2, m_nY2, m_nX3, m_nY3, m_nX4, m_nY4;
    int m_nRadius;
    int m_nPenWidth;
    int m_nStyle;
    LOGFONT m_font;
    CString m_szText;
    COLORREF m_color;
};
