#include "report_job.h"

#include "curve_graph.h"
#include "failure.h"
#include "history.h"
#include "report.h"

namespace titration {
namespace {

// How a text stands in its box: the low bits align it, the others are single line in the middle, and lines that break
// anywhere.
constexpr int kLeft = 1, kRight = 4, kInMiddle = 0x10, kWrapped = 0x20 | 0x40;

// Tenths of a point.
constexpr int kHeadline = 140, kStrong = 110, kPlain = 90, kSmall = 80;

// Tenths of a millimetre in the cell.
constexpr int kRow = 46, kAbove = 5, kNames = 190, kTableWidth = 650, kCurveLeft = 690;
constexpr int kTop = 100, kBottom = 690, kSignature = 790;
constexpr int kLineWidth = 2;

constexpr int kMostVariables = 6;

class Layout {
public:
    Layout(CQelPrintJobQueueData& job, int width) : m_job(job), m_width(width) {
        CRect line(0, 0, kLineWidth, 0);
        m_job.GetPageStyle().ConvertMillimetreToPixel(line);
        CQelPrintJobCommand pen;
        pen.SetPen(PS_SOLID, line.right, RGB(0, 0, 0));
        m_job.AddCommand(pen);
    }

    void Text(int size, const CRect& box, const std::string& text, int style) {
        m_job.SetDefaultFont("Arial", size, RGB(0, 0, 0));
        m_job.AddMillimetreCommandText(box, text.c_str(), style);
    }
    void Line(int left, int y, int right) { m_job.AddMillimetreCommandLine({left, y, right, y}); }

    void Headline(const std::string& left, const std::string& right) {
        Text(kHeadline, {0, 0, m_width * 2 / 3, 75}, left, kLeft | kInMiddle);
        Text(kPlain, {m_width * 2 / 3, 0, m_width, 75}, right, kRight | kInMiddle);
        Line(0, 80, m_width);
    }
    // The next row of the table.
    void Row(const std::string& name, const std::string& value, int size = kPlain, int lines = 1) {
        const int row = kRow * size / kPlain, height = lines * row;
        Text(size, {0, m_y, kNames, m_y + row}, name, kLeft | kInMiddle);
        // Several lines begin where a single one in the middle of its row would.
        Text(size, {kNames, lines > 1 ? m_y + kAbove : m_y, kTableWidth, m_y + height}, value,
             kLeft | (lines > 1 ? kWrapped : kInMiddle));
        m_y += height;
    }
    void Rule() {
        Line(0, m_y + 8, kTableWidth);
        m_y += 16;
    }
    void Signature(const std::string& operatorName, const std::string& comment) {
        const int left = m_width / 2;
        Text(kPlain, {0, kSignature - kRow, left, kSignature}, "Operator  " + operatorName, kLeft | kInMiddle);
        Text(kSmall, {0, kSignature, left - 50, kSignature + kRow}, comment, kLeft | kInMiddle);
        Line(left, kSignature, m_width);
        Text(kSmall, {left, kSignature, m_width, kSignature + kRow}, "Date, signature", kLeft | kInMiddle);
    }

private:
    CQelPrintJobQueueData& m_job;
    const int m_width;
    int m_y = kTop;
};

std::string Date(const COleDateTime& time) {
    CString text;
    text.Format("%04d-%02d-%02d %02d:%02d", time.GetYear(), time.GetMonth(), time.GetDay(), time.GetHour(),
                time.GetMinute());
    return std::string(text);
}

void AddVariables(Layout& layout, const CCalcVariableList& variables, int count) {
    CCalcVariable variable;
    const int shown = count <= kMostVariables ? count : kMostVariables - 1;
    for (int i = 0; i < shown && variables.GetUseVariableData(i, &variable) != 0; ++i) {
        CString value;
        value.Format("%.6g", variable.m_dValue);
        layout.Row(std::string(variable.m_szName), std::string(value));
    }
    if (shown < count) layout.Row("", "and " + std::to_string(count - shown) + " more");
}

void AddTable(Layout& layout, const Determination& determination) {
    const Result& result = determination.result;
    layout.Row("Curve", std::string(CQFile::GetFilenameFromPath(determination.dataFile.c_str())) + ", " +
                            std::to_string(determination.curve.volume.size()) + " points");
    const EndPoint& endPoint = determination.endPoint;
    CString place;
    place.Format("%.4f, %s %.2f", endPoint.volume, ColumnText(determination.settings.signalColumn).c_str(),
                 endPoint.signal);
    layout.Row("End point", std::string(place));
    layout.Row("Formula", determination.settings.formula, kPlain, 2);
    layout.Rule();
    AddVariables(layout, result.variables, static_cast<int>(result.used.size()));
    layout.Rule();
    layout.Row(result.name, result.text + " " + result.unit, kStrong);
    layout.Row("Limits", LimitText(determination.settings, result.value));
}

// One drawing gives both the commands in the job and the pixels of the picture.
void AddCurve(CQelPrintJobQueueData& job, const Determination& determination, CRect place, CDC& printer,
              const std::string& picture) {
    const int dotsAnInch = job.GetPageStyle().GetDpi();
    job.GetPageStyle().ConvertMillimetreToPixel(place);
    CDC memory;
    CBitmap bitmap;
    memory.CreateCompatibleDC(&printer);
    if (!bitmap.CreateBitmap(place.Width(), place.Height(), 1, 32, nullptr))
        throw Failure(picture + ": no memory for the picture");
    CBitmap* const before = memory.SelectObject(&bitmap);
    const CRect all(0, 0, place.Width(), place.Height());
    memory.FillSolidRect(&all, RGB(255, 255, 255));
    memory.SetViewportOrg(-place.left, -place.top);

    const Settings& settings = determination.settings;
    CurveGraph graph(determination.curve, determination.endPoint, ColumnText(settings.volumeColumn),
                     ColumnText(settings.signalColumn), dotsAnInch);
    graph.GetPrintJob(&job, place, &memory);
    memory.SelectObject(before);
    if (qel::SavePng(bitmap, picture.c_str(), dotsAnInch) == 0) throw Failure(picture + ": cannot be written");
}

}  // namespace

CQelPrintJobQueueData MakeReportJob(const Determination& determination, DWORD version, const CHistoryRenewInfo& record,
                                    ReportPrinter& printer, const std::string& picture) {
    CQelPrintJobQueueData job;
    const CQelPrintJobPageStyle& style = printer.Style();
    job.GetPageStyle() = style;
    const int width = style.GetPaperSize().cx - style.GetLeftMargin() - style.GetRightMargin();
    Layout layout(job, width);
    const Result& result = determination.result;
    layout.Headline("Titration: " + result.name + " " + result.text + " " + result.unit,
                    "version " + std::to_string(version) + ", " + Date(record.GetRenewDateTime()));
    AddTable(layout, determination);
    layout.Signature(std::string(record.GetOperator()), std::string(record.GetComment()));
    // The curve comes last: where its limits are taken away in a cell other than the first, they hide what follows.
    AddCurve(job, determination, {kCurveLeft, kTop, width, kBottom}, printer.Context(), picture);
    return job;
}

}  // namespace titration
