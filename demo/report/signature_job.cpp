#include "demo/report/signature_job.h"

#include "demo/report/point_font.h"

namespace titration {
namespace {

constexpr int kLeft = 1, kRight = 4, kInMiddle = 0x10;  // alignment of a text in its box
constexpr int kHeadline = 110, kPlain = 80;             // tenths of a point
constexpr int kRow = 42, kTop = 90, kBottom = 790;      // tenths of a millimetre in the cell
constexpr int kLineWidth = 2;

}  // namespace

CQelPrintJobQueueData MakeSignatureJob(const std::string& headline, const std::vector<std::string>& lines, int pages,
                                       ReportPrinter& printer) {
    CQelPrintJobQueueData job;
    const CQelPrintJobPageStyle& style = printer.Style();
    job.GetPageStyle() = style;
    const int width = style.GetPaperSize().cx - style.GetLeftMargin() - style.GetRightMargin();
    CPoint dots(width, kLineWidth);
    style.ConvertMillimetreToPixel(dots);
    CQelPrintJobCommand pen;
    pen.SetPen(PS_SOLID, dots.y, RGB(0, 0, 0));
    job.AddCommand(pen);
    const auto write = [&](int size, int y, const std::string& text, int align) {
        job.SetDefaultFont(kFace, size, RGB(0, 0, 0));
        const std::string fitting = Fitting(PointFont(&printer.Context(), size), text, dots.x);
        job.AddMillimetreCommandText({0, y, width, y + kRow}, fitting.c_str(), align | kInMiddle);
    };
    write(kHeadline, kTop - kRow - 10, headline, kLeft);
    job.AddMillimetreCommandLine({0, kTop, width, kTop});
    int y = kTop + 10;
    constexpr std::size_t kRows = (kBottom - kTop - 10) / kRow;
    const std::size_t shown = lines.size() <= kRows ? lines.size() : kRows - 1;
    for (std::size_t i = 0; i < shown; ++i, y += kRow) write(kPlain, y, lines[i], kLeft);
    if (shown < lines.size())
        write(kPlain, y, "and " + std::to_string(lines.size() - shown) + " more lines: see the trail", kLeft);
    job.AddMillimetreCommandLine({0, kBottom, width, kBottom});
    write(kPlain, kBottom + 5, pages > 1 ? "the trace follows" : "end of report", kLeft);
    write(kPlain, kBottom + 5, "page 1 of " + std::to_string(pages), kRight);
    return job;
}

}  // namespace titration
