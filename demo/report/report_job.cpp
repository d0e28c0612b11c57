#include "demo/report/report_job.h"

#include "demo/report/curve_graph.h"
#include "demo/report/point_font.h"
#include "demo/report/report.h"
#include "demo/result/result_trace.h"
#include "demo/support/failure.h"
#include "demo/support/file_step.h"

namespace titration {
namespace {

// Alignment of a text in its box: the low bits align it, the others mean a single line in the middle, and lines that
// may break anywhere.
constexpr int kLeft = 1, kRight = 4, kInMiddle = 0x10, kWrapped = 0x20 | 0x40;

// Tenths of a point.
constexpr int kHeadline = 140, kStrong = 110, kPlain = 90, kSmall = 80;

// Tenths of a millimetre in the cell.
constexpr int kRow = 40, kAbove = 2;  // the first of several lines is where a single one would be
constexpr int kNames = 190, kValues = 400, kTableWidth = 650, kCurveLeft = 690;
constexpr int kTop = 100, kBottom = 690, kSignature = 790;
constexpr int kLineWidth = 2;
constexpr double kWrappedWidth = 1.7;  // of two lines, which break between words

constexpr int kMaxVariables = 6;

// Texts and lines in a cell of the page, positions in tenths of a millimetre.
class Layout {
public:
    Layout(CQelPrintJobQueueData& job, CDC& printer, int width) : m_job(job), m_printer(printer), m_width(width) {
        CQelPrintJobCommand pen;
        pen.SetPen(PS_SOLID, Dots(kLineWidth), RGB(0, 0, 0));
        m_job.AddCommand(pen);
    }

    void Text(int size, const CRect& box, const std::string& text, int style) {
        const double lines = (style & kWrapped) != 0 ? kWrappedWidth : 1;
        const int width = Dots(static_cast<int>(box.Width() * lines));
        m_job.SetDefaultFont(kFace, size, RGB(0, 0, 0));
        m_job.AddMillimetreCommandText(box, Fitting(PointFont(&m_printer, size), text, width).c_str(), style);
    }
    void Line(int left, int y, int right) { m_job.AddMillimetreCommandLine({left, y, right, y}); }

    void Headline(const std::string& left, const std::string& right) {
        Text(kHeadline, {0, 0, m_width * 2 / 3, 75}, left, kLeft | kInMiddle);
        Text(kPlain, {m_width * 2 / 3, 0, m_width, 75}, right, kRight | kInMiddle);
        Line(0, 80, m_width);
    }
    // The next lines of the table.
    void Fact(const std::string& name, const std::string& text, bool isWrapped = false) {
        Text(kPlain, {0, m_y, kNames, m_y + kRow}, name, kLeft | kInMiddle);
        const CRect box(kNames, m_y, kTableWidth, m_y + (isWrapped ? 2 * kRow : kRow));
        Text(kPlain, isWrapped ? CRect(box.left, box.top + kAbove, box.right, box.bottom) : box, text,
             kLeft | (isWrapped ? kWrapped : kInMiddle));
        m_y = box.bottom;
    }
    void Value(const std::string& name, const std::string& value, int size = kPlain, int left = kValues) {
        const int bottom = m_y + kRow * size / kPlain;
        Text(size, {0, m_y, left - 10, bottom}, name, kLeft | kInMiddle);
        Text(size, {left, m_y, kTableWidth, bottom}, value, kRight | kInMiddle);
        m_y = bottom;
    }
    void BelowCurve(const std::string& text) {
        Text(kSmall, {kCurveLeft, kBottom, m_width, kBottom + kRow}, text, kLeft | kInMiddle);
    }
    void Rule() {
        Line(0, m_y + 8, kTableWidth);
        m_y += 16;
    }
    void Signature(const std::string& operatorName, const std::string& comment) {
        const int left = m_width / 2;
        Text(kPlain, {0, kSignature - kRow, left - 50, kSignature}, "Operator  " + operatorName, kLeft | kInMiddle);
        Text(kSmall, {0, kSignature, left - 50, kSignature + kRow}, comment, kLeft | kInMiddle);
        Line(left, kSignature, m_width);
        Text(kSmall, {left, kSignature, m_width, kSignature + kRow}, "Date, signature", kLeft | kInMiddle);
    }

private:
    int Dots(int tenths) const {
        CPoint point(tenths, 0);
        m_job.GetPageStyle().ConvertMillimetreToPixel(point);
        return point.x;
    }

