// qel plot: a table of numbers as curves.
#include <algorithm>
#include <cmath>

#include "axis_scale.h"
#include "csv_columns.h"
#include "plot_chart.h"

namespace tool {
namespace {

constexpr int kLineView = 1, kBarView = 2;               // how a series is drawn
constexpr int kNowhere = 0, kBelow = 2, kAtTheLeft = 3;  // where the texts of an axis are
constexpr int kFixedTexts = 2;                           // instead of values
constexpr int kFontTenths = 90;
constexpr double kMillimetresPerInch = 25.4;
constexpr COLORREF kGrey = RGB(205, 205, 205);
constexpr COLORREF kColors[] = {RGB(0, 60, 160), RGB(200, 90, 0),  RGB(0, 120, 60),
                                RGB(170, 0, 60), RGB(90, 60, 160), RGB(70, 70, 70)};
constexpr std::size_t kMaxSeries = 512;

// Empty: an axis around the values.
std::optional<AxisScale> ScaleOf(const std::string& range) {
    if (range.empty()) return std::nullopt;
    const auto ends = ParsePair(range, ':');
    if (!ends || ends->first == ends->second)
        throw CLI::ValidationError("\"" + range + "\" is not a range such as 0:14");
    return ScaleBetween(ends->first, ends->second);
}

CAxisStyle StyleOf(const AxisScale& scale, const CString& name, int view, COLORREF color) {
    CAxisStyle style;
    style.SetViewMode(view);
    style.SetMinRange(scale.minimum);
    style.SetMaxRange(scale.maximum);
    style.SetDigit(scale.digits);
    style.SetDecimal(scale.decimals);
    style.SetStrPosition(view == kBelow ? 1 : 0);
    style.SetDimStr(name);
    style.SetLabelColor(color);
    style.SetDimColor(color);
    LOGFONT font = {};
    font.lfHeight = kFontTenths;
    std::snprintf(font.lfFaceName, sizeof font.lfFaceName, "Arial");
    style.SetLabelFont(font);
    style.SetDimFont(font);
    return style;
}

struct Curves {
    CsvColumns columns;  // x first
    AxisScale x, y;

