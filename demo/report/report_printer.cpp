#include "demo/report/report_printer.h"

#include "demo/support/failure.h"
#include "demo/support/file_step.h"

namespace titration {
namespace {

CQelPrintJobPageStyle ThreeReportsPerPage(const std::string& printer) {
    CQelPrintJobPageStyle style;
    style.SetStyleName("Titration reports");
    style.SetPrinterDevice(printer.c_str());
    style.SetPrintBlock({1, kReportsPerPage});
    // Tenths of a millimetre; the wide margin is for a binder.
    style.SetLeftMargin(200);
    style.SetRightMargin(150);
    style.SetTopMargin(150);
    style.SetBottomMargin(100);
    return style;
}

}  // namespace

bool ReportPrinter::IsThere(const std::string& name) {
    CDC dc;
    return dc.Attach(ThreeReportsPerPage(name).GetPrinterDC()) != 0;
}

ReportPrinter::ReportPrinter(const std::string& name) : m_style(ThreeReportsPerPage(name)) {
    if (!m_dc.Attach(m_style.GetPrinterDC())) throw Failure("the printer \"" + name + "\": " + Why("does not exist"));
}

}  // namespace titration
