#pragma once

#include "qellib10/platform/printing/printer.h"

namespace qel {

/// The queues of the print server; empty if it does not respond.
std::vector<PrinterEntry> CupsPrinters();
/// Like FindPrinter.
std::optional<Printer> FindCupsPrinter(const CString& name, const SIZE& custom);
/// Sends documents to the queue.
std::unique_ptr<DocumentSink> CupsSink(const CString& printer, const JobOptions& options);

}  // namespace qel
