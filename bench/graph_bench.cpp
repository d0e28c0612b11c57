// Promise: redrawing a graph of 1200 x 800 pixels costs no more than reading each point once. The peers draw the same
// points: Cairo (strokes without antialiasing), QCustomPlot with its adaptive sampling, and the plain lines of AGG.
// Adding a point to a million and redrawing takes some nanoseconds per point, and recording a million into a print job
// takes little memory. Texts, frame and grid are part of our times.
//   Draw<Ours>/10/100000/* >= 40 Draw<Cairo>/10/100000/*
//   Draw<Ours>/10/100000/* >= 2 Draw<CustomPlot>/10/100000/*
//   Draw<Ours>/512/1000/10 >= 15 Draw<Cairo>/512/1000/10
//   Draw<Ours>/1/10000000/10 >= 15 Draw<Agg>/1/10000000/10
//   AppendAndDraw/1/1000000/10:items_per_second >= 250000000
//   Record/1/1000000/10:bytes_per_point <= 200
// Where x grows from point to point, a wide pen costs little more than a thin one, and a dashed one not much more, on
// either kind of background.
//   Draw<Wide<2>>/1/1000000/10 <= 4 Draw<Ours>/1/1000000/10
//   Draw<Wide<3>>/1/1000000/10 <= 4 Draw<Ours>/1/1000000/10
//   Draw<Wide<9>>/1/1000000/10 <= 4 Draw<Ours>/1/1000000/10
//   Draw<Wide<3>>/1/1000000/10 >= 40 Draw<WideCairo>/1/1000000/10
//   Draw<Dashed>/1/1000000/10 <= 4 Draw<Ours>/1/1000000/10
//   Draw<DashedClear>/1/1000000/10 <= 4 Draw<Ours>/1/1000000/10
//   Draw<Dashed>/1/1000000/10 >= 20 Draw<DashedCairo>/1/1000000/10
// Where x varies by a pixel, or points are scattered over the area, runs of points in one column are short, and a wide
// pen costs more.
//   DrawUnsorted<Wide<3>>/1/1000000/10/1 <= 8 DrawUnsorted<Ours>/1/1000000/10/1
//   DrawUnsorted<Wide<32>>/1/1000000/10/1 <= 16 DrawUnsorted<Ours>/1/1000000/10/1
//   DrawUnsorted<Wide<3>>/1/20000/200/1184 <= 5 DrawUnsorted<Ours>/1/20000/200/1184
//   DrawUnsorted<Wide<32>>/1/20000/200/1184 <= 12 DrawUnsorted<Ours>/1/20000/200/1184
// A frame with axis texts is redrawn without creating its fonts again.
//   Frame<true> <= 8 Frame<false>
#include <agg_pixfmt_rgba.h>
#include <agg_rasterizer_outline.h>
#include <agg_renderer_base.h>
#include <agg_renderer_primitives.h>
#include <agg_rendering_buffer.h>
#include <benchmark/benchmark.h>
#include <cairo.h>
#include <malloc.h>
#include <qcustomplot.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <utility>
#include <vector>

#include "qellib10/graph/back_buffer_dc.h"
#include "qellib10/graph/qel_graph.h"
#include "qellib10/print/queue_data.h"

