#pragma once

#include <string>
#include <vector>

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/export.h"

namespace qel {

/// Colours, fonts and widths of a chart. One for a light window, one for a dark one and one for paper are ready; an
/// application changes a copy. Lengths are points, 1/72 inch, so that proportions are the same at every resolution.
struct QELLIB10_API ChartTheme {
    static ChartTheme Light();
    static ChartTheme Dark();
    /// For paper, also black and white: lines differ in their dashes as well.
    static ChartTheme Print();

    COLORREF background = RGB(255, 255, 255);
    COLORREF plot = RGB(255, 255, 255);  ///< of the area between the axes
    COLORREF text = RGB(0x26, 0x2B, 0x33);
    COLORREF faintText = RGB(0x5B, 0x64, 0x70);  ///< subtitle, values of the axes
    COLORREF axis = RGB(0x5B, 0x64, 0x70);
    COLORREF grid = RGB(0xE3, 0xE6, 0xEA);
    COLORREF limit = RGB(0xC0, 0x27, 0x2D);
    /// Of series without a colour, one after the other. The ready ones are told apart by colour-blind readers too.
    std::vector<COLORREF> palette;
    bool hasDashes = false;  ///< series without a dash differ in it too, else only when the palette is used up

    /// Fonts in the order in which they are asked for a character; at most 31 bytes. Sans is what the machine has.
    std::string face = "Liberation Sans,IPAPGothic,Sans";
    double titleSize = 13;
    double subtitleSize = 9.5;
    double axisTitleSize = 9.5;
    double labelSize = 8.5;  ///< values of axes, legend, notes
    double margin = 8;       ///< around everything
    double axisWidth = 0.8;
    double gridWidth = 0.5;
    double lineWidth = 1.5;
    double markSize = 5.5;
    double tick = 3.5;
};

}  // namespace qel
