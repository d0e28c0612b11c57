// The frame, the grid lines, and the texts of the axes.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "qellib10/graph/data_scale.h"
#include "qellib10/graph/label_font.h"
#include "qellib10/graph/qel_graph.h"

/// A side of the area. Positions along it count from its left or upper end.
struct CQelGraph::Side {
    CRect area;
    int viewMode;
    int up;  ///< how the vertical coordinate changes from one unit to the one above
    int spaceX, spaceY;
    int away;  ///< from the area to the texts

    bool IsVertical() const { return viewMode == kLabelLeft || viewMode == kLabelRight; }
    /// 0 if the texts leave no space for the area: its sides are then outside the drawing.
    int Length() const {
        const int height = (area.top - area.bottom) * up, width = area.right - area.left;
        if (height <= 0 || width <= 0) return 0;
        return IsVertical() ? height : width;
    }
    int Along(const CSize& text) const { return IsVertical() ? text.cy : text.cx; }
    /// What a text needs along the side, including the space to the next one: half a line on any surface, so that two
    /// values do not read as one.
    LONGLONG Taken(const CSize& text) const {
        const LONGLONG length = Along(text);
        return length > 0 && !IsVertical() ? length + std::max(2 * spaceY, text.cy / 2) : length;
    }
    /// Upper left corner of a text at @p along; @p fieldWidth is the field that it is aligned in on a vertical side.
    CPoint Corner(LONGLONG place, const CSize& text, int fieldWidth, bool isLeftAligned) const {
        const int along = static_cast<int>(place);
        const int inField = isLeftAligned ? 0 : fieldWidth - text.cx;
        switch (viewMode) {
            case kLabelAbove:
                return {area.left + along, area.top + up * (away + text.cy)};
            case kLabelBelow:
                return {area.left + along, area.bottom - up * away};
            case kLabelLeft:
                return {area.left - away - fieldWidth + inField, area.top - up * along};
            default:
                return {area.right + away + inField, area.top - up * along};
        }
    }
};

namespace {

constexpr int kNoBox = -1;

bool IsSide(const CAxisStyle& axis) { return axis.GetViewMode() >= 1 && axis.GetViewMode() <= 4; }

// A number without the blanks of its field: its place decides how it is aligned.
CString WrittenValue(const CAxisStyle& axis, bool isMaximum) {
    CString text = isMaximum ? axis.GetFormattedMaxValue(-1) : axis.GetFormattedMinValue(-1);
    if (axis.GetLabelType() == 0) {
        text.TrimLeft();
        text.TrimRight();
    }
    return text;
}

// Positions of the lines that divide a length: at most as many as it, or a surface, has units.
template <class Line> void ForEachDivision(int length, int divisions, const Line& line) {
    const int parts = std::min({divisions, std::abs(length), qel::kFarthest});
    for (int i = 1; i < parts; ++i) line(static_cast<int>(1.0 * length * i / parts));
}

}  // namespace

CQelGraph::Side CQelGraph::SideOf(int viewMode) const {
    const auto kept = [](int space) { return std::clamp(space, -qel::kFarthest, qel::kFarthest); };
    const int spaceX = kept(m_nLabelSpaceX), spaceY = kept(m_nLabelSpaceY);
    const bool isVertical = viewMode == kLabelLeft || viewMode == kLabelRight;
    const int away = TextDistance(viewMode, isVertical ? spaceY : spaceX);
    return {m_rectDrawArea, viewMode, m_nCoordinateMode == 1 ? 1 : -1, spaceX, spaceY, away};
}

// The texts' background would cut into a wide outline, so they move away from it, into the margin.
int CQelGraph::TextDistance(int viewMode, int space) const {
    if (space < 0 || !IsFrameWide()) return space;
    const auto sideOf = [&](int above, int below, int left, int right) {
        return viewMode == kLabelAbove   ? above
               : viewMode == kLabelBelow ? below
               : viewMode == kLabelLeft  ? left
                                         : right;
    };
    const std::int64_t half = std::abs(std::int64_t{m_frameStyle.GetWidth()}) / 2;
    const std::int64_t needed = half + sideOf(0, 1, 0, 1);  // the edge's own unit is below it, or to its right
    const int margin = sideOf(m_nTopMargin, m_nBottomMargin, m_nLeftMargin, m_nRightMargin);
    return space + static_cast<int>(std::clamp<std::int64_t>(needed - space, 0, std::clamp(margin, 0, qel::kFarthest)));
}

