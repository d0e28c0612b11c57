#include "qellib10/print/command.h"

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/multibyte.h"
#include "qellib10/platform/wrapped.h"
#include "qellib10/print/clip_box.h"
#include "qellib10/print/drawn_shape.h"
#include "qellib10/print/gdi_objects.h"

namespace {

constexpr int kNoBox = -1;

constexpr UINT DrawTextFormat(int style) {
    UINT format = DT_NOPREFIX;
    const int align = style & 0xF;
    if (align == 2) format |= DT_CENTER;
    if (align == 4) format |= DT_RIGHT;
    if ((style & 0x10) != 0) format |= DT_SINGLELINE | DT_VCENTER;
    if ((style & 0x20) != 0) format |= DT_WORDBREAK;
    if ((style & 0x40) != 0) format |= DT_EDITCONTROL;
    return format;
}

}  // namespace

CQelPrintJobCommand::~CQelPrintJobCommand() = default;

int CQelPrintJobCommand::Initialize() {
    m_nKind = kEmpty;
    m_nX1 = m_nY1 = m_nX2 = m_nY2 = m_nX3 = m_nY3 = m_nX4 = m_nY4 = 0;
    m_nRadius = m_nPenWidth = m_nStyle = 0;
    m_font = {};
    m_szText.Empty();
    m_color = 0;
    return 1;
}

int CQelPrintJobCommand::SetUnit(int unit) {
    m_nKind = kUnit;
    m_nStyle = unit;
    return 1;
}

int CQelPrintJobCommand::SetText(int x, int y, const char* fontName, int fontSize, unsigned long color,
                                 const char* text, int style, int width, int height) {
    m_nKind = kText;
    m_nX1 = x;
    m_nY1 = y;
    m_nX2 = width;
    m_nY2 = height;
    LOGFONT font = {};  // separate from the old one, which may contain the name
    if (fontName != nullptr) qel::CopyBounded(font.lfFaceName, fontName, LF_FACESIZE - 1);
    font.lfHeight = fontSize;
    m_font = font;
    m_szText = text;
    m_color = static_cast<COLORREF>(color);
    m_nStyle = style;
    return 1;
}

int CQelPrintJobCommand::SetMoveTo(int x, int y) {
    m_nKind = kMoveTo;
    m_nX1 = x;
    m_nY1 = y;
    return 1;
}

int CQelPrintJobCommand::SetLineTo(int x, int y) {
    m_nKind = kLineTo;
    m_nX1 = x;
    m_nY1 = y;
    return 1;
}

int CQelPrintJobCommand::SetLine(int x1, int y1, int x2, int y2) {
    m_nKind = kLine;
    m_nX1 = x1;
    m_nY1 = y1;
    m_nX2 = x2;
    m_nY2 = y2;
    return 1;
}

int CQelPrintJobCommand::SetCircle(int x, int y, int r) {
    m_nKind = kCircle;
    m_nX1 = x;
    m_nY1 = y;
    m_nRadius = r;
    return 1;
}

int CQelPrintJobCommand::SetPen(int style, int width, unsigned long color) {
    m_nKind = kSetPen;
    m_nStyle = style;
    m_nPenWidth = width;
    m_color = static_cast<COLORREF>(color);
    return 1;
}

int CQelPrintJobCommand::SetRgn(int x1, int y1, int x2, int y2) {
    SetLine(x1, y1, x2, y2);
    m_nKind = kSetRgn;
    return 1;
}

int CQelPrintJobCommand::SetRectangle(int x1, int y1, int x2, int y2) {
    SetLine(x1, y1, x2, y2);
    m_nKind = kRectangle;
    return 1;
}

int CQelPrintJobCommand::SetArc(int x1, int y1, int x2, int y2, int x3, int y3, int x4, int y4) {
    SetLine(x1, y1, x2, y2);
    m_nKind = kArc;
    m_nX3 = x3;
    m_nY3 = y3;
    m_nX4 = x4;
    m_nY4 = y4;
    return 1;
}

int CQelPrintJobCommand::SetShape(std::span<const qel::ShapePoint> corners, const qel::ShapeStyle& style) {
    return SetShape(qel::DrawnShape::Of(corners, style));
}

int CQelPrintJobCommand::SetShape(const qel::DrawnShape& shape) {
    m_nKind = kShape;
    m_nStyle = shape.flags;
    m_color = shape.strokeColor;
    m_nX1 = static_cast<int>(shape.fillColor);
    m_nX2 = shape.opacity;
    m_nPenWidth = shape.strokeWidth;
    m_nX3 = shape.dashes[0];
    m_nY3 = shape.dashes[1];
    m_nX4 = shape.dashes[2];
    m_nY4 = shape.dashes[3];
    m_szText = CString(shape.corners);
    return 1;
}

