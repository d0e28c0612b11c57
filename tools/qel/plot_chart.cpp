#include "plot_chart.h"

#include <algorithm>
#include <cmath>

#include "csv_columns.h"
#include "csv_time.h"
#include "curve_points.h"
#include "plot_breaks.h"

namespace tool {
namespace {

constexpr std::size_t kMostUnits = 7;         // each has an axis beside that of x
constexpr std::size_t kMostErrorBars = 1000;  // of a line; errors of more points are a band
constexpr std::size_t kMostMarks = 1u << 18;  // each is a shape of its own in the picture
constexpr std::size_t kXAxis = 0, kFirstYAxis = 1;

// What was read and cannot be shown; none of it is left out in silence.
struct LeftOut {
    std::size_t notPositive = 0;  // values on logarithmic axes
    std::size_t negativeErrors = 0;
    std::size_t outside = 0;        // of fixed ends of the axes
    std::size_t skippedTimes = 0;   // local times that do not exist
    std::size_t repeatedTimes = 0;  // local times that exist twice: drawn, but it may be the other one
};

class ChartMaker {
public:
    explicit ChartMaker(const PlotOptions& options)
        : m_options(options),
          m_xEnds(ParseEnds(options.xRange, options.utc)),
          m_yEnds(ParseEnds(options.yRange, options.utc)),
          m_time(options.utc),
          m_breaks(options),
          m_isLogX(options.log.find('x') != std::string::npos),
          m_isLogY(options.log.find('y') != std::string::npos) {
        Check();
        m_chart.title = Shown(options.title);
        m_chart.subtitle = Shown(options.subtitle);
        m_chart.theme = options.theme == "dark"    ? qel::ChartTheme::Dark()
                        : options.theme == "print" ? qel::ChartTheme::Print()
                                                   : qel::ChartTheme::Light();
        m_chart.hasLegend = options.legend != "none";
    }

    void Read() {
        std::vector<std::string> columns = {m_options.x};
        columns.insert(columns.end(), m_options.y.begin(), m_options.y.end());
        columns.insert(columns.end(), m_options.errors.begin(), m_options.errors.end());
        CurvePoints::Drawn drawn;
        using Thinned = CurvePoints::Thinned;
        drawn.thinned = m_options.bars || m_breaks.NeedAllPoints() ? Thinned::kNot
                        : m_options.points                         ? Thinned::kMarks
                                                                   : Thinned::kLine;
        if (m_options.points) drawn.most = kMostMarks;
        drawn.hasErrors = !m_options.errors.empty();
        drawn.isLogX = m_isLogX, drawn.isLogY = m_isLogY;
        if (m_xEnds) drawn.xRange = {m_xEnds->Low(), m_xEnds->High()};
        m_curves.assign(m_options.y.size(), CurvePoints(drawn));
        m_outsideY.assign(m_options.y.size(), 0);
        const auto take = [&](std::span<const double> numbers) { Take(numbers); };
        const auto read = [&](std::size_t column, std::string_view field) {
            return column == 0 ? ReadX(field) : qel::ReadNumber(field);
        };
        m_found = OnFile(m_options.file, [&] {
            CFile file(LibraryPath(m_options.file), CFile::modeRead | CFile::shareDenyWrite);
            return ReadCsvRows(file, {std::move(columns), take, read});
        });
        for (std::string& name : m_found.names) name = Shown(qel::IsUtf8(name) ? name : Utf8(name));
        MakeXAxis();
        MakeSeries();
        m_breaks.AddTo(m_chart);
        for (const std::string& limit : m_options.limits) m_chart.limits.push_back(ParseLimit(limit));
    }

    const qel::Chart& Chart() const { return m_chart; }

