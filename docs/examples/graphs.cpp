// A titration curve as a picture, with a mark at its end point.
#include <qellib10/qellib10.h>

#include <cmath>
#include <cstdio>

namespace {

constexpr int kCurve = 0;
constexpr CSize kSize(480, 320);
constexpr double kEndPoint = 16.519, kLastVolume = 25;  // mL

// The potential of an electrode around an end point, mV.
double Potential(double volume) { return 180 + 160 * std::tanh((volume - kEndPoint) * 2); }

}  // namespace

int main() {
    CQelGraph graph;  // series 0 is shown as a line
    graph.SetXDimStr(kCurve, "mL");
    graph.SetYDimStr(kCurve, "mV");
    const qel::AxisSteps volume = qel::StepsOver(0, kLastVolume, 10);
    const qel::AxisSteps potential = qel::StepsOver(Potential(0), Potential(kLastVolume), 4);
    graph.SetXMaxRange(kCurve, volume.Value(volume.count));
    graph.SetYMinRange(kCurve, potential.Value(0));
    graph.SetYMaxRange(kCurve, potential.Value(potential.count));
    graph.SetDivX(volume.count);
    graph.SetDivY(potential.count);
    graph.SetLineGraphStyle(kCurve, CLineGraphStyle(RGB(0, 0, 192), PS_SOLID, 2));
    for (int i = 0; i <= kLastVolume * 10; ++i) graph.AddData(kCurve, i / 10.0, Potential(i / 10.0));

    CDC dc;
    CBitmap picture;
    if (!dc.CreateCompatibleDC(nullptr) || !picture.CreateBitmap(kSize.cx, kSize.cy, 1, 32, nullptr)) return 1;
    dc.SelectObject(&picture);
    const CRect all({0, 0}, kSize);
    dc.FillSolidRect(&all, RGB(255, 255, 255));
    graph.SetDrawSize(kSize.cx, kSize.cy);
    if (!graph.GraphDraw(&dc, 0, 0)) return 1;
    CRect mark;
    graph.MarkDraw(&dc, kCurve, kEndPoint, Potential(kEndPoint), 1, RGB(192, 0, 0), 5, &mark);
    if (!qel::SavePng(picture, "curve.png")) return 1;

    std::printf("curve.png: %d x %d, a grid line each %s mL and %s mV\n", kSize.cx, kSize.cy,
                static_cast<const char*>(volume.Text(1)), static_cast<const char*>(potential.Text(1)));
    int red = 0;
    for (int y = 0; y < kSize.cy; ++y)
        for (int x = 0; x < kSize.cx; ++x) red += dc.GetPixel(x, y) == RGB(192, 0, 0);
    std::printf("the mark is %d pixels wide and %s\n", mark.Width(), red > 0 ? "visible" : "hidden");
    return 0;
}
