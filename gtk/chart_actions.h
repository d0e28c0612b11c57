#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "qellib10/gtk/chart_leaving_out.h"
#include "qellib10/gtk/chart_output.h"

namespace qel {

/// What a key or an entry of the menu does.
enum class ChartCommand {
    kShowAll,
    kZoomIn,
    kZoomOut,
    kLeft,
    kRight,
    kUp,
    kDown,
    kCancel,
    kNextPoint,
    kPointBefore,
    kNextSeries,
    kMarkers,
    kMarkerLeft,
    kMarkerRight,
    kMarkerFarLeft,
    kMarkerFarRight,
    kOtherMarker,
    kMarkerSeries,
    kLeaveOutMode,
    kLeaveOutPoint,
    kCopyPicture,
    kCopyCsv,
    kSave,
    kPrint
};

/// What users can do with a chart, whatever they do it with.
class ChartActions {
public:
    explicit ChartActions(ChartScene& scene) : leavingOut(scene), output(scene), m_scene(scene) {}

    void Run(ChartCommand command);
    bool IsOffered(ChartCommand command) const;
    bool IsOn(ChartCommand command) const;  ///< of those that are switched on and off

    /// Draws again where something has changed.
    void Changed(bool isChanged) {
        if (isChanged) m_scene.Redraw();
    }
    void RangeChanged(bool isChanged);  ///< the markers have moved
    /// A box was dragged: it is zoomed to, or its points are chosen.
    void Take(const ChartBox& box);
    bool IsBoxForZoom() const { return !chooser && !leavingOut.IsOn(); }

    ChartLeavingOut leavingOut;
    ChartOutput output;
    std::function<void(std::size_t, const std::vector<std::size_t>&)> chooser;
    std::function<void(const std::optional<ChartRange>&)> onRange;

private:
    void Zoom(double factor);
    void Pan(double dx, double dy);
    void MoveCursor(bool isMoved);
    void Cancel();
    void Choose(const ChartBox& box);

    ChartScene& m_scene;
};

}  // namespace qel
