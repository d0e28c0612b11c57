// The functions through which everything is drawn.

#include <limits>

#include "qellib10/graph/label_font.h"
#include "qellib10/graph/qel_graph.h"
#include "qellib10/print/clip_box.h"
#include "qellib10/print/queue_data.h"

namespace {

constexpr int kAligned[] = {1, 2, 4};  // codes of left, centre and right in a text command

}  // namespace

template <class Set> void CQelGraph::Record(const Set& set) {
    if (m_pPrintJob == nullptr) return;
    CQelPrintJobCommand command;
    set(command);
    m_pPrintJob->AddCommand(command);
}

void CQelGraph::DCMoveTo(CDC* dc, int x, int y) {
    if (dc == nullptr) return;
    dc->MoveTo(x, y);
    Record([&](CQelPrintJobCommand& command) { command.SetMoveTo(x, y); });
}

void CQelGraph::DCLineTo(CDC* dc, int x, int y) {
    if (dc == nullptr) return;
    dc->LineTo(x, y);
    Record([&](CQelPrintJobCommand& command) { command.SetLineTo(x, y); });
}

void CQelGraph::DCPolylineTo(CDC* dc, const POINT* points, int count) {
    if (dc == nullptr) return;
    dc->PolylineTo(points, count);
    for (int i = 0; m_pPrintJob != nullptr && i < count; ++i) {
        Record([&](CQelPrintJobCommand& command) { command.SetLineTo(points[i].x, points[i].y); });
    }
}

void CQelGraph::DCRectangle(CDC* dc, int left, int top, int right, int bottom) {
    if (dc == nullptr) return;
    dc->Rectangle(left, top, right, bottom);
    Record([&](CQelPrintJobCommand& command) { command.SetRectangle(left, top, right, bottom); });
}

void CQelGraph::DCArc(CDC* dc, int left, int top, int right, int bottom, int startX, int startY, int endX, int endY) {
    if (dc == nullptr) return;
    dc->Arc(left, top, right, bottom, startX, startY, endX, endY);
    Record([&](CQelPrintJobCommand& command) { command.SetArc(left, top, right, bottom, startX, startY, endX, endY); });
}

void CQelGraph::DCTextOut(CDC* dc, int x, int y, const char* face, int size, unsigned long color, const char* text,
                          int align, int width, int height) {
    if (dc == nullptr) return;
    const qel::LabelFont font(dc, face, size);
    const COLORREF before = dc->SetTextColor(static_cast<COLORREF>(color));
    dc->TextOut(x, y, text);
    dc->SetTextColor(before);
    const int style = kAligned[align >= 0 && align <= 2 ? align : 0];
    Record([&](CQelPrintJobCommand& command) { command.SetText(x, y, face, size, color, text, style, width, height); });
}

CPen* CQelGraph::DCCreateAndSelectPen(CDC* dc, CPen* pen, int style, int width, unsigned long color) {
    if (dc == nullptr || pen == nullptr) return nullptr;
    pen->CreatePen(style, width, static_cast<COLORREF>(color));
    Record([&](CQelPrintJobCommand& command) { command.SetPen(style, width, color); });
    return dc->SelectObject(pen);
}

void CQelGraph::DCClipDrawArea(CDC* dc, CRgn* region) {
    if (dc == nullptr) return;
    if (region == nullptr) {
        dc->SelectClipRgn(nullptr);
        Record([](CQelPrintJobCommand& command) { command.SetRgn(0, 0, 0, 0); });
        return;
    }
    const CRect area = InclusiveArea(*dc, m_rectDrawArea), box = qel::ClipBox(*dc, area);
    region->CreateRectRgnIndirect(&box);
    dc->SelectClipRgn(region);
    Record([&](CQelPrintJobCommand& command) { command.SetRgn(area.left, area.top, area.right, area.bottom); });
}

// A region excludes its edges at the larger device coordinates, the area includes them. So that its outline and the
// points on it are complete, these edges are one device unit further out.
CRect CQelGraph::InclusiveArea(const CDC& dc, CRect area) {
    CRect device = area;
    dc.LPtoDP(&device);
    const auto include = [&](LONG RECT::*edge, LONG RECT::*other) {
        if (device.*edge == std::numeric_limits<LONG>::max()) return;
        CRect logical = device, back;
        ++(logical.*edge);
        dc.DPtoLP(&logical);
        dc.LPtoDP(&(back = logical));
        const LONG nextUnit = area.*edge + (area.*edge < area.*other ? -1 : 1);  // if a unit is more than a pixel
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