    CQelPrintJobQueueData& m_job;
    CDC& m_printer;
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
    const int shown = count <= kMaxVariables ? count : kMaxVariables - 1;
    for (int i = 0; i < shown && variables.GetUseVariableData(i, &variable) != 0; ++i) {
        CString value;
        value.Format("%.6g", variable.m_dValue);
        layout.Value(std::string(variable.m_szName), std::string(value));
    }
    if (shown < count) layout.Value("and " + std::to_string(count - shown) + " more", "");
}

void AddTable(Layout& layout, const Titration& titration) {
    const Result& result = titration.result;
    layout.Fact("Curve", std::string(CQFile::GetFilenameFromPath(titration.dataFile.c_str())) + ", " +
                             std::to_string(titration.curve.volume.size()) + " points");
    const qel::EndPoint& endPoint = titration.endPoint;
    CString place;
    place.Format("%.4f, %s %.2f", endPoint.volume, ColumnText(titration.settings.signalColumn).c_str(),
                 endPoint.signal);
    layout.Fact("End point", std::string(place));
    layout.Fact("Formula", titration.settings.formula, true);
    layout.Rule();
    AddVariables(layout, result.variables, static_cast<int>(result.used.size()));
    layout.Rule();
    layout.Value(result.name, result.text + " " + result.unit, kStrong, kNames);
    if (const std::string uncertainty = UncertaintyText(result); !uncertainty.empty())
        layout.Value("Uncertainty", uncertainty, kPlain, kNames);
    const std::string remark = RoundingRemark(result);
    const std::string rounding = remark.empty() ? RuleText(result) : remark;
    if (!rounding.empty()) layout.Fact("Rounding", rounding, true);
    const std::string limits = LimitText(titration.settings, result.value);
    if (!limits.empty()) layout.Fact("Limits", limits);
    if (const std::string decision = DecisionText(result); !decision.empty()) layout.BelowCurve("Limits " + decision);
}

// One drawing gives both the commands in the job and the pixels of the picture.
void AddCurve(CQelPrintJobQueueData& job, const Titration& titration, CRect place, CDC& printer,
              const std::string& picture) {
    const int dotsPerInch = job.GetPageStyle().GetDpi();
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

    const Settings& settings = titration.settings;
    CurveGraph graph(titration.curve, titration.endPoint, ColumnText(settings.volumeColumn),
                     ColumnText(settings.signalColumn), dotsPerInch);
    graph.GetPrintJob(&job, place, &memory);
    memory.SelectObject(before);
    if (qel::SavePng(bitmap, picture.c_str(), dotsPerInch) == 0)
        throw Failure(picture + ": " + Why("cannot be written"));
}

}  // namespace

std::string Headline(const Result& result) {
    return "Titration: " + result.name + " " + result.text + " " + result.unit;
}

CQelPrintJobQueueData MakeReportJob(const Titration& titration, DWORD version, const CHistoryRenewInfo& record,
                                    ReportPrinter& printer, const std::string& picture) {
    CQelPrintJobQueueData job;
    const CQelPrintJobPageStyle& style = printer.Style();
    job.GetPageStyle() = style;
    const int width = style.GetPaperSize().cx - style.GetLeftMargin() - style.GetRightMargin();
    Layout layout(job, printer.Context(), width);
    const Result& result = titration.result;
    layout.Headline(titration::Headline(result),
                    "version " + std::to_string(version) + ", " + Date(record.GetRenewDateTime()));
    AddTable(layout, titration);
    layout.Signature(std::string(record.GetOperator()), std::string(record.GetComment()));
    // The curve comes last: removing its limits in a cell other than the first hides what follows.
    AddCurve(job, titration, {kCurveLeft, kTop, width, kBottom}, printer.Context(), picture);
    return job;
}

}  // namespace titration