    std::size_t Series() const { return columns.values.size() - 1; }
};

Curves ReadCurves(const PlotOptions& options) {
    std::vector<std::string> columns = {options.x};
    columns.insert(columns.end(), options.y.begin(), options.y.end());
    if (columns.size() > kMaxSeries + 1) throw CLI::ValidationError("there are more than 512 columns");
    const std::optional<AxisScale> x = ScaleOf(options.xRange), y = ScaleOf(options.yRange);
    Curves curves;
    curves.columns = OnFile(options.file, [&] {
        CFile file(LibraryPath(options.file), CFile::modeRead | CFile::shareDenyWrite);
        return ReadCsvColumns(file, columns);
    });
    curves.x = x ? *x : ScaleOver(curves.columns.values[0]);
    std::vector<double> all;
    for (std::size_t i = 1; i < columns.size(); ++i)
        all.insert(all.end(), curves.columns.values[i].begin(), curves.columns.values[i].end());
    curves.y = y ? *y : ScaleOver(all);
    return curves;
}

// All series have the same axes; the first one shows their values, each one its name in its own colour.
CQelGraph GraphOf(const Curves& curves, const PlotOptions& options) {
    CQelGraph graph;
    const int dots = options.picture.resolution;
    graph.SetDivX(curves.x.steps);
    graph.SetDivY(curves.y.steps);
    graph.SetAxisStyle({kGrey, PS_SOLID, 1});
    for (std::size_t i = 0; i < curves.Series(); ++i) {
        const int series = static_cast<int>(i);
        const COLORREF color = kColors[i % std::size(kColors)];
        const std::vector<std::string>& names = curves.columns.names;
        const std::vector<std::vector<double>>& values = curves.columns.values;
        CAxisStyle y = StyleOf(curves.y, Text(names[i + 1]), kAtTheLeft, color);
        if (i > 0) y.SetLabelType(kFixedTexts);
        graph.SetXRangeStyle(series, StyleOf(curves.x, Text(names[0]), i == 0 ? kBelow : kNowhere, RGB(0, 0, 0)));
        graph.SetYRangeStyle(series, y);
        graph.SetGraphViewMode(series, options.bars ? kBarView : kLineView);
        graph.SetGraphPlotflg(series, options.marks ? 1 : 0);
        graph.SetLineGraphStyle(series, {color, PS_SOLID, std::max(1, dots / 100)});
        CBarGraphStyle bar = graph.GetBarGraphStyle(series);
        bar.SetLineColor(color);
        bar.SetBarBrush({BS_SOLID, color, 0});
        graph.SetBarGraphStyle(series, bar);
        for (std::size_t point = 0; point < values[0].size(); ++point)
            graph.AddData(series, values[0][point], values[i + 1][point]);
    }
    return graph;
}

void Report(const Curves& curves, const PlotOptions& options) {
    const std::size_t points = curves.columns.rows;
    if (!options.json) {
        return Print(Shown(options.picture.target) + ": " + Count(points, "point", "points") + ", " +
                     Count(curves.Series(), "curve", "curves") + '\n');
    }
    const auto range = [](const AxisScale& scale) { return Json::array({scale.minimum, scale.maximum}); };
    const std::vector<std::string>& names = curves.columns.names;
    Print(Json{{"file", options.picture.target},
               {"points", points},
               {"x", names[0]},
               {"y", std::vector(names.begin() + 1, names.end())},
               {"xRange", range(curves.x)},
               {"yRange", range(curves.y)}});
}

void Plot(const PlotOptions& options) {
    PictureKindOf(options.picture.target);
    const CSize size = ParseSheet(options.size);
    const Curves curves = ReadCurves(options);
    CQelGraph graph = GraphOf(curves, options);
    const int dots = options.picture.resolution;
    Drawing drawing;
    drawing.title = options.file;
    drawing.sources = {options.file};
    drawing.page.sheet = size;
    drawing.page.dotsPerInch = {dots, dots};
    drawing.draw = [&](CDC& dc, int) {
        const CSize all = drawing.page.SheetDots();
        const int margin = static_cast<int>(3 * dots / kMillimetresPerInch);
        graph.SetLeftMargin(margin);
        graph.SetTopMargin(margin);
        graph.SetRightMargin(margin);
        graph.SetBottomMargin(margin);
        graph.SetDrawSize(all.cx, all.cy);
        graph.GraphDraw(&dc, 0, 0);
        return true;
    };
    WritePictures(options.picture, drawing);
    Report(curves, options);
}

}  // namespace

void AddPlot(CLI::App& app, Status&) {
    CLI::App* const command = app.add_subcommand("plot", "Draw columns of comma-separated text as curves");
    const auto options = std::make_shared<PlotOptions>();
    AddFile(*command, "FILE", options->file, "The table, in UTF-8");
    command->add_option("-x", options->x, "Column across, by its name or its number (1)")->type_name("COLUMN");
    command->add_option("-y", options->y, "Columns upward, may be given several times (2)")
        ->type_name("COLUMN")
        ->allow_extra_args(false);
    command->add_option("--x-range", options->xRange, "Ends of the axis, else round numbers around the values")
        ->type_name("FROM:TO");
    command->add_option("--y-range", options->yRange, "The same")->type_name("FROM:TO");
    const CLI::Option* const size =
        command->add_option("--size", options->size, "Millimetres (160x100); of a chart as PNG or SVG pixels")
            ->type_name("WIDTHxHEIGHT");
    command->add_flag("--bars", options->bars, "Bars in place of lines");
    command->add_flag("--marks", options->marks, "A circle at each point");
    options->picture.AddTo(*command, "Dots per inch (150; 96 where the size is in pixels)");
    command->add_flag("--json", options->json, "Report what was drawn as JSON");
    const std::vector<CLI::Option*> ofCharts = AddChartOptions(*command, *options);
    command->callback([=] {
        const bool isChart = std::ranges::any_of(ofCharts, [](const auto* option) { return option->count() > 0; });
        options->isSizeGiven = size->count() > 0;
        options->isResolutionGiven = command->count("--resolution") > 0;
        isChart ? DrawChart(*options) : Plot(*options);
    });
}

}  // namespace tool
