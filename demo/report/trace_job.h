#pragma once

#include <vector>

#include <qellib10/qellib10.h>

#include "demo/report/report_printer.h"
#include "demo/result/calculation.h"

namespace titration {

/// Lays the trace of a result out as print jobs, each one cell of the printer's paper: as many as it needs. Its texts
/// are in the language of the string tables. Each cell has the hash of the trace's file, so that paper and file are
/// known to belong together.
/// @param version of the result
/// @throws Failure if the page is too small
std::vector<CQelPrintJobQueueData> MakeTraceJobs(const Result& result, DWORD version, ReportPrinter& printer);

}  // namespace titration
