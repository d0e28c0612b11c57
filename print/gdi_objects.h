#pragma once

#include <memory>

#include "qellib10/platform/drawing/gdi_object.h"
#include "qellib10/platform/export.h"

/// What a replay of print commands carries from one command to the next: the pen and the clip region in use, which it
/// owns, and the pen that was selected before. When it goes the surface is left as it is, with that pen and that clip.
class QELLIB10_API CGDIObjects {
public:
    CGDIObjects() = default;
    ~CGDIObjects() = default;
    CGDIObjects(const CGDIObjects&) = delete;
    CGDIObjects& operator=(const CGDIObjects&) = delete;

    /// Selects a new pen in place of the one in use; the one that was selected before that is selected in between.
    void SelectPen(CDC& dc, int style, int width, COLORREF color);

    /// Limits drawing to @p box, device units, in place of the clip in use; null: to nothing.
    void SelectClip(CDC& dc, const RECT* box);

private:
    std::unique_ptr<CPen> m_pPen;
    CPen* m_pPenBefore = nullptr;
    std::unique_ptr<CRgn> m_pRegion;
};
