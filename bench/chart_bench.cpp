// Promise: a chart of 1200 x 800 pixels with axes, texts and a legend, whose ten lines of 100,000 points have smooth
// edges, costs less than in QCustomPlot with antialiasing and its adaptive sampling, and far less than the strokes of
// Cairo alone. A window of 1920 x 1080 with a million points, zoomed or not, is drawn in a few times the time that
// reading the points once takes.
//   Lines<Ours> >= 3 Lines<CustomPlot>
//   Lines<Ours> >= 20 Lines<Cairo>
//   Window/zoomed:1 <= 1 Window/zoomed:0
#include <benchmark/benchmark.h>
#include <cairo.h>
#include <qcustomplot.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <qellib10/qellib10.h>

namespace {

constexpr int kWidth = 1200, kHeight = 800;
constexpr int kLines = 10, kPoints = 100'000;

// Curves of some waves with noise, the same for all.
std::vector<CGraphData> Curve(int points, int line) {
    std::mt19937 random(static_cast<unsigned>(line));
    std::uniform_real_distribution<double> noise(-0.15, 0.15);
    std::vector<CGraphData> curve;
    curve.reserve(static_cast<std::size_t>(points));
    for (int i = 0; i < points; ++i)
        curve.emplace_back(i, line + std::sin(6.28 * (line + 1) * i / points) + noise(random));
    return curve;
}

class Picture {
public:
    Picture(int width, int height) : m_box(0, 0, width, height) {
        if (!m_dc.CreateCompatibleDC(nullptr) || !m_bitmap.CreateBitmap(width, height, 1, 32, nullptr)) std::abort();
        m_dc.SelectObject(&m_bitmap);
    }
    void Draw(const qel::Chart& chart, const qel::ChartRanges& shown = {}) {
        if (!chart.Draw(m_dc, m_box, shown).isDrawn) std::abort();
        benchmark::DoNotOptimize(m_dc.GetPixel(0, 0));
    }

private:
    CRect m_box;
    CDC m_dc;
    CBitmap m_bitmap;
};

class Ours {
public:
    Ours() : m_picture(kWidth, kHeight) {
        m_chart.title = "Ten lines";
        for (int line = 0; line < kLines; ++line)
            m_chart.series.push_back({.name = "Line " + std::to_string(line), .points = Curve(kPoints, line)});
    }
    void Draw() { m_picture.Draw(m_chart); }

private:
    qel::Chart m_chart;
    Picture m_picture;
};

class CustomPlot {
public:
    CustomPlot() : m_image(kWidth, kHeight, QImage::Format_RGB32) {
        m_plot.setAntialiasedElements(QCP::aeAll);
        m_plot.legend->setVisible(true);
        for (int line = 0; line < kLines; ++line) {
            QCPGraph* const graph = m_plot.addGraph();
            graph->setName(QString("Line %1").arg(line));
            graph->setPen(QPen(QColor::fromHsv(line * 35, 255, 200), 2));
            graph->setAdaptiveSampling(true);
            QVector<double> x, y;
            for (const CGraphData& point : Curve(kPoints, line)) {
                x.append(point.GetXData());
                y.append(point.GetYData());
            }
            graph->setData(x, y, true);
        }
        m_plot.rescaleAxes();
    }
    void Draw() {
        m_image.fill(Qt::white);
        QCPPainter painter(&m_image);
        m_plot.toPainter(&painter, kWidth, kHeight);
    }

private:
    QCustomPlot m_plot;
    QImage m_image;
};

// The strokes alone, with the points in place already.
class Cairo {
public:
    Cairo() {
        for (int line = 0; line < kLines; ++line) m_lines.push_back(Curve(kPoints, line));
    }
    void Draw() {
        cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
        cairo_t* const cairo = cairo_create(surface);
        cairo_set_source_rgb(cairo, 1, 1, 1);
        cairo_paint(cairo);
        cairo_set_line_width(cairo, 2);
        cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
        for (std::size_t line = 0; line < m_lines.size(); ++line) {
            cairo_set_source_rgb(cairo, 0, 0.1 * static_cast<double>(line), 0.5);
            for (const CGraphData& point : m_lines[line])
                cairo_line_to(cairo, point.GetXData() * kWidth / kPoints, 750 - point.GetYData() * 60);
            cairo_stroke(cairo);
        }
        cairo_destroy(cairo);
        cairo_surface_destroy(surface);
    }

private:
    std::vector<std::vector<CGraphData>> m_lines;
};

template <class Drawer> void Lines(benchmark::State& state) {
    Drawer drawer;
    for (auto _ : state) drawer.Draw();
}

void Window(benchmark::State& state) {
    qel::Chart chart;
    chart.series.push_back({.name = "Live", .points = Curve(1'000'000, 1)});
    qel::ChartRanges shown;
    if (state.range(0) != 0) shown.push_back(qel::AxisRange{400'000, 410'000});
    Picture picture(1920, 1080);
    for (auto _ : state) picture.Draw(chart, shown);
}

}  // namespace

BENCHMARK(Lines<Ours>)->Unit(benchmark::kMillisecond);
BENCHMARK(Lines<CustomPlot>)->Unit(benchmark::kMillisecond);
BENCHMARK(Lines<Cairo>)->Unit(benchmark::kMillisecond);
BENCHMARK(Window)->ArgName("zoomed")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
