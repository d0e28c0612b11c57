#include "qellib10/graph/chart_theme.h"

namespace qel {
namespace {

// Okabe and Ito, Color Universal Design (2008), in an order in which neighbours differ in lightness too; yellow is left
// out, because a thin yellow line does not show on white. Then colours of Tol, Colour Schemes (2021), "muted", and
// black.
const std::vector<COLORREF> kColors = {
    RGB(0x00, 0x72, 0xB2), RGB(0xD5, 0x5E, 0x00), RGB(0x00, 0x9E, 0x73), RGB(0xCC, 0x79, 0xA7), RGB(0xE6, 0x9F, 0x00),
    RGB(0x56, 0xB4, 0xE9), RGB(0x88, 0x22, 0x55), RGB(0x99, 0x99, 0x33), RGB(0x33, 0x22, 0x88), RGB(0x22, 0x22, 0x22)};
// By search: as far apart as can be for readers with and without full sight of colours, and bright enough.
const std::vector<COLORREF> kColorsOnDark = {
    RGB(0x43, 0xDD, 0xF9), RGB(0xEA, 0x62, 0x40), RGB(0x2B, 0x9B, 0xA7), RGB(0xFA, 0xA3, 0x9D), RGB(0xD4, 0xC9, 0x25),
    RGB(0xBB, 0x90, 0xFF), RGB(0xC2, 0x70, 0x73), RGB(0xD3, 0xE3, 0x81), RGB(0x85, 0x66, 0xEF), RGB(0xB9, 0xF5, 0xDA)};

}  // namespace

ChartTheme ChartTheme::Light() {
    ChartTheme theme;
    theme.palette = kColors;
    return theme;
}

ChartTheme ChartTheme::Dark() {
    ChartTheme theme;
    theme.background = RGB(0x1B, 0x1E, 0x23);
    theme.plot = RGB(0x22, 0x26, 0x2C);
    theme.text = RGB(0xE8, 0xEA, 0xED);
    theme.faintText = RGB(0xB0, 0xB7, 0xC0);
    theme.axis = RGB(0x8E, 0x97, 0xA3);
    theme.grid = RGB(0x38, 0x3E, 0x47);
    theme.limit = RGB(0xFF, 0x7B, 0x72);
    theme.palette = kColorsOnDark;
    return theme;
}

ChartTheme ChartTheme::Print() {
    ChartTheme theme;
    theme.text = theme.faintText = theme.axis = RGB(0, 0, 0);
    theme.grid = RGB(0xD0, 0xD0, 0xD0);
    theme.palette = kColors;
    theme.hasDashes = true;
    theme.lineWidth = 1.2;
    return theme;
}

}  // namespace qel
