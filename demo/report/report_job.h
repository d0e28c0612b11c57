#pragma once

#include <string>

#include <qellib10/qellib10.h>

#include "demo/report/report_printer.h"
#include "demo/result/titration.h"

namespace titration {

/// "Titration: ACIDITY 49.6 g/L"
std::string Headline(const Result& result);

/// Lays a report out as a print job, one cell of the printer's paper: headline, curve, table, operator and a line to
/// sign on. The curve is also saved as a picture, from the same drawing.
/// @param version of the result, with the @p record of its registration
/// @throws Failure if the picture cannot be saved
CQelPrintJobQueueData MakeReportJob(const Titration& titration, DWORD version, const CHistoryRenewInfo& record,
                                    ReportPrinter& printer, const std::string& picture);

}  // namespace titration
