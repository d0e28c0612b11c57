#include "qellib10/graph/chart.h"

#include <cmath>
#include <iomanip>
#include <limits>
#include <random>
#include <set>
#include <sstream>

#include "qellib10/graph/chart_look.h"
#include "qellib10/graph/chart_scale.h"
#include "qellib10/platform/failure.h"
#include "qellib10/print/queue_data.h"

#include "../support/canvas.h"
#include "../support/soak.h"
#include "../support/temp_folder.h"
#include "../support/test.h"

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// A chart with everything that can be in one.
qel::Chart WholeChart() {
    qel::Chart chart;
    chart.title = "Titration of vinegar";
    chart.subtitle = "試料 7, 25 °C";
    chart.axes[0].title = "Volume";
    chart.axes[0].unit = "mL";
    chart.axes[1].title = "pH";
    chart.axes.push_back({.side = qel::ChartSide::kRight, .title = "Slope", .scale = qel::ChartScale::kLogarithmic});
    qel::ChartSeries curve{.name = "pH"}, points{.name = "Readings", .kind = qel::ChartKind::kPoints};
    qel::ChartSeries bars{.name = "Slope", .kind = qel::ChartKind::kBars, .yAxis = 2};
    qel::ChartSeries band{.name = "u", .kind = qel::ChartKind::kBand};
    for (int i = 0; i <= 60; ++i) {
        const double x = i / 3.0, y = 7 + 4 * std::tanh((x - 12) / 2);
        curve.points.push_back({x, i == 20 ? kNan : y});
        if (i % 10 != 0) continue;
        points.points.push_back({x, y + 0.2});
        points.yErrors.down.push_back(0.4);
        bars.points.push_back({x, std::exp(-std::fabs(x - 12))});
        band.points.push_back({x, y + 0.5});
        band.lower.push_back(y - 0.5);
    }
    chart.series = {band, bars, curve, points};
    chart.limits = {{.from = 8, .to = 10, .label = "Indicator"}, {.axis = 0, .from = 12, .label = "Expected"}};
    chart.notes = {{.x = 12, .y = 7, .text = "EP1 12.00 mL", .isFlag = true}, {.x = 4, .y = 3, .text = "Start"}};
    return chart;
}

// What is wrong with the places of the texts.
std::string FaultOf(const qel::ChartReport& report, const CRect& box) {
    const qel::ChartBox outer{double(box.left) - 0.01, double(box.top) - 0.01, double(box.right) + 0.01,
                              double(box.bottom) + 0.01};
    for (std::size_t i = 0; i < report.texts.size(); ++i) {
        const qel::ChartText& text = report.texts[i];
        const bool isInside = text.box.left >= outer.left && text.box.top >= outer.top &&
                              text.box.right <= outer.right && text.box.bottom <= outer.bottom;
        if (!isInside) return "outside: " + text.text;
        for (std::size_t other = 0; other < i; ++other)
            if (text.box.Overlaps(report.texts[other].box)) return text.text + " over " + report.texts[other].text;
    }
    return {};
}

std::string Joined(const qel::ChartReport& report) {
    std::string all;
    for (const std::string& part : report.leftOut) all += (all.empty() ? "" : ", ") + part;
    return all;
}

class RandomChart {
public:
    explicit RandomChart(unsigned seed) : m_random(seed) {}

