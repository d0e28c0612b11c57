#pragma once

#include <memory>

#include "qellib10/platform/drawing/gdi_object.h"
#include "qellib10/platform/export.h"

/// The state that a replay of print commands carries from one command to the next: the current pen and clip region,
/// which it owns, and the pen that was selected before. When it is destroyed, the surface keeps this pen and this clip.
class QELLIB10_API CGDIObjects {
public:
    CGDIObjects() = default;
    ~CGDIObjects() = default;
    CGDIObjects(const CGDIObjects&) = delete;
    CGDIObjects& operator=(const CGDIObjects&) = delete;

    /// Selects a new pen instead of the current one; in between it selects the former pen.
    void SelectPen(CDC& dc, int style, int width, COLORREF color);

    /// Limits drawing to @p box, in device units, instead of the current clip; null: draws nothing.
    void SelectClip(CDC& dc, const RECT* box);

private:
    std::unique_ptr<CPen> m_pPen;
    CPen* m_pPenBefore = nullptr;
    std::unique_ptr<CRgn> m_pRegion;
};
