#pragma once

#include "qellib10/platform/printing/printer.h"

namespace qel {

/// The queues of the print server; none when it does not answer.
std::vector<PrinterEntry> CupsPrinters();
/// As FindPrinter.
std::optional<Printer> FindCupsPrinter(const CString& name, const SIZE& custom);
/// Sends documents to the queue.
std::unique_ptr<DocumentSink> CupsSink(const CString& printer, const JobOptions& options);

}  // namespace qel