    int Number(int least, int most) { return std::uniform_int_distribution(least, most)(m_random); }
    double Value() {
        static constexpr double kOdd[] = {kNan, 0, -1, 1e300, -1e300, 1e-300, std::numeric_limits<double>::infinity()};
        if (Number(0, 30) == 0) return kOdd[Number(0, 6)];
        return std::ldexp(Number(-1000, 1000), m_exponent);
    }
    std::string Text() {
        static constexpr const char* kParts[] = {"Volume", "滴定曲線の", " ", "µg/L", "W", "\xFF", "(", "0.1 mol"};
        std::string text;
        for (int i = Number(0, Number(0, 20) == 0 ? 80 : 5); i > 0; --i) text += kParts[Number(0, 7)];
        return text;
    }
    qel::Chart Make() {
        qel::Chart chart;
        m_exponent = Number(-900, 900);
        if (Number(0, 2) > 0) m_exponent = Number(-8, 4);
        chart.title = Text();
        chart.subtitle = Text();
        chart.scale = Number(5, 20) / 10.0;
        const int theme = Number(0, 2);
        if (theme > 0) chart.theme = theme == 1 ? qel::ChartTheme::Print() : qel::ChartTheme::Dark();
        for (int i = Number(0, 6); i > 0; --i) chart.axes.emplace_back();
        for (qel::ChartAxis& axis : chart.axes) {
            if (chart.axes.size() > 2) axis.side = static_cast<qel::ChartSide>(Number(0, 3));
            axis.title = Text();
            axis.unit = Number(0, 1) == 0 ? "" : "mg/L";
            axis.scale = static_cast<qel::ChartScale>(Number(0, 3));
            axis.isReversed = Number(0, 4) == 0;
            axis.exponent = static_cast<qel::ChartExponent>(Number(0, 2));
            for (int i = Number(0, 5); i > 0; --i) axis.categories.push_back(Text());
            if (Number(0, 4) == 0) axis.low = Value();
            if (Number(0, 4) == 0) axis.high = Value();
            if (Number(0, 9) == 0) axis.following = std::fabs(Value());
            for (int i = Number(0, 3) == 0 ? Number(1, 10) : 0; i > 0; --i) axis.breaks.push_back({Value(), Value()});
            if (Number(0, 9) == 0) axis.sameAs = static_cast<std::size_t>(Number(0, 8));
        }
        for (int i = Number(0, 5); i > 0; --i) {
            qel::ChartSeries series{.name = Text(), .kind = static_cast<qel::ChartKind>(Number(0, 5))};
            series.xAxis = static_cast<std::size_t>(Number(0, 8) == 0 ? Number(0, 9) : 0);
            series.yAxis = static_cast<std::size_t>(Number(0, 8) == 0 ? Number(0, 9) : 1);
            series.isStacked = Number(0, 1) == 0;
            series.hasErrorBand = Number(0, 1) == 0;
            series.hasDrops = Number(0, 3) == 0;
            series.mark = static_cast<qel::ChartMark>(Number(0, 13));
            for (int point = Number(0, 30); point > 0; --point) series.points.push_back({Value(), Value()});
            for (int error = Number(0, 5); error > 0; --error) series.yErrors.down.push_back(Value());
            for (int low = Number(0, 40); low > 0; --low) series.lower.push_back(Value());
            chart.series.push_back(series);
        }
        for (int i = Number(0, 3); i > 0; --i)
            chart.limits.push_back({.axis = static_cast<std::size_t>(Number(0, 3)), .from = Value(), .label = Text()});
        for (int i = Number(0, 3); i > 0; --i)
            chart.notes.push_back({.x = Value(), .y = Value(), .text = Text(), .isFlag = Number(0, 1) == 0});
        return chart;
    }

private:
    std::mt19937 m_random;
    int m_exponent = 0;
};

}  // namespace

TEST(Chart, TextsNeverOverlapAndAreNeverCut) {
    const int count = SoakCount(300);
    for (int i = 0; i < count; ++i) {
        RandomChart random(SoakSeed() * 1'000'003U + static_cast<unsigned>(i));
        const qel::Chart chart = random.Make();
        const int width = random.Number(40, random.Number(0, 9) == 0 ? 8000 : 900);
        const int height = random.Number(30, random.Number(0, 9) == 0 ? 6000 : 700);
        CQelPrintJobQueueData job;
        const CRect box(CPoint(random.Number(-50, 50), 0), CSize(width, height));
        const qel::ChartReport report = chart.Record(job, box);
        EXPECT_EQ(FaultOf(report, box), "") << i << ": " << width << " x " << height;
        EXPECT_TRUE(report.isDrawn);
    }
    Tried("charts", count);
}

