#include "qellib10/graph/chart_file.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "qellib10/graph/chart_csv.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/print/queue_data.h"

namespace qel {
namespace {

constexpr int kUnitsPerInch = 96, kPaperDots = 600;
constexpr int kMargin = 200;                            // tenths of a millimetre
constexpr int kPaperWidth = 2100, kPaperHeight = 2970;  // A4

constexpr struct {
    std::string_view end;
    ChartFile kind;
} kEnds[] = {{".png", ChartFile::kPng},
             {".svg", ChartFile::kSvg},
             {".pdf", ChartFile::kPdf},
             {".csv", ChartFile::kCsv},
             {".job", ChartFile::kJob}};

CSize Scaled(const CSize& size, double factor) {
    return {static_cast<int>(std::lround(size.cx * factor)), static_cast<int>(std::lround(size.cy * factor))};
}

bool WriteJob(const Chart& chart, std::string_view path, const CSize& size) {
    CQelPrintJobQueueData job;
    CQelPrintJobPageStyle& page = job.GetPageStyle();
    page.SetStyleName(FromUtf8(chart.title).c_str());
    page.SetPrinterDevice("PDF");
    page.SetDpi(kPaperDots);
    page.SetPaperSize(CSize(kPaperWidth, kPaperHeight));
    page.SetLeftMargin(kMargin);
    page.SetTopMargin(kMargin);
    page.SetRightMargin(kMargin);
    page.SetBottomMargin(kMargin);
    return RecordOnPage(chart, job, size) && job.SaveJobFile(FromUtf8(path).c_str()) != 0;
}

}  // namespace

std::optional<ChartFile> ChartFileOf(std::string_view path) {
    std::string end(path.substr(path.size() - std::min<std::size_t>(path.size(), 4)));
    for (char& c : end) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    for (const auto& known : kEnds)
        if (known.end == end) return known.kind;
    return {};
}

bool WriteChartFile(const Chart& chart, std::string_view path, const CSize& size, int dotsPerInch) {
    Operation running("qel::WriteChartFile");
    const auto kind = ChartFileOf(path);
    if (!kind) return running.Failed(FailureKind::kArgument, path, "not a kind of file that charts are saved as") != 0;
    const auto write = [&] {
        switch (*kind) {
            case ChartFile::kPng:
                return chart.WritePng(path, Scaled(size, double(dotsPerInch) / kUnitsPerInch), dotsPerInch);
            case ChartFile::kSvg:
                return chart.WriteSvg(path, size);
            case ChartFile::kPdf:
                return chart.WritePdf(path, Scaled(size, 25.4 / kUnitsPerInch));
            case ChartFile::kCsv:
                return WriteChartCsv(chart, path);
            case ChartFile::kJob:
                return WriteJob(chart, path, size);
        }
        return false;
    };
    return running.Ended(write());
}

bool RecordOnPage(const Chart& chart, CQelPrintJobQueueData& job, const CSize& shape) {
    Operation running("qel::RecordOnPage");
    const CQelPrintJobPageStyle& page = job.GetPageStyle();
    const CSize paper = page.GetPaperSizeOn(nullptr);
    const int width = paper.cx - page.GetLeftMargin() - page.GetRightMargin();
    const int most = paper.cy - page.GetTopMargin() - page.GetBottomMargin();
    if (width <= 0 || most <= 0 || shape.cx <= 0 || shape.cy <= 0)
        return running.Failed(FailureKind::kArgument, "", "no space on the page") != 0;
    CRect box(0, 0, width, static_cast<int>(std::min<double>(most, double(width) * shape.cy / shape.cx)));
    page.ConvertMillimetreToPixel(box);
    return running.Ended(chart.Record(job, box).isDrawn);
}

}  // namespace qel
