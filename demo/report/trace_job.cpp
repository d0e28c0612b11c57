#include "demo/report/trace_job.h"

#include <qellib10/record.h>

#include "demo/report/point_font.h"
#include "demo/report/table_cells.h"
#include "demo/result/result_trace.h"
#include "demo/support/file_names.h"

namespace titration {
namespace {

constexpr int kLeft = 1, kRight = 4, kInMiddle = 0x10;  // alignment of a text in its box
constexpr int kHeadline = 100, kSmall = 70;             // tenths of a point
// Tenths of a millimetre in the cell.
constexpr int kRow = 31, kTop = 55, kBottom = 845, kLineWidth = 2;
constexpr int kNumber = 350;  // the width for the number of the cell

std::vector<qel::TraceTable> TablesOf(const Result& result) {
    const bool isJapanese = qel::TableLanguage() == qel::Language::Japanese;
    std::vector<qel::TraceTable> tables =
        result.trace.Tables(isJapanese ? qel::TraceLanguage::kJapanese : qel::TraceLanguage::kEnglish);
    const std::string remark = RoundingRemark(result);
    if (!remark.empty()) {
        qel::TraceTable reported;
        reported.title = "Reported: " + Shown(result);
        reported.rows.push_back({"rounded " + remark});
        tables.insert(tables.begin(), reported);
    }
    return tables;
}

class Cell {
public:
    explicit Cell(ReportPrinter& printer) : m_printer(printer) {
        m_job.GetPageStyle() = printer.Style();
        CPoint dots(0, kLineWidth);
        m_job.GetPageStyle().ConvertMillimetreToPixel(dots);
        CQelPrintJobCommand pen;
        pen.SetPen(PS_SOLID, dots.y, RGB(0, 0, 0));
        m_job.AddCommand(pen);
    }

    void Text(const CRect& box, int size, const std::string& text, int align = kLeft) {
        m_job.SetDefaultFont(kFace, size, RGB(0, 0, 0));
        m_job.AddMillimetreCommandText(box, text.c_str(), align | kInMiddle);
    }
    // Of two texts, with dots where the first is too long.
    void Ends(const CRect& box, int size, const std::string& left, const std::string& right) {
        CPoint width(box.Width() - kNumber, 0);
        m_job.GetPageStyle().ConvertMillimetreToPixel(width);
        Text(box, size, Fitting(PointFont(&m_printer.Context(), size), left, width.x));
        Text(box, size, right, kRight);
    }
    void Line(const CRect& box) { m_job.AddMillimetreCommandLine({box.left, box.top, box.right, box.top}); }

    const CQelPrintJobQueueData& Job() const { return m_job; }

private:
    ReportPrinter& m_printer;
    CQelPrintJobQueueData m_job;
};

}  // namespace

std::vector<CQelPrintJobQueueData> MakeTraceJobs(const Result& result, DWORD version, ReportPrinter& printer) {
    const CQelPrintJobPageStyle& style = printer.Style();
    const int width = style.GetPaperSize().cx - style.GetLeftMargin() - style.GetRightMargin();
    const auto cells = CellsOf(TablesOf(result), {0, kTop + 10, width, kBottom - 5}, printer);
    const std::string uncertainty = UncertaintyText(result);
    const std::string headline = "Trace: " + Shown(result) + (uncertainty.empty() ? "" : " " + uncertainty);
    const std::string file = TraceName(version) + ", SHA-256 " + qel::HashText(result.trace.Json());
    std::vector<CQelPrintJobQueueData> jobs;
    for (const std::vector<PlacedText>& texts : cells) {
        Cell cell(printer);
        cell.Ends({0, 0, width, kTop}, kHeadline, headline, "version " + std::to_string(version));
        cell.Line({0, kTop, width, kTop});
        for (const PlacedText& placed : texts)
            placed.text.empty() ? cell.Line(placed.box) : cell.Text(placed.box, placed.size, placed.text);
        cell.Line({0, kBottom, width, kBottom});
        cell.Ends({0, kBottom + 2, width, kBottom + 2 + kRow}, kSmall, file,
                  std::to_string(jobs.size() + 1) + " of " + std::to_string(cells.size()));
        jobs.push_back(cell.Job());
    }
    return jobs;
}

}  // namespace titration