    void Report(const std::vector<std::string>& leftOut) const {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < m_curves.size(); ++i) kept += m_chart.series[i].points.size();
        const auto& [names, rows, unreadable, below, firstBelow] = m_found;
        const std::string& target = m_options.picture.target;
        if (m_options.json) {
            const std::vector<std::string> y(names.begin() + 1,
                                             names.begin() + 1 + static_cast<std::ptrdiff_t>(m_options.y.size()));
            return Print(Json{{"file", target},
                              {"points", rows},
                              {"kept", kept},
                              {"x", names[0]},
                              {"y", y},
                              {"time", IsTime()},
                              {"unreadable", unreadable},
                              {"notPositive", m_leftOut.notPositive},
                              {"negativeErrors", m_leftOut.negativeErrors},
                              {"outside", m_leftOut.outside},
                              {"skippedTimes", m_leftOut.skippedTimes},
                              {"repeatedTimes", m_leftOut.repeatedTimes},
                              {"inBreaks", m_breaks.PointsIn(m_chart)},
                              {"below", below},
                              {"leftOut", leftOut}});
        }
        std::string text = Shown(target) + ": " + Count(rows, "point", "points") + ", " +
                           Count(m_curves.size(), "curve", "curves") + '\n';
        const auto add = [&](std::size_t count, const char* one, const char* more, const std::string& rest) {
            if (count > 0) text += "  " + Count(count, one, more) + rest + '\n';
        };
        add(unreadable - std::min(unreadable, m_leftOut.skippedTimes), "field without a number is",
            "fields without a number are", " not drawn");
        add(m_leftOut.skippedTimes, "time is", "times are", " skipped by summer time and not drawn");
        add(m_leftOut.repeatedTimes, "time is", "times are",
            " repeated at the end of summer time; the first that continues the column is drawn");
        add(m_leftOut.notPositive, "value is", "values are", " not above 0 and not drawn");
        add(m_leftOut.negativeErrors, "error is", "errors are", " below 0 and not drawn");
        add(m_leftOut.outside, "value is", "values are", " outside of --x-range or --y-range");
        add(m_breaks.PointsIn(m_chart), "point is", "points are", " in a break of an axis and not drawn");
        add(below, "line", "lines", " with numbers below the table not drawn, from line " + std::to_string(firstBelow));
        for (const std::string& what : leftOut) text += "  no space for: " + Shown(what) + '\n';
        Print(text);
    }

private:
    // What the command line itself says wrongly, before anything is read.
    void Check() const {
        if (m_options.y.size() + m_options.errors.size() > 512)
            throw CLI::ValidationError("there are more than 512 columns");
        if (!m_options.errors.empty() && m_options.errors.size() != m_options.y.size())
            throw CLI::ValidationError("--errors: give one for each -y");
        if (m_yEnds && m_yEnds->isTime) throw CLI::ValidationError("--y-range: times are across");
        const auto isAbove0 = [](bool isLog, double value) { return !isLog || value > 0; };
        if ((m_xEnds && !isAbove0(m_isLogX, m_xEnds->Low())) || (m_yEnds && !isAbove0(m_isLogY, m_yEnds->Low())))
            throw CLI::ValidationError("a logarithmic axis has only values above 0");
        m_breaks.Check(m_isLogX, m_isLogY);
        for (const std::string& limit : m_options.limits) {
            if (!isAbove0(m_isLogY, ParseLimit(limit).from))
                throw CLI::ValidationError("a logarithmic axis has only values above 0");
        }
    }

    bool IsTime() const { return m_isTime.value_or(false); }

    // The first field that can be read decides whether the column has times.
    std::optional<double> ReadX(std::string_view field) {
        std::optional<double> value;
        if (!IsTime()) value = qel::ReadNumber(field);
        if (!value && m_isTime.value_or(true)) {
            value = m_time.Read(field);
            if (value) m_isTime = true;
        } else if (value) {
            m_isTime = false;
        }
        return value;
    }

    void Take(std::span<const double> numbers) {
        const double x = numbers[0];
        m_leftOut.skippedTimes = m_time.Skipped();
        m_leftOut.repeatedTimes = m_time.Repeated();
        if (m_isLogX && x <= 0) ++m_leftOut.notPositive;
        for (std::size_t i = 0; i < m_curves.size(); ++i) {
            const double y = numbers[1 + i];
            if (m_isLogY && y <= 0) ++m_leftOut.notPositive;
            double error = m_options.errors.empty() ? 0 : numbers[1 + m_curves.size() + i];
            if (error < 0) ++m_leftOut.negativeErrors;
            if (!(error >= 0)) error = 0;
            m_curves[i].Add(x, y, error);
            m_breaks.Count(i, x, y);
            const auto isOutside = [](const std::optional<ChartEnds>& ends, double value) {
                return ends && (value < ends->Low() || value > ends->High());
            };
            if (std::isnan(x) || std::isnan(y)) continue;
            if (isOutside(m_xEnds, x)) {
                ++m_leftOut.outside;
            } else if (isOutside(m_yEnds, y)) {
                ++m_outsideY[i];
            }
        }
    }

    static void SetEnds(qel::ChartAxis& axis, const ChartEnds& ends) {
        axis.low = ends.Low();
        axis.high = ends.High();
        axis.isReversed = ends.IsReversed();
    }

    void MakeXAxis() {
        qel::ChartAxis& axis = m_chart.axes[kXAxis];
        const Heading heading = SplitHeading(m_found.names[0]);
        axis.title = heading.title;
        axis.unit = heading.unit;
        if (m_isLogX) axis.scale = qel::ChartScale::kLogarithmic;
        if (IsTime()) {
            if (m_isLogX) throw CLI::ValidationError("--log: column \"" + m_options.x + "\" has times");
            axis.scale = qel::ChartScale::kTime;
            axis.clock = m_time.HasLocal() ? qel::ChartClock::kLocal : qel::ChartClock::kUtc;
        }
        if (m_xEnds) {
            if (m_xEnds->isTime != IsTime())
                throw CLI::ValidationError("--x-range: column \"" + m_options.x + "\" has " +
                                           (IsTime() ? "times" : "numbers"));
            SetEnds(axis, *m_xEnds);
        }
        axis.isReversed = axis.isReversed || m_options.reverseX;
    }

