#pragma once

#include <array>
#include <span>
#include <string>

#include "qellib10/platform/drawing/shape.h"
#include "qellib10/print/command.h"
#include "qellib10/print/command_format.h"

namespace qel {

/// The style bits of a label: its quarter turns, and whether it is bold.
inline constexpr int kLabelTurns = 3, kLabelBold = 4;

/// Of a length or coordinate, rounded to nearest and limited to 32 bits; 0 for what is not a number.
int Hundredths(double length) noexcept;

/// A shape as a command keeps it: lengths in hundredths of a device unit, opacity in hundredths.
struct DrawnShape {
    enum : int { kClosed = 1, kRound = 2, kExact = 4, kFilled = 8, kStroked = 16 };

    static DrawnShape Of(std::span<const ShapePoint> corners, const ShapeStyle& style);
    void Draw(CDC& dc, int offsetX, int offsetY) const;

    int flags = 0;
    COLORREF strokeColor = 0, fillColor = 0;
    int opacity = 100;
    int strokeWidth = 100;
    std::array<int, 4> dashes = {};  ///< line, gap, line, gap; all 0: none
    std::string corners;             ///< "12.5,30 14.25,31 - 20,7"; after a dash a new line starts
};

/// Set commands from the numbers and the text of an element.
void SetShapeOf(CQelPrintJobCommand& command, const CommandNumbers& numbers, const CString& face, const CString& text);
void SetLabelOf(CQelPrintJobCommand& command, const CommandNumbers& numbers, const CString& face, const CString& text);

}  // namespace qel
