#include "report_page.h"

#include "failure.h"

namespace titration {
namespace {

constexpr int kScreenDotsAnInch = 96;
constexpr int kScaleNumerator = 3, kScaleDenominator = 2;
constexpr int kPreviewDotsAnInch = kScreenDotsAnInch * kScaleNumerator / kScaleDenominator;

}  // namespace

std::string ReportJobName(DWORD version) { return "report-" + std::to_string(version) + ".job"; }

ReportPages::ReportPages(const MadeFiles& made, DWORD first, DWORD last) {
    for (DWORD version = first; version <= last; ++version) {
        const std::string path = made.Path(ReportJobName(version));
        CQelPrintJobQueueData job;
        if (job.LoadJobFile(path.c_str()) == 0) throw Failure(path + ": cannot be read");
        if (m_document.CheckAndAddJobFile(job) == 0)
            throw Failure(path + ": is for another printer than the first one");
        if (job.GetPageStyle().GetPageBlocks() < 1) throw Failure(path + ": has no place on a page");
    }
    // A job file has the form's code alone; the size of the paper comes with a context of the printer.
    const std::string name = PrinterName();
    if (!m_printer.Attach(m_document.GetPageStyle().GetPrinterDC()))
        throw Failure("there is no printer \"" + name + "\"");
}

int ReportPages::Count() const {
    const int aPage = m_document.GetPageStyle().GetPageBlocks();
    return (m_document.GetBlockCount() - 1) / aPage + 1;
}

int ReportPages::OnScreen(int caps, int resolution) const {
    return m_printer.GetDeviceCaps(caps) * kPreviewDotsAnInch / m_printer.GetDeviceCaps(resolution);
}

void ReportPages::SavePreview(int number, const std::string& path) {
    const CSize size(OnScreen(PHYSICALWIDTH, LOGPIXELSX), OnScreen(PHYSICALHEIGHT, LOGPIXELSY));
    CDC screen;
    CBitmap bitmap;
    screen.CreateCompatibleDC(nullptr);
    if (!bitmap.CreateBitmap(size.cx, size.cy, 1, 32, nullptr)) throw Failure(path + ": no memory for the picture");
    CBitmap* const before = screen.SelectObject(&bitmap);
    const CRect sheet({0, 0}, size);
    screen.FillSolidRect(&sheet, RGB(255, 255, 255));

    bool isDrawn = false;
    {
        CPreviewDC preview;
        preview.SetOutputDC(screen);
        preview.SetAttribDC(m_printer);
        preview.SetTopLeftOffset({OnScreen(PHYSICALOFFSETX, LOGPIXELSX), OnScreen(PHYSICALOFFSETY, LOGPIXELSY)});
        preview.SetScaleRatio(kScaleNumerator, kScaleDenominator);
        isDrawn = m_document.PrintOutMain(&preview, number, 1) != 0;
    }
    screen.SelectObject(before);
    if (!isDrawn || qel::SavePng(bitmap, path.c_str(), kPreviewDotsAnInch) == 0)
        throw Failure(path + ": cannot be written");
}

void ReportPages::Print() {
    if (m_document.PrintOut() == 0) throw Failure("the printer \"" + PrinterName() + "\" does not take the reports");
}

}  // namespace titration
