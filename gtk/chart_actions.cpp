#include "qellib10/gtk/chart_actions.h"

#include <utility>

#include "qellib10/gtk/chart_overlay.h"

namespace qel {
namespace {

constexpr double kZoom = 1.4, kPan = 40, kFar = 20;  // units of the widget

}  // namespace

void ChartActions::Run(ChartCommand command) {
    const auto moveMarker = [&](double by) {
        RangeChanged(m_scene.markers.MoveBy(m_scene.chart, m_scene.navigator, by * m_scene.Scale()));
    };
    switch (command) {
        case ChartCommand::kShowAll:
            m_scene.navigator.Reset();
            return m_scene.Redraw();
        case ChartCommand::kZoomIn:
            return Zoom(kZoom);
        case ChartCommand::kZoomOut:
            return Zoom(1 / kZoom);
        case ChartCommand::kLeft:
            return Pan(kPan, 0);
        case ChartCommand::kRight:
            return Pan(-kPan, 0);
        case ChartCommand::kUp:
            return Pan(0, kPan);
        case ChartCommand::kDown:
            return Pan(0, -kPan);
        case ChartCommand::kCancel:
            return Cancel();
        case ChartCommand::kNextPoint:
            return MoveCursor(m_scene.cursor.Step(m_scene.chart, m_scene.navigator, true));
        case ChartCommand::kPointBefore:
            return MoveCursor(m_scene.cursor.Step(m_scene.chart, m_scene.navigator, false));
        case ChartCommand::kNextSeries:
            return MoveCursor(m_scene.cursor.NextSeries(m_scene.chart, m_scene.navigator));
        case ChartCommand::kMarkers:
            return RangeChanged(m_scene.markers.Toggle(m_scene.chart, m_scene.navigator));
        case ChartCommand::kMarkerLeft:
            return moveMarker(-1);
        case ChartCommand::kMarkerRight:
            return moveMarker(1);
        case ChartCommand::kMarkerFarLeft:
            return moveMarker(-kFar);
        case ChartCommand::kMarkerFarRight:
            return moveMarker(kFar);
        case ChartCommand::kOtherMarker:
            m_scene.markers.Swap();
            return m_scene.RedrawOver();
        case ChartCommand::kMarkerSeries:
            return RangeChanged(m_scene.markers.NextSeries(m_scene.chart, m_scene.navigator));
        case ChartCommand::kLeaveOutMode:
            return leavingOut.Switch();
        case ChartCommand::kLeaveOutPoint:
            return leavingOut.ToggleAtCursor();
        case ChartCommand::kCopyPicture:
            return output.CopyPicture();
        case ChartCommand::kCopyCsv:
            return output.CopyCsv();
        case ChartCommand::kSave:
            return output.AskAndSave();
        case ChartCommand::kPrint:
            return output.AskAndPrint();
    }
}

bool ChartActions::IsOffered(ChartCommand command) const {
    const bool isLeaving = command == ChartCommand::kLeaveOutMode || command == ChartCommand::kLeaveOutPoint;
    return !isLeaving || leavingOut.IsAllowed();
}

bool ChartActions::IsOn(ChartCommand command) const {
    return command == ChartCommand::kMarkers        ? m_scene.markers.Range().has_value()
           : command == ChartCommand::kLeaveOutMode ? leavingOut.IsOn()
                                                    : false;
}

// At the cursor or the pointer, else in the middle.
void ChartActions::Zoom(double factor) {
    const ChartBox& plot = m_scene.navigator.Plot();
    const ShapePoint middle{(plot.left + plot.right) / 2, (plot.top + plot.bottom) / 2};
    const auto at = m_scene.cursor.At(m_scene.chart, m_scene.navigator);
    const bool isCursor = at && m_scene.navigator.IsInPlot(at->at);
    Changed(m_scene.navigator.ZoomAt(isCursor ? at->at : m_scene.pointer.value_or(middle), factor));
}

void ChartActions::Pan(double dx, double dy) {
    Changed(m_scene.navigator.PanBy(dx * m_scene.Scale(), dy * m_scene.Scale()));
}

// The chart follows a cursor that leaves the plot.
void ChartActions::MoveCursor(bool isMoved) {
    const auto at = m_scene.cursor.At(m_scene.chart, m_scene.navigator);
    if (!isMoved || !at) return;
    const ChartBox& plot = m_scene.navigator.Plot();
    if (!m_scene.navigator.IsInPlot(at->at))
        Changed(
            m_scene.navigator.PanBy((plot.left + plot.right) / 2 - at->at.x, (plot.top + plot.bottom) / 2 - at->at.y));
    m_scene.RedrawOver();
    m_scene.Announce(at->text);
}

void ChartActions::RangeChanged(bool isChanged) {
    if (!isChanged) return;
    m_scene.RedrawOver();
    std::string text;
    for (const ChartRangeLine& line : m_scene.RangeLines())
        text += (text.empty() ? "" : ", ") + line.name + " " + line.value;
    if (!text.empty()) m_scene.Announce(text);
    if (onRange) onRange(m_scene.markers.Range());
}

void ChartActions::Cancel() {
    m_scene.box.reset();
    m_scene.cursor.Hide();
    m_scene.RedrawOver();
    if (leavingOut.IsOn()) leavingOut.Switch();
}

void ChartActions::Take(const ChartBox& box) {
    if (leavingOut.IsOn()) {
        constexpr double kClick = 4;  // a smaller box is a click
        const double least = kClick * m_scene.Scale();
        const bool isClick = std::abs(box.Width()) < least && std::abs(box.Height()) < least;
        isClick ? leavingOut.ToggleNear({box.left, box.top}) : leavingOut.ToggleIn(box);
    } else if (chooser) {
        Choose(box);
    } else {
        m_scene.navigator.ZoomTo(box);
    }
    m_scene.Redraw();
}

void ChartActions::Choose(const ChartBox& box) {
    for (std::size_t i = 0; i < m_scene.chart.series.size(); ++i) {
        const std::vector<std::size_t> points = m_scene.navigator.PointsIn(m_scene.chart, i, box);
        if (points.empty()) continue;
        chooser(i, points);
        return;
    }
}

}  // namespace qel
