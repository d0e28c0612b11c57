#include "qellib10/graph/label_font.h"

#include <cstring>

#include "qellib10/platform/text/multibyte.h"

namespace qel {

LabelFont::LabelFont(CDC* dc, const char* face, int size) : m_pDC(dc) {
    if (dc == nullptr) return;
    LOGFONT font{};
    font.lfHeight = size;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfQuality = PROOF_QUALITY;
    if (face != nullptr) CopyBounded(font.lfFaceName, face, LF_FACESIZE - 1);
    m_font.CreatePointFontIndirect(&font, dc);
    m_pBefore = dc->SelectObject(&m_font);
}

LabelFont::LabelFont(CDC* dc, const LOGFONT& font) : LabelFont(dc, FaceOf(font), font.lfHeight) {}

LabelFont::~LabelFont() {
    if (m_pDC != nullptr) m_pDC->SelectObject(m_pBefore);
}

CSize LabelFont::Size(const CString& text) const {
    return m_pDC != nullptr && !text.IsEmpty() ? m_pDC->GetTextExtent(text) : CSize();
}

CString FaceOf(const LOGFONT& font) {
    return CString(std::string_view(font.lfFaceName, strnlen(font.lfFaceName, LF_FACESIZE)));
}

}  // namespace qel
