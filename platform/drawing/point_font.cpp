#include <algorithm>
#include <cstdlib>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/drawing/screen.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/text/multibyte.h"

BOOL CFont::CreatePointFont(int tenths, const char* face, CDC* dc) {
    LOGFONT font{};
    font.lfHeight = tenths;
    font.lfCharSet = DEFAULT_CHARSET;
    if (face != nullptr) qel::CopyBounded(font.lfFaceName, face, LF_FACESIZE - 1);
    qel::Operation running("CFont::CreatePointFont");
    return running.Ended(CreatePointFontIndirect(&font, dc));
}

BOOL CFont::CreatePointFontIndirect(const LOGFONT* font, CDC* dc) {
    qel::Operation running("CFont::CreatePointFontIndirect");
    if (font == nullptr) return running.Failed(qel::FailureKind::kArgument, "", "a null pointer");
    LOGFONT inUnits = *font;
    const bool isScreen = dc == nullptr || dc->GetDeviceCaps(LOGPIXELSY) < 1;
    const int dotsPerInch = isScreen ? qel::kScreenDotsPerInch : dc->GetDeviceCaps(LOGPIXELSY);
    POINT size[] = {{0, MulDiv(dotsPerInch, font->lfHeight, 720)}, {0, 0}};
    if (dc != nullptr) {
        dc->DPtoLP(size, 2);  // the origins cancel out in the difference
    }
    const LONGLONG height = LONGLONG{size[0].y} - size[1].y;
    inUnits.lfHeight = static_cast<LONG>(-std::min<LONGLONG>(std::abs(height), 0x7FFFFFFF));
    return running.Ended(CreateFontIndirect(&inUnits));
}