// Values grow upward, and to the right unless time runs from the right.
bool CQelGraph::IsMaximumFirst(const CAxisStyle& axis, bool isReversed) {
    return isReversed || axis.GetViewMode() == kLabelLeft || axis.GetViewMode() == kLabelRight;
}

void CQelGraph::FrameDraw(CDC* dc, int x, int y) {
    GetDrawArea(dc, x, y);
    const auto forEachAxis = [&](const auto& step) {
        for (const CGraphDataCtrl& series : m_aryGraph) {
            if (IsSide(series.GetXAxisStyle())) {
                step(series.GetXAxisStyle(), series.GetViewMode() == kViewRecorderFromRight);
            }
            if (IsSide(series.GetYAxisStyle())) step(series.GetYAxisStyle(), false);
        }
    };
    SideUses counts, used;
    forEachAxis([&](const CAxisStyle& axis, bool isReversed) {
        const Side side = SideOf(axis.GetViewMode());
        SideUse& count = counts[static_cast<unsigned>(axis.GetViewMode())];
        const qel::LabelFont font(dc, axis.GetLabelFont());
        const bool isMaximumFirst = IsMaximumFirst(axis, isReversed);
        ++count.axes;
        count.first += side.Taken(font.Size(WrittenValue(axis, isMaximumFirst)));
        count.last += side.Taken(font.Size(WrittenValue(axis, !isMaximumFirst)));
        count.dims += side.Taken(GetAxisDimViewSize(dc, axis));
    });
    const bool isWide = IsFrameWide();
    if (isWide) OutlineDraw(dc);  // it may reach the place of the texts
    forEachAxis([&](const CAxisStyle& axis, bool isReversed) { FrameDrawSub(dc, axis, used, counts, isReversed); });
    isWide ? GridDraw(dc) : AxisDraw(dc);
}

void CQelGraph::FrameDrawSub(CDC* dc, const CAxisStyle& axis, SideUses& used, const SideUses& counts, bool isReversed) {
    if (!IsSide(axis)) return;
    DrawAxisFormattedValueMin(dc, axis, used, isReversed);
    DrawAxisFormattedValueMax(dc, axis, used, isReversed);
    DrawAxisDimStr(dc, axis, used, counts);
}

void CQelGraph::DrawAxisFormattedValueMin(CDC* dc, const CAxisStyle& axis, SideUses& used, bool isReversed) {
    DrawAxisValue(dc, axis, used, false, !IsMaximumFirst(axis, isReversed));
}

void CQelGraph::DrawAxisFormattedValueMax(CDC* dc, const CAxisStyle& axis, SideUses& used, bool isReversed) {
    DrawAxisValue(dc, axis, used, true, IsMaximumFirst(axis, isReversed));
}

void CQelGraph::DrawAxisValue(CDC* dc, const CAxisStyle& axis, SideUses& used, bool isMaximum, bool isFirst) {
    const Side side = SideOf(axis.GetViewMode());
    SideUse& use = used[static_cast<unsigned>(axis.GetViewMode())];
    const CString text = WrittenValue(axis, isMaximum);
    CSize size;
    int fieldWidth = 0;
    {
        const qel::LabelFont font(dc, axis.GetLabelFont());
        size = font.Size(text);
        fieldWidth = std::max(size.cx, font.Size(WrittenValue(axis, !isMaximum)).cx);
    }
    const int length = side.Along(size);
    if (length == 0 || use.first + length + use.last > side.Length()) return;
    const LONGLONG along = isFirst ? use.first : side.Length() - use.last - length;
    (isFirst ? use.first : use.last) += side.Taken(size);
    const CPoint at = side.Corner(along, size, fieldWidth, axis.GetStrPosition() == 1);
    const LOGFONT& font = axis.GetLabelFont();
    DCTextOut(dc, at.x, at.y, qel::FaceOf(font), font.lfHeight, axis.GetLabelColor(), text, 0, kNoBox, kNoBox);
}

