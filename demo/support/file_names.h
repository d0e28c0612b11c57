#pragma once

#include <string>

#include <qellib10/qellib10.h>

namespace titration {

// Files that exist once for each version, or for each page of what was printed last.

inline std::string MethodName(DWORD version) { return "method-" + std::to_string(version) + ".xml"; }
inline std::string CurveName(DWORD version) { return "curve-" + std::to_string(version) + ".csv"; }
// A result with each step, as data; and as print jobs, the first has number 1.
inline std::string TraceName(DWORD version) { return "trace-" + std::to_string(version) + ".json"; }
inline std::string TraceJobName(DWORD version, int number) {
    return "trace-" + std::to_string(version) + "-" + std::to_string(number) + ".job";
}
inline std::string JobName(DWORD version) { return "report-" + std::to_string(version) + ".job"; }
// In a separate folder, because its seal contains the name that it was sealed under.
inline std::string TakenOutName(DWORD version) { return "version-" + std::to_string(version) + "/variables.qel"; }
// Of a version that was approved: its signatures, and the report with them.
inline std::string SignatureJobName(DWORD version) { return "signatures-" + std::to_string(version) + ".job"; }
inline std::string SignedName(DWORD version) { return "signed-" + std::to_string(version) + ".pdf"; }
inline std::string PageName(int page) { return "page-" + std::to_string(page) + ".png"; }

inline constexpr const char* kAllPages = "page-*.png";
inline constexpr const char* kAllPdfs = "*.pdf";

}  // namespace titration
