#include "qellib10/graph/chart.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "qellib10/graph/chart_painter.h"
#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/drawing/file_dc.h"
#include "qellib10/platform/drawing/gdi_object.h"
#include "qellib10/platform/drawing/png_file.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/print/queue_data.h"

namespace qel {
namespace {

constexpr int kScreenDots = 96;
constexpr int kPaperDots = 600;
constexpr double kSmallestScale = 0.1, kLargestScale = 10;

ChartReport ReportOf(const ChartLayout& layout) {
    ChartReport report;
    report.isDrawn = true;
    report.plot = layout.plot;
    report.leftOut = layout.leftOut;
    for (const AxisLayout& axis : layout.axes) report.axes.push_back(axis.places);
    const auto add = [&](const PlacedLabel& label) { report.texts.push_back({label.box, label.text}); };
    for (const PlacedLabel& title : layout.titles) add(title);
    for (const AxisLayout& axis : layout.axes) {
        for (const PlacedLabel& label : axis.labels) add(label);
        if (axis.title) add(*axis.title);
    }
    for (const LimitLabel& label : layout.limitLabels) add(label.label);
    for (const PlacedNote& note : layout.notes) add(note.label);
    if (layout.legend)
        for (const LegendLayout::Entry& entry : layout.legend->entries) add(entry.label);
    return report;
}

ChartReport DrawOn(const Chart& chart, ChartCanvas canvas, const CRect& box, const ChartRanges& shown = {}) {
    const ChartBox whole{double(box.left), double(box.top), double(box.right), double(box.bottom)};
    const ChartSnapshot data(chart);
    const ChartLayout layout = LayChart(data, canvas, whole, shown);
    PaintChart(data, canvas, layout);
    return ReportOf(layout);
}

double ScaleOf(const Chart& chart) {
    return chart.scale >= kSmallestScale ? std::min(chart.scale, kLargestScale) : kSmallestScale;
}

bool IsUsable(const CRect& box) { return box.left < box.right && box.top < box.bottom; }

// A document of one page.
bool DrawPage(const Chart& chart, HDC context, const CSize& size) {
    CDC dc;
    if (!dc.Attach(context)) return false;
    if (dc.StartDoc(FromUtf8(chart.title).c_str()) <= 0 || dc.StartPage() <= 0) return false;
    const bool isDrawn = chart.Draw(dc, CRect(CPoint(0, 0), size)).isDrawn;
    return isDrawn && dc.EndPage() > 0 && dc.EndDoc() > 0;
}

}  // namespace

Chart::Chart() : theme(ChartTheme::Light()) {
    axes.resize(2);
    axes[1].side = ChartSide::kLeft;
}

ChartReport Chart::Draw(CDC& dc, const CRect& box, const ChartRanges& shown) const {
    Operation running("qel::Chart::Draw");
    if (dc.m_hDC == nullptr || !IsUsable(box)) {
        running.Failed(FailureKind::kArgument, "", dc.m_hDC == nullptr ? "no surface" : "an empty box");
        return {};
    }
    const double dotsPerInch = std::max(1, dc.GetDeviceCaps(LOGPIXELSY));
    return DrawOn(*this, {&dc, nullptr, dotsPerInch, ScaleOf(*this)}, box, shown);
}

ChartReport Chart::Record(CQelPrintJobQueueData& job, const CRect& box) const {
    Operation running("qel::Chart::Record");
    if (!IsUsable(box)) {
        running.Failed(FailureKind::kArgument, "", "an empty box");
        return {};
    }
    const int dotsPerInch = job.GetPageStyle().GetDpi();
    return DrawOn(*this, {nullptr, &job, dotsPerInch >= 1 ? double(dotsPerInch) : kScreenDots, ScaleOf(*this)}, box);
}

bool Chart::WritePng(std::string_view path, const CSize& pixels, int dotsPerInch) const {
    Operation running("qel::Chart::WritePng");
    const auto written = [&] {
        CDC dc;
        CBitmap picture;
        if (!dc.CreateCompatibleDC(nullptr) || !picture.CreateBitmap(pixels.cx, pixels.cy, 1, 32, nullptr))
            return false;
        dc.SelectObject(&picture);
        // The context itself has the resolution of a screen.
        const ChartCanvas canvas(&dc, nullptr, std::max(1, dotsPerInch), ScaleOf(*this));
        return DrawOn(*this, canvas, CRect(CPoint(0, 0), pixels)).isDrawn &&
               SavePng(picture, FromUtf8(path).c_str(), dotsPerInch) != 0;
    };
    return running.Ended(written());
}

bool Chart::WriteSvg(std::string_view path, const CSize& pixels, int dotsPerInch) const {
    Operation running("qel::Chart::WriteSvg");
    return running.Ended(DrawPage(*this, CreateSvgDC(FromUtf8(path).c_str(), pixels, dotsPerInch), pixels));
}

bool Chart::WritePdf(std::string_view path, const CSize& millimetres) const {
    Operation running("qel::Chart::WritePdf");
    PageSetup page;
    constexpr int kMost = 10'000;
    page.sheet = {std::clamp<LONG>(millimetres.cx, 0, kMost) * 100, std::clamp<LONG>(millimetres.cy, 0, kMost) * 100};
    page.dotsPerInch = {kPaperDots, kPaperDots};
    return running.Ended(DrawPage(*this, CreatePdfDC(FromUtf8(path).c_str(), page), page.SheetDots()));
}

}  // namespace qel