namespace {

constexpr int kWidth = 1200, kHeight = 800;
constexpr int kMargin = 8;  // around the area, without texts

struct Series {
    std::vector<double> x, y;  // in pixels of the area, y upward
};

// Curves of one wave each with noise, the same for all peers.
struct Input {
    int series, points, noise;
    int shift = 0;  // x is at most so far from where it would be, on a ring; 0: x grows
    auto operator<=>(const Input&) const = default;
};

const std::vector<Series>& SeriesOf(const Input& input) {
    static std::map<Input, std::vector<Series>> all;
    std::vector<Series>& series = all[input];
    if (!series.empty()) return series;
    std::mt19937 random(1);
    std::uniform_real_distribution<double> noise(-input.noise, input.noise);
    std::uniform_real_distribution<double> shift(-input.shift, input.shift);
    constexpr double kAreaWidth = kWidth - 2.0 * kMargin;
    for (int s = 0; s < input.series; ++s) {
        Series& one = series.emplace_back();
        for (int i = 0; i < input.points; ++i) {
            const double x = kAreaWidth * i / input.points;
            one.x.push_back(input.shift == 0 ? x : std::fmod(x + shift(random) + kAreaWidth, kAreaWidth));
            one.y.push_back(400 + 150 * std::sin(6.3 * i / input.points + s) + noise(random));
        }
    }
    return series;
}

Input InputOf(const benchmark::State& state) {
    return {.series = static_cast<int>(state.range(0)),
            .points = static_cast<int>(state.range(1)),
            .noise = static_cast<int>(state.range(2))};
}

class Ours {
public:
    explicit Ours(const std::vector<Series>& series) {
        m_buffer.Create(kWidth, kHeight, nullptr);
        m_dc.Attach(m_buffer);
        m_graph.SetDrawSize(kWidth, kHeight);
        m_graph.SetXLabelViewMode(0, 0);
        m_graph.SetYLabelViewMode(0, 0);
        m_graph.SetDivX(0);
        m_graph.SetDivY(0);
        for (int s = 0; s < static_cast<int>(series.size()); ++s) {
            const Series& one = series[static_cast<std::size_t>(s)];
            m_graph.SetGraphViewMode(s, 1);
            m_graph.SetXMaxRange(s, kWidth - 2 * kMargin);
            m_graph.SetYMaxRange(s, kHeight - 2 * kMargin);
            for (std::size_t i = 0; i < one.x.size(); ++i) m_graph.AddData(s, one.x[i], one.y[i]);
        }
    }
    ~Ours() { m_dc.Detach(); }
    CDC& Context() { return m_dc; }
    void Draw() {
        RECT all{0, 0, kWidth, kHeight};
        m_buffer.FillSolidRect(&all, RGB(255, 255, 255));
        m_graph.GraphDraw(&m_dc, 0, 0);
        benchmark::DoNotOptimize(m_dc.GetPixel(0, 0));
    }
    bool IsInk(int x, int y) { return m_dc.GetPixel(x, y) == 0; }
    CQelGraph& Graph() { return m_graph; }

private:
    CBackBufferDC m_buffer;
    CDC m_dc;
    CQelGraph m_graph;
};

// The same with other pens.
template <int kStyle, int kPenWidth, int kBackMode> class Penned : public Ours {
public:
    explicit Penned(const std::vector<Series>& series) : Ours(series) {
        for (int s = 0; s < static_cast<int>(series.size()); ++s) {
            Graph().SetLineGraphStyle(s, {0, kStyle, kPenWidth});
        }
        Context().SetBkMode(kBackMode);
    }
};
template <int kPenWidth> using Wide = Penned<PS_SOLID, kPenWidth, OPAQUE>;
using Dashed = Penned<PS_DASH, 1, OPAQUE>;
using DashedClear = Penned<PS_DASH, 1, TRANSPARENT>;

class Cairo {
public:
    explicit Cairo(const std::vector<Series>& series, int penWidth = 1, std::vector<double> dashes = {})
        : m_series(series), m_nPenWidth(penWidth), m_dashes(std::move(dashes)) {}
    ~Cairo() {
        cairo_destroy(m_cairo);
        cairo_surface_destroy(m_surface);
    }
    void Draw() {
        cairo_set_source_rgb(m_cairo, 1, 1, 1);
        cairo_paint(m_cairo);
        cairo_set_source_rgb(m_cairo, 0, 0, 0);
        cairo_set_antialias(m_cairo, CAIRO_ANTIALIAS_NONE);
        cairo_set_line_width(m_cairo, m_nPenWidth);
        cairo_set_line_join(m_cairo, m_nPenWidth > 1 ? CAIRO_LINE_JOIN_ROUND : CAIRO_LINE_JOIN_MITER);
        cairo_set_dash(m_cairo, m_dashes.data(), static_cast<int>(m_dashes.size()), 0);
        for (const Series& one : m_series) {
            for (std::size_t i = 0; i < one.x.size(); ++i) {
                cairo_line_to(m_cairo, kMargin + one.x[i] + 0.5, kHeight - kMargin - one.y[i] + 0.5);
            }
            cairo_stroke(m_cairo);
        }
        cairo_surface_flush(m_surface);
    }
    bool IsInk(int x, int y) {
        const unsigned char* const row =
            cairo_image_surface_get_data(m_surface) + std::ptrdiff_t{y} * cairo_image_surface_get_stride(m_surface);
        return row[4 * x] == 0;
    }

private:
    const std::vector<Series>& m_series;
    const int m_nPenWidth;
    const std::vector<double> m_dashes;
    cairo_surface_t* m_surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
    cairo_t* m_cairo = cairo_create(m_surface);
};

struct WideCairo : Cairo {
    explicit WideCairo(const std::vector<Series>& series) : Cairo(series, 3) {}
};
struct DashedCairo : Cairo {
    explicit DashedCairo(const std::vector<Series>& series) : Cairo(series, 1, {18, 6}) {}
};

class Agg {
public:
    explicit Agg(const std::vector<Series>& series) : m_series(series), m_pixels(kWidth * kHeight * 4) {}
    void Draw() {
        agg::rendering_buffer buffer(m_pixels.data(), kWidth, kHeight, kWidth * 4);
        agg::pixfmt_bgra32 format(buffer);
        agg::renderer_base base(format);
        base.clear(agg::rgba8(255, 255, 255));
        agg::renderer_primitives primitives(base);
        primitives.line_color(agg::rgba8(0, 0, 0));
        agg::rasterizer_outline outline(primitives);
        for (const Series& one : m_series) {
            for (std::size_t i = 0; i < one.x.size(); ++i) {
                const double x = kMargin + one.x[i], y = kHeight - kMargin - one.y[i];
                i == 0 ? outline.move_to_d(x, y) : outline.line_to_d(x, y);
            }
        }
        benchmark::ClobberMemory();
    }
    bool IsInk(int x, int y) const { return m_pixels[static_cast<std::size_t>(y * kWidth + x) * 4] == 0; }

private:
    const std::vector<Series>& m_series;
    std::vector<unsigned char> m_pixels;
};

class CustomPlot {
public:
    explicit CustomPlot(const std::vector<Series>& series) : m_image(kWidth, kHeight, QImage::Format_RGB32) {
        m_plot.setNoAntialiasingOnDrag(true);
        m_plot.setNotAntialiasedElements(QCP::aeAll);
        m_plot.axisRect()->setAutoMargins(QCP::msNone);
        m_plot.axisRect()->setMargins(QMargins(kMargin, kMargin, kMargin, kMargin));
        m_plot.xAxis->setRange(0, kWidth - 2 * kMargin);
        m_plot.yAxis->setRange(0, kHeight - 2 * kMargin);
        m_plot.xAxis->grid()->setVisible(false);
        m_plot.yAxis->grid()->setVisible(false);
        for (const Series& one : series) {
            QCPGraph* const graph = m_plot.addGraph();
            graph->setPen(QPen(Qt::black, 1));
            graph->setAdaptiveSampling(true);
            graph->setData(QVector<double>(one.x.begin(), one.x.end()), QVector<double>(one.y.begin(), one.y.end()),
                           true);
        }
    }
    void Draw() {
        m_image.fill(Qt::white);
        QCPPainter painter(&m_image);
        m_plot.toPainter(&painter, kWidth, kHeight);
    }
    bool IsInk(int x, int y) const { return qGray(m_image.pixel(x, y)) < 128; }

private:
    QCustomPlot m_plot;
    QImage m_image;
};

template <class Drawer> int Ink(Drawer& drawer) {
    int count = 0;
    for (int y = kMargin + 1; y < kHeight - kMargin; ++y) {
        for (int x = kMargin + 1; x < kWidth - kMargin; ++x) count += drawer.IsInk(x, y) ? 1 : 0;
    }
    return count;
}

// The same curves: as many pixels as ours, except for differences in rounding and joins.
template <class Same, class Drawer> void CheckAlike(const Input& input, Drawer& peer) {
    Same ours(SeriesOf(input));
    ours.Draw();
    peer.Draw();
    const int expected = Ink(ours), found = Ink(peer);
    if (expected < 10000 || std::abs(found - expected) > expected / 8) {
        std::fprintf(stderr, "%d series: %d pixels, we %d\n", input.series, found, expected);
        std::abort();
    }
}

// Our drawer for which a peer draws the same.
template <class Drawer> struct SameAs { using Type = Ours; };
template <int kStyle, int kPenWidth, int kBackMode> struct SameAs<Penned<kStyle, kPenWidth, kBackMode>> {
    using Type = Penned<kStyle, kPenWidth, kBackMode>;
};
template <> struct SameAs<WideCairo> { using Type = Wide<3>; };
template <> struct SameAs<DashedCairo> { using Type = DashedClear; };

template <class Drawer> void Draw(benchmark::State& state) {
    const Input input = InputOf(state);
    Drawer drawer(SeriesOf(input));
    CheckAlike<typename SameAs<Drawer>::Type>(input, drawer);
    for (auto _ : state) drawer.Draw();
    state.SetItemsProcessed(state.iterations() * input.series * input.points);
}

template <class Drawer> void DrawUnsorted(benchmark::State& state) {
    Input input = InputOf(state);
    input.shift = static_cast<int>(state.range(3));
    Drawer drawer(SeriesOf(input));
    for (auto _ : state) drawer.Draw();
    state.SetItemsProcessed(state.iterations() * input.points);
}

// A live curve: one more point, for which the axis grows, and everything drawn again.
void AppendAndDraw(benchmark::State& state) {
    const Input input = InputOf(state);
    Ours ours(SeriesOf(input));
    double last = kWidth - 2 * kMargin;
    for (auto _ : state) {
        ours.Graph().AddData(0, ++last, 400);
        ours.Graph().SetXMaxRange(0, last);
        ours.Draw();
    }
    state.SetItemsProcessed(state.iterations() * input.points);
    state.counters["time_a_point"] =
        benchmark::Counter(input.points, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Frame, grid and, on request, the values and dimensions of two axes.
template <bool kHasTexts> void Frame(benchmark::State& state) {
    Ours ours({});
    ours.Graph().SetDivX(10);
    ours.Graph().SetDivY(10);
    ours.Graph().SetXDimStr(0, "mL");
    ours.Graph().SetYDimStr(0, "mV");
    ours.Graph().SetXLabelViewMode(0, kHasTexts ? 2 : 0);
    ours.Graph().SetYLabelViewMode(0, kHasTexts ? 3 : 0);
    for (auto _ : state) {
        ours.Graph().GraphDraw(&ours.Context(), 0, 0);
        benchmark::DoNotOptimize(ours.Context().GetPixel(0, 0));
    }
}

std::size_t BytesInUse() {
    const struct mallinfo2 use = mallinfo2();
    return use.uordblks + use.hblkhd;
}

// The graph as commands of a print job.
void Record(benchmark::State& state) {
    const Input input = InputOf(state);
    Ours ours(SeriesOf(input));
    double bytes = 0;
    int commands = 0;
    for (auto _ : state) {
        const std::size_t before = BytesInUse();
        CQelPrintJobQueueData job;
        ours.Graph().GetPrintJob(&job, {0, 0, kWidth, kHeight}, &ours.Context());
        bytes = static_cast<double>(BytesInUse() - before) / input.points;
        commands = job.GetBlock().GetCommandCount();
    }
    state.counters["bytes_per_point"] = bytes;
    state.SetItemsProcessed(state.iterations() * input.points);
    if (commands < input.points || bytes >= 200) state.SkipWithError("points are missing, or take more memory");
}

}  // namespace

#define CASES(name, series, points, noise) \
    BENCHMARK_TEMPLATE(Draw, name)->Args({series, points, noise})->Unit(benchmark::kMillisecond)
#define UNSORTED(name)                     \
    BENCHMARK_TEMPLATE(DrawUnsorted, name) \
        ->Args({1, 1000000, 10, 1})        \
        ->Args({1, 20000, 200, 1184})      \
        ->Unit(benchmark::kMillisecond)

CASES(Ours, 10, 100000, 10);
CASES(Cairo, 10, 100000, 10);
CASES(CustomPlot, 10, 100000, 10);
CASES(Ours, 10, 100000, 200);
CASES(Cairo, 10, 100000, 200);
CASES(CustomPlot, 10, 100000, 200);
CASES(Ours, 512, 1000, 10);
CASES(Cairo, 512, 1000, 10);
CASES(Ours, 1, 1000000, 10);
CASES(Wide<2>, 1, 1000000, 10);
CASES(Wide<3>, 1, 1000000, 10);
CASES(Wide<9>, 1, 1000000, 10);
CASES(WideCairo, 1, 1000000, 10);
CASES(Dashed, 1, 1000000, 10);
CASES(DashedClear, 1, 1000000, 10);
CASES(DashedCairo, 1, 1000000, 10);
UNSORTED(Ours);
UNSORTED(Wide<3>);
UNSORTED(Wide<32>);
CASES(Ours, 1, 10000000, 10);
CASES(Agg, 1, 10000000, 10);
BENCHMARK(Frame<true>)->Unit(benchmark::kMicrosecond);
BENCHMARK(Frame<false>)->Unit(benchmark::kMicrosecond);
BENCHMARK(AppendAndDraw)->Args({1, 1000000, 10})->Unit(benchmark::kMillisecond);
BENCHMARK(Record)->Args({1, 1000000, 10})->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
