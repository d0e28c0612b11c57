#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

#include "demo/result/made_files.h"

namespace titration {

/// The job files of the reports on versions @p first to @p last.
std::vector<std::string> JobPaths(const MadeFiles& made, DWORD first, DWORD last);

/// Reports, three to a page, on the printer that they were laid out for.
class ReportPages {
public:
    /// @param made what a PDF has as its date, so that the same reports are the same bytes whenever they are printed
    /// @throws Failure when a job file cannot be read, when one is for another printer, and when that is not there
    ReportPages(const std::vector<std::string>& jobPaths, const COleDateTime& made);

    int Count() const;
    std::string PrinterName() const { return std::string(m_document.GetPageStyle().GetPrinterDevice()); }
    /// Draws page @p number, counted from 1, as a picture of half as much again as its real size on a screen.
    /// @throws Failure
    void SavePreview(int number, const std::string& path);
    /// @throws Failure when the printer does not take the document
    void Print();

private:
    CQelPrintJobDocumentData m_document;
    CDC m_printer;
};

}  // namespace titration
