#include "report_page.h"

#include "failure.h"

namespace titration {
namespace {

constexpr int kScreenDotsAnInch = 96;
constexpr int kScaleNumerator = 3, kScaleDenominator = 2;
constexpr int kPreviewDotsAnInch = kScreenDotsAnInch * kScaleNumerator / kScaleDenominator;

}  // namespace

std::string ReportJobPath(const CString& folder, DWORD version) {
    return std::string(CQFile::BuildFilePath(folder, ("report-" + std::to_string(version) + ".job").c_str()));
}

ReportPages::ReportPages(const CString& folder, DWORD first, DWORD last) {
    for (DWORD version = first; version <= last; ++version) {
        const std::string path = ReportJobPath(folder, version);
        CQelPrintJobQueueData job;
        if (job.LoadJobFile(path.c_str()) == 0) throw Failure(path + ": cannot be read");
        if (m_document.CheckAndAddJobFile(job) == 0)
            throw Failure(path + ": is for another printer than the first one");
    }
}

int ReportPages::Count() const {
    const int aPage = m_document.GetPageStyle().GetPageBlocks();
    return (m_document.GetBlockCount() + aPage - 1) / aPage;
}

void ReportPages::SavePreview(int number, const std::string& path) {
    ReportPrinter printer(m_document.GetPageStyle());
    const auto onScreen = [&](int caps, int resolution) {
        return printer.Context().GetDeviceCaps(caps) * kPreviewDotsAnInch / printer.Context().GetDeviceCaps(resolution);
    };
    const CSize size(onScreen(PHYSICALWIDTH, LOGPIXELSX), onScreen(PHYSICALHEIGHT, LOGPIXELSY));
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
        preview.SetAttribDC(printer.Context());
        preview.SetTopLeftOffset({onScreen(PHYSICALOFFSETX, LOGPIXELSX), onScreen(PHYSICALOFFSETY, LOGPIXELSY)});
        preview.SetScaleRatio(kScaleNumerator, kScaleDenominator);
        isDrawn = m_document.PrintOutMain(&preview, number, 1) != 0;
    }
    screen.SelectObject(before);
    if (!isDrawn || qel::SavePng(bitmap, path.c_str(), kPreviewDotsAnInch) == 0)
        throw Failure(path + ": cannot be written");
}

void ReportPages::Print() {
    if (m_document.PrintOut() == 0)
        throw Failure("the printer \"" + std::string(PrinterName()) + "\" does not take the reports");
}

}  // namespace titration
