#pragma once

#include <optional>

#include "qellib10/gtk/chart_menu.h"

namespace qel {

/// What mouse, touch and keys do with a chart.
class ChartEvents {
public:
    ChartEvents(ChartScene& scene, ChartActions& actions);
    ~ChartEvents();
    ChartEvents(const ChartEvents&) = delete;
    ChartEvents& operator=(const ChartEvents&) = delete;

private:
    struct Signals;

    bool Scroll(const GdkEventScroll& event);
    void Pinch(double scale);
    bool Press(const GdkEventButton& event);
    bool Release();
    void Move(const ShapePoint& at);
    void Leave();
    void ShowShape(const ShapePoint& at);

    ChartScene& m_scene;
    ChartActions& m_actions;
    ChartMenu m_menu;
    ObjectRef<GtkGesture> m_pinch;
    double m_pinched = 1;
    std::optional<ShapePoint> m_panned;  // where the pointer was
    bool m_isMarker = false;             // a marker is being dragged
    bool m_isShapeWide = false;          // the pointer is at a marker
};

}  // namespace qel
