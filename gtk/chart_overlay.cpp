#include "qellib10/gtk/chart_overlay.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "qellib10/platform/drawing/shape.h"

namespace qel {
namespace {

struct Row {
    std::string name, value;
};

class OverlayPainter {
public:
    OverlayPainter(CDC& screen, ChartScene& scene)
        : m_screen(screen), m_scene(scene), m_theme(scene.chart.theme), m_scale(scene.Scale()), m_gap(6 * m_scale) {}

    void Paint() {
        const auto cursor = m_scene.cursor.At(m_scene.chart, m_scene.navigator);
        const std::optional<ShapePoint> place = cursor ? cursor->at : m_scene.pointer;
        const ChartBox& plot = m_scene.navigator.Plot();
        PaintMarkers(place && place->x > plot.left + plot.Width() / 2);
        if (place && !m_scene.box) Upright(place->x, m_theme.axis, Line(), 0.5);
        if (!m_scene.hint.empty()) PaintHint();
        if (m_scene.box) {
            PaintDragged(*m_scene.box);
        } else if (place) {
            PaintValues(ValuesShown(m_scene), *place);
        }
    }

private:
    LabelStyle Style() const { return {m_theme.face, m_theme.labelSize, m_theme.text}; }
    std::string Shortened(const std::string& text) const {
        return ShortenedLabel(text, Style(), m_scene.Dots(), m_scene.Size().cx - 4 * m_gap);
    }
    COLORREF Accent() const { return m_theme.palette.empty() ? m_theme.text : m_theme.palette.front(); }
    double Line() const { return std::max(1.0, std::round(m_scale)); }

    void Upright(double x, COLORREF color, double width, double opacity) {
        const ChartBox& plot = m_scene.navigator.Plot();
        // On whole pixels, so that it is not blurred.
        const double middle = std::floor(x) + (std::lround(width) % 2 == 1 ? 0.5 : 0.0);
        const std::vector<ShapePoint> line = {{middle, plot.top}, {middle, plot.bottom}};
        DrawShape(m_screen, line, {.stroke = color, .strokeWidth = width, .opacity = opacity});
    }
    static std::vector<ShapePoint> Corners(const ChartBox& box) {
        return {{box.left, box.top}, {box.right, box.top}, {box.right, box.bottom}, {box.left, box.bottom}};
    }
    void Frame(const ChartBox& box, COLORREF color, double width) {
        DrawShape(m_screen, Corners(box), {.stroke = color, .strokeWidth = width, .isClosed = true});
    }
    // With its edges in the middle of pixels.
    ChartBox OnPixels(const ChartBox& box) const {
        const double half = Line() / 2;
        const auto edge = [&](double place) { return std::floor(place) + half; };
        return {edge(box.left), edge(box.top), edge(box.right), edge(box.bottom)};
    }

    CSize SizeOf(const std::vector<Row>& rows) {
        m_nameWidth = m_valueWidth = 0;
        for (const Row& row : rows) {
            const LabelSize name = MeasureLabel(row.name, Style(), m_scene.Dots());
            m_nameWidth = std::max(m_nameWidth, name.width);
            m_valueWidth = std::max(m_valueWidth, MeasureLabel(row.value, Style(), m_scene.Dots()).width);
            m_rowHeight = std::ceil(name.Height() + m_scale);
            m_ascent = name.ascent;
        }
        const double between = m_valueWidth > 0 ? 2 * m_gap : 0;
        return {static_cast<int>(std::ceil(m_nameWidth + between + m_valueWidth + 2 * m_gap)),
                static_cast<int>(std::ceil(m_rowHeight * double(rows.size()) + m_gap))};
    }
    // Names at the left, values at the right edge.
    void PaintRows(const std::vector<Row>& rows, const ShapePoint& corner, const CSize& size) {
        const ChartBox box = OnPixels({corner.x, corner.y, corner.x + size.cx, corner.y + size.cy});
        DrawShape(m_screen, Corners(box), {.fill = m_theme.background});  // texts below it would show through
        Frame(box, m_theme.axis, Line());
        double y = std::round(box.top + m_gap / 2 + m_ascent);
        for (const Row& row : rows) {
            const double width = MeasureLabel(row.value, Style(), m_scene.Dots()).width;
            DrawLabel(m_screen, {box.left + m_gap, y}, row.name, Style(), m_scene.Dots());
            DrawLabel(m_screen, {box.right - m_gap - width, y}, row.value, Style(), m_scene.Dots());
            y += m_rowHeight;
        }
    }

