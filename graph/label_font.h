#pragma once

#include "qellib10/platform/drawing/dc.h"

namespace qel {

/// A font by face and size, selected on a surface for as long as this object lives.
class LabelFont {
public:
    /// @param face cut to 31 bytes, between characters
    /// @param size tenths of a point; 0: the surface's default size
    LabelFont(CDC* dc, const char* face, int size);
    LabelFont(CDC* dc, const LOGFONT& font);
    ~LabelFont();
    LabelFont(const LabelFont&) = delete;
    LabelFont& operator=(const LabelFont&) = delete;

    /// The size of a text as one line, in units of the surface; nothing for an empty text or without a surface.
    CSize Size(const CString& text) const;

private:
    CDC* m_pDC;
    CFont m_font;
    CFont* m_pBefore = nullptr;
};

/// The face of a font, with a terminating zero.
CString FaceOf(const LOGFONT& font);

}  // namespace qel
