// Two results are kept as job files and printed one below the other on a page.
#include <qellib10/qellib10.h>

#include <cstdio>

namespace {

constexpr int kDotsPerInch = 600;
constexpr int kLeft = 1, kRight = 4, kInMiddle = 0x10;  // the place of a text in its box

// A4 of the printer PDF in two cells, margins of 20 mm.
CQelPrintJobPageStyle Page() {
    CQelPrintJobPageStyle style;
    style.SetStyleName("Results");
    style.SetPrinterDevice("PDF");
    style.SetDpi(kDotsPerInch);
    style.SetTopMargin(200);
    style.SetBottomMargin(200);
    style.SetLeftMargin(200);
    style.SetRightMargin(200);
    style.SetPrintBlock(CSize(1, 2));
    return style;
}

// Places within the cell, in tenths of a millimetre.
int Save(const char* path, const char* sample, const char* result) {
    CQelPrintJobQueueData job;
    job.GetPageStyle() = Page();
    CQelPrintJobCommand pen;
    pen.SetPen(PS_SOLID, 6, RGB(0, 0, 0));
    job.AddCommand(pen);
    job.SetDefaultFont("Arial", 140, RGB(0, 0, 0));
    job.AddMillimetreCommandText(CRect(0, 0, 1700, 80), sample, kLeft | kInMiddle);
    job.AddMillimetreCommandLine(CRect(0, 90, 1700, 90));
    job.SetDefaultFont("Arial", 100, RGB(0, 0, 0));
    job.AddMillimetreCommandText(CRect(0, 110, 1700, 170), result, kRight | kInMiddle);
    return job.SaveJobFile(path);
}

}  // namespace

int main() {
    if (!Save("sample1.job", "Sample 1", "0.8294 mol/L") || !Save("sample2.job", "Sample 2", "0.8297 mol/L")) return 1;

    CQelPrintJobDocumentData document;
    for (const char* path : {"sample1.job", "sample2.job", "missing.job"})
        if (!document.CheckAndAddJobFile(path)) std::printf("%s is not printed\n", path);
    std::printf("%d jobs, %s\n", document.GetBlockCount(),
                document.IsPrintOutPageExist(0) ? "the page is full" : "there is space on the page");
    if (!document.PrintOut()) return 1;
    std::puts("printed");
    return 0;
}
