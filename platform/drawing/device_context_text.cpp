#include <algorithm>
#include <cmath>

#include "qellib10/platform/drawing/device_context.h"
#include "qellib10/platform/drawing/screen.h"
#include "qellib10/platform/drawing/text_font.h"
#include "qellib10/platform/drawing/utf8_notice.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/wrapped.h"

namespace qel {
namespace {

constexpr int kDefaultCell = 16;  // height of the default font on a screen
constexpr UINT kAlignAcross = TA_CENTER;
constexpr UINT kAlignDown = TA_BASELINE;

// Removes key marks: `&x` is x, `&&` is &.
std::string WithoutPrefixes(std::string_view utf8) {
    std::string text;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        if (utf8[i] == '&' && i + 1 < utf8.size()) ++i;
        text += utf8[i];
    }
    return text;
}

TextFont::Break BreakOf(UINT format) {
    if ((format & DT_WORDBREAK) == 0) return TextFont::Break::kNone;
    return (format & DT_EDITCONTROL) != 0 ? TextFont::Break::kWordOrCharacter : TextFont::Break::kWord;
}

std::string DrawnText(const CString& text) {
    NoticeUtf8(text.View());
    return ToUtf8(text.View());
}

// The start of something of length @p own in the middle of @p length.
int Middled(int begin, int length, int own) { return WrappedSum(begin, WrappedDifference(length, own) / 2); }

int LeftOf(const TextLine& line, const CRect& box, UINT format) {
    if ((format & DT_RIGHT) != 0) return WrappedDifference(box.right, line.inkWidth);
    if ((format & DT_CENTER) != 0) return Middled(box.left, box.Width(), line.inkWidth);
    return box.left;
}

int TopOf(const CRect& box, UINT format, int lineHeight) {
    if ((format & DT_SINGLELINE) == 0) return box.top;
    if ((format & DT_BOTTOM) != 0) return WrappedDifference(box.bottom, lineHeight);
    if ((format & DT_VCENTER) != 0) return Middled(box.top, box.Height(), lineHeight);
    return box.top;
}

}  // namespace

const TextFont& DeviceContext::Font() {
    const std::shared_ptr<const FontObject>& font = m_state.font.object;
    const int asked = font->description.lfHeight;
    int height = asked == 0 ? MulDiv(kDefaultCell, std::max(1, DeviceCaps(LOGPIXELSY)), kScreenDotsPerInch)
                            : std::max(1, m_state.mapping.HeightToDevice(asked));
    if (asked < 0) height = -height;
    if (!m_pFont || m_pFontInUse != font || m_nFontHeight != height) {
        m_pFont = TextFont::Kept(font->description, height);
        m_pFontInUse = font;
        m_nFontHeight = height;
    }
    return *m_pFont;
}

void DeviceContext::TextOut(const POINT& at, const CString& text) {
    UseInk();
    const TextFont& font = Font();
    const TextLine line = font.Line(DrawnText(text));
    const bool movesPosition = (m_state.textAlign & TA_UPDATECP) != 0;
    CPoint corner = m_state.mapping.ToDevice(movesPosition ? m_state.position : at);
    switch (m_state.textAlign & kAlignAcross) {
        case TA_CENTER:
            corner.Offset(-line.width / 2, 0);
            break;
        case TA_RIGHT:
            corner.Offset(-line.width, 0);
            break;
        default:
            break;
    }
    switch (m_state.textAlign & kAlignDown) {
        case TA_BASELINE:
            corner.Offset(0, -font.Ascent());
            break;
        case TA_BOTTOM:
            corner.Offset(0, -font.Height());
            break;
        default:
            break;
    }
    const CRect cell(corner, SIZE{line.width, font.Height()});
    if (m_state.backMode == OPAQUE) m_pSurface->FillRect(cell, {BS_SOLID, m_state.backColor, 0});
    CPoint baseline = corner;
    baseline.Offset(0, font.Ascent());
    m_pSurface->Text(font, line, baseline, m_state.textColor, nullptr);
    if (movesPosition && (m_state.textAlign & kAlignAcross) != TA_CENTER) {
        corner.Offset((m_state.textAlign & kAlignAcross) == TA_RIGHT ? 0 : line.width, 0);
        MoveTo({m_state.mapping.ToLogical(corner).x, m_state.position.y});
    }
}

int DeviceContext::DrawTextBox(const CString& text, CRect& box, UINT format) {
    UseInk();
    const TextFont& font = Font();
    std::string utf8 = DrawnText(text);
    if ((format & DT_NOPREFIX) == 0) utf8 = WithoutPrefixes(utf8);
    const POINT topLeft = m_state.mapping.ToDevice({box.left, box.top});
    const POINT bottomRight = m_state.mapping.ToDevice({box.right, box.bottom});
    CRect device(topLeft.x, topLeft.y, bottomRight.x, bottomRight.y);
    const bool isSingle = (format & DT_SINGLELINE) != 0;
    const std::vector<TextLine> lines =
        isSingle ? std::vector{font.Line(utf8)} : font.Lines(utf8, device.Width(), BreakOf(format));
    if ((format & DT_CALCRECT) != 0) {
        int width = 0;
        for (const TextLine& line : lines) width = std::max(width, line.inkWidth);
        const int height = font.Height() * static_cast<int>(lines.size());
        const POINT end = m_state.mapping.ToLogical(CRect(topLeft, SIZE{width, height}).BottomRight());
        box.right = end.x;
        box.bottom = end.y;
        return m_state.mapping.HeightToLogical(height);
    }
    const bool leavesOutPartial = !isSingle && (format & DT_EDITCONTROL) != 0;
    const CRect* const limit = (format & DT_NOCLIP) != 0 ? nullptr : &device;
    CPoint corner(0, TopOf(device, format, font.Height()));
    for (const TextLine& line : lines) {
        if (leavesOutPartial && LONGLONG{corner.y} + font.Height() > device.bottom) break;
        corner.x = LeftOf(line, device, format);
        DrawCell(line, corner, limit);
        corner.Offset(0, font.Height());
    }
    return m_state.mapping.HeightToLogical(static_cast<int>(LONGLONG{corner.y} - device.top));
}

// One line and the box around it, limited by the clip.
void DeviceContext::DrawCell(const TextLine& line, const POINT& corner, const CRect* limit) {
    const TextFont& font = *m_pFont;
    CRect cell(corner, SIZE{line.inkWidth, font.Height()});
    if (limit != nullptr && !cell.IntersectRect(cell, *limit)) return;
    if (m_state.backMode == OPAQUE) m_pSurface->FillRect(cell, {BS_SOLID, m_state.backColor, 0});
    CPoint baseline = corner;
    baseline.Offset(0, font.Ascent());
    m_pSurface->Text(font, line, baseline, m_state.textColor, limit);
}

CSize DeviceContext::TextExtent(const CString& text) {
    const TextFont& font = Font();
    const TextLine line = font.Line(ToUtf8(text.View()));
    return {m_state.mapping.WidthToLogical(line.width), m_state.mapping.HeightToLogical(font.Height())};
}

TEXTMETRIC DeviceContext::TextMetrics() {
    const TextFont& font = Font();
    const Mapping& mapping = m_state.mapping;
    return {mapping.HeightToLogical(font.Height()),
            mapping.HeightToLogical(font.Ascent()),
            mapping.HeightToLogical(font.Descent()),
            mapping.HeightToLogical(std::max(0, font.Height() - static_cast<int>(std::lround(font.EmHeight())))),
            0,
            mapping.WidthToLogical(font.AverageWidth())};
}

}  // namespace qel
