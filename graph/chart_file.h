#pragma once

#include <optional>
#include <string_view>

#include "qellib10/graph/chart.h"
#include "qellib10/platform/drawing/geometry.h"
#include "qellib10/platform/export.h"

class CQelPrintJobQueueData;

namespace qel {

/// What a chart can be saved as.
enum class ChartFile {
    kPng,  ///< a picture in pixels
    kSvg,  ///< a picture for documents and web pages
    kPdf,  ///< a page of the chart's size
    kCsv,  ///< its points, see ChartCsv
    kJob   ///< a print job of one A4 page, which CQelPrintJobDocumentData prints with others
};

/// By the end of a file's name, in any case: .png, .svg, .pdf, .csv, .job. Nothing for others.
QELLIB10_API std::optional<ChartFile> ChartFileOf(std::string_view path);

/// Writes the chart as its file's name says. An existing file is replaced as a whole.
/// @param path UTF-8
/// @param size in 1/96 inch; a job has the width of its page, with sides in the same proportion
/// @param dotsPerInch of a PNG
/// @return false if it cannot be written, and for a name without a known end; qel::LastFailure has the reason
QELLIB10_API bool WriteChartFile(const Chart& chart, std::string_view path, const CSize& size, int dotsPerInch = 192);

/// Adds the chart to a job: over the width between the margins of its page style, which has a resolution and a paper
/// size, as after SelectPrinter. It is as high as @p shape says, but not higher than the page.
/// @return false if the margins leave nothing
QELLIB10_API bool RecordOnPage(const Chart& chart, CQelPrintJobQueueData& job, const CSize& shape);

}  // namespace qel
