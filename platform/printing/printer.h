#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "qellib10/platform/drawing/document_sink.h"
#include "qellib10/platform/printing/device_mode.h"
#include "qellib10/platform/printing/paper_form.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// A printer in a list.
struct PrinterEntry {
    CString name;
    CString driver;
    CString port;
    CString comment;
    CString location;
    bool isConnection = false;
    bool isDefault = false;
};

/// A printer and what it can do.
struct Printer {
    PrinterEntry entry;
    SIZE dotsPerInch{600, 600};
    std::vector<Medium> media;
    Medium defaultMedium{"iso_a4_210x297mm", {21000, 29700}};  ///< also if the printer does not say

    /// The printer's own settings.
    DEVMODE OwnMode() const;
};

/// What a job sets for a printer, apart from its pages.
struct JobOptions {
    std::string medium;
    int copies = 1;
    short color = 0;   ///< DMCOLOR_; 0: the printer's choice
    short duplex = 0;  ///< DMDUP_; 0: the printer's choice
};

/// All printers, PDF first, then local ones, then connections.
std::vector<PrinterEntry> ListPrinters();

/// The printer of this name. @param custom another size to include if the printer takes sheets of any size
std::optional<Printer> FindPrinter(const CString& name, const SIZE& custom = {0, 0});

/// Where documents for the printer go.
std::unique_ptr<DocumentSink> SinkOf(const CString& printer, const JobOptions& options);

}  // namespace qel
