#pragma once

#include "qellib10/platform/drawing/geometry.h"

// The framework's handles, records and numbers for drawing.

/// A device context. Opaque; a handle that is no longer valid is refused, never dereferenced.
using HDC = struct DeviceContextHandle*;
/// A drawing object of any kind; the handles below convert to it.
using HGDIOBJ = void*;
using HPEN = struct PenHandle*;
using HBRUSH = struct BrushHandle*;
using HFONT = struct FontHandle*;
using HRGN = struct RegionHandle*;
using HBITMAP = struct BitmapHandle*;

/// A colour as 0x00BBGGRR. The top byte is kept and ignored.
using COLORREF = DWORD;

constexpr COLORREF RGB(unsigned red, unsigned green, unsigned blue) noexcept {
    return (red & 0xFF) | (green & 0xFF) << 8 | (blue & 0xFF) << 16;
}
constexpr BYTE GetRValue(COLORREF color) noexcept { return static_cast<BYTE>(color); }
constexpr BYTE GetGValue(COLORREF color) noexcept { return static_cast<BYTE>(color >> 8); }
constexpr BYTE GetBValue(COLORREF color) noexcept { return static_cast<BYTE>(color >> 16); }

/// Pen styles. Any other style draws as a solid pen; only pens of one device unit show dashes.
enum : int { PS_SOLID, PS_DASH, PS_DOT, PS_DASHDOT, PS_DASHDOTDOT, PS_NULL, PS_INSIDEFRAME };

/// Brush styles. Any other style fills like a solid brush.
enum : UINT { BS_SOLID = 0, BS_NULL = 1, BS_HOLLOW = BS_NULL, BS_HATCHED = 2 };

/// Hatches. Backward rises to the right, forward falls.
enum : int { HS_HORIZONTAL, HS_VERTICAL, HS_FDIAGONAL, HS_BDIAGONAL, HS_CROSS, HS_DIAGCROSS };

/// Background modes: whether gaps of dashes and hatches and the box around a text show the background colour.
enum : int { TRANSPARENT = 1, OPAQUE = 2 };

/// The position of a text relative to its point: bits for across, down, and whether the current position is used.
enum : UINT {
    TA_NOUPDATECP = 0,
    TA_UPDATECP = 1,
    TA_LEFT = 0,
    TA_RIGHT = 2,
    TA_CENTER = 6,
    TA_TOP = 0,
    TA_BOTTOM = 8,
    TA_BASELINE = 24
};

/// Flags of DrawText.
enum : UINT {
    DT_TOP = 0,
    DT_LEFT = 0,
    DT_CENTER = 0x1,
    DT_RIGHT = 0x2,
    DT_VCENTER = 0x4,
    DT_BOTTOM = 0x8,
    DT_WORDBREAK = 0x10,
    DT_SINGLELINE = 0x20,
    DT_NOCLIP = 0x100,
    DT_CALCRECT = 0x400,  ///< nothing is drawn; the box becomes that of the text
    DT_NOPREFIX = 0x800,
    DT_EDITCONTROL = 0x2000
};

/// Flag of ExtTextOut: first fills the rectangle with the background colour.
inline constexpr UINT ETO_OPAQUE = 2;
inline constexpr UINT ETO_CLIPPED = 4;

/// Map modes: the size of a logical unit. y grows upward in all except MM_TEXT and the two free ones.
enum : int {
    MM_TEXT = 1,
    MM_LOMETRIC,
    MM_HIMETRIC,
    MM_LOENGLISH,
    MM_HIENGLISH,
    MM_TWIPS,
    MM_ISOTROPIC,
    MM_ANISOTROPIC
};

/// Indexes of GetDeviceCaps.
enum : int {
    TECHNOLOGY = 2,
    HORZSIZE = 4,  ///< millimetres
    VERTSIZE = 6,  ///< millimetres
    HORZRES = 8,   ///< device units of the drawable area
    VERTRES = 10,  ///< device units of the drawable area
    BITSPIXEL = 12,
    PLANES = 14,
    LOGPIXELSX = 88,  ///< device units per inch
    LOGPIXELSY = 90,
    PHYSICALWIDTH = 110,  ///< device units of the whole sheet; 0 if there is none
    PHYSICALHEIGHT = 111,
    PHYSICALOFFSETX = 112,  ///< from the sheet's corner to that of the drawable area
    PHYSICALOFFSETY = 113
};
inline constexpr int DT_RASDISPLAY = 1;  ///< TECHNOLOGY of a picture or a screen
inline constexpr int DT_RASPRINTER = 2;  ///< TECHNOLOGY of a printer

/// How BitBlt combines pixels.
inline constexpr DWORD SRCCOPY = 0x00CC0020;

/// What a clip is, as returned: empty, or a rectangle.
enum : int { NULLREGION = 1, SIMPLEREGION = 2 };

/// Stock objects.
enum : int {
    WHITE_BRUSH = 0,
    LTGRAY_BRUSH,
    GRAY_BRUSH,
    DKGRAY_BRUSH,
    BLACK_BRUSH,
    NULL_BRUSH,
    HOLLOW_BRUSH = NULL_BRUSH,
    WHITE_PEN,
    BLACK_PEN,
    NULL_PEN,
    SYSTEM_FONT = 13
};

enum : BYTE { ANSI_CHARSET = 0, DEFAULT_CHARSET = 1, SHIFTJIS_CHARSET = 128 };
enum : BYTE { DEFAULT_QUALITY = 0, PROOF_QUALITY = 2 };
enum : BYTE { OUT_DEFAULT_PRECIS = 0, CLIP_DEFAULT_PRECIS = 0, DEFAULT_PITCH = 0, FF_DONTCARE = 0 };
enum : int { FW_DONTCARE = 0, FW_NORMAL = 400, FW_BOLD = 700 };
inline constexpr int LF_FACESIZE = 32;

struct LOGPEN {
    UINT lopnStyle;
    POINT lopnWidth;  ///< y is not used
    COLORREF lopnColor;
};

struct LOGBRUSH {
    UINT lbStyle;
    COLORREF lbColor;
    LONG lbHatch;
};

/// The font requested. lfHeight below 0 is the em height, above 0 the height of a cell (ascent and descent), and 0 a
/// cell of 1/6 inch; in logical units of the context that the font is selected into.
struct LOGFONT {
    LONG lfHeight;
    LONG lfWidth;
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight;
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality;
    BYTE lfPitchAndFamily;
    char lfFaceName[LF_FACESIZE];  ///< in the code page; the zero at the end may be missing
};

/// Measures of the selected font, in logical units.
struct TEXTMETRIC {
    LONG tmHeight;  ///< of a line: ascent and descent, each rounded to whole device units
    LONG tmAscent;
    LONG tmDescent;
    LONG tmInternalLeading;  ///< the part of tmHeight above the em height
    LONG tmExternalLeading;  ///< 0: lines are tmHeight apart
    LONG tmAveCharWidth;
};

/// Describes a document for StartDoc.
struct DOCINFO {
    int cbSize;
    const char* lpszDocName;
    const char* lpszOutput;  ///< null: documents go where the context's do; no other output is possible
    const char* lpszDatatype;
    DWORD fwType;
};

struct BITMAP {
    LONG bmType;
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;
    WORD bmBitsPixel;
    void* bmBits;
};
