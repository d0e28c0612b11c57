#pragma once

#include <string>

#include <qellib10/qellib10.h>

namespace titration {

/// The log of all runs, "titration.log".
class RunLog {
public:
    /// From now on Log writes there.
    /// @throws Failure if it cannot be written to
    explicit RunLog(const CString& folder);

    /// Its lines since this run started, each after @p indent; including those of programs that run at the same time.
    std::string NewLines(const std::string& indent) const;

private:
    std::string m_path;
    ULONGLONG m_begin = 0;
};

/// The starts of the log lines about a result and about reports.
namespace stage {
inline constexpr const char* kMethod = "method ";
inline constexpr const char* kCurve = "curve ";
inline constexpr const char* kTable = "table ";  // of the curve's file, if one was chosen
inline constexpr const char* kResult = "result ";
inline constexpr const char* kRegistered = "registered variables.qel as version ";
inline constexpr const char* kTookOut = "took out ";  // a file of the output folder
inline constexpr const char* kPreviewed = "previewed ";
inline constexpr const char* kPrinted = "printed ";
inline constexpr const char* kSignedReport = "signed report on version ";
inline constexpr const char* kInto = " into ";  // a file of the output folder
}  // namespace stage

void Log(const std::string& line);

}  // namespace titration