TEST(Chart, HasThePixelsOfItsJob) {
    const CRect box(0, 0, 500, 380);
    for (const bool isSmooth : {true, false}) {
        qel::Chart chart = WholeChart();
        chart.isSmooth = isSmooth;
        chart.scale = 0.93;
        Canvas direct(500, 380), replayed(500, 380);
        CQelPrintJobQueueData job;
        const TempFolder folder;
        EXPECT_EQ(Joined(chart.Draw(direct.dc, box)), Joined(chart.Record(job, box)));
        ASSERT_EQ(job.SaveJobFile(folder.Path("chart.job")), 1);
        CQelPrintJobQueueData again;
        ASSERT_EQ(again.LoadJobFile(folder.Path("chart.job")), 1);
        again.GetBlock().DrawCommand(&replayed.dc);
        EXPECT_TRUE(direct.Pixels() == replayed.Pixels());
    }
}

TEST(Chart, NamesWhatItLeftOut) {
    qel::Chart chart = WholeChart();
    chart.axes[0].title = "A title that is far too long for a chart of this width and is shortened";
    chart.series.push_back({.name = "Nowhere", .yAxis = 7});
    chart.series.push_back({.points = {{1, 0}, {2, -1}, {3, kNan}, {4, 0.5}}, .yAxis = 2});
    chart.limits.insert(chart.limits.end(),
                        {{.axis = 7, .label = "Lost"}, {.from = 1e3}, {.from = kNan, .label = "N"}});
    chart.axes[1].high = 20;
    const auto leftOut = [&](int width, int height) {
        Canvas canvas(width, height);
        return Joined(chart.Draw(canvas.dc, CRect(0, 0, width, height)));
    };
    EXPECT_EQ(leftOut(700, 500), "series: Nowhere, 2 values not above 0, limit: Lost, limit: 1000, limit: N");
    EXPECT_EQ(leftOut(40, 30),
              "title, subtitle, titles of the axes, values of the axes, legend, series: Nowhere, 2 values not "
              "above 0, limit: Indicator, limit: Expected, limit: Lost, limit: 1000, limit: N, note: EP1 12.00 mL, "
              "note: Start");
    Canvas canvas(300, 300);
    std::string shortened;
    for (const qel::ChartText& text : chart.Draw(canvas.dc, CRect(0, 0, 300, 300)).texts)
        if (text.text.starts_with("A title")) shortened = text.text;
    EXPECT_TRUE(shortened.ends_with("…")) << shortened;
}

TEST(Chart, PrefixesAreBeforeUnitsThatTakeThem) {
    for (const auto& [unit, high, title] : Cases<const char*, double, const char*>{
             {"g/L", 5000, "Q (kg/L)"},
             {"V", 0.5, "Q (mV)"},
             {"Pa·s", 5e-9, "Q (nPa·s)"},
             {"mol", 5e30, "Q (×10³⁰ mol)"},
             {"m²", 5e5, "Q (×10³ m²)"},
             {"m2", 5e5, "Q (×10³ m2)"},
             {"cm³", 5e-5, "Q (×10⁻⁶ cm³)"},
             {"1/mL", 5e5, "Q (×10³ 1/mL)"},
             {"mV", 5000, "Q (mV)"},
             {"kg", 5e5, "Q (×10³ kg)"},
             {"%", 0.5, "Q (%)"},
             {"mol %", 5e5, "Q (×10³ mol %)"},
             {"°C", 5000, "Q (°C)"},
             {"", 5e-5, "Q (×10⁻⁶)"},
         }) {
        qel::Chart chart;
        chart.axes[1].title = "Q", chart.axes[1].unit = unit;
        chart.axes[1].exponent = qel::ChartExponent::kSiPrefix;
        chart.series = {{.points = {{0, 0}, {1, high}}}};
        Canvas canvas(600, 400);
        std::string shown;
        for (const qel::ChartText& text : chart.Draw(canvas.dc, CRect(0, 0, 600, 400)).texts)
            if (text.text.starts_with("Q")) shown = text.text;
        EXPECT_EQ(shown, title);
    }
}

