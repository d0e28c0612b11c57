#include "curve_printer.h"

#include <algorithm>

namespace viewer {
namespace {

// Tenths of a millimetre; the font in tenths of a point.
constexpr int kMargin = 200, kHeadline = 100, kMaxHeight = 1200;
constexpr int kHeadlineFont = 120;

constexpr int kCentred = 2 | 0x10;  // in a single line in the middle of its box

}  // namespace

Printing PrintCurve(const LiveCurve& curve) {
    CQelPrintJobQueueData job;
    CQelPrintJobPageStyle& page = job.GetPageStyle();
    if (page.SelectPrinter() == 0) return Printing::kCancelled;
    page.SetStyleName("Live curve");
    page.SetLeftMargin(kMargin);
    page.SetTopMargin(kMargin);
    page.SetRightMargin(kMargin);
    page.SetBottomMargin(kMargin);
    const CSize size(page.GetPaperSize().cx - 2 * kMargin, page.GetPaperSize().cy - 2 * kMargin);

    job.SetDefaultFont("Arial", kHeadlineFont, RGB(0, 0, 0));
    const CString headline = "Live curve, " + CTime::GetCurrentTime().Format("%Y-%m-%d %H:%M:%S");
    job.AddMillimetreCommandText({0, 0, size.cx, kHeadline}, headline, kCentred);

    CRect place(0, kHeadline, size.cx, std::min<LONG>(size.cy, kHeadline + kMaxHeight));
    page.ConvertMillimetreToPixel(place);
    LiveCurve onPaper = curve;  // the one on the screen does not change
    onPaper.SetResolution(page.GetDpi());
    onPaper.GetPrintJob(&job, place, nullptr);

    CQelPrintJobDocumentData document;
    document.CheckAndAddJobFile(job);
    document.MovePrinterDC(page);
    return document.PrintOut() != 0 ? Printing::kDone : Printing::kFailed;
}

}  // namespace viewer
