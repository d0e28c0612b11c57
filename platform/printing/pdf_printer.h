#pragma once

#include "qellib10/platform/printing/printer.h"

namespace qel {

/// The printer that always exists: a folder into which each document is written as a PDF file.
inline constexpr const char* kPdfPrinterName = "PDF";

/// 600 dots per inch, all forms and any other size, no margins, A4 by default.
Printer PdfPrinter(const SIZE& custom = {0, 0});
std::unique_ptr<DocumentSink> PdfPrinterSink();

}  // namespace qel