// Seven lines close to each other, and two upright ones whose labels are longer than what is beside them.
TEST(Chart, LabelsOfLimitsWithoutSpaceAreBesideThePlot) {
    qel::Chart chart;
    chart.axes[0].high = 10;
    chart.axes[1].low = 0, chart.axes[1].high = 100;
    for (int i = 0; i < 7; ++i)
        chart.limits.push_back({.from = 50.0 + i, .label = std::to_string(i) + " is a limit with a long text"});
    for (const double x : {5.0, 5.5})
        chart.limits.push_back(
            {.axis = 0, .from = x, .label = "An upright limit whose label has no space on any side"});
    for (const bool hasAxes : {false, true}) {
        if (hasAxes) chart.axes.push_back({.side = qel::ChartSide::kRight, .title = "Right"});
        if (hasAxes) chart.axes.push_back({.side = qel::ChartSide::kTop, .title = "Top"});
        Canvas canvas(460, 380);
        const CRect box(0, 0, 460, 380);
        const qel::ChartReport report = chart.Draw(canvas.dc, box);
        EXPECT_EQ(Joined(report), "");
        EXPECT_EQ(FaultOf(report, box), "");
        int right = 0, above = 0;
        double last = 0;
        for (const qel::ChartText& text : report.texts) {
            const bool isLimit = text.text.find("limit") != std::string::npos;
            above += isLimit && text.box.bottom <= report.plot.top ? 1 : 0;
            if (!isLimit || text.box.left < report.plot.right) continue;
            ++right;
            EXPECT_LT(last, text.box.top) << "from top to bottom";
            last = text.box.top;
        }
        EXPECT_EQ(Line({right, above}), "5 2");
    }
}

TEST(Chart, TextsAvoidAreas) {
    qel::Chart chart;
    chart.axes[1].low = 0, chart.axes[1].high = 10;
    chart.series = {{.name = "Filled", .kind = qel::ChartKind::kArea, .points = {{0, 4}, {10, 8}}}};
    chart.limits = {{.axis = 0, .from = 5, .label = "Limit"}};
    chart.notes = {{.x = 5, .y = 5.5, .text = "within"}};
    Canvas canvas(400, 300);
    const qel::ChartReport report = chart.Draw(canvas.dc, CRect(0, 0, 400, 300));
    int over = 0;
    for (const qel::ChartText& text : report.texts) {
        if (text.text != "Filled" && text.text != "within" && text.text != "Limit") continue;
        ++over;
        const double x = report.axes[0].ValueAt(text.box.right), y = report.axes[1].ValueAt(text.box.bottom);
        EXPECT_GT(y, 4 + 0.4 * x) << text.text;
    }
    EXPECT_EQ(over, 3);
}

TEST(Chart, LegendHasBarsInTheOrderOfTheirStack) {
    qel::Chart chart;
    const auto bars = [](const char* name, bool isStacked) {
        return qel::ChartSeries{
            .name = name, .kind = qel::ChartKind::kBars, .points = {{1, 1}}, .isStacked = isStacked};
    };
    chart.series = {bars("low", true), bars("alone", false), bars("middle", true), {.name = "line"}, bars("top", true)};
    for (const bool isReversed : {false, true}) {
        chart.axes[1].isReversed = isReversed;
        CQelPrintJobQueueData job;
        std::string names;
        for (const qel::ChartText& text : chart.Record(job, CRect(0, 0, 400, 300)).texts)
            if (std::isalpha(static_cast<unsigned char>(text.text[0])) != 0) names += text.text + " ";
        EXPECT_EQ(names, isReversed ? "low alone middle line top " : "top alone middle line low ");
    }
}

