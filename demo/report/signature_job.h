#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

#include "demo/report/report_printer.h"

namespace titration {

/// The block of signatures as a print job, one cell of the printer's paper below the report's.
/// @param pages of the print that it belongs to; it is on the first, and the trace is on the others
/// @param lines one text each; what is too long for the paper ends with dots, and what are too many are counted
CQelPrintJobQueueData MakeSignatureJob(const std::string& headline, const std::vector<std::string>& lines, int pages,
                                       ReportPrinter& printer);

}  // namespace titration
