// What everything is drawn through.

#include <limits>

#include "qellib10/graph/label_font.h"
#include "qellib10/graph/qel_graph.h"

void CQelGraph::DCMoveTo(CDC* dc, int x, int y) {
    if (dc == nullptr) return;
    dc->MoveTo(x, y);
}

void CQelGraph::DCLineTo(CDC* dc, int x, int y) {
    if (dc == nullptr) return;
    dc->LineTo(x, y);
}

void CQelGraph::DCRectangle(CDC* dc, int left, int top, int right, int bottom) {
    if (dc == nullptr) return;
    dc->Rectangle(left, top, right, bottom);
}

void CQelGraph::DCArc(CDC* dc, int left, int top, int right, int bottom, int startX, int startY, int endX, int endY) {
    if (dc == nullptr) return;
    dc->Arc(left, top, right, bottom, startX, startY, endX, endY);
}

void CQelGraph::DCTextOut(CDC* dc, int x, int y, const char* face, int size, unsigned long color, const char* text, int,
                          int, int) {
    if (dc == nullptr) return;
    const qel::LabelFont font(dc, face, size);
    const COLORREF before = dc->SetTextColor(static_cast<COLORREF>(color));
    dc->TextOut(x, y, text);
    dc->SetTextColor(before);
}

CPen* CQelGraph::DCCreateAndSelectPen(CDC* dc, CPen* pen, int style, int width, unsigned long color) {
    if (dc == nullptr || pen == nullptr) return nullptr;
    pen->CreatePen(style, width, static_cast<COLORREF>(color));
    return dc->SelectObject(pen);
}

void CQelGraph::DCClipDrawArea(CDC* dc, CRgn* region) {
    if (dc == nullptr) return;
    if (region == nullptr) {
        dc->SelectClipRgn(nullptr);
        return;
    }
    CRect box = InclusiveArea(*dc);
    dc->LPtoDP(&box);
    region->CreateRectRgnIndirect(&box);
    dc->SelectClipRgn(region);
}

// A region leaves out its edges at the larger device coordinates, the area includes them: so that its outline and the
// points on it are whole, these edges lie one device unit further out.
CRect CQelGraph::InclusiveArea(const CDC& dc) const {
    CRect area = m_rectDrawArea, device = area;
    dc.LPtoDP(&device);
    const auto include = [&](LONG RECT::*edge, LONG RECT::*other) {
        if (device.*edge == std::numeric_limits<LONG>::max()) return;
        CRect logical = device, back;
        ++(logical.*edge);
        dc.DPtoLP(&logical);
        dc.LPtoDP(&(back = logical));
        const LONG nextUnit = area.*edge + (area.*edge < area.*other ? -1 : 1);  // where a unit is more than a pixel
        area.*edge = back.*edge > device.*edge ? logical.*edge : nextUnit;
    };
    if (device.left > device.right) {
        include(&RECT::left, &RECT::right);
    } else {
        include(&RECT::right, &RECT::left);
    }
    if (device.top > device.bottom) {
        include(&RECT::top, &RECT::bottom);
    } else {
        include(&RECT::bottom, &RECT::top);
    }
    return area;
}