TEST(Chart, HasProportionsThatDoNotDependOnTheResolution) {
    const qel::Chart chart = WholeChart();
    CQelPrintJobQueueData coarse, fine;
    coarse.GetPageStyle().SetDpi(96);
    fine.GetPageStyle().SetDpi(600);
    const qel::ChartReport small = chart.Record(coarse, CRect(0, 0, 576, 384));
    const qel::ChartReport large = chart.Record(fine, CRect(0, 0, 3600, 2400));
    ASSERT_EQ(small.texts.size(), large.texts.size());
    for (std::size_t i = 0; i < small.texts.size(); ++i) {
        EXPECT_EQ(small.texts[i].text, large.texts[i].text);
        EXPECT_NEAR(small.texts[i].box.left, large.texts[i].box.left / 6.25, 2) << small.texts[i].text;
        EXPECT_NEAR(small.texts[i].box.top, large.texts[i].box.top / 6.25, 2) << small.texts[i].text;
    }
}

TEST(Chart, SeriesHaveTheColourOfThoseThatTheyBelongTo) {
    qel::Chart chart;
    const auto points = qel::ChartKind::kPoints;
    chart.series = {{.colorOf = 1}, {}, {.kind = points}, {.kind = points, .color = RGB(1, 2, 3)}, {.colorOf = 3}};
    std::vector<COLORREF> colors;
    std::vector<qel::ChartMark> marks;
    for (std::size_t i = 0; i < chart.series.size(); ++i) {
        colors.push_back(qel::LookOf(chart, i).color);
        marks.push_back(qel::LookOf(chart, i).mark);
    }
    const auto& palette = chart.theme.palette;
    EXPECT_EQ(colors, (std::vector<COLORREF>{palette[0], palette[0], palette[1], RGB(1, 2, 3), RGB(1, 2, 3)}));
    const auto none = qel::ChartMark::kNone;
    EXPECT_EQ(marks, (std::vector{none, none, qel::ChartMark::kCircle, qel::ChartMark::kSquare, none}));
}

TEST(Chart, NoTwoOfSixtySeriesLookTheSameOnPaper) {
    using Look = std::tuple<COLORREF, std::vector<double>, qel::ChartMark, std::size_t>;
    for (const auto kind : {qel::ChartKind::kLine, qel::ChartKind::kPoints, qel::ChartKind::kBars}) {
        qel::Chart chart;
        chart.theme = qel::ChartTheme::Print();
        chart.series.assign(60, {.kind = kind});
        std::set<Look> looks, withoutColours;
        for (std::size_t i = 0; i < chart.series.size(); ++i) {
            const qel::SeriesLook look = qel::LookOf(chart, i);
            looks.insert({look.color, look.dashes, look.mark, look.hatch % 5});
            withoutColours.insert({0, look.dashes, look.mark, look.hatch % 5});
        }
        const bool isBars = kind == qel::ChartKind::kBars, isLine = kind == qel::ChartKind::kLine;
        EXPECT_EQ(looks.size(), isBars ? 50U : 60U);
        EXPECT_EQ(withoutColours.size(), isBars ? 5U : isLine ? 60U : 12U);
    }
}

// Each bar from the upper to the lower end of its value.
TEST(Chart, StackedBarsHideNoOthers) {
    qel::Chart chart;
    for (const std::vector<double>& values : {std::vector<double>{5, 85, -1}, {-3, kNan, 85}, {1, 5, -2}, {-4, 0, 2}}) {
        chart.series.push_back({.kind = qel::ChartKind::kBars, .isStacked = true});
        for (const double value : values)
            chart.series.back().points.push_back({double(chart.series.back().points.size()), value});
    }
    for (const auto& [base, expected] : Cases<double, const char*>{
             {0, "0..5 0..85 0..-1 0..-3 85..nan 0..85 5..6 85..90 -1..-3 -3..-7 90..90 85..87"},
             {80, "80..5 80..85 0..-1 0..-3 85..nan 80..85 80..6 85..90 -1..-3 -3..-7 90..90 85..87"},
         }) {
        std::ostringstream ends;
        for (qel::ChartSeries& series : chart.series) series.base = base;
        for (std::size_t i = 0; i < chart.series.size(); ++i)
            for (const qel::BarEnds& bar : qel::EndsOfBars(qel::ChartSnapshot(chart), i))
                ends << ' ' << bar.from << ".." << bar.to;
        EXPECT_EQ(ends.str(), std::string(" ") + expected);
    }
}

