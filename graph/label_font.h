#pragma once

#include "qellib10/platform/drawing/dc.h"

namespace qel {

/// A font by face and size, selected on a surface for as long as this object lives.
class LabelFont {
public:
    /// @param face cut to 31 bytes, at a whole character
    /// @param size tenths of a point; 0: the surface's default size
    LabelFont(CDC* dc, const char* face, int size);
    LabelFont(CDC* dc, const LOGFONT& font);
    ~LabelFont();
    LabelFont(const LabelFont&) = delete;
    LabelFont& operator=(const LabelFont&) = delete;

    /// Of a text as one line, in units of the surface; nothing for an empty text or without a surface.
    CSize Size(const CString& text) const;

private:
    CDC* m_pDC;
    CFont m_font;
    CFont* m_pBefore = nullptr;
};

/// The face of a font, with an end.
CString FaceOf(const LOGFONT& font);

}  // namespace qel
