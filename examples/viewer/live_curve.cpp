#include "live_curve.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace viewer {
namespace {

constexpr int kScreenDotsPerInch = 96;
constexpr int kFontSize = 90;  // tenths of a point
constexpr COLORREF kBlue = RGB(0, 60, 160), kGrey = RGB(215, 215, 215), kBlack = RGB(0, 0, 0);

constexpr double kMinute = 60;
constexpr int kTimeSteps = 10, kMaxSteps = 10;

qel::AxisSteps TimeSteps(double last, bool isAll) {
    if (isAll && last > kMinute) return qel::StepsOver(0, last, kMaxSteps, qel::RoundSteps::kWithQuarters);
    // The axis moves by a whole step at once, so the grid lines keep their places.
    qel::AxisSteps steps{kMinute / kTimeSteps, 0, kTimeSteps};
    steps.first = std::max(0.0, std::ceil(last / steps.step) - kTimeSteps);
    return steps;
}

CAxisStyle Axis(int side, const char* dimension, int decimals) {
    LOGFONT font{};
    std::strcpy(font.lfFaceName, "Arial");
    font.lfHeight = kFontSize;
    CAxisStyle axis;
    axis.SetViewMode(side);
    axis.SetDimStr(dimension);
    axis.SetDecimal(decimals);
    axis.SetLabelFont(font);
    axis.SetDimFont(font);
    return axis;
}

bool IsLower(const CGraphData& one, const CGraphData& other) { return one.GetYData() < other.GetYData(); }

}  // namespace

LiveCurve::LiveCurve() {
    SetXRangeStyle(0, Axis(kLabelBelow, "s", 0));
    SetYRangeStyle(0, Axis(kLabelLeft, "mV", 1));
    SetResolution(kScreenDotsPerInch);
    FitAxes();
}

void LiveCurve::SetResolution(int dotsPerInch) {
    const auto dots = [&](int onScreen) { return std::max(1, onScreen * dotsPerInch / kScreenDotsPerInch); };
    SetLeftMargin(dots(8));
    SetTopMargin(dots(12));
    SetRightMargin(dots(16));
    SetBottomMargin(dots(6));
    SetLabelSpaceX(dots(4));
    SetLabelSpaceY(dots(6));
    SetAxisStyle({kGrey, PS_SOLID, dots(1)});
    SetFrameStyle({kBlack, PS_SOLID, dots(1)});
    SetLineGraphStyle(0, {kBlue, PS_SOLID, dots(1)});
}

void LiveCurve::FitAxes() {
    const auto points = Points();
    const qel::AxisSteps time = TimeSteps(points.empty() ? 0 : points.back().GetXData(), m_isAll);
    SetXMinRange(0, time.Value(0));
    SetXMaxRange(0, time.Value(time.count));
    SetDivX(time.count);

    const auto first = std::ranges::lower_bound(points, time.Value(0), {}, &CGraphData::GetXData);
    const auto [low, high] = std::minmax_element(first, points.end(), IsLower);
    if (low == points.end()) return;
    const qel::AxisSteps signal =
        qel::StepsOver(low->GetYData(), high->GetYData(), kMaxSteps, qel::RoundSteps::kWithQuarters);
    SetYMinRange(0, signal.Value(0));
    SetYMaxRange(0, signal.Value(signal.count));
    SetDivY(signal.count);
}

std::optional<CGraphData> LiveCurve::Nearest(const CPoint& place) const {
    double second = 0, signal = 0;
    if (GetValueFromPos(0, place.x, place.y, &second, &signal) == 0) return std::nullopt;
    return Nearest(second);
}

std::optional<CGraphData> LiveCurve::Nearest(double second) const {
    const auto points = Points();
    if (points.empty()) return std::nullopt;
    const auto next = std::ranges::lower_bound(points, second, {}, &CGraphData::GetXData);
    if (next == points.begin()) return *next;
    const auto before = next - 1;
    const bool isNext = next != points.end() && next->GetXData() - second < second - before->GetXData();
    return isNext ? *next : *before;
}

}  // namespace viewer
