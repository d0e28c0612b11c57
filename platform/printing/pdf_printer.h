#pragma once

#include "qellib10/platform/printing/printer.h"

namespace qel {

/// The printer that is always there: a folder into which each document is written as a PDF file.
inline constexpr const char* kPdfPrinterName = "PDF";

/// 600 dots an inch, all forms and any other size, no margins, A4 by itself.
Printer PdfPrinter(const SIZE& custom = {0, 0});
std::unique_ptr<DocumentSink> PdfPrinterSink();

}  // namespace qel
