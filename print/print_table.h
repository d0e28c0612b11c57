#pragma once

#include <string>
#include <vector>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/export.h"
#include "qellib10/print/page_style.h"
#include "qellib10/print/queue_data.h"

namespace qel {

/// A table to print: its rows have one text for each column. Texts are in the program's code page (see SetCodePage).
struct PrintTable {
    std::string title;
    std::vector<std::string> columns;  ///< empty where the rows explain themselves
    std::vector<std::vector<std::string>> rows;
};

/// From tables with the same members, such as those of a trace: `PrintTablesOf(trace.Tables(language))`.
template <class Table> std::vector<PrintTable> PrintTablesOf(const std::vector<Table>& tables) {
    std::vector<PrintTable> made;
    for (const Table& table : tables) made.push_back({table.title, table.columns, table.rows});
    return made;
}

/// What is around the tables in each cell of a page. Headline and foot end with dots where they are too long.
struct TablePage {
    std::string headline;                    ///< above a line
    std::string remark = {};                 ///< at the right end of it
    std::string foot = {};                   ///< below a line; the number of the cell follows, "1 of 3"
    std::string face = "Arial";              ///< of all texts, 31 bytes
    std::string of = " of ";                 ///< within the number
    std::string continued = " (continued)";  ///< after the title of a table that goes on in the next cell
};

/// Print jobs of tables one below the other, each a cell of the page that @p style describes, as many as they need:
/// what CQelPrintJobDocumentData prints. Of the tables nothing is cut. What is too wide for its column has several
/// lines, which break after blanks, or within a word that is too long; a table that goes on in the next cell has its
/// title and the names of its columns there again. A column without any text is left out.
///
/// @code
/// const qel::PrintTable inputs{"Inputs", {"Name", "Value"}, {{"V", "12.34 mL"}, {"C", "0.1 mol/L"}}};
/// CQelPrintJobPageStyle style;
/// style.SetPrinterDevice("PDF");
/// CDC printer;
/// if (!printer.Attach(style.GetPrinterDC())) return;
/// CQelPrintJobDocumentData document;
/// for (const auto& job : qel::MakeTableJobs({inputs}, {"Trace"}, style, printer)) document.CheckAndAddJobFile(job);
/// document.PrintOut();
/// @endcode
///
/// @param style with a resolution; without a paper size that of its form or of the printer is used
/// @param printer for the widths of texts, of that resolution
/// @return one at least; none where the resolution is below 1, a cell is less than 50 mm wide or 30 mm high, or a table
/// has more columns than fit side by side with 6 mm each. LastFailure says which
QELLIB10_API std::vector<CQelPrintJobQueueData> MakeTableJobs(const std::vector<PrintTable>& tables,
                                                              const TablePage& page, const CQelPrintJobPageStyle& style,
                                                              CDC& printer);

}  // namespace qel
