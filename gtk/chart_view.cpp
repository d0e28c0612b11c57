#include "qellib10/gtk/chart_view.h"

#include <utility>

#include "qellib10/graph/chart_csv.h"
#include "qellib10/gtk/chart_events.h"
#include "qellib10/gtk/chart_feed.h"
#include "qellib10/gtk/chart_overlay.h"

namespace qel {

// The widget, which lives as long as its container and this view need it, and what is around it.
class ChartView::Parts {
public:
    explicit Parts(Chart shown)
        : m_widget(GTK_WIDGET(g_object_ref_sink(gtk_drawing_area_new()))),
          scene(std::move(shown), m_widget.get()),
          actions(scene),
          m_events(scene, actions) {
        g_signal_connect(m_widget.get(), "draw", G_CALLBACK(OnDraw), this);
        g_signal_connect(m_widget.get(), "size-allocate", G_CALLBACK(OnSize), this);
        g_signal_connect(m_widget.get(), "notify::scale-factor", G_CALLBACK(OnScale), this);
        g_signal_connect(m_widget.get(), "style-updated", G_CALLBACK(OnStyle), this);
        m_frames = gtk_widget_add_tick_callback(m_widget.get(), OnFrame, this, nullptr);
        scene.Edited();
        gtk_widget_show(m_widget.get());
    }
    ~Parts() {
        gtk_widget_remove_tick_callback(m_widget.get(), m_frames);
        g_signal_handlers_disconnect_by_data(m_widget.get(), this);
    }
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;

private:
    static Parts& Of(gpointer parts) { return *static_cast<Parts*>(parts); }

    static gboolean OnDraw(GtkWidget*, cairo_t* cairo, gpointer parts) noexcept {
        ChartScene& scene = Of(parts).scene;
        scene.Show(cairo, [&](CDC& screen) { PaintOverlay(screen, scene); });
        return FALSE;
    }
    static void OnSize(GtkWidget*, GdkRectangle*, gpointer parts) noexcept { Of(parts).scene.Redraw(); }
    static void OnScale(GtkWidget*, GParamSpec*, gpointer parts) noexcept { Of(parts).scene.Redraw(); }
    static void OnStyle(GtkWidget*, gpointer parts) noexcept { Of(parts).scene.Follow(); }
    static gboolean OnFrame(GtkWidget*, GdkFrameClock*, gpointer parts) noexcept {
        ChartScene& scene = Of(parts).scene;
        if (Of(parts).feed.MoveTo(scene.chart)) scene.Redraw();
        scene.LookForPoints();
        if (scene.AreRangeLinesDue()) scene.RedrawOver();
        scene.Follow();  // not every change of the theme has a signal here
        return G_SOURCE_CONTINUE;
    }

    ObjectRef<GtkWidget> m_widget;

public:
    ChartScene scene;
    ChartActions actions;
    ChartFeed feed;

private:
    ChartEvents m_events;
    guint m_frames = 0;
};

ChartView::ChartView(Chart chart) : m_pParts(std::make_unique<Parts>(std::move(chart))) {}
ChartView::~ChartView() = default;

GtkWidget* ChartView::Widget() const noexcept { return m_pParts->scene.Widget(); }
const Chart& ChartView::Shown() const noexcept { return m_pParts->scene.chart; }
const ChartNavigator& ChartView::Navigator() const noexcept { return m_pParts->scene.navigator; }

void ChartView::Edit(const std::function<void(Chart& chart)>& change) {
    change(m_pParts->scene.chart);
    m_pParts->scene.Edited();
}

void ChartView::SetTheme(const ChartTheme& theme) { m_pParts->scene.SetTheme(theme); }

void ChartView::Append(std::size_t series, std::span<const CGraphData> points) { m_pParts->feed.Add(series, points); }

void ChartView::Reset() { m_pParts->actions.Run(ChartCommand::kShowAll); }

void ChartView::SetChooser(std::function<void(std::size_t, const std::vector<std::size_t>&)> chooser) {
    m_pParts->actions.chooser = std::move(chooser);
}

void ChartView::AllowLeavingOut(std::function<void(std::size_t series)> changed,
                                std::function<std::optional<std::string>(std::size_t count)> askReason) {
    if (changed) {
        m_pParts->actions.leavingOut.Allow(std::move(changed), std::move(askReason));
    } else {
        m_pParts->actions.leavingOut.Forbid();
    }
}

const std::optional<ChartRange>& ChartView::Range() const noexcept { return m_pParts->scene.markers.Range(); }

void ChartView::SetRange(const std::optional<ChartRange>& range) {
    m_pParts->scene.markers.Set(range);
    m_pParts->scene.RedrawOver();
}

void ChartView::SetRangeCallback(std::function<void(const std::optional<ChartRange>&)> moved) {
    m_pParts->actions.onRange = std::move(moved);
}

bool ChartView::SavePicture(std::string_view path) { return m_pParts->scene.SavePicture(path); }
bool ChartView::SaveAs(std::string_view path) { return m_pParts->actions.output.Save(path); }
bool ChartView::Print() { return m_pParts->actions.output.Print(); }
std::string ChartView::Csv() const { return ChartCsv(m_pParts->scene.chart); }
void ChartView::CopyPicture() { m_pParts->actions.output.CopyPicture(); }
void ChartView::CopyCsv() { m_pParts->actions.output.CopyCsv(); }

}  // namespace qel