void CQelGraph::DrawAxisDimStr(CDC* dc, const CAxisStyle& axis, SideUses& used, const SideUses& counts) {
    const Side side = SideOf(axis.GetViewMode());
    const SideUse& count = counts[static_cast<unsigned>(axis.GetViewMode())];
    SideUse& use = used[static_cast<unsigned>(axis.GetViewMode())];
    const CSize size = GetAxisDimViewSize(dc, axis);
    const int length = side.Along(size);
    // All dimensions of the side are in the middle of the space that its values leave free.
    const LONGLONG free = side.Length() - count.first - count.last;
    const LONGLONG before = std::max<LONGLONG>(0, (free - count.dims) / 2) + use.dims;
    if (length == 0 || before + length > free) return;
    use.dims += side.Taken(size);
    const CPoint at = side.Corner(count.first + before, size, size.cx, true);
    const LOGFONT& font = axis.GetDimFont();
    DCTextOut(dc, at.x, at.y, qel::FaceOf(font), font.lfHeight, axis.GetDimColor(), axis.GetDimStr(), 0, kNoBox,
              kNoBox);
}

bool CQelGraph::IsFrameWide() const { return m_frameStyle.GetWidth() > 1 || m_frameStyle.GetWidth() < -1; }

// A thin outline is within the area like everything else. The outer half of a wide one is not: it is drawn without a
// clip, because a job could not remove the clip again before its texts.
void CQelGraph::AxisDraw(CDC* dc) {
    if (IsFrameWide()) {
        OutlineDraw(dc);
        GridDraw(dc);
    } else if (dc != nullptr) {
        CRgn area;
        DCClipDrawArea(dc, &area);
        OutlineDraw(dc);
        GridLinesDraw(dc);
        DCClipDrawArea(dc, nullptr);
    }
}

void CQelGraph::OutlineDraw(CDC* dc) {
    if (dc == nullptr) return;
    const CRect& area = m_rectDrawArea;
    CPen pen;
    CPen* const before =
        DCCreateAndSelectPen(dc, &pen, m_frameStyle.GetStyle(), m_frameStyle.GetWidth(), m_frameStyle.GetColor());
    DCMoveTo(dc, area.left, area.top);
    DCLineTo(dc, area.left, area.bottom);
    DCLineTo(dc, area.right, area.bottom);
    DCLineTo(dc, area.right, area.top);
    DCLineTo(dc, area.left, area.top);
    dc->SelectObject(before);
}

void CQelGraph::GridDraw(CDC* dc) {
    if (dc == nullptr) return;
    CRgn area;
    DCClipDrawArea(dc, &area);
    GridLinesDraw(dc);
    DCClipDrawArea(dc, nullptr);
}

void CQelGraph::GridLinesDraw(CDC* dc) {
    const CRect& area = m_rectDrawArea;
    const int width = area.Width(), height = area.Height();
    CPen pen;
    CPen* const before =
        DCCreateAndSelectPen(dc, &pen, m_axisStyle.GetStyle(), m_axisStyle.GetWidth(), m_axisStyle.GetColor());
    ForEachDivision(width, m_nDivX, [&](int distance) {
        DCMoveTo(dc, area.left + distance, area.top);
        DCLineTo(dc, area.left + distance, area.bottom);
    });
    const bool isUpward = m_nCoordinateMode == 1;
    ForEachDivision(isUpward ? std::abs(height) : height, m_nDivY, [&](int distance) {
        const int y = (isUpward ? area.bottom : area.top) + distance;
        DCMoveTo(dc, area.left, y);
        DCLineTo(dc, area.right, y);
    });
    dc->SelectObject(before);
}
