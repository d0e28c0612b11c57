#pragma once

#include <string>

#include "demo/result/made_files.h"
#include "demo/result/titration.h"
#include "demo/verify/history_checks.h"
#include "demo/verify/log_check.h"

namespace titration {

// Each returns what it found, and throws Failure if something is wrong.

std::string CheckMethod(const MadeFiles& made, const std::string& name);
std::string CheckVariables(const MadeFiles& made);
std::string CheckTable(const MadeFiles& made, const Result& result);

/// Computes a version again, from the method and the measured curve that were kept for it.
/// @throws Failure unless that gives the values in the cabinet, and the result in the log
Titration EvaluateAgain(const MadeFiles& made, DWORD version, const KeptHistory& history, const LogFacts& log);

/// Computes the trace of a version again, as anybody can from the file alone, and compares it with the trace of
/// @p result.
std::string CheckTraceFile(const MadeFiles& made, DWORD version, const Result& result);

/// @return the headline of the report on a version, which shows @p result
std::string CheckHeadline(const MadeFiles& made, DWORD version, const Result& result);
/// The printer that the report on a version was laid out for; empty if its job cannot be read.
std::string PrinterOf(const MadeFiles& made, DWORD version);
/// Makes the job and the picture of a report again.
/// @throws Failure
void MakeJobAgain(const Titration& titration, DWORD version, const CHistoryRenewInfo& record,
                  const std::string& printerName, const std::string& path, const std::string& picture);

/// The same for the trace's job with a number.
void MakeTraceJobAgain(const Result& result, DWORD version, int number, const std::string& printerName,
                       const std::string& path);

}  // namespace titration