    // Each unit has an axis of its own.
    std::size_t AxisOf(const std::string& unit) {
        const auto found = std::find(m_units.begin(), m_units.end(), unit);
        const auto place = static_cast<std::size_t>(found - m_units.begin());
        if (found == m_units.end()) {
            if (m_units.size() == kMostUnits) throw Failure("the columns have more than 7 units");
            m_units.push_back(unit);
            if (place > 0) m_chart.axes.emplace_back();
            qel::ChartAxis& axis = m_chart.axes[kFirstYAxis + place];
            axis.side = place % 2 == 0 ? qel::ChartSide::kLeft : qel::ChartSide::kRight;
            axis.unit = unit;
            if (m_isLogY) axis.scale = qel::ChartScale::kLogarithmic;
            if (m_yEnds && place == 0) SetEnds(axis, *m_yEnds);
        }
        return kFirstYAxis + place;
    }

    void MakeSeries() {
        for (std::size_t i = 0; i < m_curves.size(); ++i) {
            const std::string& name = m_found.names[1 + i];
            const Heading heading = SplitHeading(name);
            qel::ChartSeries series;
            series.kind = m_options.bars     ? qel::ChartKind::kBars
                          : m_options.steps  ? qel::ChartKind::kSteps
                          : m_options.points ? qel::ChartKind::kPoints
                                             : qel::ChartKind::kLine;
            if (m_options.marks) series.mark = qel::ChartMark::kCircle;
            m_curves[i].GiveTo(series);
            const bool isLine = !m_options.bars && !m_options.points;
            series.hasErrorBand = isLine && series.points.size() > kMostErrorBars;
            series.yAxis = AxisOf(heading.unit);
            if (series.yAxis == kFirstYAxis) m_leftOut.outside += m_outsideY[i];  // --y-range is for this one alone
            series.name = heading.title.empty() ? "column " + m_options.y[i] : heading.title;
            std::string& title = m_chart.axes[series.yAxis].title;
            title += (title.empty() || heading.title.empty() ? "" : ", ") + heading.title;
            m_chart.series.push_back(std::move(series));
        }
        if (m_units.size() > 1) ColorAxes();
        if (m_units.size() > 1) {
            for (qel::ChartSeries& series : m_chart.series) {
                const std::string& unit = m_chart.axes[series.yAxis].unit;
                if (!unit.empty() && !series.name.empty()) series.name += " (" + unit + ")";
            }
        }
        // The title of the axis says it already.
        if (m_curves.size() == 1 && m_options.legend.empty()) m_chart.hasLegend = false;
        if (m_curves.size() > 1 && m_chart.hasLegend && m_units.size() == 1) m_chart.axes[kFirstYAxis].title = "";
    }

    // Which axis belongs to which curve; one of several curves belongs to none of them alone.
    void ColorAxes() {
        for (std::size_t axis = kFirstYAxis; axis < m_chart.axes.size(); ++axis) {
            m_chart.axes[axis].hasSeriesColor = std::ranges::count(m_chart.series, axis, &qel::ChartSeries::yAxis) == 1;
        }
    }

    const PlotOptions& m_options;
    std::optional<ChartEnds> m_xEnds, m_yEnds;
    TimeReader m_time;
    PlotBreaks m_breaks;
    bool m_isLogX, m_isLogY;
    std::optional<bool> m_isTime;  // whether x is, once it is known
    std::vector<CurvePoints> m_curves;
    std::vector<std::size_t> m_outsideY;  // of each curve, points that --x-range shows and --y-range does not
    CsvFindings m_found;
    LeftOut m_leftOut;
    std::vector<std::string> m_units;  // of the vertical axes
    qel::Chart m_chart;
};

}  // namespace

void DrawChart(const PlotOptions& given) {
    PlotOptions options = given;
    options.picture.kind = ParseFormat(options);
    Drawing drawing;
    drawing.page = ParseChartSize(options);
    options.picture.resolution = drawing.page.dotsPerInch.cx;
    drawing.title = options.title.empty() ? options.file : options.title;
    drawing.sources = {options.file};
    ChartMaker maker(options);
    maker.Read();
    std::vector<std::string> leftOut;
    drawing.draw = [&](CDC& dc, int) {
        const qel::ChartReport report = maker.Chart().Draw(dc, CRect(CPoint(0, 0), drawing.page.SheetDots()));
        leftOut = report.leftOut;
        return report.isDrawn;
    };
    WritePictures(options.picture, drawing);
    maker.Report(leftOut);
}

}  // namespace tool
