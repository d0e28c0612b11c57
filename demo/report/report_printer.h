#pragma once

#include <string>

#include <qellib10/qellib10.h>

namespace titration {

inline constexpr int kReportsPerPage = 3;

/// The paper for reports, A4 with three of them one below the other, and the printer that it is in.
class ReportPrinter {
public:
    static bool IsThere(const std::string& name);
    /// @throws Failure if there is no such printer
    explicit ReportPrinter(const std::string& name);

    /// With the resolution and the paper size of the printer.
    const CQelPrintJobPageStyle& Style() const { return m_style; }
    CDC& Context() { return m_dc; }

private:
    CQelPrintJobPageStyle m_style;
    CDC m_dc;
};

}  // namespace titration