    void PaintMarkers(bool isPlaceRight) {
        const auto places = m_scene.markers.PlacesIn(m_scene.chart, m_scene.navigator);
        if (!places) return;
        const ChartBox& plot = m_scene.navigator.Plot();
        const double low = std::clamp(std::min(places->from, places->to), plot.left, plot.right);
        const double high = std::clamp(std::max(places->from, places->to), plot.left, plot.right);
        DrawShape(m_screen, Corners({low, plot.top, high, plot.bottom}), {.fill = Accent(), .opacity = 0.08});
        for (const bool isSecond : {false, true}) {
            const double x = isSecond ? places->to : places->from;
            if (!(x >= plot.left && x <= plot.right)) continue;
            const bool isMoving = isSecond == m_scene.markers.IsSecondMoving();
            Upright(x, Accent(), (isMoving ? 2 : 1) * Line(), 1);
            PaintHandle({std::floor(x) + 0.5, plot.top}, isMoving);
        }
        const ChartRange range = *m_scene.markers.Range();
        if (range.series >= m_scene.chart.series.size()) return;
        std::vector<Row> rows = {{Shortened(m_scene.chart.series[range.series].name), ""}};
        for (const ChartRangeLine& line : m_scene.RangeLines()) rows.push_back({line.name, line.value});
        const CSize size = SizeOf(rows);
        // In the upper corner where the pointer or the cursor is not.
        const double x = isPlaceRight ? plot.left + m_gap : plot.right - m_gap - size.cx;
        PaintRows(rows, {std::max(0.0, x), plot.top + m_gap}, size);
    }
    void PaintHandle(const ShapePoint& at, bool isFilled) {
        const double half = 5 * m_scale;
        const std::vector<ShapePoint> triangle = {
            {at.x - half, at.y - half}, {at.x + half, at.y - half}, {at.x, at.y + half}};
        DrawShape(m_screen, triangle, {.fill = isFilled ? Accent() : m_theme.background});
        DrawShape(m_screen, triangle, {.stroke = Accent(), .strokeWidth = Line(), .isClosed = true});
    }

    void PaintHint() {
        const std::vector<Row> rows = {{Shortened(m_scene.hint), ""}};
        const CSize size = SizeOf(rows);
        const ChartBox& plot = m_scene.navigator.Plot();
        const double left = (plot.left + plot.right - size.cx) / 2;
        PaintRows(rows, {std::max(0.0, left), plot.bottom - m_gap - size.cy}, size);
    }

    void PaintDragged(const ChartBox& box) {
        DrawShape(m_screen, Corners(box), {.fill = Accent(), .opacity = 0.2});
        Frame(OnPixels(box), m_theme.axis, Line());
    }

    // The values of all series, in a box beside the place.
    void PaintValues(const std::vector<ChartNavigator::Value>& values, const ShapePoint& at) {
        if (values.empty()) return;
        std::vector<Row> rows;
        for (const ChartNavigator::Value& value : values) {
            rows.push_back({Shortened(value.text), ""});
            const double half = 3.5 * m_scale;
            const ChartBox mark{value.at.x - half, value.at.y - half, value.at.x + half, value.at.y + half};
            if (m_scene.navigator.IsInPlot(value.at)) Frame(mark, m_theme.text, 1.5 * m_scale);
        }
        // Right and above of the place, where that is in the plot.
        const CSize size = SizeOf(rows), all = m_scene.Size();
        const ChartBox& plot = m_scene.navigator.Plot();
        const double left = BesidePlace(at.x, size.cx, plot.left, plot.right, double(all.cx), true);
        const double top = BesidePlace(at.y, size.cy, plot.top, plot.bottom, double(all.cy), false);
        PaintRows(rows, {left, top}, size);
    }
    // Where a box of this length starts: after or before a place, within the plot if it fits there, else the widget.
    double BesidePlace(double at, double length, double low, double high, double all, bool isAfter) const {
        const double after = at + m_gap, before = at - m_gap - length;
        const auto isInside = [&](double start) { return start >= low && start + length <= high; };
        const double first = isAfter ? after : before, second = isAfter ? before : after;
        if (isInside(first)) return first;
        if (isInside(second)) return second;
        if (length > high - low) low = 0, high = all;
        return std::clamp(first, low, std::max(low, high - length - 1));
    }

    CDC& m_screen;
    ChartScene& m_scene;
    const ChartTheme& m_theme;
    const double m_scale, m_gap;
    double m_nameWidth = 0, m_valueWidth = 0, m_rowHeight = 0, m_ascent = 0;
};

}  // namespace

std::vector<ChartNavigator::Value> ValuesShown(const ChartScene& scene) {
    const auto at = scene.cursor.At(scene.chart, scene.navigator);
    if (!at)
        return scene.pointer ? scene.navigator.ValuesAt(scene.chart, scene.pointer->x)
                             : std::vector<ChartNavigator::Value>();
    std::vector<ChartNavigator::Value> values = scene.navigator.ValuesAt(scene.chart, at->at.x);
    // Of points at the same place, the one that the cursor is at.
    const auto own = std::ranges::find(values, at->series, &ChartNavigator::Value::series);
    if (own != values.end()) *own = *at;
    return values;
}

void PaintOverlay(CDC& screen, ChartScene& scene) { OverlayPainter(screen, scene).Paint(); }

}  // namespace qel
