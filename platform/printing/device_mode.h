#pragma once

#include <optional>

#include "qellib10/platform/drawing/geometry.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

inline constexpr int CCHDEVICENAME = 32;
inline constexpr int CCHFORMNAME = 32;

/// Which members of a device mode were set on purpose (dmFields); for the others the printer decides.
enum : DWORD {
    DM_ORIENTATION = 0x1,
    DM_PAPERSIZE = 0x2,
    DM_PAPERLENGTH = 0x4,
    DM_PAPERWIDTH = 0x8,
    DM_COPIES = 0x100,
    DM_PRINTQUALITY = 0x400,
    DM_COLOR = 0x800,
    DM_DUPLEX = 0x1000,
    DM_YRESOLUTION = 0x2000
};

enum : short { DMORIENT_PORTRAIT = 1, DMORIENT_LANDSCAPE = 2 };
enum : short { DMCOLOR_MONOCHROME = 1, DMCOLOR_COLOR = 2 };
enum : short { DMDUP_SIMPLEX = 1, DMDUP_VERTICAL = 2, DMDUP_HORIZONTAL = 3 };
enum : short {
    DMPAPER_LETTER = 1,
    DMPAPER_LETTERSMALL,
    DMPAPER_TABLOID,
    DMPAPER_LEDGER,
    DMPAPER_LEGAL,
    DMPAPER_STATEMENT,
    DMPAPER_EXECUTIVE,
    DMPAPER_A3,
    DMPAPER_A4,
    DMPAPER_A4SMALL,
    DMPAPER_A5,
    DMPAPER_B4,
    DMPAPER_B5,
    DMPAPER_FOLIO,
    DMPAPER_QUARTO,
    DMPAPER_USER = 256
};
enum : short { DMCOLLATE_FALSE = 0, DMCOLLATE_TRUE = 1 };

/// The print settings: the framework's record.
struct DEVMODE {
    BYTE dmDeviceName[CCHDEVICENAME];  ///< in the code page, cut to 31 bytes and a zero
    WORD dmSpecVersion;
    WORD dmDriverVersion;
    WORD dmSize;
    WORD dmDriverExtra;
    DWORD dmFields;
    short dmOrientation;  ///< DMORIENT_
    short dmPaperSize;    ///< the form's code, 1 to 41; DMPAPER_USER: another size
    short dmPaperLength;  ///< tenths of a millimetre in portrait; used if both this and the width are given
    short dmPaperWidth;   ///< tenths of a millimetre
    short dmScale;
    short dmCopies;
    short dmDefaultSource;
    short dmPrintQuality;  ///< dots per inch across
    short dmColor;         ///< DMCOLOR_
    short dmDuplex;        ///< DMDUP_: one side, both sides turned at the long edge, both turned at the short one
    short dmYResolution;   ///< dots per inch down
    short dmTTOption;
    short dmCollate;
    BYTE dmFormName[CCHFORMNAME];
};

namespace qel {

/// Sets the paper by its portrait size in hundredths of a millimetre: by the form's code (1 to 41) if it has one, else
/// by width and length. A size in addition to the code would be laid out in portrait on landscape pages.
QELLIB10_API void SetPaper(DEVMODE& mode, const SIZE& sheet);

/// The page that the settings ask for, as it is read (landscape is wider than high), in hundredths of a millimetre;
/// nothing if they name no paper.
QELLIB10_API std::optional<SIZE> PageOf(const DEVMODE& mode);

}  // namespace qel