TEST(Chart, NamesOfCategoriesAreShortenedBeforeTheyAreLeftOut) {
    for (const auto& [side, count, isAll] :
         Cases<qel::ChartSide, std::size_t, bool>{{qel::ChartSide::kBottom, 1, true},
                                                  {qel::ChartSide::kBottom, 3, true},
                                                  {qel::ChartSide::kBottom, 20, true},
                                                  {qel::ChartSide::kBottom, 300, false},
                                                  {qel::ChartSide::kLeft, 8, true},
                                                  {qel::ChartSide::kLeft, 100, false}}) {
        qel::Chart chart;
        chart.title = "Assay";
        qel::ChartAxis& axis = chart.axes[side == qel::ChartSide::kBottom ? 0 : 1];
        axis.scale = qel::ChartScale::kCategories;
        for (std::size_t i = 0; i < count; ++i)
            axis.categories.push_back("Lot of film-coated tablets, batch number " + std::to_string(i));
        Canvas canvas(480, 320);
        const qel::ChartReport report = chart.Draw(canvas.dc, CRect(0, 0, 480, 320));
        std::set<std::string> shown;
        for (const qel::ChartText& text : report.texts)
            if (text.text.starts_with("Lot")) shown.insert(text.text);
        EXPECT_EQ(shown.size() == count, isAll) << count;
        EXPECT_EQ(Joined(report), isAll ? "" : std::to_string(count - shown.size()) + " names of categories");
        EXPECT_EQ(FaultOf(report, CRect(0, 0, 480, 320)), "");
    }
}

TEST(Chart, PointsBetweenGapsAreSeen) {
    for (const auto kind :
         {qel::ChartKind::kLine, qel::ChartKind::kSteps, qel::ChartKind::kArea, qel::ChartKind::kBand}) {
        qel::Chart chart;
        chart.axes[0].hasGrid = chart.axes[1].hasGrid = false;
        chart.series = {{.kind = kind, .points = {{0, 1}, {1, kNan}, {2, 3}, {3, kNan}, {4, 2}, {5, 1}}}};
        chart.series[0].lower = {0, kNan, 2, kNan, 1, 0};
        Canvas canvas(300, 200);
        const qel::ChartReport report = chart.Draw(canvas.dc, CRect(0, 0, 300, 200));
        const int x = int(report.axes[0].At(2)), y = int(report.axes[1].At(3)) + 1;
        EXPECT_NE(canvas.At(x, y), chart.theme.plot) << static_cast<int>(kind);
        EXPECT_EQ(canvas.At(x - 15, y), chart.theme.plot);
    }
}

// The upper edge is at the bottom of the plot, the lower one goes to the corner where the legend would be.
TEST(Chart, LegendHidesNoEdgeOfABand) {
    qel::Chart band, errors;
    band.series = {{.name = "b", .kind = qel::ChartKind::kBand, .points = {{0, 0}, {1, 0}}, .lower = {0, 1}}};
    errors.series = {{.name = "b", .points = {{0, 0}, {1, 0}}, .yErrors = {.up = {0, 1}}, .hasErrorBand = true}};
    for (const qel::Chart& chart : {band, errors}) {
        Canvas canvas(400, 300);
        for (const qel::ChartText& text : chart.Draw(canvas.dc, CRect(0, 0, 400, 300)).texts)
            EXPECT_TRUE(text.text != "b" || text.box.right < 200) << text.box.right;
    }
}