void CQelPrintJobCommand::DrawShapeCommand(CDC& dc, int offsetX, int offsetY) const {
    const qel::DrawnShape shape{m_nStyle,
                                m_color,
                                static_cast<COLORREF>(m_nX1),
                                m_nX2,
                                m_nPenWidth,
                                {m_nX3, m_nY3, m_nX4, m_nY4},
                                std::string(m_szText.View())};
    shape.Draw(dc, offsetX, offsetY);
}

int CQelPrintJobCommand::SetLabel(const qel::ShapePoint& start, std::string_view utf8, const qel::LabelStyle& style) {
    m_nKind = kLabel;
    m_nX1 = qel::Hundredths(start.x);
    m_nY1 = qel::Hundredths(start.y);
    LOGFONT font = {};
    qel::CopyBounded(font.lfFaceName, qel::FromUtf8(style.face).c_str(), LF_FACESIZE - 1);
    font.lfHeight = qel::Hundredths(style.points / 10);
    m_font = font;
    m_szText = CString(std::string(utf8));
    m_color = style.color;
    m_nStyle = (style.quarterTurns & qel::kLabelTurns) | (style.isBold ? qel::kLabelBold : 0);
    return 1;
}

void CQelPrintJobCommand::DrawLabelCommand(CDC& dc, int offsetX, int offsetY) const {
    const qel::LabelStyle style{qel::ToUtf8(m_font.lfFaceName), m_font.lfHeight / 10.0, m_color,
                                (m_nStyle & qel::kLabelBold) != 0, m_nStyle & qel::kLabelTurns};
    const qel::ShapePoint start{m_nX1 / 100.0 + offsetX, m_nY1 / 100.0 + offsetY};
    qel::DrawLabel(dc, start, m_szText.View(), style, dc.GetDeviceCaps(LOGPIXELSY));
}

int CQelPrintJobCommand::Draw(CDC* dc, int offsetX, int offsetY, CGDIObjects* objects) const {
    if (dc == nullptr) return 1;
    CGDIObjects ownObjects;
    CGDIObjects& carried = objects != nullptr ? *objects : ownObjects;
    const auto shifted = [&](int x, int y) { return CPoint(qel::WrappedSum(x, offsetX), qel::WrappedSum(y, offsetY)); };
    const CPoint first = shifted(m_nX1, m_nY1);
    const auto box = [&] {
        const CPoint second = shifted(m_nX2, m_nY2);
        return CRect(first.x, first.y, second.x, second.y);
    };
    switch (m_nKind) {
        case kText:
            DrawTextCommand(*dc, first);
            break;
        case kMoveTo:
            dc->MoveTo(first);
            break;
        case kLineTo:
            dc->LineTo(first);
            break;
        case kLine:
            dc->MoveTo(first);
            dc->LineTo(shifted(m_nX2, m_nY2));
            break;
        case kSetPen:
            carried.SelectPen(*dc, m_nStyle, m_nPenWidth, m_color);
            break;
        case kSetRgn: {
            const CRect logical = box(), device = qel::ClipBox(*dc, logical);
            const bool endsLimit =
                logical.left == logical.top && logical.left == logical.right && logical.left == logical.bottom;
            carried.SelectClip(*dc, endsLimit ? nullptr : &device);
            break;
        }
        case kRectangle:
            dc->Rectangle(box());
            break;
        case kShape:
            DrawShapeCommand(*dc, offsetX, offsetY);
            break;
        case kLabel:
            DrawLabelCommand(*dc, offsetX, offsetY);
            break;
        case kArc:
            dc->Arc(box(), shifted(m_nX3, m_nY3), shifted(m_nX4, m_nY4));
            break;
        default:  // all other kinds carry information but draw nothing
            break;
    }
    return 1;
}

void CQelPrintJobCommand::DrawTextCommand(CDC& dc, const POINT& at) const {
    CFont font;
    font.CreatePointFont(m_font.lfHeight, m_font.lfFaceName, &dc);
    CFont* const fontBefore = dc.SelectObject(&font);
    const COLORREF colorBefore = dc.SetTextColor(m_color);
    if (m_nX2 == kNoBox || m_nY2 == kNoBox) {
        dc.TextOut(at.x, at.y, m_szText);
    } else {
        CRect box(at, CSize(m_nX2, m_nY2));
        dc.DrawText(m_szText, &box, DrawTextFormat(m_nStyle));
    }
    dc.SetTextColor(colorBefore);
    dc.SelectObject(fontBefore);
}
