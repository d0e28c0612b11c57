#include "qellib10/print/print_table.h"

#include <algorithm>

#include "qellib10/platform/operation.h"
#include "qellib10/print/table_cells.h"

namespace qel {
namespace {

constexpr int kLeft = 1, kRight = 4, kInMiddle = 0x10;  // alignment of a text in its box
constexpr int kHeadline = 100, kSmall = 70;             // tenths of a point

// Tenths of a millimetre: the headline, the space between lines and tables, the foot with the space below it, the width
// of a line, and that for the number of the cell.
constexpr int kHead = 55, kAfterHead = 10, kBeforeFoot = 5, kFoot = 61, kAfterLine = 2, kLineWidth = 2, kNumber = 350;
constexpr int kLeastWidth = 500, kLeastHeight = 300, kLeastColumn = 60;

CSize CellSize(const CQelPrintJobPageStyle& style, CDC& printer) {
    const CSize paper = style.GetPaperSizeOn(&printer), grid = style.GetPrintBlock();
    if (grid.cx < 1 || grid.cy < 1) return {};
    return {(paper.cx - style.GetLeftMargin() - style.GetRightMargin()) / grid.cx,
            (paper.cy - style.GetTopMargin() - style.GetBottomMargin()) / grid.cy};
}

const char* Objection(const std::vector<PrintTable>& tables, const CQelPrintJobPageStyle& style, const CSize& cell) {
    if (style.GetDpi() < 1) return "a page style without a resolution";
    if (cell.cx < kLeastWidth || cell.cy < kLeastHeight) return "a cell that is too small for tables";
    const auto most = static_cast<std::size_t>((cell.cx - kTableIndent) / kLeastColumn);
    for (const PrintTable& table : tables) {
        if (table.columns.size() > most ||
            std::ranges::any_of(table.rows, [&](const auto& row) { return row.size() > most; }))
            return "a table with more columns than fit side by side";
    }
    return nullptr;
}

// A text is drawn on one line.
void WriteOnOneLine(std::string& text) {
    std::ranges::replace_if(
        text, [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
}

std::vector<PrintTable> OnOneLineEach(std::vector<PrintTable> tables) {
    for (PrintTable& table : tables) {
        WriteOnOneLine(table.title);
        std::ranges::for_each(table.columns, WriteOnOneLine);
        for (auto& row : table.rows) std::ranges::for_each(row, WriteOnOneLine);
    }
    return tables;
}

class Job {
public:
    Job(const CQelPrintJobPageStyle& style, const std::string& face) : m_face(face) {
        m_job.GetPageStyle() = style;
        CQelPrintJobCommand pen;
        pen.SetPen(PS_SOLID, Dots(kLineWidth), RGB(0, 0, 0));
        m_job.AddCommand(pen);
    }

    void Text(const CRect& box, int size, const std::string& text, int align = kLeft) {
        m_job.SetDefaultFont(m_face.c_str(), size, RGB(0, 0, 0));
        m_job.AddMillimetreCommandText(box, text.c_str(), align | kInMiddle);
    }
    void Ends(const CRect& box, int size, const TableText& font, const std::string& left, const std::string& right) {
        Text(box, size, font.Fitting(left, Dots(box.Width() - kNumber)));
        Text(box, size, right, kRight);
    }
    void Line(int left, int y, int right) { m_job.AddMillimetreCommandLine({left, y, right, y}); }
    void Place(const PlacedText& placed) {
        placed.text.empty() ? Line(placed.box.left, placed.box.top, placed.box.right)
                            : Text(placed.box, placed.size, placed.text);
    }

    const CQelPrintJobQueueData& Data() const { return m_job; }

private:
    int Dots(int tenths) const {
        CPoint point(tenths, 0);
        m_job.GetPageStyle().ConvertMillimetreToPixel(point);
        return point.x;
    }

    const std::string& m_face;
    CQelPrintJobQueueData m_job;
};

std::vector<CQelPrintJobQueueData> Made(const std::vector<PrintTable>& tables, const TablePage& page,
                                        const CQelPrintJobPageStyle& style, CDC& printer, const CSize& cell) {
    const int width = cell.cx, bottom = cell.cy - kFoot;
    const auto font = [&](int tenths) { return TableText(printer, page.face, tenths, style.GetDpi()); };
    const TableText titles = font(kTableTitle), texts = font(kTablePlain), headline = font(kHeadline),
                    small = font(kSmall);
    const auto cells = CellsOf(OnOneLineEach(tables), page.continued,
                               {0, kHead + kAfterHead, width, bottom - kBeforeFoot}, titles, texts);
    std::vector<CQelPrintJobQueueData> jobs;
    for (const std::vector<PlacedText>& all : cells) {
        Job job(style, page.face);
        job.Ends({0, 0, width, kHead}, kHeadline, headline, page.headline, page.remark);
        job.Line(0, kHead, width);
        for (const PlacedText& placed : all) job.Place(placed);
        job.Line(0, bottom, width);
        job.Ends({0, bottom + kAfterLine, width, bottom + kAfterLine + kTableRow}, kSmall, small, page.foot,
                 std::to_string(jobs.size() + 1) + page.of + std::to_string(cells.size()));
        jobs.push_back(job.Data());
    }
    return jobs;
}

}  // namespace

std::vector<CQelPrintJobQueueData> MakeTableJobs(const std::vector<PrintTable>& tables, const TablePage& page,
                                                 const CQelPrintJobPageStyle& style, CDC& printer) {
    Operation operation("qel::MakeTableJobs");
    const CSize cell = CellSize(style, printer);
    if (const char* const objection = Objection(tables, style, cell)) {
        operation.Failed(FailureKind::kArgument, "", objection);
        return {};
    }
    std::vector<CQelPrintJobQueueData> jobs = Made(tables, page, style, printer, cell);
    operation.Ended(1);
    return jobs;
}

}  // namespace qel
