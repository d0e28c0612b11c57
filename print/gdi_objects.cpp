#include "qellib10/print/gdi_objects.h"

#include <utility>

#include "qellib10/platform/drawing/dc.h"

void CGDIObjects::SelectPen(CDC& dc, int style, int width, COLORREF color) {
    if (m_pPen) {
        if (CPen* const before = std::exchange(m_pPenBefore, nullptr)) dc.SelectObject(before);
        m_pPen.reset();
    }
    m_pPen = std::make_unique<CPen>(style, width, color);
    m_pPenBefore = dc.SelectObject(m_pPen.get());
}

void CGDIObjects::SelectClip(CDC& dc, const RECT* box) {
    if (m_pRegion) {
        dc.SelectClipRgn(nullptr);
        m_pRegion.reset();
    }
    if (box != nullptr) {
        m_pRegion = std::make_unique<CRgn>();
        m_pRegion->CreateRectRgnIndirect(box);
    }
    dc.SelectClipRgn(m_pRegion.get());
}
