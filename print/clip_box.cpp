#include "qellib10/print/clip_box.h"

#include "qellib10/platform/drawing/preview_dc.h"

namespace qel {

CRect ClipBox(CDC& dc, CRect box) {
    dc.LPtoDP(&box);
    const auto* const preview = dynamic_cast<CPreviewDC*>(&dc);
    if (preview == nullptr) return box;
    POINT topLeft = box.TopLeft(), origin{0, 0};
    CPoint bottomRight = box.BottomRight();
    preview->PrinterDPtoScreenDP(&topLeft);
    preview->PrinterDPtoScreenDP(&bottomRight);
    GetViewportOrgEx(preview->GetSafeHdc(), &origin);
    bottomRight.Offset(1, 1);
    box = CRect(topLeft.x, topLeft.y, bottomRight.x, bottomRight.y);
    box.OffsetRect(origin);
    return box;
}

}  // namespace qel
