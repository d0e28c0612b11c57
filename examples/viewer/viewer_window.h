#pragma once

#include <optional>

#include <gtk/gtk.h>
#include <qellib10/gtk/drawing_view.h>

#include "detector.h"
#include "live_curve.h"
#include "options.h"
#include "sampler.h"

namespace viewer {

/// A window with the curve, a cross that follows the mouse along it, and its commands. Everything runs in GTK's thread;
/// the points come from a thread of their own.
class ViewerWindow {
public:
    explicit ViewerWindow(const Options& options);
    ~ViewerWindow();
    ViewerWindow(const ViewerWindow&) = delete;
    ViewerWindow& operator=(const ViewerWindow&) = delete;

    /// Null once the user has closed it.
    GtkWidget* Widget() const { return m_pWindow; }
    /// Begins to measure.
    void Start();

private:
    struct Signals;

    GtkWidget* MakeHeader(bool isAll);
    void Draw(CDC& dc, const CSize& size);
    void TakePoints();
    void FitAndRedraw();
    void SetMouse(std::optional<CPoint> mouse);
    void SetCross(std::optional<CGraphData> cross);
    void InvertCross(CDC& dc);
    void Print();

    Detector m_detector;
    LiveCurve m_curve;
    std::optional<CPoint> m_mouse;      // where it is in the view
    std::optional<CGraphData> m_cross;  // the point that it is on
    qel::DrawingView m_view;
    GtkWidget* m_pWindow;
    GtkWidget* m_pValues;
    guint m_nTimer = 0;
    std::optional<Sampler> m_sampler;  // last, so that its thread ends first
};

}  // namespace viewer