TEST(Chart, AxesReachWhatIsDrawnOnThem) {
    constexpr auto kLog = qel::ChartScale::kLogarithmic;
    qel::Chart linked;
    linked.axes.resize(4);
    linked.axes[1].sameAs = 2, linked.axes[2].sameAs = 3;
    for (const std::size_t axis : {1, 2, 3}) {
        linked.axes[axis].side = qel::ChartSide::kLeft;
        linked.series.push_back({.points = {{0, 0}, {1, double(axis * 10)}}, .yAxis = axis});
    }
    qel::Chart bars, errors, narrow;
    bars.axes[1].scale = kLog;
    bars.series = {{.kind = qel::ChartKind::kBars, .points = {{1, 1}, {2, 0}, {3, 30}}}};
    errors.series = {{.points = {{0, 1}, {100, 2}}, .yErrors = {.down = {0.1, 0.1}}}};
    narrow.axes[0].scale = kLog;
    narrow.series = {{.points = {{2, 1}, {4, -2}}}};
    for (const auto& [chart, ends] : Cases<const qel::Chart*, const char*>{
             {&linked, "0..1 0..31.5 0..31.5 0..31.5"},
             {&bars, "0.35..3.65 0.1..50"},
             {&errors, "0..105 0.84..2.16"},
             {&narrow, "1.93..4.14 -2.15..1.15"},
         }) {
        Canvas canvas(400, 300);
        std::ostringstream found;
        found << std::setprecision(3);
        for (const qel::AxisPlaces& axis : chart->Draw(canvas.dc, CRect(0, 0, 400, 300)).axes)
            found << ' ' << axis.low << ".." << axis.high;
        EXPECT_EQ(found.str(), std::string(" ") + ends);
    }
}

TEST(Chart, TextsInColoursCanBeRead) {
    const auto readable = [](const qel::ChartTheme& theme, COLORREF color) {
        return qel::Readable(color, theme.plot, theme.text, qel::kTextContrast);
    };
    const COLORREF purple = RGB(0xAA, 0x33, 0x77), yellow = RGB(0xE6, 0x9F, 0x00);
    EXPECT_EQ(readable(qel::ChartTheme::Light(), purple), purple);
    EXPECT_EQ(readable(qel::ChartTheme::Dark(), yellow), yellow);
    EXPECT_EQ(readable(qel::ChartTheme::Light(), yellow), RGB(0x92, 0x6D, 0x16));
    EXPECT_EQ(readable(qel::ChartTheme::Dark(), purple), RGB(0xC1, 0x77, 0xA3));
}

TEST(Chart, WritesTheSameBytesEachTime) {
    const TempFolder folder;
    const qel::Chart chart = WholeChart();
    for (const char* name : {"a", "b"}) {
        EXPECT_TRUE(chart.WritePng(folder.Path(std::string(name) + ".png").View(), CSize(500, 380), 144));
        EXPECT_TRUE(chart.WriteSvg(folder.Path(std::string(name) + ".svg").View(), CSize(500, 380)));
        EXPECT_TRUE(chart.WritePdf(folder.Path(std::string(name) + ".pdf").View(), CSize(160, 120)));
    }
    for (const char* kind : {".png", ".svg", ".pdf"})
        EXPECT_TRUE(folder.Read(std::string("a") + kind) == folder.Read(std::string("b") + kind)) << kind;
    EXPECT_NE(folder.Read("a.svg").find(">試料 7, 25 °C</text>"), std::string::npos);
}

TEST(Chart, IsNotWrittenWhereThatIsImpossible) {
    const TempFolder folder;
    const qel::Chart chart = WholeChart();
    EXPECT_FALSE(chart.WritePng(folder.Path("no/a.png").View(), CSize(50, 38)));
    EXPECT_STREQ(qel::LastFailure().operation, "qel::Chart::WritePng");
    EXPECT_FALSE(chart.WritePng(folder.Path("a.png").View(), CSize(0, 38)));
    EXPECT_FALSE(chart.WriteSvg(folder.Path("a.svg").View(), CSize(50, 40'000)));
    EXPECT_FALSE(chart.WritePdf(folder.Path("a.pdf").View(), CSize(0, 10)));
    CDC none;
    EXPECT_FALSE(chart.Draw(none, CRect(0, 0, 9, 9)).isDrawn);
}
