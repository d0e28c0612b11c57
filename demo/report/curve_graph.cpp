#include "demo/report/curve_graph.h"

#include <algorithm>

#include "demo/report/point_font.h"

namespace titration {
namespace {

constexpr int kFontSize = 80;  // tenths of a point

constexpr COLORREF kBlack = RGB(0, 0, 0), kGrey = RGB(205, 205, 205);
constexpr COLORREF kBlue = RGB(0, 60, 160), kOrange = RGB(200, 90, 0), kRed = RGB(200, 0, 30);

// Hundredths of a millimetre.
constexpr int kThinLine = 10, kFrame = 15, kSlopeLine = 15, kLine = 20, kGap = 80;

constexpr int kMaxSteps = 10;
constexpr int kCircle = 1;                // shape
constexpr int kEndPointSizes[] = {4, 6};  // half-sizes in pixels of a screen
constexpr std::size_t kMaxMarks = 500;    // more would look like one band
constexpr std::size_t kFewestPointsOfSlope = 5;
constexpr std::size_t kMaxPoints = 10'000;  // more than a page can show

enum Align { kBefore, kCentred, kAfter };  // the position of a text in its place

qel::AxisSteps StepsAround(const std::vector<double>& values) {
    const auto [low, high] = std::ranges::minmax(values);
    return qel::StepsOver(low, high, kMaxSteps, qel::RoundSteps::kWithQuarters);
}

// Of means, if there are more points than a page can show.
qel::CurvePoints SlopeToShow(const qel::CurvePoints& points, const qel::EndPoint& endPoint) {
    const std::size_t group = 1 + points.x.size() / kMaxPoints;
    if (group == 1) return qel::Differentiate(points, endPoint.points);
    return qel::Differentiate(qel::AverageGroups(points, group),
                              std::max(kFewestPointsOfSlope, endPoint.points / group));
}

qel::CurvePoints WithEndPoint(qel::CurvePoints slope, const qel::EndPoint& endPoint) {
    const auto at = std::ranges::lower_bound(slope.x, endPoint.volume) - slope.x.begin();
    slope.x.insert(slope.x.begin() + at, endPoint.volume);
    slope.y.insert(slope.y.begin() + at, endPoint.slope);
    return slope;
}

}  // namespace

CSize CurveGraph::Axis::Largest(CDC* dc) const {
    CSize largest;
    for (int line = 0; line <= steps.count; ++line) {
        const CSize size = dc->GetTextExtent(steps.Text(line));
        largest = {std::max(largest.cx, size.cx), std::max(largest.cy, size.cy)};
    }
    return largest;
}

CurveGraph::CurveGraph(const Curve& curve, const qel::EndPoint& endPoint, const std::string& volumeName,
                       const std::string& signalName, int dotsPerInch)
    : m_endPoint(endPoint), m_dotsPerInch(dotsPerInch) {
    const qel::CurvePoints measured = qel::MergeRepeats(curve);
    const qel::CurvePoints slope =
        WithEndPoint(SlopeToShow(qel::SmoothByMedian(qel::UsedPoints(curve, endPoint)), endPoint), endPoint);
    m_volume = {volumeName, kBlack, StepsAround(measured.x)};
    m_signal = {signalName, kBlue, StepsAround(measured.y)};
    m_slope = {"slope of " + signalName, kOrange,
               qel::StepsOver(std::min(0.0, endPoint.slope), std::max(0.0, endPoint.slope), m_signal.steps.count,
                              qel::RoundSteps::kWithQuarters)};
    m_slope.steps.count = m_signal.steps.count;  // the same grid lines

    SetDivX(m_volume.steps.count);
    SetDivY(m_signal.steps.count);
    SetAxisStyle({kGrey, PS_SOLID, Dots(kThinLine)});
    SetFrameStyle({kBlack, PS_SOLID, Dots(kFrame)});
    SetLabelSpaceX(0);
    SetLabelSpaceY(0);
    AddSeries(kSlope, m_slope, slope, Dots(kSlopeLine));
    AddSeries(kSignal, m_signal, measured, Dots(kLine));
    SetGraphPlotflg(kSignal, measured.x.size() <= kMaxMarks ? 1 : 0);
}

void CurveGraph::AddSeries(Series series, const Axis& axis, const qel::CurvePoints& points, int lineWidth) {
    SetXMinRange(series, m_volume.steps.Value(0));
    SetXMaxRange(series, m_volume.steps.Value(m_volume.steps.count));
    SetYMinRange(series, axis.steps.Value(0));
    SetYMaxRange(series, axis.steps.Value(axis.steps.count));
    SetXLabelViewMode(series, 0);
    SetYLabelViewMode(series, 0);
    SetGraphViewMode(series, 1);
    SetLineGraphStyle(series, {axis.color, PS_SOLID, lineWidth});
    const std::size_t every = 1 + points.x.size() / kMaxPoints;
    for (std::size_t i = 0; i < points.x.size(); i += every) AddData(series, points.x[i], points.y[i]);
}

int CurveGraph::GraphDraw(CDC* dc, int x, int y) {
    {
        const PointFont font(dc, kFontSize);
        ReserveTextMargins(dc);
        GetDrawArea(dc, x, y);
        DrawTexts(dc);
    }
    const int result = CQelGraph::GraphDraw(dc, x, y);
    DrawEndPoint(dc);
    return result;
}

void CurveGraph::ReserveTextMargins(CDC* dc) {
    const CSize volume = m_volume.Largest(dc), signal = m_signal.Largest(dc), slope = m_slope.Largest(dc);
    const int gap = Dots(kGap);
    SetTopMargin(volume.cy * 3 / 2 + gap);
    SetBottomMargin(volume.cy * 5 / 2 + gap);
    SetLeftMargin(std::max(signal.cx + 2 * gap, volume.cx / 2));
    SetRightMargin(std::max(slope.cx + 2 * gap, volume.cx / 2));
}

void CurveGraph::DrawTexts(CDC* dc) {
    const CRect area = m_rectDrawArea;
    const int gap = Dots(kGap);
    const auto write = [&](const std::string& text, COLORREF color, int x, Align alignX, int y, Align alignY) {
        const CSize size = dc->GetTextExtent(text.c_str());
        DCTextOut(dc, x - size.cx * alignX / 2, y - size.cy * alignY / 2, kFace, kFontSize, color, text.c_str(), 0, -1,
                  -1);
    };
    const auto writeSteps = [&](const Axis& axis, const auto& writeAt) {
        for (int line = 0; line <= axis.steps.count; ++line)
            writeAt(axis.steps.Value(line), std::string(axis.steps.Text(line)));
    };
    writeSteps(m_volume, [&](double value, const std::string& text) {
        // Below the lowest values of the other axes, which may be as close as these are long.
        const int below = area.bottom + dc->GetTextExtent(text.c_str()).cy / 2;
        write(text, kBlack, area.left + DataToXPixel(value, kSignal), kCentred, below, kBefore);
    });
    writeSteps(m_signal, [&](double value, const std::string& text) {
        write(text, kBlue, area.left - gap, kAfter, area.top + DataToYPixel(value, kSignal), kCentred);
    });
    writeSteps(m_slope, [&](double value, const std::string& text) {
        write(text, kOrange, area.right + gap, kBefore, area.top + DataToYPixel(value, kSlope), kCentred);
    });
    const int above = area.top - GetTopMargin(), below = area.bottom + GetBottomMargin();
    write(m_signal.title, kBlue, area.left, kBefore, above, kBefore);
    write(m_slope.title, kOrange, area.right, kAfter, above, kBefore);
    write(m_volume.title, kBlack, (area.left + area.right) / 2, kCentred, below, kAfter);
}

void CurveGraph::DrawEndPoint(CDC* dc) {
    const auto [volume, signal] = std::pair(m_endPoint.volume, m_endPoint.signal);
    const auto ends = [](const Axis& axis) {
        return std::pair(axis.steps.Value(0), axis.steps.Value(axis.steps.count));
    };
    const auto [left, right] = ends(m_volume);
    const auto [bottom, top] = ends(m_signal);
    FreeLineDraw(dc, kSignal, volume, bottom, volume, top, kRed, Dots(kThinLine));
    FreeLineDraw(dc, kSignal, left, signal, right, signal, kRed, Dots(kThinLine));
    for (const int size : kEndPointSizes) MarkDraw(dc, kSignal, volume, signal, kCircle, kRed, size, nullptr);
}

}  // namespace titration
