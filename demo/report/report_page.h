#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

#include "demo/result/made_files.h"

namespace titration {

/// The job files of the reports on versions @p first to @p last, and from the next page on those of their traces.
/// Versions of earlier releases have none. An empty path is an empty cell.
std::vector<std::string> JobPaths(const MadeFiles& made, DWORD first, DWORD last);
/// The same for one version, with its signatures below its report.
std::vector<std::string> SignedJobPaths(const MadeFiles& made, DWORD version);
int PagesOf(const std::vector<std::string>& jobPaths);

/// Reports and traces, three cells to a page, on the printer that they were laid out for.
class ReportPages {
public:
    /// @param made the date of a PDF, so that the same reports give the same bytes whenever they are printed
    /// @throws Failure if a job file cannot be read, if one is for another printer, and if the printer does not exist
    ReportPages(const std::vector<std::string>& jobPaths, const COleDateTime& made);

    int Count() const;
    std::string PrinterName() const { return std::string(m_document.GetPageStyle().GetPrinterDevice()); }
    /// Draws page @p number, counted from 1, as a picture of one and a half times its real size on a screen.
    /// @throws Failure
    void SavePreview(int number, const std::string& path);
    /// @throws Failure if the printer does not accept the document
    void Print();

private:
    CQelPrintJobDocumentData m_document;
    CDC m_printer;
};

}  // namespace titration
