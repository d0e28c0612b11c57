#pragma once

#include <string>

#include <qellib10/qellib10.h>

namespace titration {

/// The log of all runs, "titration.log".
class RunLog {
public:
    /// From now on Log writes there.
    /// @throws Failure when it cannot be written to
    explicit RunLog(const CString& folder);

    /// Its lines since this run began, each behind @p indent; those of programs that run at the same time as well.
    std::string NewLines(const std::string& indent) const;

private:
    std::string m_path;
    ULONGLONG m_begin = 0;
};

/// What is logged of a result and of reports, each with more behind it.
namespace stage {
inline constexpr const char* kMethod = "method ";
inline constexpr const char* kCurve = "curve ";
inline constexpr const char* kTable = "table ";  // of the curve's file, where one was chosen
inline constexpr const char* kResult = "result ";
inline constexpr const char* kRegistered = "registered variables.qel as version ";
inline constexpr const char* kTookOut = "took out ";  // a file of the output folder
inline constexpr const char* kPreviewed = "previewed ";
inline constexpr const char* kPrinted = "printed ";
inline constexpr const char* kInto = " into ";  // a file of the output folder
}  // namespace stage

void Log(const std::string& line);

}  // namespace titration
